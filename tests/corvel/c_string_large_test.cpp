// Texts of more than a megabyte, whose blocks grow where they stand.

#include <gtest/gtest.h>
#include <new>
#include <string>

#include <corvel/c_string.h>

// The address sanitizer has its own allocator in this place.
#if defined(__has_feature)
#define TESSIT_HAS_FEATURE(name) __has_feature(name)
#else
#define TESSIT_HAS_FEATURE(name) 0
#endif
#if !defined(__SANITIZE_ADDRESS__) && !TESSIT_HAS_FEATURE(address_sanitizer)
#define TESSIT_CAN_FAIL

namespace {

bool allocationsFail = false;

}  // namespace

extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);

void* malloc(std::size_t bytes) {
    return allocationsFail ? nullptr : __libc_malloc(bytes);
}

void* realloc(void* block, std::size_t bytes) {
    return allocationsFail ? nullptr : __libc_realloc(block, bytes);
}
}

#endif

namespace {

constexpr std::size_t Megabyte = 1024 * 1024;

// No two stretches of it are the same.
std::string numbersUpTo(std::size_t bytes) {
    std::string text;
    for (int i = 0; text.size() < bytes; ++i)
        text += std::to_string(i) + ' ';
    return text;
}

TEST(LargeCString, GrowsShrinksAndMovesLikeAnyOther) {
    const std::string numbers = numbersUpTo(5 * Megabyte / 2);
    std::string expected;
    QeCString text;
    for (std::size_t at = 0; at < numbers.size(); at += 100'000) {
        text.append(numbers.substr(at, 100'000));
        expected.append(numbers, at, 100'000);
    }
    text.append(text.substring(Megabyte));  // its own bytes, which move meanwhile
    expected += expected.substr(Megabyte);
    EXPECT_TRUE(text == expected);
    QeCString copy(text), moved(std::move(text));
    copy.reserve(10 * Megabyte);
    copy = "short";
    copy += moved;
    EXPECT_TRUE(copy == "short" + expected);
    copy = QeCString("in place");
    EXPECT_EQ(copy, "in place");
    EXPECT_TRUE(moved == expected);
}

#if defined(TESSIT_CAN_FAIL)
template <typename Operation>
bool failsWithoutMemory(const Operation& operation) {
    try {
        allocationsFail = true;
        operation();
    } catch (const std::bad_alloc&) {
        allocationsFail = false;
        return true;
    }
    allocationsFail = false;
    return false;
}

TEST(LargeCString, StaysAsItWasWhereItCannotGrow) {
    const std::string numbers = numbersUpTo(3 * Megabyte / 2);
    QeCString text(numbers.c_str(), numbers.size()), small("small");
    EXPECT_TRUE(failsWithoutMemory([&] { text.reserve(2 * Megabyte); }));
    EXPECT_TRUE(failsWithoutMemory([&] { text.append(numbers); }));
    EXPECT_TRUE(failsWithoutMemory([&] { text.resizeForOverwrite(3 * Megabyte); }));
    EXPECT_TRUE(failsWithoutMemory([&] { small = text; }));
    EXPECT_TRUE(text == numbers);
    EXPECT_EQ(small, "small");
}
#endif

}  // namespace

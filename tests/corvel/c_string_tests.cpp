// Calls in whatever order are held against std::string by the string's fuzz target.

#include <gtest/gtest.h>
#include <istream>
#include <sstream>
#include <string>
#include <utility>

#include <corvel/c_string.h>
#include <corvel/exmsg.h>

namespace {

constinit const QeCString Constant23("abcdefghijklmnopqrstuvw");
const QeCString Constant24("abcdefghijklmnopqrstuvwx");  // one byte too long for a constant expression
const QeCString Constant25("abcdefghijklmnopqrstuvwxy");

// `length` bytes that differ from their neighbours, with NULs and bytes of 0x80 and above among them.
std::string sample(std::size_t length, int seed = 0) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text += i % 7 == 3 ? '\0' : static_cast<char>(static_cast<int>(i) * 5 + 'A' + seed);
    return text;
}

void expectHolds(const QeCString& text, const std::string& expected) {
    EXPECT_EQ(std::string(text.begin(), text.end()), expected);
    EXPECT_EQ(text.length(), expected.size());
    EXPECT_EQ(text.data()[text.length()], '\0');
}

// A string that once held `grown` bytes and now holds `length` of them.
struct Storage {
    std::size_t grown, length;

    std::string text() const { return sample(grown, 1).substr(0, length); }
    QeCString make() const {
        QeCString made{std::string_view(sample(grown, 1))};
        made.truncate(length);
        return made;
    }
};

constexpr Storage Storages[] = {{0, 0}, {15, 15}, {23, 23}, {24, 24}, {47, 47}, {40, 3}, {64, 0}};

TEST(CString, IsEqualInEveryByteOnly) {
    for (std::size_t length = 0; length <= 100; ++length)
        for (std::size_t at = 0; at < length; ++at) {
            std::string other = sample(length);
            ++other[at];
            EXPECT_FALSE(QeCString(std::string_view(sample(length))) == other) << at << " of " << length;
        }
}

TEST(CString, ConstantsHoldTheirText) {
    expectHolds(Constant23, "abcdefghijklmnopqrstuvw");
    expectHolds(Constant24, "abcdefghijklmnopqrstuvwx");
    expectHolds(Constant25, "abcdefghijklmnopqrstuvwxy");
}

TEST(CString, StaysAsItWasWhenItCannotDoWhatIsAsked) {
    const std::string bytes = sample(64);
    for (const Storage& storage : Storages) {
        QeCString text = storage.make();
        const QeCString& constant = text;
        for (const std::size_t beyond : {QeCString::npos, QeCString::npos - 48}) {
            EXPECT_THROW(text.reserve(beyond), std::length_error);
            EXPECT_THROW(text.resizeForOverwrite(beyond), std::length_error);
            EXPECT_THROW(text.assign(bytes.data(), beyond), std::length_error);
            EXPECT_THROW(text.append(bytes.data(), beyond), std::length_error);
            EXPECT_THROW(text[beyond] = 'x', QeBoundsError);
        }
        EXPECT_THROW(text[storage.length] = 'x', std::out_of_range);
        EXPECT_THROW(constant[storage.length], Qexmsg);
        expectHolds(text, storage.text());
        if (storage.length == 0) continue;
        text[storage.length - 1] = 'x';
        EXPECT_EQ(constant[storage.length - 1], 'x');
    }
}

TEST(CString, TakesANullPointerForTheEmptyText) {
    const char* const null = nullptr;
    QeCString text("text");
    (text += null).append(null, 0);
    expectHolds(null + text + null, "text");
    EXPECT_FALSE(text == null);
    expectHolds(text = null, "");
    EXPECT_TRUE(text == null && text == QeCString(null) && text == QeCString(null, 0));
}

TEST(CString, ReadsWhatIsLeftOfAStream) {
    struct Failing : std::streambuf {
        int_type underflow() override { throw 42; }
    } failing;
    const std::string bytes = sample(2 * 16 * 1024 + 1);  // the last part is a single byte
    std::istringstream in("x" + bytes);
    in.exceptions(std::ios::failbit | std::ios::badbit);  // the end of the input is no failure
    in.get();
    QeCString text("old");
    text.readFile(in);
    expectHolds(text, bytes);
    EXPECT_TRUE(in.eof());
    std::istream throwing(&failing);
    EXPECT_THROW(text.readFile(throwing), int);
    expectHolds(text, bytes);
    in.exceptions(std::ios::goodbit);
    std::istream unbuffered(nullptr);
    for (std::istream* unreadable : {static_cast<std::istream*>(&in), &unbuffered}) {
        text = "old";
        text.readFile(*unreadable);
        expectHolds(text, "");
    }
}

}  // namespace

#include <algorithm>
#include <gtest/gtest.h>
#include <istream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

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

TEST(CString, HoldsTextsOfEveryLengthInEveryStorage) {
    for (std::size_t length = 0; length <= 64; ++length)
        for (const Storage& storage : Storages) {
            SCOPED_TRACE(testing::Message() << length << " bytes over " << storage.length << " of " << storage.grown);
            const std::string bytes = sample(length), old = storage.text();
            QeCString source(bytes.data(), bytes.size());
            QeCString copied = storage.make(), viewed = storage.make(), appended = storage.make();
            QeCString moved = storage.make(), sized = storage.make();
            expectHolds(QeCString(copied), old);
            expectHolds(copied + source, old + bytes);
            EXPECT_EQ(copied == source, old == bytes);
            expectHolds(copied = source, bytes);
            viewed.assign(bytes);
            expectHolds(viewed, bytes);
            expectHolds(appended += bytes, old + bytes);
            std::copy(bytes.begin(), bytes.end(), sized.resizeForOverwrite(length));
            expectHolds(sized, bytes);
            sized.truncate(length / 2);
            expectHolds(sized, bytes.substr(0, length / 2));
            source = std::move(moved);
            expectHolds(source, old);
            expectHolds(moved, "");
            expectHolds(moved += bytes, bytes);
        }
}

TEST(CString, TakesArgumentsThatPointIntoItself) {
    for (const std::size_t length : {1u, 3u, 8u, 12u, 16u, 22u, 23u, 24u, 40u})
        for (std::size_t from = 0; from <= length; ++from)
            for (std::size_t count = 0; count <= length - from; ++count) {
                SCOPED_TRACE(testing::Message() << count << " bytes from " << from << " of " << length);
                const std::string bytes = sample(length);
                QeCString assigned{std::string_view(bytes)}, appended(assigned), roomy(assigned);
                assigned.assign(assigned.substring(from, count));
                expectHolds(assigned, bytes.substr(from, count));
                appended.append(appended.substring(from, count));
                expectHolds(appended, bytes + bytes.substr(from, count));
                roomy.reserve(2 * length);
                roomy.append(roomy.substring(from, count));
                expectHolds(roomy, bytes + bytes.substr(from, count));
            }
    for (const Storage& storage : Storages) {
        QeCString text = storage.make();
        QeCString& same = text;
        text = same;
        text = std::move(same);
        expectHolds(text, storage.text());
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

TEST(CString, ComparesBytesAsUnsigned) {
    using namespace std::string_view_literals;
    // clang-format off
    constexpr std::string_view Ascending[] = {
        ""sv, "\0"sv, "\0\0"sv, "A"sv, "a"sv, "a\0"sv, "a\0b"sv, "a long text, past what fits in place"sv, "ab"sv, "b"sv,
        "\x80"sv,  // a signed byte would sort first
        "\xC3\xA4"sv, "\xFF"sv};
    // clang-format on
    for (const std::string_view& left : Ascending)
        for (const std::string_view& right : Ascending) {
            SCOPED_TRACE(testing::Message() << &left - Ascending << " and " << &right - Ascending);
            EXPECT_EQ(QeCString(left) < QeCString(right), &left < &right);
            EXPECT_EQ(QeCString(left).compare(right) > 0, &left > &right);
            EXPECT_EQ(QeCString(left) == QeCString(right), &left == &right);
        }
}

TEST(CString, SearchesFromAnyPosition) {
    const QeCString text("ab:cd:e");
    EXPECT_EQ(text.find(':', 3), 5u);
    EXPECT_EQ(text.find(':', QeCString::npos), QeCString::npos);
    EXPECT_EQ(text.find("d:"), 4u);
    EXPECT_EQ(text.find("e:"), QeCString::npos);  // would reach past the end
    EXPECT_EQ(text.findFirstOf("d:", 3), 4u);
    EXPECT_EQ(text.substring(3, 2), "cd");
    EXPECT_EQ(text.substring(6, QeCString::npos), "e");
    EXPECT_EQ(text.substring(8), "");
}

TEST(CString, UpperCasesAsciiOnly) {
    QeCString text("az`{AZ\xC3\xA4");
    text.toUpper();
    EXPECT_EQ(text, "AZ`{AZ\xC3\xA4");
}

TEST(CString, ReadsWhatIsLeftOfAStream) {
    struct Failing : std::streambuf {
        int_type underflow() override { throw 42; }
    } failing;
    const std::string bytes = sample(40'000);
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
    text.readFile(in);  // nothing is left, and the stream is not good
    expectHolds(text, "");
}

}  // namespace

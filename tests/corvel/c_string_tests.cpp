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

TEST(CString, RefusesLengthsThatNoBlockCanHave) {
    using Change = void (*)(QeCString&, std::size_t);
    constexpr Change Changes[] = {
        [](QeCString& text, std::size_t length) { text.reserve(length); },
        [](QeCString& text, std::size_t length) { text.resizeForOverwrite(length); },
        [](QeCString& text, std::size_t length) { text.assign("x", length); },
        [](QeCString& text, std::size_t length) { text.append("x", length); },
    };
    for (const Storage& storage : Storages)
        for (const Change change : Changes)
            for (const std::size_t length : {QeCString::npos, QeCString::npos - 1, QeCString::npos - 48}) {
                QeCString text = storage.make();
                EXPECT_THROW(change(text, length), std::length_error);
                expectHolds(text, storage.text());
            }
}

}  // namespace

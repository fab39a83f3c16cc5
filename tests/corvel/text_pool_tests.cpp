#include <gtest/gtest.h>
#include <optional>
#include <string>

#include <corvel/text_pool.h>

namespace {

const std::string Text(100, 'x'), OtherText = std::string(99, 'x') + 'y';

TEST(TextPool, KeepsEachTextOnce) {
    QeTextPool pool;
    for (const std::string& text : {std::string(), std::string("short"), Text, OtherText}) {
        const QeCString& kept = pool.keep(text);
        EXPECT_EQ(kept, text);
        EXPECT_EQ(&pool.keep(text), &kept);
        EXPECT_EQ(&pool.keep(kept), &kept);
    }
}

TEST(TextPool, CopiesShareTheirBytes) {
    QeTextPool pool;
    const QeCString& kept = pool.keep(Text);
    const QeCString copied(kept);
    QeCString assigned("a text that has had a block from its beginning");
    assigned = copied;
    EXPECT_EQ(copied.data(), kept.data());
    EXPECT_EQ(assigned.data(), kept.data());
}

// Every way to change a copy, held against the pool's own text.
TEST(TextPool, ChangingACopyChangesNothingElse) {
    using Change = void (*)(QeCString&);
    constexpr Change Changes[] = {
        [](QeCString& text) { text.assign("short"); },
        [](QeCString& text) { text.assign(OtherText); },
        [](QeCString& text) { text.append('!'); },
        [](QeCString& text) { text.append(""); },
        [](QeCString& text) { text.append(Text); },
        [](QeCString& text) { text.clear(); },
        [](QeCString& text) { text.truncate(0); },
        [](QeCString& text) { text.truncate(40); },
        [](QeCString& text) { text.reserve(10); },
        [](QeCString& text) { text.reserve(1000); },
        [](QeCString& text) { text.resizeForOverwrite(50)[0] = '!'; },
        [](QeCString& text) { text.resizeForOverwrite(200)[0] = '!'; },
        [](QeCString& text) { text[0] = '!'; },
        [](QeCString& text) { text.toUpper(); },
        [](QeCString& text) { text = QeCString("short"); },
    };
    for (const Change change : Changes) {
        SCOPED_TRACE(&change - Changes);
        std::optional<QeTextPool> pool(std::in_place);
        QeCString plain{std::string_view(Text)}, changed = pool->keep(Text);
        const QeCString witness = changed;
        change(changed);
        change(plain);
        EXPECT_EQ(changed.length(), plain.length());
        EXPECT_EQ(pool->keep(Text), Text);
        pool.reset();
        EXPECT_EQ(witness, std::string_view(Text));
    }
}

TEST(TextPool, StringsOfAnyOriginCompareByTheirText) {
    QeTextPool one, other;
    const QeCString same[] = {one.keep(Text), QeCString(one.keep(Text)), other.keep(Text), QeCString(Text.c_str())};
    const QeCString different[] = {one.keep(OtherText), other.keep(OtherText), QeCString(OtherText.c_str())};
    for (const QeCString& left : same) {
        for (const QeCString& right : same) {
            EXPECT_TRUE(left == right && left == std::string_view(right));
            EXPECT_EQ(left.compare(right), 0);
        }
        for (const QeCString& right : different) {
            EXPECT_FALSE(left == right);
            EXPECT_LT(left, right);
        }
    }
}

}  // namespace

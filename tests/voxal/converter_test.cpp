// Conversion piece by piece, and the limit on what it makes.

#include <gtest/gtest.h>
#include <support/documents.h>
#include <voxal/converter.h>

using tessit::test::repeat;
using namespace std::string_literals;

namespace {

struct Text {
    const char* encoding;
    std::string bytes, utf8;
};

const Text Texts[] = {
    {"latin1", "a\xE9", "a\xC3\xA9"},
    {"UTF-16BE", "\xD8\x3D\xDE\0\0x\xD8\x3D"s, "\xF0\x9F\x98\x80x\xEF\xBF\xBD"},
    {"utf-16le", "\x3D\xD8\x3D\xD8\0\xDE\xAC\x20x"s, "\xEF\xBF\xBD\xF0\x9F\x98\x80\xE2\x82\xAC\xEF\xBF\xBD"},
    {"UTF_32BE", "\0\1\xF6\0\0\0\xD8\0\0\x11\0\0\0"s, "\xF0\x9F\x98\x80\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"UTF32le", "\xE9\0\0\0"s, "\xC3\xA9"},
#if !defined(TESSIT_WITHOUT_ICU)
    {"windows-1252", "a\xE9\x80", "a\xC3\xA9\xE2\x82\xAC"},
    {"Shift_JIS", "x\x82\xA0y\x82", "x\xE3\x81\x82y\xEF\xBF\xBD"},  // the last one is cut off
    {"gb18030", "\x94\x39\xFC\x36\xA4\xA2x", "\xF0\x9F\x98\x80\xE3\x81\x82x"},
    {"ISO-2022-JP", "\x1B$B$\"\x1B(Bx", "\xE3\x81\x82x"},  // escapes change what bytes mean
    {"UTF-7", "+2D3eAA-x", "\xF0\x9F\x98\x80x"},
#endif
};

QeCString inPieces(QeUToUnicodeConverter& converter, std::string_view bytes, std::size_t length) {
    QeCString utf8;
    for (; bytes.size() > length; bytes.remove_prefix(length))
        converter.append(utf8, bytes.substr(0, length), QeUToUnicodeConverter::MoreFollow);
    converter.append(utf8, bytes, QeUToUnicodeConverter::Last);
    return utf8;
}

}  // namespace

TEST(Converter, ConvertsPiecesAsItConvertsTheWhole) {
    for (const auto& [encoding, bytes, utf8] : Texts) {
        QeUToUnicodeConverter converter(encoding);  // begins anew behind each last piece
        EXPECT_EQ(converter.toUtf8(bytes), utf8) << encoding;
        for (std::size_t length = 1; length < bytes.size(); ++length)
            EXPECT_EQ(inPieces(converter, bytes, length), utf8) << encoding << " by " << length;
    }
}

TEST(Converter, HoldsNoMoreThanItMay) {
    const std::string bytes(100'000, '\xE9');
    QeUToUnicodeConverter converter("latin1");
    const QeCString whole = converter.toUtf8(bytes, 200'000);
    EXPECT_EQ(whole.length(), 200'000u);
    EXPECT_LE(whole.capacity(), 200'016u);
    EXPECT_THROW(QeUToUnicodeConverter("latin1").toUtf8(bytes, 199'999), QeUConversionTooLong);
    QeCString text("front");
    EXPECT_THROW(converter.append(text, bytes, QeUToUnicodeConverter::Last, 100'000), QeUConversionTooLong);
    EXPECT_GT(text.length(), 90'000u);
    EXPECT_LE(text.capacity(), 100'016u);
    EXPECT_THROW(QeUToUnicodeConverter("latin1").append(text, "x", QeUToUnicodeConverter::Last, 2),
                 QeUConversionTooLong)
        << "what is there already counts";
}

// Detection by mark and first bytes, declared encodings, and the limit on repeated conversions.

#include <gtest/gtest.h>

#include "support/documents.h"

using namespace tessit::test;
using namespace std::string_literals;

namespace {

struct EncodingCase {
    std::string document;
    const char* encoding;  // what getEncoding() gives
    const char* nodes;
    const char* nodesInPieces = nodes;  // where it is to be refused that an encoding is declared inside
};

// ASCII text as 32-bit units.
std::string utf32(std::string_view text, bool bigEndian) {
    std::string bytes;
    for (const char byte : text)
        bytes += bigEndian ? "\0\0\0"s + byte : byte + "\0\0\0"s;
    return bytes;
}

std::string declare(const std::string& name, const std::string& text = "<a>\xE9\xA4</a>") {
    return "<?xml version='1.0' encoding='" + name + "'?>" + text;
}

#if defined(TESSIT_WITHOUT_ICU)
#define NO_CONVERTER "this library was built without ICU, and has no converter for it"
#else
#define NO_CONVERTER "no converter is known for it"
#endif

constexpr Encoding LE = Encoding::Utf16LE, BE = Encoding::Utf16BE;

const EncodingCase Documents[] = {
    {"\xEF\xBB\xBF<a>\xC3\xA9</a>", "UTF-8", "+a =\xC3\xA9 -a"},
    {encode("<a>\xC3\xA9\xF0\x9F\x98\x80</a>", BE), "UTF-16BE", "+a =\xC3\xA9\xF0\x9F\x98\x80 -a"},
    {encode("<a>\xE2\x82\xAC</a>", LE), "UTF-16LE", "+a =\xE2\x82\xAC -a"},
    {encode("<?xml version='1.0'?><a/>", BE).substr(2), "UTF-16BE", "/a"},
    {encode("<?xml version='1.0'?><a/>", LE).substr(2), "UTF-16LE", "/a"},
    {encode(declare("utf-16", "<a>\xC3\xA9</a>"), LE), "utf-16", "+a =\xC3\xA9 -a"},  // another spelling
    {encode(declare("UTF-8", "<a>\xC3\xA9</a>"), BE), "UTF-8", "+a =\xC3\xA9 -a"},    // and what is wrong
    {encode("<a/>", BE) + "x", "UTF-16BE", "/a"},                                     // an odd last byte is ignored
    {"\xFE\xFF"s + "\0<\0a\0>\xD8\0\0x\xDC\0\0<\0/\0a\0>"s, "UTF-16BE",
     "+a =\xED\xA0\x80x\xED\xB0\x80 -a"},  // unpaired surrogates are three bytes
    {"\0\0\xFE\xFF"s + utf32("<a>t</a>", true), "UTF-32BE", "+a =t -a"},
    {"\xFF\xFE\0\0"s + utf32("<a>t</a>", false), "UTF-32LE", "+a =t -a"},  // not the mark of UTF-16LE
    {utf32("<a/>", true), "UTF-32BE", "/a"},
    {utf32("<?xml version='1.0' encoding='UTF-32'?><a/>", false), "UTF-32", "/a"},
    {declare("ISO-8859-1"), "ISO-8859-1", "+a =\xC3\xA9\xC2\xA4 -a"},
    {declare("iso-8859-1"), "iso-8859-1", "+a =\xC3\xA9\xC2\xA4 -a"},
    {declare("latin1"), "latin1", "+a =\xC3\xA9\xC2\xA4 -a"},  // an alias, by the platform's converters
#if !defined(TESSIT_WITHOUT_ICU)
    {declare("windows-1252", "<a>\x80</a>"), "windows-1252", "+a =\xE2\x82\xAC -a"},
    {"<?xml version='1.0' encoding='IBM037'\x6F\x6E\x4C\x81\x6E\xA3\x4C\x61\x81\x6E", "IBM037", "+a =t -a"},  // EBCDIC
#endif
    {declare("US-ASCII"), "US-ASCII", "+a =\xE9\xA4 -a"},  // converts nothing
    {declare("utf8"), "utf8", "+a =\xE9\xA4 -a"},          // nor does UTF-8 in another spelling
    {"<?xml version='1.0' encoding='ISO-8859-1'", "", "!1:1 Premature EOF"},
    {declare("no-such-encoding"), "", "!1:48 Couldn't transcode from input encoding 'no-such-encoding': " NO_CONVERTER},
    {declare(""), "", "!1:32 Couldn't transcode from input encoding '': it is not the name of an encoding"},
    {declare("../../etc/x"), "",
     "!1:43 Couldn't transcode from input encoding '../../etc/x': it is not the name of an encoding"},
    {"\x4C\x6F\xA7\x94\x93", "",  // EBCDIC
     "!1:1 Couldn't transcode from input encoding 'EBCDIC': " NO_CONVERTER},
    {"\xFE\xFF"s + "\0<\xD8\0\0/\0>"s, "", "!1:5 Illegal starting character for name: \xED\xA0\x80"},
    {"\x01\x02\x03\x04", "", "!1:2 First non-ws character in document wasn't '<'"},
    {"<\0ab"s, "", "!1:3 Illegal starting character for name: "},
    {declare("ISO-8859-1", "\n<a>\xE9</a x>"), "ISO-8859-1",
     "+a =\xC3\xA9 !2:11 Unexpected character x"},  // positions count from the conversion
    {"<a>\xC3\xA9" + declare("ISO-8859-1", "\xE9</a>"), "UTF-8", "+a =\xC3\xA9\xC3\xA9 -a",
     "+a !1:47 An encoding is declared inside the root element"},  // converts the rest
    {"<a>" + declare("ISO-8859-1", "\xE9") + declare("ISO-8859-1", "\xE9</a>"), "UTF-8", "+a =\xC3\xA9\xC3\xA9 -a",
     "+a !1:45 An encoding is declared inside the root element"},  // is in force
    // Another spelling is the same encoding where it was detected, and another one where it was declared.
    {declare("ISO-8859-1", "<a>\xE9") + declare("iso-8859-1", "\xE9</a>"), "ISO-8859-1",
     "+a =\xC3\xA9\xC3\x83\xC2\xA9 -a", "+a !1:49 An encoding is declared inside the root element"},
    {encode(declare("utf-16", "<a>" + declare("UTF-8", "x</a>")), LE), "utf-16", "+a =x -a",
     "+a !1:79 An encoding is declared inside the root element"},
};

}  // namespace

TEST(XmlReader, ConvertsToUtf8) {
    for (const auto& [bytes, encoding, nodes, nodesInPieces] : Documents)
        for (const Source source : Sources) {
            SCOPED_TRACE(bytes);
            const Document document(bytes);
            const bool isRefused = isInPieces(source) && nodesInPieces != nodes;
            EXPECT_EQ(isRefused ? traceOnce(document, Source::ByteByByte, true) : trace(document, source),
                      isRefused ? nodesInPieces : nodes);
            if (*encoding == '\0') continue;  // the constructor throws
            EXPECT_EQ(document.open(source)->getEncoding(), encoding);
        }
}

TEST(XmlReader, ConvertsACutOffDocumentSafely) {
    for (const auto& row : Documents)
        for (std::size_t length = 0; length < row.document.size(); ++length)
            trace(Document(std::string_view(row.document).substr(0, length)), Source::Buffer);
}

// Each declaration doubles what is not ASCII: without a limit, thirty of them would make a gigabyte of one byte.
TEST(XmlReader, LimitsRepeatedConversions) {
    const std::string declarations = repeat(declare("ISO-8859-1", declare("US-ASCII", "")), 30);
    EXPECT_EQ(trace("<a>" + declarations + repeat("\xE9", 1000) + "</a>"),
              "+a !1:85 Couldn't transcode from input encoding 'ISO-8859-1': the document's encoding declarations "
              "make it grow too much");
}

// Of ASCII, a conversion makes what stands behind it: with 17 of them, a byte of text takes one more than it allows.
TEST(XmlReader, LimitsConversionsToTheByte) {
    constexpr std::size_t Conversions = 17;
    const std::string declaration = "<?xml version='1' encoding='ISO-8859-1'";
    const std::string pair = declaration + "?><?xml version='1' encoding='UTF-8'?>";
    const std::string front = "<a>" + repeat(pair, Conversions);
    const std::size_t length = front.size() + 4;
    std::size_t made = 0;
    for (std::size_t i = 0; i < Conversions; ++i)
        made += length - 3 - i * pair.size() - declaration.size();
    const std::size_t most = 16 * (length + 4096) - made;
    EXPECT_EQ(trace(front + std::string(most, 'x') + "</a>").find("grow too much"), std::string::npos);
    EXPECT_NE(trace(front + std::string(most + 1, 'x') + "</a>").find("grow too much"), std::string::npos);
}

// Long texts take the block-wise paths of the converters. Blocks may end anywhere, also inside a character.
TEST(XmlReader, ConvertsLongTexts) {
    constexpr const char* Cases[][3] = {
        {"ISO-8859-1", "xxxxxx\xE9", "xxxxxx\xC3\xA9"},
#if !defined(TESSIT_WITHOUT_ICU)
        {"windows-1252", "xxxxxx\xE9", "xxxxxx\xC3\xA9"},
        {"Shift_JIS", "x\x82\xA0", "x\xE3\x81\x82"},
        {"gb18030", "\x94\x39\xFC\x36\xA4\xA2x", "\xF0\x9F\x98\x80\xE3\x81\x82x"},
#endif
    };
    for (const auto& [encoding, bytes, utf8] : Cases)
        EXPECT_TRUE(trace(declare(encoding, "<a>" + repeat(bytes, 60'000) + "</a>")) ==
                    "+a =" + repeat(utf8, 60'000) + " -a")
            << encoding;
}

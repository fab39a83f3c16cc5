// Detection by mark and first bytes, declared encodings, and the limit on repeated conversions.

#include <gtest/gtest.h>

#include "support/documents.h"

using namespace tessit::test;
using namespace std::string_literals;

namespace {

struct EncodingCase {
    const char* reason;
    std::string document;
    const char* encoding;  // what getEncoding() gives
    const char* nodes;
};

// ASCII text as 32-bit units.
std::string utf32(std::string_view text, bool bigEndian) {
    std::string bytes;
    for (const char byte : text)
        bytes += bigEndian ? "\0\0\0"s + byte : byte + "\0\0\0"s;
    return bytes;
}

std::string utf16(std::string_view text, Encoding encoding) {
    return encode(text, encoding);
}
std::string withoutMark(const std::string& bytes) {
    return bytes.substr(2);
}

const std::string Accented = "<?xml version='1.0' encoding='ENC'?><a>\xE9\xA4</a>";

std::string declare(const std::string& name, std::string text = Accented) {
    return text.replace(text.find("ENC"), 3, name);
}

const EncodingCase Documents[] = {
    {"UTF-8 mark", "\xEF\xBB\xBF<a>\xC3\xA9</a>", "UTF-8", "+a =\xC3\xA9 -a"},
    {"UTF-16BE mark", utf16("<a>\xC3\xA9\xF0\x9F\x98\x80</a>", Encoding::Utf16BE), "UTF-16BE",
     "+a =\xC3\xA9\xF0\x9F\x98\x80 -a"},
    {"UTF-16LE mark", utf16("<a>\xE2\x82\xAC</a>", Encoding::Utf16LE), "UTF-16LE", "+a =\xE2\x82\xAC -a"},
    {"UTF-16BE without mark", withoutMark(utf16("<?xml version='1.0'?><a/>", Encoding::Utf16BE)), "UTF-16BE", "/a"},
    {"UTF-16LE without mark", withoutMark(utf16("<?xml version='1.0'?><a/>", Encoding::Utf16LE)), "UTF-16LE", "/a"},
    {"UTF-16 under another spelling",
     utf16("<?xml version='1.0' encoding='utf-16'?><a>\xC3\xA9</a>", Encoding::Utf16LE), "utf-16", "+a =\xC3\xA9 -a"},
    {"UTF-16 that says UTF-8", utf16("<?xml version='1.0' encoding='UTF-8'?><a>\xC3\xA9</a>", Encoding::Utf16BE),
     "UTF-8", "+a =\xC3\xA9 -a"},
    {"an odd last byte is ignored", utf16("<a/>", Encoding::Utf16BE) + "x", "UTF-16BE", "/a"},
    {"unpaired surrogates are three bytes", "\xFE\xFF"s + "\0<\0a\0>\xD8\0\0x\xDC\0\0<\0/\0a\0>"s, "UTF-16BE",
     "+a =\xED\xA0\x80x\xED\xB0\x80 -a"},
    {"UTF-32BE mark", "\0\0\xFE\xFF"s + utf32("<a>t</a>", true), "UTF-32BE", "+a =t -a"},
    {"UTF-32LE mark, not a UTF-16LE one", "\xFF\xFE\0\0"s + utf32("<a>t</a>", false), "UTF-32LE", "+a =t -a"},
    {"UTF-32BE without mark", utf32("<a/>", true), "UTF-32BE", "/a"},
    {"UTF-32LE without mark", utf32("<?xml version='1.0' encoding='UTF-32'?><a/>", false), "UTF-32", "/a"},
    {"ISO-8859-1", declare("ISO-8859-1"), "ISO-8859-1", "+a =\xC3\xA9\xC2\xA4 -a"},
    {"ISO-8859-1 in lower case", declare("iso-8859-1"), "iso-8859-1", "+a =\xC3\xA9\xC2\xA4 -a"},
    {"an alias, by the platform's converters", declare("latin1"), "latin1", "+a =\xC3\xA9\xC2\xA4 -a"},
    {"windows-1252", declare("windows-1252", "<?xml version='1.0' encoding='ENC'?><a>\x80</a>"), "windows-1252",
     "+a =\xE2\x82\xAC -a"},
    {"EBCDIC text behind an ASCII declaration",
     declare("IBM037", "<?xml version='1.0' encoding='ENC'\x6F\x6E\x4C\x81\x6E\xA3\x4C\x61\x81\x6E"), "IBM037",
     "+a =t -a"},
    {"US-ASCII converts nothing", declare("US-ASCII"), "US-ASCII", "+a =\xE9\xA4 -a"},
    {"UTF-8 in another spelling converts nothing", declare("utf8"), "utf8", "+a =\xE9\xA4 -a"},
    {"no text converts to no text", "<?xml version='1.0' encoding='ISO-8859-1'", "", "!1:1 Premature EOF"},
    {"an unknown name", declare("no-such-encoding"), "",
     "!1:48 Couldn't transcode from input encoding 'no-such-encoding': no converter is known for it "
     "(U_FILE_ACCESS_ERROR)"},
    {"an empty name", declare(""), "",
     "!1:32 Couldn't transcode from input encoding '': it is not the name of an encoding"},
    {"a name that is a path", declare("../../etc/x"), "",
     "!1:43 Couldn't transcode from input encoding '../../etc/x': it is not the name of an encoding"},
    {"EBCDIC by its first bytes", "\x4C\x6F\xA7\x94\x93", "",
     "!1:1 Couldn't transcode from input encoding 'EBCDIC': no converter is known for it (U_FILE_ACCESS_ERROR)"},
    {"first bytes of nothing", "\x01\x02\x03\x04", "", "!1:2 First non-ws character in document wasn't '<'"},
    {"a zero byte after the first", "<\0ab"s, "", "!1:3 Illegal starting character for name: "},
    {"errors count from the conversion", declare("ISO-8859-1", "<?xml version='1.0' encoding='ENC'?>\n<a>\xE9</a x>"),
     "ISO-8859-1", "+a =\xC3\xA9 !2:11 Unexpected character x"},
    {"a declaration inside the document converts the rest",
     "<a>\xC3\xA9<?xml version='1.0' encoding='ISO-8859-1'?>\xE9</a>", "UTF-8", "+a =\xC3\xA9\xC3\xA9 -a"},
    {"one that is in force already does not",
     "<a><?xml version='1.0' encoding='ISO-8859-1'?>\xE9<?xml version='1.0' encoding='latin1'?></a>", "UTF-8",
     "+a =\xC3\xA9 -a"},
};

}  // namespace

TEST(XmlReader, ConvertsToUtf8) {
    for (const auto& [reason, bytes, encoding, nodes] : Documents)
        for (const Source source : Sources) {
            SCOPED_TRACE(reason);
            const Document document(bytes);
            EXPECT_EQ(trace(document, source), nodes);
            try {
                EXPECT_EQ(document.open(source)->getEncoding(), encoding);
            } catch (const QeXmlParseError&) {  // compared above
            }
        }
}

TEST(XmlReader, ConvertsACutOffDocumentSafely) {
    for (const auto& row : Documents)
        for (std::size_t length = 0; length < row.document.size(); ++length)
            trace(Document(std::string_view(row.document).substr(0, length)), Source::Buffer);
}

// Each declaration doubles what is not ASCII: without a limit, thirty of them would make a gigabyte of one byte.
TEST(XmlReader, LimitsRepeatedConversions) {
    std::string xml = "<a>";
    for (int i = 0; i < 60; ++i)
        xml += std::string("<?xml version='1' encoding='") + (i % 2 == 0 ? "ISO-8859-1" : "windows-1252") + "'?>";
    xml += std::string(1000, '\xE9') + "</a>";
    const std::string nodes = trace(xml);
    EXPECT_NE(nodes.find("Couldn't transcode from input encoding '"), std::string::npos) << nodes;
    EXPECT_NE(nodes.find("the document's encoding declarations make it grow too much"), std::string::npos) << nodes;
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
    const struct {
        const char* encoding;
        std::string bytes, utf8;
    } cases[] = {
        {"ISO-8859-1", "xxxxxx\xE9", "xxxxxx\xC3\xA9"},
        {"windows-1252", "xxxxxx\xE9", "xxxxxx\xC3\xA9"},
        {"Shift_JIS", "x\x82\xA0", "x\xE3\x81\x82"},
        {"gb18030", "\x94\x39\xFC\x36\xA4\xA2x", "\xF0\x9F\x98\x80\xE3\x81\x82x"},
    };
    for (const auto& [encoding, bytes, utf8] : cases) {
        SCOPED_TRACE(encoding);
        std::string text, expected;
        for (int i = 0; i < 60'000; ++i) {
            text += bytes;
            expected += utf8;
        }
        EXPECT_TRUE(trace("<?xml version='1.0' encoding='" + std::string(encoding) + "'?><a>" + text + "</a>") ==
                    "+a =" + expected + " -a");
    }
}

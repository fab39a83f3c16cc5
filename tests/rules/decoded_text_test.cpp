// Which encoding bytes are in, what comes of them, and where and by which rule their text ends.

#include <gtest/gtest.h>
#include <support/documents.h>

#include <tessit/rules/decoded_text.h>
#include <tessit/rules/rules.h>

using namespace std::string_literals;
using tessit::test::encode;
using tessit::test::Encoding;

namespace {

struct Row {
    std::string bytes;
    const char* transport;
    std::string text, outcome;  // the encoding in force, and what ends the text
};

std::string declare(const std::string& encoding) {
    return "<?xml version='1.0' encoding='" + encoding + "'?>";
}

const std::string Front = "<?xml version='1.0' encoding='";  // where a declaration's name begins

// Each character so many bytes, without a mark.
std::string wide(const std::string& ascii, std::size_t before, std::size_t after) {
    std::string bytes;
    for (const char byte : ascii)
        bytes += std::string(before, '\0') + byte + std::string(after, '\0');
    return bytes;
}

std::string utf16(const std::string& text, Encoding encoding = Encoding::Utf16BE) {
    return encode(text, encoding);
}

const Row Rows[] = {
    // UTF-8
    {"", "", "", "UTF-8"},
    {"<a>\xC3\xA9</a>", "", "<a>\xC3\xA9</a>", "UTF-8"},
    {"\xEF\xBB\xBF<a/>", "", "<a/>", "UTF-8"},
    {"\xEF\xBB\xBF" + declare("utf-8"), "", declare("utf-8"), "utf-8"},
    {"<a>\x01", "", "<a>", "UTF-8 character U+0001"},
    {"<a>\xEF\xBF\xBF", "", "<a>", "UTF-8 character U+FFFF"},
    {"<a>\xE9</a>", "", "<a>", "UTF-8 malformed-encoding E9 in UTF-8"},
    {"<a>\xED\xA0\x80</a>", "", "<a>", "UTF-8 malformed-encoding ED A0 80 in UTF-8"},
    {"<a>\xE2\x82", "", "<a>", "UTF-8 malformed-encoding E2 82 in UTF-8"},
    {declare("US-ASCII") + "\xC3\xA9", "", declare("US-ASCII"), "US-ASCII malformed-encoding C3 in US-ASCII"},
    {declare("ascii") + "\x02\x80", "", declare("ascii"), "ascii character U+0002"},
    // other encodings, declared
    {declare("iso-8859-1") + "\x80\xE9", "", declare("iso-8859-1") + "\xC2\x80\xC3\xA9", "iso-8859-1"},
    {declare("latin1") + "\xE9\x01\xE9", "", declare("latin1") + "\xC3\xA9", "latin1 character U+0001"},
    {declare("no-such"), "", Front, "no-such unknown-encoding no-such"},
    {declare("no such") + "\xC3\xA9", "", declare("no such") + "\xC3\xA9", "UTF-8"},
    {"<?xml version='1.0'?><a encoding='latin1'>\xE9", "", "<?xml version='1.0'?><a encoding='latin1'>",
     "UTF-8 malformed-encoding E9 in UTF-8"},
    {declare("UTF-16"), "", Front, "UTF-16 encoding-mismatch UTF-16"},
    {declare("UTF-32LE"), "", Front, "UTF-32LE encoding-mismatch UTF-32LE"},
    {"\xEF\xBB\xBF" + declare("ISO-8859-1"), "", Front, "ISO-8859-1 encoding-mismatch ISO-8859-1"},
    // UTF-16 and UTF-32
    {utf16("<a>\xE2\x82\xAC\xF0\x9F\x98\x80"), "", "<a>\xE2\x82\xAC\xF0\x9F\x98\x80", "UTF-16BE"},
    {utf16("<a>", Encoding::Utf16LE), "", "<a>", "UTF-16LE"},
    {utf16(declare("UTF-16"), Encoding::Utf16LE), "", declare("UTF-16"), "UTF-16"},
    {utf16(declare("utf-16be")), "", declare("utf-16be"), "utf-16be"},
    {utf16(declare("UTF-16LE")), "", Front, "UTF-16LE encoding-mismatch UTF-16LE"},
    {utf16(declare("UTF-8")), "", Front, "UTF-8 encoding-mismatch UTF-8"},
    {utf16(declare("no-such")), "", Front, "no-such unknown-encoding no-such"},
    {wide(declare("UTF-16"), 1, 0), "", declare("UTF-16"), "UTF-16"},
    {wide(declare("UTF-8"), 0, 1), "", Front, "UTF-8 encoding-mismatch UTF-8"},
    {wide("<?xml version='1.0'?>", 0, 1), "", "<", "UTF-8 character U+0000"},
    {wide("<a/>", 1, 0), "", "", "UTF-8 character U+0000"},
    {utf16("<a>") + "\xD8\0x"s, "", "<a>", "UTF-16BE malformed-encoding D8 00 in UTF-16BE"},
    {utf16("<a>") + "\xDC\0\0x"s, "", "<a>", "UTF-16BE malformed-encoding DC 00 in UTF-16BE"},
    {utf16("<a>") + "\xD8\0\0x"s, "", "<a>", "UTF-16BE malformed-encoding D8 00 in UTF-16BE"},
    {utf16("<a>", Encoding::Utf16LE) + "x", "", "<a>", "UTF-16LE malformed-encoding 78 in UTF-16LE"},
    {utf16("<a>\xEF\xBF\xBE"), "", "<a>", "UTF-16BE character U+FFFE"},
    {"\0\0\xFE\xFF"s + wide("<a>", 3, 0), "", "<a>", "UTF-32BE"},
    {"\xFF\xFE\0\0"s + wide(declare("utf-32"), 0, 3), "", declare("utf-32"), "utf-32"},
    {wide(declare("UTF-32"), 0, 3) + "\0\xD8\0\0x"s, "", declare("UTF-32"),
     "UTF-32 malformed-encoding 00 D8 00 00 in UTF-32LE"},
    {"\0\0\xFE\xFF"s + wide("<a>", 3, 0) + "\0\0"s, "", "<a>", "UTF-32BE malformed-encoding 00 00 in UTF-32BE"},
    // what a transport said
    {declare("UTF-16") + "\xE9", "latin1", declare("UTF-16") + "\xC3\xA9", "latin1"},
    {declare("ISO-8859-1") + "\xC3\xA9", "UTF-8", declare("ISO-8859-1") + "\xC3\xA9", "UTF-8"},
    {"<a/>", "no-such", "", "no-such unknown-encoding no-such"},
    {"<a/>", "../x", "", "../x unknown-encoding ../x"},
    {"\xEF\xBB\xBF<a/>", "latin1", "", "latin1 encoding-mismatch latin1"},
    {"\xEF\xBB\xBF<a/>", "utf-8", "<a/>", "utf-8"},
    {utf16("<a>", Encoding::Utf16LE), "UTF-16", "<a>", "UTF-16"},
    {utf16("<a>", Encoding::Utf16LE), "UTF-16LE", "<a>", "UTF-16LE"},
    {utf16("<a>", Encoding::Utf16LE), "UTF-16BE", "", "UTF-16BE encoding-mismatch UTF-16BE"},
    {wide("<a>", 1, 0), "UTF-16", "<a>", "UTF-16"},
    {wide("\n<a>", 0, 1), "UTF-16", "\n<a>", "UTF-16"},
    {wide("<a>", 0, 3), "UTF-32", "<a>", "UTF-32"},
    // EBCDIC: "<?xml encoding='IBM037'?><a>" and the like
    {"\x4C\x6F\xA7\x94\x93\x6F\x6E", "", "", "EBCDIC unknown-encoding EBCDIC"},
    {"\x4C\x6F\xA7\x94\x93\x40\x85\x95\x83\x96\x84\x89\x95\x87\x7E\x7D\xE4\xE3\xC6\x60\xF8\x7D\x6F\x6E", "",
     "<?xml encoding='", "UTF-8 encoding-mismatch UTF-8"},
#if !defined(TESSIT_WITHOUT_ICU)
    {"\x4C\x6F\xA7\x94\x93\x40\x85\x95\x83\x96\x84\x89\x95\x87\x7E\x7D\xC9\xC2\xD4\xF0\xF3\xF7\x7D\x6F\x6E\x4C\x81\x6E"
     "\xBA",
     "", "<?xml encoding='IBM037'?><a>[", "IBM037"},
    {declare("IBM037"), "", Front, "IBM037 encoding-mismatch IBM037"},
    {declare("Shift_JIS") + "\x82\xA0", "", declare("Shift_JIS") + "\xE3\x81\x82", "Shift_JIS"},
    {declare("Shift_JIS") + "\x82\xA0\x82", "", declare("Shift_JIS") + "\xE3\x81\x82",
     "Shift_JIS malformed-encoding 82 in Shift_JIS"},
    {declare("EUC-JP") + "\xA4\xA2\xA4\x20<", "", declare("EUC-JP") + "\xE3\x81\x82",
     "EUC-JP malformed-encoding A4 in EUC-JP"},
    {declare("UTF-7") + "+2D0-", "", declare("UTF-7"), "UTF-7 malformed-encoding UTF-7"},
#endif
};

std::string outcomeOf(const tessit::DecodedText& decoded) {
    std::string outcome(std::string_view(decoded.encoding));
    if (decoded.source.endsBy == tessit::Rule::None) return outcome;
    outcome += " " + std::string(nameOf(decoded.source.endsBy));
    return outcome + " " + std::string(std::string_view(decoded.source.foundAtEnd));
}

}  // namespace

TEST(DecodedText, EndsInFrontOfTheFirstFault) {
    for (const auto& [bytes, transport, text, outcome] : Rows) {
        SCOPED_TRACE(testing::PrintToString(bytes) + " as " + transport);
        tessit::DecodedText decoded;
        decodeText(decoded, bytes, transport);
        EXPECT_EQ(decoded.source.text, text);
        EXPECT_EQ(outcomeOf(decoded), outcome);
    }
}

TEST(DecodedText, IsKeptWholeUpToAFaultFarBehind) {
    constexpr std::size_t Count = 100'000;
    for (const std::string encoding : {"UTF-32BE", "Shift_JIS"}) {
        const bool isWide = encoding == "UTF-32BE";
#if defined(TESSIT_WITHOUT_ICU)
        if (!isWide) continue;
#endif
        std::string bytes = tessit::test::repeat(isWide ? "\0\0\x30\x42"s : "\x82\xA0", Count);
        bytes += isWide ? "\xFF\xFF\xFF\xFF" : "\x82\x01";
        bytes += std::string(bytes);
        tessit::DecodedText decoded;
        decodeText(decoded, bytes, QeCString(encoding.c_str()));
        EXPECT_EQ(decoded.source.text, tessit::test::repeat("\xE3\x81\x82", Count)) << encoding;
        EXPECT_EQ(decoded.source.endsBy, tessit::Rule::MalformedEncoding);
    }
}

TEST(DecodedText, StaysInPlace) {
    for (const std::string bytes : {"<a>text</a>", "\xEF\xBB\xBF<a>text</a>"}) {
        tessit::DecodedText decoded;
        decodeText(decoded, bytes, QeCString());
        EXPECT_EQ(decoded.source.end(), bytes.data() + bytes.size());
    }
}

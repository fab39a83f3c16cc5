// Marks, first bytes and declared names chosen by the input: a byte for the mark,
// a line for the name (a number picks one of the list), then the text. And what is
// UTF-8 reads the same in UTF-16.

#include "fuzzing.h"
#include "support/documents.h"

using namespace tessit::test;
using namespace std::string_view_literals;

namespace {

constexpr std::string_view Marks[] = {"",
                                      "\xEF\xBB\xBF",
                                      "\xFE\xFF",
                                      "\xFF\xFE",
                                      "\0\0\xFE\xFF"sv,
                                      "\xFF\xFE\0\0"sv,
                                      "\0\0\xFF\xFE"sv,
                                      "\xFE\xFF\0\0"sv,
                                      "\0<\0?"sv,
                                      "<\0?\0"sv,
                                      "\0\0\0<"sv,
                                      "<\0\0\0"sv,
                                      "\x4C\x6F\xA7\x94"};

constexpr std::string_view EncodingNames[] = {"UTF-8",
                                              "utf8",
                                              "US-ASCII",
                                              "ISO-8859-1",
                                              "latin1",
                                              "ISO-8859-15",
                                              "windows-1252",
                                              "UTF-16",
                                              "UTF-16BE",
                                              "UTF-16LE",
                                              "utf-16,version=1",
                                              "UTF-32",
                                              "UTF-32BE",
                                              "UTF-32LE",
                                              "UTF-7",
                                              "IMAP-mailbox-name",
                                              "SCSU",
                                              "BOCU-1",
                                              "CESU-8",
                                              "GB18030",
                                              "GBK",
                                              "Big5",
                                              "Big5-HKSCS",
                                              "EUC-JP",
                                              "EUC-KR",
                                              "Shift_JIS",
                                              "ISO-2022-JP",
                                              "ISO-2022-KR",
                                              "ISO-2022-CN",
                                              "HZ-GB-2312",
                                              "KOI8-R",
                                              "ISCII,version=0",
                                              "ibm-37",
                                              "ibm-1047",
                                              "LMBCS-1",
                                              "x11-compound-text",
                                              "EBCDIC"};

std::string_view pickName(std::string_view line) {
    const bool isNumber = line.size() == 1 && line[0] >= '0' && line[0] < '0' + int(std::size(EncodingNames));
    return isNumber ? EncodingNames[line[0] - '0'] : line;
}

bool readsAlikeInUtf16(std::string_view text) {
    return text.size() >= 4 && text[0] == '<' && text[1] != '\0' && text.find("<?xml") == text.npos && isUtf8(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tessit::fuzz::Input input(data, size);
    std::string document(input.oneOf(Marks));
    const std::string_view name = pickName(input.line());
    const std::string_view text = input.rest();
    if (!name.empty()) document += "<?xml version='1.0' encoding='" + std::string(name) + "'?>";
    document += text;
    trace(document);

    if (!readsAlikeInUtf16(text)) return 0;
    for (const Encoding encoding : {Encoding::Utf16LE, Encoding::Utf16BE})
        tessit::fuzz::require(trace(encode(text, encoding)) == trace(text), "UTF-16 reads as UTF-8 does");
    return 0;
}

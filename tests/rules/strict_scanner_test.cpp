// What is rare in a document, read under the rules: what is read of it and where it is refused.

#include <gtest/gtest.h>
#include <string>

#include <tessit/errors/xml_error.h>
#include <tessit/rules/strict_scanner.h>

using tessit::StrictScanner;

namespace {

std::string quoted(std::string_view text) {
    return "[" + std::string(text) + "]";
}

std::string comment(StrictScanner& scanner) {
    return quoted(scanner.readComment());
}
std::string instruction(StrictScanner& scanner) {
    const auto [target, data] = scanner.readInstruction(true);
    return quoted(target) + quoted(data);
}
std::string describe(const StrictScanner::Declaration& declaration) {
    return quoted(declaration.version) + quoted(declaration.encoding) + quoted(declaration.standalone);
}
std::string xmlDeclaration(StrictScanner& scanner) {
    return describe(scanner.readXmlDeclaration());
}
std::string textDeclaration(StrictScanner& scanner) {
    return describe(scanner.readTextDeclaration());
}
std::string name(StrictScanner& scanner) {
    return quoted(scanner.readNameWithoutColon(true));
}
std::string literal(StrictScanner& scanner) {
    return quoted(scanner.readLiteral());
}
std::string reference(StrictScanner& scanner) {
    return quoted(scanner.readReferenceName(false));
}
std::string number(StrictScanner& scanner) {
    return std::to_string(scanner.readCharacterReference());
}

// What was read, and behind it what is left; or the column at which a rule is broken, counted from 0.
std::string outcomeOf(std::string (*read)(StrictScanner&), std::string_view text) {
    tessit::Source source;
    source.text = text;
    StrictScanner scanner(source, source.begin() + (read == number ? 2 : 0));  // told from the '&' on
    try {
        const std::string result = read(scanner);
        return result + std::string(scanner.position(), source.end());
    } catch (const QeXmlParseError& error) {
        const std::string_view message = error.why();
        return std::to_string(error.getColumnNumber() - 1) + " " + std::string(message.substr(0, message.find(':')));
    }
}

#define UNFINISHED " the document ends before it is complete"
#define HYPHENS " '--' in a comment"
#define TARGET " a processing instruction's target is wrong"
#define DECLARATION " an XML declaration is written wrong"
#define TEXT_DECLARATION " a text declaration is written wrong"
#define REFERENCE " '&' that begins no reference"
#define NO_CHARACTER " a reference to a character that XML does not allow"

constexpr struct {
    std::string (*read)(StrictScanner&);
    const char *text, *outcome;
} Rows[] = {
    {comment, "-->x", "[]x"},
    {comment, "a-b-->", "[a-b]"},
    {comment, "->-->", "[->]"},
    {comment, "a--b-->", "1" HYPHENS},
    {comment, "--->", "0" HYPHENS},
    {comment, "a--", "3" UNFINISHED},
    {comment, "a->", "3" UNFINISHED},
    {instruction, "a?>x", "[a][]x"},
    {instruction,
     "a  b?c>?"
     "?>x",
     "[a][b?c>?]x"},
    {instruction, "a ?>", "[a][]"},
    {instruction, "a >?>", "[a][>]"},
    {instruction, "a?b?>", "1" TARGET},
    {instruction, "a?", "2" UNFINISHED},
    {instruction, "a b?", "4" UNFINISHED},
    {instruction, " a?>", "0" TARGET},
    {instruction, "XmL?>", "0" TARGET},
    {instruction, "xml v?>", "0 an XML declaration stands elsewhere than at the beginning"},
    {instruction, "xml-a?>", "[xml-a][]"},
    {instruction, "a:b?>", "1 a colon where namespaces allow none"},
    {xmlDeclaration, "<?xml version='1.10' ?>x", "[1.10][][]x"},
    {xmlDeclaration, "<?xml\tversion = \"1.0\" encoding='x.-_1'\nstandalone='no'?>", "[1.0][x.-_1][no]"},
    {xmlDeclaration, "<?xml encoding='x'?>", "6" DECLARATION},
    {xmlDeclaration, "<?xml version='1.'?>", "15" DECLARATION},
    {xmlDeclaration, "<?xml version='2.0'?>", "15" DECLARATION},
    {xmlDeclaration, "<?xml version='1.0'encoding='x'?>", "19 white space was expected, found 'e'"},
    {xmlDeclaration, "<?xml version='1.0' encoding='1x'?>", "30" DECLARATION},
    {xmlDeclaration, "<?xml version='1.0' standalone='Yes'?>", "32" DECLARATION},
    {xmlDeclaration, "<?xml version='1.0' standalone='yes' encoding='x'?>", "37" DECLARATION},
    {xmlDeclaration, "<?xml version='1.0' encoding='", "30" UNFINISHED},
    {xmlDeclaration, "<?xml version='1.0'?", "20" UNFINISHED},
    {textDeclaration, "<?xml encoding='x'?>y", "[][x][]y"},
    {textDeclaration, "<?xml version='1.1' encoding='x'?>", "[1.1][x][]"},
    {textDeclaration, "<?xml version='1.0'?>", "19" TEXT_DECLARATION},
    {textDeclaration, "<?xml encoding='x' standalone='no'?>", "19" TEXT_DECLARATION},
    {name, "\xC3\xA9\xF0\x90\x80\x80.-\xC2\xB7 ", "[\xC3\xA9\xF0\x90\x80\x80.-\xC2\xB7] "},
    {name, "-a ", "0 a name was expected, found '-'"},
    {name, "a\xC3\x97 ", "[a]\xC3\x97 "},
    {name, "a", "1" UNFINISHED},
    {name, "", "0" UNFINISHED},
    {literal, "\"a'\"x", "[a']x"},
    {literal, "'a", "2" UNFINISHED},
    {literal, "a'", "0 a quoted literal was expected, of characters that may stand in it, found 'a'"},
    {reference, "a.b;c", "[a.b]c"},
    {reference, ";", "0" REFERENCE},
    {reference, "a ;", "1" REFERENCE},
    {reference, "a", "1" UNFINISHED},
    {number, "&#9;x", "9x"},
    {number, "&#x10FfFf;", "1114111"},
    {number, "&#x110000;", "0" NO_CHARACTER},
    {number, "&#99999999999999999999;", "0" NO_CHARACTER},
    {number, "&#xD800;", "0" NO_CHARACTER},
    {number, "&#0;", "0" NO_CHARACTER},
    {number, "&#;", "2" REFERENCE},
    {number, "&#x;", "3" REFERENCE},
    {number, "&#X41;", "2" REFERENCE},
    {number, "&#1A;", "3" REFERENCE},
    {number, "&#1", "3" UNFINISHED},
};

}  // namespace

TEST(StrictScanner, ReadsAndRefuses) {
    for (const auto& [read, text, outcome] : Rows)
        EXPECT_EQ(outcomeOf(read, text), outcome) << text;
}

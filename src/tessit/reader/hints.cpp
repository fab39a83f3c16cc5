// Documents that are something else, told by their first bytes.

#include <algorithm>

#include <tessit/reader/char_class.h>
#include <tessit/reader/hints.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

constexpr std::size_t LookedAt = 1024;

constexpr std::string_view Mark = "\xEF\xBB\xBF";

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
}

// Whether a text has these small letters, in any case.
bool has(std::string_view text, std::string_view letters) {
    return std::search(text.begin(), text.end(), letters.begin(), letters.end(),
                       [](char left, char right) { return lower(left) == right; }) != text.end();
}

// One line without markup, which ends in a dot and some letters or digits.
bool isLikeFileName(std::string_view document) {
    constexpr std::size_t LongestExtension = 5;
    while (document.ends_with('\n') || document.ends_with('\r'))
        document.remove_suffix(1);
    if (document.size() >= LookedAt || document.find_first_of("<\n\r") != std::string_view::npos) return false;
    const std::size_t dot = document.rfind('.');
    if (dot == std::string_view::npos) return false;
    const std::string_view extension = document.substr(dot + 1);
    const auto isLetter = [](char byte) {
        return (lower(byte) >= 'a' && lower(byte) <= 'z') || (byte >= '0' && byte <= '9');
    };
    return !extension.empty() && extension.size() <= LongestExtension &&
           std::all_of(extension.begin(), extension.end(), isLetter);
}

bool isLikeHtml(std::string_view begin) {
    return (has(begin, "<!doctype html") || has(begin, "<html")) && !has(begin, "xhtml");
}

constexpr std::string_view DeclarationBegin = "<?xml";

}  // namespace

bool beginsAnotherDocument(std::string_view rule, std::string_view text, std::string_view root) noexcept {
    if (rule == nameOf(Rule::XmlDeclarationPlace)) return true;
    return rule == nameOf(Rule::SecondRoot) && text.starts_with('<') && text.substr(1).starts_with(root);
}

bool endsInDeclaration(std::string_view text) noexcept {
    text.remove_prefix(text.size() - std::min(text.size(), LookedAt));
    const std::string_view last = text.substr(std::min(text.rfind('<'), text.size()));
    return last.size() > DeclarationBegin.size() && last.starts_with(DeclarationBegin) &&
           isSpace(last[DeclarationBegin.size()]) && last.find('>') == std::string_view::npos;
}

const char* hintFor(std::string_view document) noexcept {
    if (document.starts_with(Mark)) return "a byte-order mark stands here a second time";
    if (isLikeFileName(document)) return "is this a file's name? A reader takes the document itself";
    if (isLikeHtml(document.substr(0, LookedAt))) return "this looks like HTML, which XML parsers do not read";
    return nullptr;
}

}  // namespace tessit

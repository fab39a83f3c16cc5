#include <algorithm>
#include <voxal/transcode.h>

#include <corvel/byte_scan.h>
#include <tessit/rules/name_chars.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

namespace {

bool isSpaceByte(char byte) noexcept {
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

// Letters of ASCII without their case.
bool isXml(std::string_view target) noexcept {
    return target.size() == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' && (target[2] | 0x20) == 'l';
}

bool isDigit(char byte) noexcept {
    return byte >= '0' && byte <= '9';
}

// "1." and digits: any later version is read by the rules of the first.
bool isVersion(std::string_view text) {
    return text.size() > 2 && text.starts_with("1.") && std::all_of(text.begin() + 2, text.end(), isDigit);
}

bool isEncodingName(std::string_view text) {
    const auto isLetter = [](char byte) { return (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z'; };
    return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), [&](char byte) {
        return isLetter(byte) || isDigit(byte) || byte == '.' || byte == '_' || byte == '-';
    });
}

}  // namespace

CharacterAt characterAt(const char* at) noexcept {
    const auto byte = [at](std::size_t place) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(at[place]));
    };
    const auto rest = [&](std::size_t place) { return byte(place) & 0x3F; };
    if (byte(0) < 0x80) return {byte(0), 1};
    if (byte(0) < 0xE0) return {(byte(0) & 0x1F) << 6 | rest(1), 2};
    if (byte(0) < 0xF0) return {(byte(0) & 0x0F) << 12 | rest(1) << 6 | rest(2), 3};
    return {(byte(0) & 0x07) << 18 | rest(1) << 12 | rest(2) << 6 | rest(3), 4};
}

void appendCharacter(QeCString& text, std::uint32_t character) {
    char bytes[16];  // a block, by which the compiler sees texts copied that are as long
    text.append(bytes, static_cast<std::size_t>(voxal::putUtf8(bytes, character) - bytes));
}

void checkQName(const Source& source, std::string_view name) {
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos) return;
    const std::string_view local = name.substr(colon + 1);
    if (colon == 0 || local.empty() || !startsStrictName(characterAt(local.data()).character))
        refuse(source, name.data() + colon, Rule::Colon, name);
    if (const std::size_t second = local.find(':'); second != std::string_view::npos)
        refuse(source, local.data() + second, Rule::Colon, name);
}

bool StrictScanner::passSpace() noexcept {
    const char* const start = at;
    while (!atEnd() && isSpaceByte(*at))
        ++at;
    return at != start;
}

void StrictScanner::requireSpace() {
    if (passSpace()) return;
    if (atEnd()) refuseEnd(*source);
    refuseHere(Rule::WhiteSpace);
}

bool StrictScanner::passIf(std::string_view text) noexcept {
    if (static_cast<std::size_t>(end() - at) < text.size() || std::string_view(at, text.size()) != text) return false;
    at += text.size();
    return true;
}

void StrictScanner::require(std::string_view text, Rule rule) {
    for (const char byte : text) {
        if (peek() != byte) refuseHere(rule);
        ++at;
    }
}

std::string_view StrictScanner::readName(Rule rule) {
    if (atEnd()) refuseEnd(*source);
    if (!startsStrictName(characterAt(at).character)) refuseHere(rule);
    return readNameToken(rule);
}

std::string_view StrictScanner::readNameWithoutColon(bool namespaces, Rule rule) {
    const std::string_view name = readName(rule);
    if (const std::size_t colon = name.find(':'); namespaces && colon != std::string_view::npos)
        refuseAt(name.data() + colon, Rule::Colon, name);
    return name;
}

std::string_view StrictScanner::readNameToken(Rule rule) {
    const std::string_view token = passNameCharacters();
    if (atEnd()) refuseEnd(*source);
    if (token.empty()) refuseHere(rule);
    return token;
}

std::string_view StrictScanner::passNameCharacters() noexcept {
    const char* const start = at;
    while (!atEnd()) {
        const CharacterAt next = characterAt(at);
        if (!isInStrictName(next.character)) break;
        at += next.length;
    }
    return {start, static_cast<std::size_t>(at - start)};
}

std::string_view StrictScanner::readLiteral(Rule rule) {
    const char quote = peek();
    if (quote != '"' && quote != '\'') refuseHere(rule);
    const char* const start = ++at;
    at = corvel::findByte(at, end(), quote);
    if (atEnd()) refuseEnd(*source);
    return {start, static_cast<std::size_t>(at++ - start)};
}

std::string_view StrictScanner::readComment() {
    const char* const start = at;
    for (;;) {
        at = corvel::findByte(at, end(), '-');
        if (end() - at < 3) refuseEnd(*source);
        if (at[1] == '-') break;
        at += 2;
    }
    if (at[2] != '>') refuseHere(Rule::HyphensInComment);
    at += 3;
    return {start, static_cast<std::size_t>(at - 3 - start)};
}

StrictScanner::Instruction StrictScanner::readInstruction(bool namespaces) {
    const char* const start = at;
    const std::string_view target = readNameWithoutColon(namespaces, Rule::InstructionTarget);
    if (isXml(target)) {
        const bool isAtBegin = start - source->begin() == 2 && !source->isContinued;
        const Rule ofDeclaration = isAtBegin ? Rule::XmlDeclaration : Rule::XmlDeclarationPlace;
        refuseAt(start, target == "xml" ? ofDeclaration : Rule::InstructionTarget, target);
    }
    if (passIf("?>")) return {target, {}};
    if (*at == '?' && at + 1 == end()) refuseEnd(*source);
    if (!passSpace()) refuseHere(Rule::InstructionTarget, target);
    const char* const data = at;
    for (;; ++at) {
        at = corvel::findByte(at, end(), '>');
        if (atEnd()) refuseEnd(*source);
        if (at > data && at[-1] == '?') break;
    }
    ++at;
    return {target, {data, static_cast<std::size_t>(at - 2 - data)}};
}

bool StrictScanner::isAtDeclaration() const noexcept {
    constexpr std::string_view Begin = "<?xml";
    const std::string_view here(at, static_cast<std::size_t>(end() - at));
    return here.size() > Begin.size() && here.starts_with(Begin) && isSpaceByte(here[Begin.size()]);
}

// Entered behind the value in front of it, or behind the target. Where something else stands, does nothing.
bool StrictScanner::passPseudoAttribute(std::string_view name, std::string_view& value, Rule rule) {
    const char* const start = at;
    const bool isApart = passSpace();
    if (!passIf(name)) {
        at = start;
        return false;
    }
    if (!isApart) refuseAt(start, Rule::WhiteSpace);
    passSpace();
    require("=", rule);
    passSpace();
    value = readLiteral(rule);
    return true;
}

void StrictScanner::readDeclarationEnd(Rule rule) {
    passSpace();
    require("?>", rule);
}

StrictScanner::Declaration StrictScanner::readXmlDeclaration() {
    constexpr Rule Broken = Rule::XmlDeclaration;
    Declaration declaration;
    at += std::string_view("<?xml").size();
    if (!passPseudoAttribute("version", declaration.version, Broken)) {
        passSpace();
        require("version", Broken);
    }
    if (!isVersion(declaration.version)) refuseAt(declaration.version.data(), Broken, declaration.version);
    if (passPseudoAttribute("encoding", declaration.encoding, Broken) && !isEncodingName(declaration.encoding))
        refuseAt(declaration.encoding.data(), Broken, declaration.encoding);
    if (passPseudoAttribute("standalone", declaration.standalone, Broken) && declaration.standalone != "yes" &&
        declaration.standalone != "no")
        refuseAt(declaration.standalone.data(), Broken, declaration.standalone);
    readDeclarationEnd(Broken);
    return declaration;
}

StrictScanner::Declaration StrictScanner::readTextDeclaration() {
    constexpr Rule Broken = Rule::TextDeclaration;
    Declaration declaration;
    at += std::string_view("<?xml").size();
    if (passPseudoAttribute("version", declaration.version, Broken) && !isVersion(declaration.version))
        refuseAt(declaration.version.data(), Broken, declaration.version);
    if (!passPseudoAttribute("encoding", declaration.encoding, Broken)) {
        passSpace();
        require("encoding", Broken);
    }
    if (!isEncodingName(declaration.encoding)) refuseAt(declaration.encoding.data(), Broken, declaration.encoding);
    readDeclarationEnd(Broken);
    return declaration;
}

std::string_view StrictScanner::readReferenceName(bool namespaces, Rule rule) {
    const std::string_view name = readNameWithoutColon(namespaces, rule);
    require(";", rule);
    return name;
}

std::uint32_t StrictScanner::readCharacterReference() {
    constexpr std::uint32_t TooLarge = 0x110000;
    const char* const start = at;
    const unsigned base = passIf("x") ? 16 : 10;
    std::uint32_t value = 0;
    for (bool isFirst = true;; isFirst = false) {
        const char digit = take();
        if (digit == ';' && !isFirst) break;
        const char letter = static_cast<char>(digit | 0x20);
        const unsigned digitValue = isDigit(digit) ? static_cast<unsigned>(digit - '0')
                                    : base == 16 && letter >= 'a' && letter <= 'f'
                                        ? static_cast<unsigned>(letter - 'a' + 10)
                                        : base;
        if (digitValue == base) refuseAt(at - 1, Rule::Reference);
        value = std::min(value * base + digitValue, TooLarge);
    }
    if (!isXmlCharacter(value))
        refuseAt(start - 2, Rule::CharacterReference, {start - 2, static_cast<std::size_t>(at - start) + 2});
    return value;
}

}  // namespace tessit

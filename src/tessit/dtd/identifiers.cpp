// What several kinds of declarations have.

#include <algorithm>

#include <corvel/byte_scan.h>
#include <tessit/dtd/subset_reader.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

bool isInPublicId(char byte) noexcept {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           std::string_view(" \r\n-'()+,./:=?;!*#@$_%").find(byte) != std::string_view::npos;
}

}  // namespace

ExternalId SubsetReader::readExternalId(Rule rule, SystemPart systemPart) {
    ExternalId id;
    id.place = placeIn(text.getSource(), text.position());
    const bool isPublic = text.passIf("PUBLIC");
    if (!isPublic && !text.passIf("SYSTEM")) text.refuseNext(rule);
    text.requireBlank();
    if (isPublic) {
        readPublicId(id.publicId);
        const bool isApart = text.passBlank();
        if (systemPart == SystemPart::Optional && !text.isAt('"') && !text.isAt('\'')) return id;
        if (!isApart) text.refuseNext(Rule::WhiteSpace);
    }
    readSystemId(id.systemId);
    return id;
}

// Blanks are trimmed and come singly.
void SubsetReader::readPublicId(QeCString& publicId) {
    const std::string_view literal = text.readLiteral();
    for (const char& byte : literal) {
        if (!isInPublicId(byte)) text.refuseAt(&byte, Rule::Literal, {&byte, characterAt(&byte).length});
        publicId.append(byte == '\r' || byte == '\n' ? ' ' : byte);
    }
    Declarations::tokenize(publicId, 0);
}

void SubsetReader::readSystemId(QeCString& systemId) {
    const std::string_view literal = text.readLiteral();
    for (const char *at = literal.data(), *const end = at + literal.size();;) {
        const char* const stop = text.getSource().hasPlaces ? corvel::findAny(at, end, '\r') : end;
        systemId.append(at, static_cast<std::size_t>(stop - at));
        if (stop == end) return;
        systemId.append('\n');
        at = stop + (stop + 1 != end && stop[1] == '\n' ? 2 : 1);
    }
}

void SubsetReader::endDeclaration(Rule rule) {
    text.passBlank();
    text.require(">", rule);
}

}  // namespace tessit

// The document type declaration, and the grammar of its subsets.

#include <corvel/byte_scan.h>
#include <tessit/dtd/subset_reader.h>
#include <tessit/rules/rules.h>

namespace tessit {

ExternalId SubsetReader::readDocumentType(QeXmlDocumentType& type) {
    constexpr Rule Broken = Rule::DocumentType;
    documentType = &type;
    ExternalId id;
    text.requireBlank();
    type.name.assign(text.readQName(Broken));
    text.passBlank();
    if (!text.isAt('[') && !text.isAt('>')) {
        externalIdPlace = text.position();
        id = readExternalId(Broken, SystemPart::Required);
        type.hasExternalId = true;
        type.publicId = id.publicId;
        type.systemId = id.systemId;
        declarations.noteReference();
    }
    text.passBlank();
    if (text.passIf("[")) readInternalSubset(type);
    endDeclaration(Broken);
    return id;
}

void SubsetReader::readInternalSubset(QeXmlDocumentType& type) {
    const char* const start = text.position();
    readDeclarations();
    type.hasInternalSubset = true;
    type.internalSubset.assign(start, static_cast<std::size_t>(text.position() - start));
    text.require("]", Rule::DocumentType);
}

void SubsetReader::readExternalSubset(Entity& subset) {
    const Source& document = text.getSource();
    const Source* const source = declarations.open(subset, document, externalIdPlace);
    if (source == nullptr) return;
    static_cast<StrictScanner&>(text) = StrictScanner(*source, source->begin());
    text.beOutside();
    readDeclarations();
    declarations.setReadingOutside(false);
    declarations.close(subset);
}

// Up to the ']' of the internal subset, or the end of the external one.
void SubsetReader::readDeclarations() {
    const bool isExternal = text.isOutside();
    for (bool goesOn = true; goesOn;) {
        try {
            goesOn = readNextDeclaration();
        } catch (const SubsetText::Unreadable&) {
            // What else stands around the missing entity cannot be told.
            text.leaveAll();
            goesOn = !isExternal;
        }
    }
}

bool SubsetReader::readNextDeclaration() {
    text.passSpace();
    if (text.atEnd()) {
        if (text.isInSubset() && !text.isOutside()) refuseEnd(text.getSource());
        return text.leaveText();
    }
    switch (text.peek()) {
        case '<':
            readMarkup();
            return true;
        case '%':
            text.enterBetween();
            return true;
        case ']':
            if (text.isInSubset() && !text.isOutside()) return false;
            closeSection();
            return true;
        default:
            text.refuseHere(Rule::DocumentType);
    }
}

namespace {

constexpr std::string_view SectionEnd = "]]>";

}  // namespace

void SubsetReader::readMarkup() {
    if (text.passIf("<!--")) return passComment();
    if (text.passIf("<?")) return readInstruction();
    const char* const start = text.position();
    if (text.passIf("<![")) return readConditionalSection();
    declarations.countDeclaration(text.getSource(), start);
    if (text.passIf("<!ELEMENT")) return readElementDeclaration();
    if (text.passIf("<!ATTLIST")) return readAttributeListDeclaration();
    if (text.passIf("<!ENTITY")) return readEntityDeclaration();
    if (text.passIf("<!NOTATION")) return readNotationDeclaration();
    refuseMarkup();
}

void SubsetReader::refuseMarkup() {
    const char* const start = text.position();
    if (!text.passIf("<!")) text.refuseHere(Rule::DocumentType);
    text.passIf("-");
    text.passNameCharacters();
    if (text.atEnd()) refuseEnd(text.getSource());
    text.refuseAt(start, Rule::Markup);
}

// Entered just after "<![".
void SubsetReader::readConditionalSection() {
    constexpr Rule Broken = Rule::ConditionalSection;
    const char* const start = text.position() - std::string_view("<![").size();
    if (!text.isOutside()) text.refuseAt(start, Broken);
    text.passBlank();
    const char* const place = text.position();
    const std::string_view keyword = text.readName(Broken);
    if (keyword != "INCLUDE" && keyword != "IGNORE") text.refuseAt(place, Broken, keyword);
    text.passBlank();
    text.require("[", Broken);
    if (keyword == "INCLUDE")
        text.openSection();
    else
        passIgnored();
}

// Sections within are ignored too; nothing else has a meaning. The end stands in the same text, or in one around it if
// an entity within the section's beginning brought the rest of that.
void SubsetReader::passIgnored() {
    for (std::size_t depth = 1; depth != 0;) {
        text.leaveEnded();
        text.goTo(corvel::findAny(text.position(), text.end(), '<', ']'));
        if (text.passIf("<!["))
            ++depth;
        else if (text.passIf(SectionEnd))
            --depth;
        else
            text.take();
    }
}

void SubsetReader::closeSection() {
    const char* const place = text.position();
    text.require(SectionEnd, Rule::DocumentType);
    if (!text.closeSection()) text.refuseAt(place, Rule::ConditionalSection);
}

}  // namespace tessit

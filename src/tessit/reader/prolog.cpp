// What stands in front of the root element, and the XML declaration wherever it stands.

#include <tessit/reader/nodes.h>

void QeXmlReader::Engine::readProlog() {
    readApart([this] {
        tessit::hold(static_cast<std::uint64_t>(input.limit() - input.position()), input.limits().document,
                     tessit::Limit::Document);
        input.detectEncoding();
        wholeUpTo = input.limit();
        NodeReader(*this).readProlog();
    });
}

void QeXmlReader::Engine::NodeReader::readProlog() {
    for (;;) {
        if (engine.windowed != nullptr) needOutside();
        skipSpace();
        const char* const start = position();
        const unsigned conversions = input.conversions();
        if (take() != '<') raise("First non-ws character in document wasn't '<'");
        switch (take()) {
            case '?':
                readInstruction();
                break;
            case '!':
                readPrologMarkup();
                break;
            default:
                return stepBack(2);
        }
        if (input.conversions() == conversions) engine.limitMarkup(start, position());
    }
}

void QeXmlReader::Engine::NodeReader::needOutside() {
    const Lending lending(*this);
    engine.needOutside();
}

// Entered just after "<!".
void QeXmlReader::Engine::NodeReader::readPrologMarkup() {
    if (take() == '-') return skipComment();
    stepBack(1);
    if (readName().whole() != "DOCTYPE") raise("Unknown prolog tag");
    skipDocumentType();
}

// Entered just after "<?".
void QeXmlReader::Engine::NodeReader::readInstruction() {
    constexpr std::string_view Declaration = "xml";
    const char* const start = position();
    const bool isPlain = standsHere(Declaration, ' ');  // as in most documents
    const std::string_view target = isPlain ? Declaration : readName().whole();
    tessit::hold(target.size(), input.limits().name, tessit::Limit::Name, start);
    if (isPlain) skip(target.size());
    if (target != Declaration) return skipInstruction();
    input.needMore();  // what is declared is told at once
    readXmlDeclaration();
}

// Entered just after "<?xml". Reads leniently: pseudo-attributes are known by
// their first letter, and equals signs and opening quotes are not examined. One
// that does not begin with the version is given up; the caller goes on from there.
void QeXmlReader::Engine::NodeReader::readXmlDeclaration() {
    skipSpace();
    if (take(7) != "version") return;
    reader.version.append(readPseudoValue());
    for (;;) {
        skipSpace();
        switch (take()) {
            case '>':
                return;
            case 'e':
                readEncoding();
                break;
            case 's':
                readStandalone();
                break;
            default:
                break;  // among others the '?' of "?>"
        }
    }
}

// Entered just after the 'e'. A conversion begins right behind the closing quote.
void QeXmlReader::Engine::NodeReader::readEncoding() {
    take(std::string_view("ncoding").size());
    const QeCString name(readPseudoValue());
    const Lending lending(*this);
    engine.declareEncoding(name);
}

// Entered just after the 's'.
void QeXmlReader::Engine::NodeReader::readStandalone() {
    take(std::string_view("tandalone").size());
    const std::string_view value = readPseudoValue();
    reader.standaloneDeclared = true;
    reader.standalone = value.starts_with('y') ? "yes" : "no";
}

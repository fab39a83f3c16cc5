// What is neither tag nor plain text: the prolog, the XML declaration, processing
// instructions, the document type declaration, comments and CDATA sections.

#include <corvel/byte_scan.h>
#include <tessit/reader/xml_reader.h>

using corvel::findByte;

void QeXmlReader::readDocument() {
    readProlog();
}

// Leaves the cursor on the '<' of the root element.
void QeXmlReader::readProlog() {
    readAndProcessBOM();
    for (;;) {
        readS();
        if (rd() != '<') raise("First non-ws character in document wasn't '<'");
        switch (rd()) {
            case '?':
                readPIOrXmlDecl();
                break;
            case '!':
                if (rd() == '-') {
                    readComment();
                } else {
                    --cursor;
                    readDocTypeDecl();
                }
                break;
            default:
                cursor -= 2;
                return;
        }
    }
}

// Entered just after "<?".
void QeXmlReader::readPIOrXmlDecl() {
    if (readName().whole() == "xml") {
        readXmlDecl();
    } else {
        skipInstruction();
    }
}

// Passes the first "?>". Looks for the '>', which instructions seldom hold, and then back.
void QeXmlReader::skipInstruction() {
    for (const char* at = cursor; (at = findByte(at, bufferEnd, '>')) != bufferEnd; ++at) {
        if (at > cursor && at[-1] == '?') {
            cursor = at + 1;
            return;
        }
    }
    raiseEnd();
}

// Entered just after "<?xml". Reads leniently: pseudo-attributes are known by
// their first letter, and equals signs and opening quotes are not examined. One
// that does not begin with the version is given up; the caller goes on from there.
void QeXmlReader::readXmlDecl() {
    readS();
    if (rd(7) != "version") return;
    version.append(readPseudoValue());
    for (;;) {
        readS();
        switch (rd()) {
            case '>':
                return;
            case 'e':
                readEncodingDecl();
                break;
            case 's':
                readStandaloneDecl();
                break;
            default:
                break;  // among others the '?' of "?>"
        }
    }
}

// Entered just after the 'e'. The conversion begins right behind the closing quote.
void QeXmlReader::readEncodingDecl() {
    rd(std::string_view("ncoding").size());
    declareEncoding(QeCString(readPseudoValue()));
}

// Entered just after the 's'.
void QeXmlReader::readStandaloneDecl() {
    rd(std::string_view("tandalone").size());
    const std::string_view value = readPseudoValue();
    standaloneDeclared = true;
    standalone = value.starts_with('y') ? "yes" : "no";
}

// Passes the equals sign, the opening quote, and the value to the next quote of either kind.
std::string_view QeXmlReader::readPseudoValue() {
    readS();
    rd();
    readS();
    rd();
    const char* const start = cursor;
    for (;;) {
        const char byte = rd();
        if (byte == '"' || byte == '\'') return {start, static_cast<std::size_t>(cursor - 1 - start)};
    }
}

// Entered just after "<!". Nothing of the declaration is kept. Brackets are
// counted, quotes are not special: a '>' in a quoted identifier ends it.
void QeXmlReader::readDocTypeDecl() {
    if (readName().whole() != "DOCTYPE") raise("Unknown prolog tag");
    for (std::ptrdiff_t brackets = 0;;) {
        const char byte = rd();
        if (byte == '[') ++brackets;
        if (byte == ']') --brackets;
        if (byte == '>' && brackets == 0) return;
    }
}

// Entered just after "<!-".
void QeXmlReader::readComment() {
    if (rd() != '-') raise("Syntax error on comment");
    for (;;) {
        cursor = findByte(cursor, bufferEnd, '-');
        rd();
        if (rd() != '-') continue;
        if (rd() != '>') raise("Invalid -- inside comment");
        return;
    }
}

// Entered just after "<![". The section ends at the first "]]>"; its text is taken
// as it stands. Looks for the '>' and then back, so that runs of ']' cost nothing.
void QeXmlReader::readCDATA() {
    if (readName().whole() != "CDATA") raise("'<![' wasn't followed by 'CDATA'");
    if (rd() != '[') raise("'<![CDATA' wasn't followed by '['");
    const char* const start = cursor;
    for (const char* at = start; (at = findByte(at, bufferEnd, '>')) != bufferEnd; ++at) {
        if (at - start >= 2 && at[-1] == ']' && at[-2] == ']') {
            lastContent.append(start, static_cast<std::size_t>(at - 2 - start));
            cursor = at + 1;
            return;
        }
    }
    raiseEnd();
}

// Finds faults that show only once the whole document was read, and tells of each as a compiler does.

#include <iostream>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <tessit/tessit.h>

namespace {

struct Reference {
    QeCString name;
    QeXmlPosition position;
};

void print(const char* severity, const QeXmlPlace& place, const QeCString& text, const QeXmlExcerpt& line) {
    std::cout << place.sourceFile << ':' << place.position.line << ':' << place.position.column << ": " << severity
              << ": " << text << "\n    " << line.text << "\n    " << std::string(line.offset, ' ') << "^\n";
}

void print(const QeXmlParseError& error) {
    print("error", {error.getSourceFile(), error.getPosition()}, error.why(), error.getExcerpt());
}

// People are named anywhere, and referred to anywhere.
class People {
public:
    explicit People(QeXmlReader& source) : reader(source) {
        while (!reader.eof()) {
            reader.readNextNode();
            if (reader.getLastNodeType() == QeXmlReader::EmptyElement) noteTag();
        }
    }

    // The reader still has the document, so it says which line that was.
    void reportUnknown() const {
        for (const auto& [name, position] : references) {
            if (names.contains(name)) continue;
            try {
                reader.err("nobody is called " + name, position);
            } catch (const QeXmlParseError& error) {
                print(error);
            }
        }
    }

private:
    // Only now does the reader know where the attribute stands; the position is worth keeping, a view is not.
    void noteTag() {
        for (const QeXmlAttribute& attribute : reader.getLastAttributes()) {
            const auto spans = reader.getAttributeSpans(attribute);
            if (!spans) continue;
            const QeXmlPosition& position = spans->value.begin;
            const QeCString& attributeName = attribute.getName().getLocalName();
            if (attributeName == "name") names.insert(attribute.getValue());
            if (attributeName == "boss") references.push_back({attribute.getValue(), position});
        }
    }

    QeXmlReader& reader;
    std::set<QeCString> names;
    std::vector<Reference> references;
};

}  // namespace

int main() {
    constexpr std::string_view Document =
        "<people>\n"
        "  <person name='Ada' boss='Grace'/>\n"
        "  <person name='Alan' boss='Ida'/>\n"
        "  <person name='Grace'/> <person name='Edsger' boss='Alonzo'/>\n"
        "</people>\n";
    const auto* bytes = reinterpret_cast<const unsigned char*>(Document.data());
    try {
        QeXmlReader reader(std::span(bytes, Document.size()),
                           {.rules = QeXmlRules::Conforming, .sourceName = "people.xml"});
        People(reader).reportUnknown();
    } catch (const QeXmlParseError& error) {
        print(error);
    }
}

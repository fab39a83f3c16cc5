// A script of calls, over and over until the document ends: first its length, then
// a byte for each call, then the document. Names are fixed ones, or the reader's
// own members. Errors do not end the script.

#include <numeric>

#include "fuzzing.h"
#include "support/documents.h"

using namespace tessit::fuzz;

namespace {

const QeXmlName Names[] = {QeXmlReader::NullName, QeXmlName("a"), QeXmlName("b", QeXmlNamespace("p", "")),
                           QeXmlName("a", QeXmlNamespace("q", "u"))};
const QeCString QualifiedNames[] = {"a", "b", "p:a", "q:a", "", ":", "a:", "xmlns:p"};

const QeXmlName& pickName(const QeXmlReader& reader, unsigned choice) {
    const QeXmlAttributeSet& attributes = reader.getLastAttributes();
    if (choice % 3 == 0) return reader.getLastName();
    if (choice % 3 == 1 && attributes.size() > 0) return attributes.begin()->getName();
    return Names[choice / 3 % std::size(Names)];
}

const QeCString& pickText(const QeXmlReader& reader, unsigned choice) {
    const QeXmlAttributeSet& attributes = reader.getLastAttributes();
    if (choice % 4 == 0) return reader.getLastName().getLocalName();
    if (choice % 4 == 1) return reader.getLastContent();
    if (choice % 4 == 2 && attributes.size() > 0) return attributes.begin()->getValue();
    return QualifiedNames[choice / 4 % std::size(QualifiedNames)];
}

void readMarkup(QeXmlReader& reader, const QeCString& markup) {
    require(markup.find(reader.getLastContent()) != QeCString::npos, "an element's markup holds its content");
}

void call(QeXmlReader& reader, unsigned code) {
    const unsigned choice = code / 16;
    const QeXmlName& name = pickName(reader, choice);
    const QeCString& text = pickText(reader, choice);
    switch (code % 16) {
        case 0:
            return reader.readNextNode();
        case 1:
            return reader.readElementStart();
        case 2:
            reader.readElementStart(name);
            return;
        case 3:
            reader.readElementStart(text);
            return;
        case 4:
            return reader.readElementEnd();
        case 5:
            return reader.readElementEnd(name);
        case 6:
            return reader.readElementEnd(text);
        case 7:
            return readMarkup(reader, reader.readElement(name));
        case 8:
            return readMarkup(reader, reader.readElement(text));
        case 9:
            return require(&reader.readElementValue() == &reader.getLastContent(), "the value is the last content");
        case 10: {
            const QeXmlName copy = name;
            return require(reader.isElementNext(name) == reader.isElementNext(copy), "looking twice sees the same");
        }
        case 11:
            if (reader.isElementNext(text)) reader.readElementStart();
            return;
        case 12:
            return reader.addNamespace(name.getNamespace());
        case 13:
            return reader.addNamespace(QeXmlNamespace(text, text));
        case 14:
            return reader.setExpandAttributeReference(!reader.getExpandAttributeReference());
        default:
            reader.err(reader.getPrefixForURI(reader.getURIForPrefix(text)));
    }
}

unsigned sum(std::string_view text) {
    return std::accumulate(text.begin(), text.end(), 0u);
}

// Looks at every byte that the reader shows.
unsigned lookAt(const QeXmlReader& reader) {
    unsigned result = sum(reader.getLastContent()) + sum(reader.getEncoding()) + sum(reader.getVersion());
    const auto add = [&](const QeXmlName& name) {
        result += sum(name.getLocalName()) + sum(name.getNamespace().getPrefix()) + sum(name.getNamespace().getURI());
    };
    add(reader.getLastName());
    for (const QeXmlAttribute& attribute : reader.getLastAttributes()) {
        add(attribute.getName());
        result += sum(attribute.getValue());
        require(reader.getLastAttributes().contains(attribute), "an attribute is found by its name");
    }
    return result;
}

void run(QeXmlReader& reader, std::string_view script, std::size_t calls) {
    volatile unsigned looked = 0;
    for (std::size_t i = 0; i < calls && !reader.eof(); ++i) {
        try {
            call(reader, static_cast<unsigned char>(script[i % script.size()]));
        } catch (const QeXmlParseError& error) {
            require(error.getLineNumber() > 0 && error.getColumnNumber() > 0, "an error has a position");
        }
        looked = looked + lookAt(reader);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::string_view script = input.text(1 + input.byte() % 32);
    const tessit::test::Document document(input.rest());
    if (script.empty()) return 0;
    try {
        run(*document.open(tessit::test::Source::Span), script, 2 * size);
    } catch (const QeXmlParseError&) {
    }
    return 0;
}

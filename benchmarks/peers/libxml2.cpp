#include <contestants.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlreader.h>
#include <libxml/xmlwriter.h>
#include <memory>

namespace tessit::benchmarks {

namespace {

// Without it, nesting deeper than 256 levels is refused.
constexpr int Options = XML_PARSE_HUGE;

std::string_view view(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

std::string_view view(const xmlChar* start, const xmlChar* end) {
    return {reinterpret_cast<const char*>(start), static_cast<std::size_t>(end - start)};
}

constexpr std::string_view Xmlns = "xmlns";
constexpr std::string_view NoUri;

// The text reader gives declarations a URI; elsewhere their names have none.
void countAttributes(xmlTextReaderPtr reader, Tally& tally) {
    while (xmlTextReaderMoveToNextAttribute(reader) == 1) {
        const std::string_view uri =
            xmlTextReaderIsNamespaceDecl(reader) == 1 ? NoUri : view(xmlTextReaderConstNamespaceUri(reader));
        tally.attribute(view(xmlTextReaderConstPrefix(reader)), view(xmlTextReaderConstLocalName(reader)), uri,
                        view(xmlTextReaderConstValue(reader)));
    }
}

void countElement(xmlTextReaderPtr reader, Tally& tally) {
    const bool empty = xmlTextReaderIsEmptyElement(reader) == 1;
    tally.element(view(xmlTextReaderConstPrefix(reader)), view(xmlTextReaderConstLocalName(reader)),
                  view(xmlTextReaderConstNamespaceUri(reader)));
    if (xmlTextReaderHasAttributes(reader) == 1) countAttributes(reader, tally);
    if (empty) tally.elementEnd();
}

void countNode(xmlTextReaderPtr reader, Tally& tally) {
    switch (xmlTextReaderNodeType(reader)) {
        case XML_READER_TYPE_ELEMENT:
            return countElement(reader, tally);
        case XML_READER_TYPE_END_ELEMENT:
            return tally.elementEnd();
        case XML_READER_TYPE_TEXT:
        case XML_READER_TYPE_CDATA:
        case XML_READER_TYPE_WHITESPACE:
        case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
            return tally.text(view(xmlTextReaderConstValue(reader)));
        default:
            return;
    }
}

Tally readText(const Document& document) {
    Tally tally;
    const std::unique_ptr<xmlTextReader, decltype(&xmlFreeTextReader)> reader(
        xmlReaderForMemory(document.bytes.data(), static_cast<int>(document.bytes.size()), nullptr, nullptr, Options),
        &xmlFreeTextReader);
    while (xmlTextReaderRead(reader.get()) == 1)
        countNode(reader.get(), tally);
    return tally;
}

Tally& tallyOf(void* user) {
    return *static_cast<Tally*>(user);
}

// Declarations come apart from the attributes, as pairs of prefix and URI.
void startElement(void* user, const xmlChar* local, const xmlChar* prefix, const xmlChar* uri, int declarationCount,
                  const xmlChar** declarations, int attributeCount, int, const xmlChar** attributes) {
    Tally& tally = tallyOf(user);
    tally.element(view(prefix), view(local), view(uri));
    for (; declarationCount > 0; --declarationCount, declarations += 2) {
        const bool isDefault = declarations[0] == nullptr;
        tally.attribute(isDefault ? NoUri : Xmlns, isDefault ? Xmlns : view(declarations[0]), NoUri,
                        view(declarations[1]));
    }
    for (; attributeCount > 0; --attributeCount, attributes += 5)
        tally.attribute(view(attributes[1]), view(attributes[0]), view(attributes[2]),
                        view(attributes[3], attributes[4]));
}

void endElement(void* user, const xmlChar*, const xmlChar*, const xmlChar*) {
    tallyOf(user).elementEnd();
}

void characters(void* user, const xmlChar* text, int length) {
    tallyOf(user).text(view(text, text + length));
}

// One and the same function for blank texts too: otherwise each text is examined for being blank.
xmlSAXHandler makeHandler() {
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = startElement;
    handler.endElementNs = endElement;
    handler.characters = handler.ignorableWhitespace = handler.cdataBlock = characters;
    return handler;
}

Tally parse(const Document& document) {
    Tally tally;
    xmlSAXHandler handler = makeHandler();
    xmlParserCtxtPtr parser = xmlCreateMemoryParserCtxt(document.bytes.data(), static_cast<int>(document.bytes.size()));
    xmlFree(parser->sax);
    parser->sax = &handler;
    parser->userData = &tally;
    // Otherwise an "&amp;" in a value is delivered as "&#38;".
    xmlCtxtUseOptions(parser, Options | XML_PARSE_NOENT);
    xmlParseDocument(parser);
    parser->sax = nullptr;  // it is not the parser's
    xmlFreeParserCtxt(parser);
    return tally;
}

const xmlChar* bytes(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

// Names are passed as they are to be written, declarations as attributes: what the
// text writer offers for namespaces puts the same names together at each call.
class WrittenByLibxml2 final : public Writable {
public:
    using Node = ComposedNode<std::string>;

    explicit WrittenByLibxml2(const Composition<std::string>& source) : composition(source) {}

    void write(const Take& take) override {
        const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(), &xmlBufferFree);
        {
            const std::unique_ptr<xmlTextWriter, decltype(&xmlFreeTextWriter)> writer(
                xmlNewTextWriterMemory(buffer.get(), 0), &xmlFreeTextWriter);
            for (const Node& node : composition.nodes)
                writeNode(writer.get(), node);
        }
        take({reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
              static_cast<std::size_t>(xmlBufferLength(buffer.get()))});
    }

private:
    void writeNode(xmlTextWriterPtr writer, const Node& node) const {
        switch (node.kind) {
            case Node::Kind::Start:
                writeStart(writer, node);
                break;
            case Node::Kind::Empty:
                writeStart(writer, node);
                xmlTextWriterEndElement(writer);
                break;
            case Node::Kind::End:
                xmlTextWriterEndElement(writer);
                break;
            case Node::Kind::Text:
                xmlTextWriterWriteString(writer, bytes(node.text));
        }
    }

    void writeStart(xmlTextWriterPtr writer, const Node& node) const {
        xmlTextWriterStartElement(writer, bytes(composition.names[node.name].qualified));
        for (const auto& [name, value] : node.attributes)
            xmlTextWriterWriteAttribute(writer, bytes(composition.names[name].qualified), bytes(value));
    }

    Composition<std::string> composition;
};

}  // namespace

void addLibxml2(Contestants& all) {
    xmlInitParser();
    all.readers.push_back({"libxml2 reader", LIBXML_DOTTED_VERSION, Role::Peer, {}, readText});
    all.readers.push_back({"libxml2 SAX2", LIBXML_DOTTED_VERSION, Role::Peer, {}, parse});
    all.writers.push_back({"libxml2 xmlTextWriter", LIBXML_DOTTED_VERSION, Role::Peer, prepared<WrittenByLibxml2>});
}

}  // namespace tessit::benchmarks

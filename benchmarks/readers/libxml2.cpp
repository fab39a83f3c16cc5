#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlreader.h>
#include <memory>
#include <reader.h>

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

}  // namespace

void addLibxml2Readers(std::vector<Reader>& readers) {
    xmlInitParser();
    readers.push_back({"libxml2 reader", LIBXML_DOTTED_VERSION, Role::Peer, {}, readText});
    readers.push_back({"libxml2 SAX2", LIBXML_DOTTED_VERSION, Role::Peer, {}, parse});
}

}  // namespace tessit::benchmarks

// Documents by the conforming rules: two bytes choose the options, then comes the document and, each behind a form
// feed, what a resolver has. Whatever is asked for and however it is read, the same tags and texts come, and the same
// fault, which stays. What is accepted, a lenient reader delivers too.

#include <algorithm>
#include <string>
#include <vector>

#include "fuzzing.h"
#include "support/documents.h"

using tessit::fuzz::Input;
using tessit::fuzz::require;
using namespace tessit::test;

namespace {

// Serves what stands behind the document; which piece, the system identifier's bytes decide.
class Pieces final : public QeXmlResolver {
public:
    explicit Pieces(Input& input) {
        while (!input.empty() && pieces.size() != 4)
            pieces.push_back(input.until('\f'));
    }

    bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) override {
        std::size_t sum = 0;
        for (const char byte : std::string_view(id.getSystemId()))
            sum += static_cast<unsigned char>(byte);
        if (sum % 4 >= pieces.size()) return false;
        entity.setBytes(QeCString(pieces[sum % 4]));
        if (sum % 8 >= 4) entity.setName(id.getBase() + "/" + id.getSystemId());
        return true;
    }

private:
    std::vector<std::string_view> pieces;
};

constexpr QeXmlNamedEntity Named[] = {{"nbsp", "\xC2\xA0"}, {"n", "<n>&n;\r"}};

struct Settings {
    QeXmlReaderOptions options{.rules = QeXmlRules::Conforming, .sourceName = "doc"};
    bool expands = true;
    bool hasResolver = false;
};

Settings takeSettings(Input& input) {
    static const char* const Encodings[] = {"", "", "", "", "UTF-8", "UTF-16", "ISO-8859-1", "IBM037"};
    Settings settings;
    const unsigned first = input.byte(), second = input.byte();
    settings.options.nodes = static_cast<QeXmlNodes>(first % 32);
    settings.options.namespaces = (first & 32) == 0;
    settings.expands = (first & 64) == 0;
    settings.hasResolver = (first & 128) != 0;
    settings.options.encoding = Encodings[second % 8];
    if ((second & 8) != 0) settings.options.entities = Named;
    if ((second & 16) != 0) settings.options.expansionFactor = 2, settings.options.freeExpansion = 100;
    if ((second & 32) != 0) settings.options.entityDepth = 2;
    return settings;
}

struct Node {
    QeXmlReader::NodeType type;
    QeXmlName name;
    std::string text;     // of a text; of a tag, all that it says
    std::string origins;  // of a tag's attributes
};

// What a document is read as: its nodes, and what it is refused for.
struct Reading {
    std::vector<Node> nodes;
    std::string fault;
    bool hasDocumentType = false;
};

std::string describeFault(const QeXmlParseError& error) {
    std::string text = std::string(std::string_view(error.getSourceFile())) + describe(error);
    if (const QeXmlNote* note = error.getNote())
        text +=
            " note " + std::to_string(note->place.position.line) + ":" + std::to_string(note->place.position.column);
    return text;
}

template <typename Call>
std::string faultOf(const Call& call) {
    try {
        call();
    } catch (const QeXmlParseError& error) {
        return describeFault(error);
    }
    return {};
}

bool isTag(QeXmlReader::NodeType type) {
    return type == QeXmlReader::ElementStart || type == QeXmlReader::ElementEnd || type == QeXmlReader::EmptyElement;
}

bool isText(QeXmlReader::NodeType type) {
    return type == QeXmlReader::Content || type == QeXmlReader::CDATASection || type == QeXmlReader::EntityReference;
}

// All that the reader tells of a tag's attributes besides their values.
std::string describeOrigins(const QeXmlReader& reader) {
    std::string text;
    for (const QeXmlAttribute& attribute : reader.getLastAttributes()) {
        text += reader.isSpecified(attribute) ? '+' : '-';
        for (const auto& [offset, length] : reader.getLeftReferences(attribute)) {
            const std::string_view left = std::string_view(attribute.getValue()).substr(offset, length);
            require(left.starts_with('&') && left.ends_with(';') && left.size() == length,
                    "a reference that was left stands in the value");
            text += left;
        }
    }
    return text;
}

Node nodeOf(const QeXmlReader& reader) {
    const QeXmlReader::NodeType type = reader.getLastNodeType();
    if (!isTag(type)) return {type, {}, std::string(std::string_view(reader.getLastContent())), {}};
    return {type, reader.getLastName(), describeNode(reader),
            type == QeXmlReader::ElementEnd ? std::string() : describeOrigins(reader)};
}

void requireFaultToStay(QeXmlReader& reader, const std::string& fault) {
    require(!reader.eof(), "what is refused is not at its end");
    require(faultOf([&] { reader.readNextNode(); }) == fault, "the fault stays");
    require(faultOf([&] { reader.readElementValue(); }) == fault, "for values, too");
    require(faultOf([&] { reader.isElementNext(""); }) == fault, "and for who looks ahead");
    require(faultOf([&] { reader.readElement(QeXmlReader::NullName); }) == fault, "and for who takes elements");
    require(!faultOf([&] { reader.err("x"); }).empty() && !reader.eof(), "a program's own errors change nothing");
}

Reading read(const Document& document, Source source, const Settings& settings, const QeXmlReaderOptions& options) {
    Reading reading;
    std::unique_ptr<QeXmlReader> reader;
    reading.fault = faultOf([&] {
        reader = document.open(source, options);
        reader->setExpandAttributeReference(settings.expands);
        while (!reader->eof()) {
            reader->readNextNode();
            reading.nodes.push_back(nodeOf(*reader));
        }
        reading.hasDocumentType = !reader->getDocumentType().name.empty();
    });
    if (!reading.fault.empty() && reader != nullptr) requireFaultToStay(*reader, reading.fault);
    return reading;
}

// Tags, and the texts between them that have any bytes, whatever stands in these besides. In front of a fault, there is
// more of a text when it is delivered in parts.
Reading tagsAndTexts(const Reading& reading) {
    Reading result;
    for (const Node& node : reading.nodes) {
        if (isTag(node.type)) {
            result.nodes.push_back(node);
        } else if (isText(node.type) && !node.text.empty()) {
            if (result.nodes.empty() || isTag(result.nodes.back().type))
                result.nodes.push_back({QeXmlReader::Content, {}, {}, {}});
            result.nodes.back().text += node.text;
        }
    }
    result.fault = reading.fault;
    if (!result.fault.empty() && !result.nodes.empty() && !isTag(result.nodes.back().type)) result.nodes.pop_back();
    return result;
}

void requireSame(const Reading& left, const Reading& right, const char* what) {
    const auto isSame = [](const Node& one, const Node& other) {
        return one.type == other.type && one.text == other.text && one.origins == other.origins;
    };
    require(left.fault == right.fault, what);
    require(std::equal(left.nodes.begin(), left.nodes.end(), right.nodes.begin(), right.nodes.end(), isSame), what);
}

void demandTag(QeXmlReader& reader, const Node& tag) {
    if (tag.type == QeXmlReader::ElementEnd) return reader.readElementEnd(tag.name);
    require(reader.isElementNext(tag.name), "the next element has its name");
    reader.readElementStart(tag.name);
    const Node found = nodeOf(reader);
    require(found.text == tag.text && found.origins == tag.origins, "the tag that was demanded");
    if (tag.type == QeXmlReader::EmptyElement) reader.readElementEnd();
}

void demandAll(QeXmlReader& reader, const Reading& expected) {
    std::string text;
    for (const Node& node : expected.nodes) {
        if (isText(node.type)) {
            text = node.text;
            continue;
        }
        require(reader.readElementValue() == text, "the text in front of a tag");
        text.clear();
        demandTag(reader, node);
    }
    if (!expected.fault.empty()) reader.readElementValue(), reader.readElementStart();
    while (!reader.eof()) {
        reader.readNextNode();
        require(!isTag(reader.getLastNodeType()), "nothing behind the root but what was asked for");
    }
}

void readByDemands(const Document& document, const Settings& settings, const Reading& expected) {
    std::unique_ptr<QeXmlReader> reader;
    const std::string fault = faultOf([&] {
        reader = document.open(Source::Span, settings.options);
        reader->setExpandAttributeReference(settings.expands);
        demandAll(*reader, expected);
    });
    require(fault == expected.fault, "the same fault for who demands");
    if (!fault.empty() && reader != nullptr) requireFaultToStay(*reader, fault);
}

// Takes elements at some depth as a whole.
void takeElements(const Document& document, const Settings& settings) {
    faultOf([&] {
        const auto reader = document.open(Source::Span, settings.options);
        for (unsigned turn = 0; !reader->eof(); ++turn) {
            if (turn % 4 == 3)
                reader->readElement(QeXmlReader::NullName);
            else
                reader->readNextNode();
            require(reader->isInEntity() || reader->getLastNodeType() != QeXmlReader::NoNode, "a node was read");
        }
    });
}

// White space as one blank: lenient readers leave line ends in values and CDATA sections as they are.
std::string withoutDifferences(std::string text) {
    constexpr std::string_view XmlNamespace = "{http://www.w3.org/XML/1998/namespace}";
    for (std::size_t at = 0; (at = text.find(XmlNamespace, at)) != text.npos;)
        text.erase(at, XmlNamespace.size());
    std::replace_if(
        text.begin(), text.end(), [](char byte) { return byte == '\r' || byte == '\n' || byte == '\t'; }, ' ');
    const auto areBlanks = [](char left, char right) { return left == ' ' && right == ' '; };
    text.erase(std::unique(text.begin(), text.end(), areBlanks), text.end());
    return text;
}

// Lenient readers know no declared entities and defaults, fewer names, and no EBCDIC.
bool isKnownRefusal(const QeXmlParseError& error) {
    const std::string_view text = error.why();
    return text.starts_with("Illegal starting character for name") || text.starts_with("Couldn't transcode");
}

void readLeniently(const Document& document, bool expands, const Reading& expected) {
    Reading found;
    try {
        const auto reader = document.open(Source::Span);
        reader->setExpandAttributeReference(expands);
        while (found.nodes.size() < expected.nodes.size()) {
            reader->readNextNode();
            found.nodes.push_back({reader->getLastNodeType(), {}, describeNode(*reader), {}});
        }
    } catch (const QeXmlParseError& error) {
        return require(isKnownRefusal(error), "what is accepted is accepted leniently");
    }
    for (std::size_t i = 0; i != found.nodes.size(); ++i) {
        const Node& node = expected.nodes[i];
        const std::string text = isTag(node.type) ? node.text : "=" + node.text;
        require(withoutDifferences(found.nodes[i].text) == withoutDifferences(text), "the same node, leniently");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Settings settings = takeSettings(input);
    const Document document(settings.hasResolver ? input.until('\f') : input.rest());
    Pieces resolver(input);
    if (settings.hasResolver) settings.options.resolver = &resolver;
    QeXmlReaderOptions plain = settings.options;
    plain.nodes = QeXmlNodes::TagsAndText;
    const Reading expected = read(document, Source::Span, settings, plain);
    const Reading all = read(document, Source::Span, settings, settings.options);
    requireSame(all, read(document, Source::Stream, settings, settings.options), "the same from a stream");
    requireSame(tagsAndTexts(expected), tagsAndTexts(all), "the same whatever is asked for");
    readByDemands(document, settings, expected);
    takeElements(document, settings);
    const bool isComparable = expected.fault.empty() && !expected.hasDocumentType && settings.options.namespaces &&
                              settings.options.encoding.empty();
    if (isComparable) readLeniently(document, settings.expands, expected);
    return 0;
}

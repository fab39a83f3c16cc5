// Documents by either rules, which the first byte chooses: where all that is read stands, which is within the document,
// in order, and what is written there; and limits, which what a document has passes, and one less does not.

#include <algorithm>
#include <string>

#include "fuzzing.h"
#include "support/documents.h"

using tessit::fuzz::Input;
using tessit::fuzz::require;
using namespace tessit::test;

namespace {

using Field = std::uint64_t QeXmlLimits::*;

struct Usage {
    Field field;
    const char* name;
    std::uint64_t most = 0;

    void note(std::uint64_t count) { most = std::max(most, count); }
};

bool opensElement(const QeXmlReader& reader) {
    return reader.getLastNodeType() == QeXmlReader::ElementStart ||
           reader.getLastNodeType() == QeXmlReader::EmptyElement;
}

std::size_t lengthOf(const QeXmlName& name) {
    return name.asString().length();
}

// Reads a document and keeps the most that it has of each.
class Examination {
public:
    Examination(std::string_view bytes, const QeXmlReaderOptions& readerOptions)
        : document(bytes), text(bytes), options(readerOptions) {}

    bool readsToItsEnd() {
        try {
            const auto reader = document.open(Source::Span, options);
            std::uint64_t last = 0;
            while (!reader->eof()) {
                reader->readNextNode();
                lookAtPlaces(*reader, last);
                measure(*reader);
            }
            return true;
        } catch (const QeXmlParseError& error) {
            lookAt(error);
            return false;
        }
    }

    void requireLimitsToBeExact() const {
        for (const Usage& usage : {depth, name, value, content}) {
            // What a lenient reader drops of names and values counts, too: a colon in front, the first of two
            // attributes.
            const bool isOfAttribute = usage.field == &QeXmlLimits::name || usage.field == &QeXmlLimits::value;
            const bool hasTargets = text.find("<?") != std::string_view::npos;  // which have names, too
            if (isOfAttribute && (options.rules == QeXmlRules::Lenient || hasTargets)) continue;
            require(limited(usage, usage.most).empty(), "what a document has passes");
            if (usage.most > 0) require(limited(usage, usage.most - 1) == usage.name, "one less does not");
        }
    }

private:
    void lookAtPlaces(const QeXmlReader& reader, std::uint64_t& last) {
        const QeXmlSpan span = reader.getLastSpan();
        require(span.begin.offset <= span.end.offset && span.begin.line <= span.end.line, "a span has an order");
        if (!reader.isInEntity()) {
            require(last <= span.begin.offset, "nodes have an order");
            last = span.begin.offset;
        }
        lookAtOpenElements(reader, span);
        for (const QeXmlAttribute& attribute : reader.getLastAttributes()) {
            const auto spans = reader.getAttributeSpans(attribute);
            if (spans && opensElement(reader) && reader.getEncoding() == "UTF-8")
                lookAt(*spans, attribute, reader.isInEntity());
        }
    }

    // Of so many elements in all: each node has all of its own, which entities make square in the document.
    void lookAtOpenElements(const QeXmlReader& reader, const QeXmlSpan& span) {
        if (lookedAt > 20'000) return;
        const std::vector<QeXmlOpenElement> open = reader.getOpenElements();
        lookedAt += open.size();
        require(open.empty() || open.back().tag.begin.offset <= span.end.offset, "what is open was opened");
    }

    // The text is that of the bytes where nothing was converted.
    void lookAt(const QeXmlAttributeSpans& spans, const QeXmlAttribute& attribute, bool isInEntity) const {
        require(spans.name.end.offset <= spans.value.begin.offset || isInEntity, "a name stands in front of its value");
        const bool isConverted = spans.name.begin.offset != spans.name.begin.inputOffset ||
                                 spans.value.end.offset != spans.value.end.inputOffset;
        if (isConverted || isInEntity) return;
        const std::size_t length = spans.name.end.offset - spans.name.begin.offset;
        require(text.substr(spans.name.begin.offset, length) == std::string_view(attribute.getName().asString()),
                "the name is written there");
        const char quote = text[spans.value.end.offset];
        require((quote == '"' || quote == '\'') && text[spans.value.begin.offset - 1] == quote,
                "quotes stand around the value");
    }

    static void lookAt(const QeXmlParseError& error) {
        require(error.getPath().length() <= 1100, "a path is bounded");
        const QeXmlNote* note = error.getNote();
        require(note == nullptr || !note->text.empty(), "a note says something");
    }

    void measure(const QeXmlReader& reader) {
        const QeXmlReader::NodeType type = reader.getLastNodeType();
        if (type == QeXmlReader::ElementEnd) {
            --level;
        } else if (opensElement(reader)) {
            depth.note(static_cast<std::uint64_t>(std::max<std::int64_t>(level + 1, 0)));
            level += type == QeXmlReader::ElementStart ? 1 : 0;
            name.note(lengthOf(reader.getLastName()));
            for (const QeXmlAttribute& attribute : reader.getLastAttributes()) {
                name.note(lengthOf(attribute.getName()));
                value.note(attribute.getValue().length());
            }
        } else {
            content.note(reader.getLastContent().length());
        }
    }

    // The name of the limit that stopped it.
    std::string limited(const Usage& usage, std::uint64_t most) const {
        QeXmlReaderOptions limitedOptions = options;
        limitedOptions.limits.*usage.field = most;
        try {
            const auto reader = document.open(Source::Span, limitedOptions);
            while (!reader->eof())
                reader->readNextNode();
        } catch (const QeXmlLimitError& error) {
            return std::string(std::string_view(error.getLimit()));
        }
        return {};
    }

    const Document document;
    std::string_view text;
    QeXmlReaderOptions options;
    std::int64_t level = 0;
    std::size_t lookedAt = 0;
    Usage depth{&QeXmlLimits::depth, "depth"}, name{&QeXmlLimits::name, "name"};
    Usage value{&QeXmlLimits::value, "value"}, content{&QeXmlLimits::text, "text"};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned choice = input.byte();
    const QeXmlReaderOptions options{.rules = choice % 2 == 0 ? QeXmlRules::Lenient : QeXmlRules::Conforming,
                                     .nodes = (choice & 2) != 0 ? QeXmlNodes::All : QeXmlNodes::TagsAndText};
    Examination examination(input.rest(), options);
    if (examination.readsToItsEnd()) examination.requireLimitsToBeExact();
    return 0;
}

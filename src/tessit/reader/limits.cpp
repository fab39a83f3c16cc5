// What a document may have at most: what was read is held against the limits once a node is there. What would hold much
// more than a limit before that, such as a long text, is refused on the way, by throwing `Exceeded`.

#include <algorithm>
#include <utility>

#include <tessit/model/model_access.h>
#include <tessit/reader/conforming.h>

using tessit::Exceeded;
using tessit::hold;
using tessit::Limit;

namespace {

std::uint64_t lengthOf(const QeXmlName& name) {
    const QeCString& prefix = name.getNamespace().getPrefix();
    return name.getLocalName().length() + (prefix.empty() ? 0 : prefix.length() + 1);
}

bool opensElement(QeXmlReader::NodeType type) {
    return type == QeXmlReader::ElementStart || type == QeXmlReader::EmptyElement;
}

}  // namespace

void QeXmlReader::Engine::setLimits(const QeXmlLimits& given) {
    if (!tessit::areAny(given)) return;
    makeBesides().limits = given;
    input.setLimits(besides->limits);
    reader.readsApart = true;
}

void QeXmlReader::Engine::limitMarkup(const char* begin, const char* end) const {
    hold(static_cast<std::uint64_t>(end - begin), input.limits().node, Limit::Node, begin);
}

// Of the last node, or that which is read. A text that goes through entities has a part in each; of one through a
// conversion, nothing is known any more.
std::uint64_t QeXmlReader::Engine::bytesOfNode(const char* end) const noexcept {
    if (lastNode.begin == nullptr) return 0;
    const bool hasParts = conforming != nullptr && conforming->parts.node == lastNode.begin;
    const char* const begin = hasParts ? conforming->parts.begin : lastNode.begin;
    return (hasParts ? conforming->parts.bytes : 0) + static_cast<std::uint64_t>(end - begin);
}

void QeXmlReader::Engine::holdNode(const char* end) const {
    hold(bytesOfNode(end), input.limits().node, Limit::Node);
}

void QeXmlReader::Engine::limitNode() {
    const std::uint64_t bytes = bytesOfNode(input.position());
    if (conforming != nullptr) conforming->parts = {};
    hold(bytes, input.limits().node, Limit::Node);
}

// The bindings of an empty element are not in force any more, but were.
void QeXmlReader::Engine::limitTag() {
    const bool isEmpty = reader.lastNodeType == EmptyElement;
    const std::ptrdiff_t level = reader.depth + (isEmpty ? 1 : 0);  // below 0 behind end tags too many
    hold(static_cast<std::uint64_t>(std::max<std::ptrdiff_t>(level, 0)), input.limits().depth, Limit::Depth);
    if (lastTag.begin != nullptr) {
        const std::string_view name = tessit::nameInTag(lastTag.begin);
        hold(name.size(), input.limits().name, Limit::Name, name.data());
    }
    hold(reader.lastAttributes.size(), input.limits().attributes, Limit::Attributes);
    const bool bindsXml = conforming != nullptr && conforming->options.namespaces;
    hold(bindings.count(isEmpty) - (bindsXml ? 1 : 0), input.limits().bindings, Limit::Bindings);
    for (const QeXmlAttribute& attribute : std::as_const(reader.lastAttributes)) {
        const bool isLong = attribute.getValue().length() > input.limits().value;
        if (!isLong && lengthOf(attribute.getName()) <= input.limits().name) continue;
        const char* const tag = lastTag.begin;
        const char* const limit = lastTag.source == nullptr ? input.limit() : lastTag.source->end();
        const auto written =
            attributesOfLastTag().find(tag, limit, reader.expandAttributeReference, attribute.getName().asString());
        const char* const place = !written ? tag : isLong ? written->value.data() : written->name.data();
        throw Exceeded{isLong ? Limit::Value : Limit::Name, place};
    }
}

// A lenient reader takes any; in a conforming one it has the name of a start tag. Few tags are longer than a name may
// be.
void QeXmlReader::Engine::limitEndTag() const {
    if (conforming != nullptr || lastNode.begin == nullptr) return;
    if (static_cast<std::uint64_t>(input.position() - lastNode.begin) <= input.limits().name) return;
    const std::string_view name = tessit::nameInTag(lastNode.begin);
    hold(name.size(), input.limits().name, Limit::Name, name.data());
}

void QeXmlReader::Engine::limitLastNode() {
    if (opensElement(reader.lastNodeType))
        limitTag();
    else if (reader.lastNodeType == ElementEnd)
        limitEndTag();
    else
        hold(reader.lastContent.length(), input.limits().text, Limit::Text);
    limitNode();
}

// A place that was given stands in what is read now, which the node may have begun in front of.
void QeXmlReader::Engine::raiseExceeded(const Exceeded& exceeded) const {
    const char* const ofNode = lastNode.begin == nullptr ? input.position() : lastNode.begin;
    const char* const place = exceeded.place == nullptr ? ofNode : exceeded.place;
    if (conforming == nullptr) input.raiseLimit(exceeded.limit, place);
    const bool isOfNode = exceeded.place == nullptr && lastNode.source != nullptr;
    refuseLimit(isOfNode ? *lastNode.source : input.source(), place, input.limits(), exceeded.limit);
}

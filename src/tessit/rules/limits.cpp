#include <algorithm>
#include <iterator>
#include <string>

#include <tessit/errors/error_access.h>
#include <tessit/rules/limits.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

struct LimitText {
    Limit limit;
    std::uint64_t QeXmlLimits::*field;
    const char* name;
    const char* message;
};

constexpr LimitText Texts[] = {
    {Limit::Depth, &QeXmlLimits::depth, "depth", "elements within each other"},
    {Limit::Attributes, &QeXmlLimits::attributes, "attributes", "attributes in a tag"},
    {Limit::Bindings, &QeXmlLimits::bindings, "bindings", "bindings of prefixes by the elements that are open"},
    {Limit::Name, &QeXmlLimits::name, "name", "bytes in a name"},
    {Limit::Value, &QeXmlLimits::value, "value", "bytes in an attribute's value"},
    {Limit::Text, &QeXmlLimits::text, "text", "bytes in a text"},
    {Limit::Node, &QeXmlLimits::node, "node", "bytes in one piece of markup or text"},
    {Limit::Document, &QeXmlLimits::document, "document", "bytes in the document"},
    {Limit::EntityDepth, &QeXmlLimits::entityDepth, "entityDepth", "entities within each other"},
    {Limit::ReplacementText, &QeXmlLimits::replacementText, "replacementText",
     "bytes that entities and defaults bring"},
    {Limit::Declarations, &QeXmlLimits::declarations, "declarations", "declarations in the document type"},
};

consteval bool isInOrder() {
    std::size_t number = 0;
    for (const LimitText& row : Texts)
        if (row.limit != static_cast<Limit>(number++)) return false;
    return std::size(Texts) == static_cast<std::size_t>(Limit::Declarations) + 1;
}
static_assert(isInOrder());

const LimitText& textOf(Limit limit) noexcept {
    return Texts[static_cast<std::size_t>(limit)];
}

}  // namespace

std::uint64_t valueOf(const QeXmlLimits& limits, Limit limit) noexcept {
    return limits.*textOf(limit).field;
}

const char* nameOf(Limit limit) noexcept {
    return textOf(limit).name;
}

QeCString messageFor(const QeXmlLimits& limits, Limit limit) {
    QeCString message("more than ");
    message += std::to_string(valueOf(limits, limit));
    message += ' ';
    message += textOf(limit).message;
    return message;
}

bool areAny(const QeXmlLimits& limits) noexcept {
    return std::any_of(std::begin(Texts), std::end(Texts),
                       [&](const LimitText& row) { return limits.*row.field != QeXmlLimits::None; });
}

void refuseLimit(const Source& source, const char* place, const QeXmlLimits& limits, Limit limit) {
    const QeXmlPlace where = placeIn(source, place);
    throw QeXmlLimitError(
        ErrorAccess::make(
            messageFor(limits, limit), where,
            {.position = where.position, .note = noteOfReference(source), .excerpt = excerptIn(source, place)}),
        nameOf(limit), valueOf(limits, limit));
}

}  // namespace tessit

// Attributes and their values by the conforming rules: what the declared type and the references in them make of what
// is written. Of where a tag stands, only its source is known.

#include <algorithm>
#include <functional>
#include <utility>

#include <corvel/byte_scan.h>
#include <tessit/reader/conforming_tags.h>
#include <tessit/rules/name_chars.h>

namespace tessit {

namespace {

constexpr std::string_view Xml = "xml", Xmlns = "xmlns";
constexpr std::string_view XmlURI = "http://www.w3.org/XML/1998/namespace";
constexpr std::string_view XmlnsURI = "http://www.w3.org/2000/xmlns/";

// Of such a value, each line end counts as the blank that it becomes.
void holdAsWritten(const Source& source, std::string_view literal, std::uint64_t most) {
    if (literal.size() <= most) return;
    std::size_t length = literal.size();
    for (std::size_t at = 0; source.hasPlaces && (at = literal.find("\r\n", at)) != std::string_view::npos; at += 2)
        --length;
    hold(length, most, Limit::Value, literal.data());
}

}  // namespace

RawName readLongConformingName(Scanner& scanner, const Source& source, bool namespaces) {
    StrictScanner strict(source, scanner.position());
    const RawName name = RawName::of(strict.readName(), namespaces);
    hold(name.length, scanner.limits().name, Limit::Name, name.data);
    scanner.goBackTo(strict.position());
    if (name.localStart != 0) checkQName(source, name.whole());
    return name;
}

void ConformingTags::bindXml(Bindings& bindings) {
    bindings.declare(Xml, XmlURI);
}

const AttributeList* ConformingTags::declaredFor(std::string_view element) {
    ++tagNumber;
    return declared.hasAttributes() ? declared.get().attributesOf(element) : nullptr;
}

namespace {

// What stands between quotes.
struct Literal {
    std::string_view text;
    bool standsForItself;  // without references, or white space but blanks
    bool isCut;            // by a '<'
};

// Passes a value and its quotes.
Literal passLiteral(Scanner& scanner, const Source& source) {
    if (scanner.atEnd()) refuseEnd(source);
    const char quote = scanner.peek();
    if (quote != '"' && quote != '\'') refuse(source, scanner.position(), Rule::Attribute);
    const char* const start = scanner.position() + 1;
    const char* stop = corvel::findAny(start, scanner.limit(), quote, '<', '&', '\t', '\n', '\r');
    const bool standsForItself = stop != scanner.limit() && *stop == quote;
    if (!standsForItself) stop = corvel::findAny(stop, scanner.limit(), quote, '<');
    if (stop == scanner.limit()) refuseEnd(source);
    scanner.goBackTo(stop + 1);
    if (standsForItself) hold(static_cast<std::size_t>(stop - start), scanner.limits().value, Limit::Value, start);
    return {{start, static_cast<std::size_t>(stop - start)}, standsForItself, *stop == '<'};
}

}  // namespace

// Of a value that does not stand for itself. What is wrong in it comes before the '<' that cuts it.
void ConformingTags::append(QeCString& value, std::string_view literal, bool isCut, bool expands) {
    leftInValue.clear();
    isAsWritten = !expands;
    if (expands) {
        declared.get().appendValue(value, *source, literal, &leftInValue, mostInValue);
    } else {
        meaning.clear();
        declared.get().appendValue(meaning, *source, literal, nullptr);
        holdAsWritten(*source, literal, mostInValue);
        Declarations::appendAsWritten(value, *source, literal);
    }
    if (isCut) refuse(*source, literal.data() + literal.size(), Rule::LessThanInValue);
}

void ConformingTags::readValueInto(QeCString& value, Scanner& scanner, bool expands) {
    const Literal literal = passLiteral(scanner, *source);
    if (literal.standsForItself) {
        value.assign(literal.text);
        return;
    }
    value.clear();
    append(value, literal.text, literal.isCut, expands);
}

std::string_view ConformingTags::readValue(QeCString& scratch, Scanner& scanner, bool expands) {
    isAsWritten = false;
    const Literal literal = passLiteral(scanner, *source);
    if (literal.standsForItself) return literal.text;
    append(scratch, literal.text, literal.isCut, expands);
    return {};
}

void ConformingTags::apply(const DeclaredAttribute& attribute, QeCString& scratch, std::size_t from) {
    attribute.seenInTag = tagNumber;
    if (!attribute.isTokenized) return;
    Declarations::tokenize(scratch, from, &leftInValue);
    if (isAsWritten) Declarations::tokenize(meaning, 0, nullptr);
}

void ConformingTags::keepLeft(std::string_view name, std::size_t from) {
    for (const auto& [offset, length] : leftInValue)
        told.left.push_back({name, {offset - from, length}});
    leftInValue.clear();
}

void ConformingTags::keepNames() {
    if (told.left.empty() || !told.names.empty()) return;
    told.names.reserve(told.left.size());  // so that none of them moves
    for (Left& left : told.left)
        left.attribute = told.names.emplace_back(left.attribute);
}

// A tag can have many, and a program ask for each.
void ConformingTags::putInOrder() {
    if (std::exchange(told.areInOrder, true)) return;
    std::ranges::sort(told.defaulted);
    std::ranges::stable_sort(told.left, {}, &Left::attribute);
}

bool ConformingTags::isDefault(std::string_view name) {
    putInOrder();
    return std::binary_search(told.defaulted.begin(), told.defaulted.end(), name);
}

std::span<const ConformingTags::Left> ConformingTags::leftIn(std::string_view name) {
    putInOrder();
    const auto first = std::partition_point(told.left.begin(), told.left.end(),
                                            [name](const Left& left) { return left.attribute < name; });
    const auto last =
        std::partition_point(first, told.left.end(), [name](const Left& left) { return left.attribute == name; });
    return {first, last};
}

void ConformingTags::addDefaults(RawAttributes& attributes, const AttributeList& list, const char* tagEnd,
                                 bool expands) {
    for (const std::size_t number : list.defaults) {
        const DeclaredAttribute& attribute = list.begin()[static_cast<std::ptrdiff_t>(number)];
        if (attribute.seenInTag == tagNumber) continue;
        const DeclaredAttribute::Default& byDefault = *attribute.byDefault;
        const bool isAsItIs = expands || byDefault.asWritten.empty();
        const std::string_view name(attribute.name), value(isAsItIs ? byDefault.value : byDefault.asWritten);
        declared.get().charge(name.size() + value.size(), *source, tagEnd);  // an empty value is not for nothing
        attributes.push_back({RawName::of(name, namespaces), value.data(), value.size()});
        told.defaulted.push_back(name);
        if (!expands) continue;
        for (const LeftReference& reference : byDefault.left)
            told.left.push_back({name, reference});
    }
}

void ConformingTags::checkDeclaration(const RawName& name, std::string_view uri, const char* place) const {
    const bool isDefault = name.whole() == Xmlns;
    const std::string_view prefix = isDefault ? std::string_view() : name.local();
    if (prefix == Xmlns || (prefix == Xml && uri != XmlURI)) refuse(*source, place, Rule::ReservedPrefix, name.whole());
    if (!isDefault && uri.empty()) refuse(*source, place, Rule::EmptyPrefixDeclaration, prefix);
    if (uri == XmlnsURI || (uri == XmlURI && prefix != Xml))
        refuse(*source, place, Rule::ReservedNamespace, name.whole());
}

// A default stands in the declarations: its place is the tag's end.
const char* ConformingTags::placeOf(const RawAttribute& attribute, const char* tagEnd) const {
    const bool isDefault = std::any_of(told.defaulted.begin(), told.defaulted.end(),
                                       [&](std::string_view name) { return name.data() == attribute.name.data; });
    return isDefault ? tagEnd : attribute.name.data;
}

void ConformingTags::checkPrefixes(const RawName& element, std::span<const RawAttribute> attributes, Bindings& bindings,
                                   const char* tagEnd) const {
    if (!element.prefix().empty() && bindings.find(element.prefix(), source->end()) == nullptr)
        refuse(*source, element.data, Rule::UnboundPrefix, element.prefix());
    for (const RawAttribute& attribute : attributes) {
        const std::string_view prefix = attribute.name.prefix();
        if (prefix.empty() || prefix == Xmlns || bindings.find(prefix, source->end()) != nullptr) continue;
        refuse(*source, placeOf(attribute, tagEnd), Rule::UnboundPrefix, prefix);
    }
}

// Of names as written, and of those in one namespace, whatever their prefixes. Declarations are in a namespace of their
// own, which no prefix can be bound to.
void ConformingTags::checkDuplicates(std::span<RawAttribute* const> sameLocalName, Bindings& bindings,
                                     const char* tagEnd) {
    expanded.clear();
    for (const RawAttribute* attribute : sameLocalName) {
        const std::string_view prefix = attribute->name.prefix();
        const bool isInNone = prefix.empty() || prefix == Xmlns;
        const QeXmlNamespace* const binding = isInNone ? nullptr : bindings.find(prefix, source->end());
        const std::size_t hash =
            binding == nullptr ? attribute->name.length : std::hash<QeCString>()(binding->getURI());
        expanded.push_back({hash, binding, attribute});
    }
    std::ranges::sort(expanded, [](const Expanded& left, const Expanded& right) {
        return left.hash != right.hash ? left.hash < right.hash : left.attribute < right.attribute;
    });
    for (std::size_t i = 1; i < expanded.size(); ++i) {
        const Expanded &left = expanded[i - 1], &right = expanded[i];
        if (left.hash != right.hash || (left.binding == nullptr) != (right.binding == nullptr)) continue;
        if (left.binding == nullptr ? left.attribute->name.whole() == right.attribute->name.whole()
                                    : left.binding->getURI() == right.binding->getURI())
            refuse(*source, placeOf(*right.attribute, tagEnd), Rule::DuplicateAttribute, right.attribute->name.whole(),
                   noteIn(*source, placeOf(*left.attribute, tagEnd), "the first of the two stands here"));
    }
}

}  // namespace tessit

#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <tessit/reader/bindings.h>
#include <tessit/reader/declared.h>
#include <tessit/reader/name_scan.h>
#include <tessit/reader/raw_attribute.h>
#include <tessit/reader/scanner.h>
#include <tessit/rules/rules.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

/// What the conforming rules say of the attributes of a tag: how a value is to be read, which
/// ones are declared, what namespaces ask for, and that none stands twice. Works for the tag
/// slots, which know where attributes go.
class ConformingTags {
public:
    ConformingTags(Declared& ofDocument, bool readsNamespaces, const QeXmlLimits& limits)
        : declared(ofDocument), namespaces(readsNamespaces), mostInValue(limits.value) {}

    /// Binds the prefix that needs no declaration.
    static void bindXml(Bindings& bindings);

    bool readsNamespaces() const noexcept { return namespaces; }

    /// Whether attributes are declared for any element.
    bool areDeclared() const noexcept { return declared.hasAttributes(); }

    /// Begins with a document.
    void begin() {
        source = nullptr;
        told = {};
    }

    /// Begins with a tag of that source, whose attributes are not declared.
    void openTag(const Source& text) noexcept {
        source = &text;
        told.defaulted.clear();
        told.left.clear();
        if (!told.names.empty()) told.names.clear();
        told.areInOrder = false;
    }

    /// Takes back what was told of the tag, and counted since: it is read anew.
    std::uint64_t countedSoFar() const noexcept { return declared.countedSoFar(); }
    void takeBackTo(std::uint64_t counted) noexcept {
        told.left.clear();
        declared.countAgainFrom(counted);
    }

    /// What the tag stands in.
    const Source& getSource() const noexcept { return *source; }

    /// What is declared for the element of the tag, or null.
    const AttributeList* declaredFor(std::string_view element);

    /// Reads a value with its quotes into `value`, in front of which the scanner stands; `expands` says whether
    /// references are replaced, or left as written once they were checked.
    void readValueInto(QeCString& value, Scanner& scanner, bool expands);

    /// The same for one that goes behind the text of `scratch`, unless it stands for itself: then a view of it.
    std::string_view readValue(QeCString& scratch, Scanner& scanner, bool expands);

    /// What the value means that `readValue` read last and that came out as `value`: another text where references in
    /// it were left as written.
    std::string_view meaningOf(std::string_view value) const noexcept {
        return isAsWritten ? std::string_view(meaning) : value;
    }

    /// What a declared attribute makes of its value, which is all of `scratch` from a place on; notes that it stands
    /// in the tag.
    void apply(const DeclaredAttribute& attribute, QeCString& scratch, std::size_t from);

    /// Keeps the references that were left in the last value, which began at that place, as those of this attribute.
    void keepLeft(std::string_view name, std::size_t from);

    /// Adds the declared defaults of what does not stand in the tag that ends here.
    void addDefaults(RawAttributes& attributes, const AttributeList& list, const char* tagEnd, bool expands);

    /// Refuses a declaration of a namespace that may not be.
    void checkDeclaration(const RawName& name, std::string_view uri, const char* place) const;

    /// Refuses prefixes that are not bound, the element's first.
    void checkPrefixes(const RawName& element, std::span<const RawAttribute> attributes, Bindings& bindings,
                       const char* tagEnd) const;

    /// What has to be said of attributes with one local name, which stand together in the set's order.
    void checkDuplicates(std::span<RawAttribute* const> sameLocalName, Bindings& bindings, const char* tagEnd);

    /// Whether an attribute of the last tag, of that name as written, has its default value.
    bool isDefault(std::string_view name);

    struct Left {
        std::string_view attribute;  // its name as written, in a text that stays
        LeftReference reference;
    };

    /// The references that were left in that attribute of the last tag, in their order.
    std::span<const Left> leftIn(std::string_view name);

    /// For when the document's bytes are about to go.
    void keepNames();

    /// What is told of the attributes of a tag besides names and values.
    struct Told {
        std::vector<std::string_view> defaulted;
        std::vector<Left> left;
        bool areInOrder = false;       // both of them, by the names of attributes
        std::vector<QeCString> names;  // what was viewed in a text that has gone
    };

    /// Takes what is told of the last tag out, to be put back once others were read.
    Told takeTold() {
        keepNames();
        return std::exchange(told, {});
    }
    void putBack(Told&& ofTag) noexcept { told = std::move(ofTag); }

private:
    // An attribute by what makes it the same as another.
    struct Expanded {
        std::size_t hash;  // of the namespace
        const QeXmlNamespace* binding;
        const RawAttribute* attribute;
    };

    void append(QeCString& value, std::string_view literal, bool isCut, bool expands);
    const char* placeOf(const RawAttribute& attribute, const char* tagEnd) const;
    void putInOrder();

    Declared& declared;
    const Source* source = nullptr;
    bool namespaces;
    std::uint64_t mostInValue;
    std::uint64_t tagNumber = 0;
    Told told;
    std::vector<LeftReference> leftInValue;  // working storage, as what follows
    std::vector<Expanded> expanded;
    bool isAsWritten = false;  // whether the last value is to stay so
    QeCString meaning;         // of that value: what is checked, and what prefixes are bound to
};

/// Passes a name of a tag or an attribute. Most are whole in a block.
RawName readLongConformingName(Scanner& scanner, const Source& source, bool namespaces);

inline RawName readConformingName(Scanner& scanner, const Source& source, bool namespaces) {
    if (scanner.limit() - scanner.position() >= NameBlock::Size) {
        const NameBlock block(scanner.position());
        if (block.isWhole()) {
            const RawName name{scanner.position(), block.length(), namespaces ? block.localStart() : 0};
            scanner.skip(block.length());
            if (name.localStart != 0) checkQName(source, name.whole());
            return name;
        }
    }
    return scanner.apart(
        [&source, namespaces](Scanner& other) { return readLongConformingName(other, source, namespaces); });
}

}  // namespace tessit

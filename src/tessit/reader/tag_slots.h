#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <corvel/byte_scan.h>
#include <corvel/slot_array.h>
#include <tessit/model/model_access.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/reader/bindings.h>
#include <tessit/reader/raw_attribute.h>
#include <tessit/reader/raw_name.h>
#include <tessit/reader/scanner.h>

namespace tessit {

struct AttributeList;
class ConformingTags;

/// Reads the attributes of a tag, and makes its name and them the name and the attributes
/// that the reader delivers; declares what the tag declares. Knows the bindings in force
/// and what earlier tags left in the slots; not which construct comes next, nor what is open.
///
/// What earlier tags left is used again: a namespace that is in its place is not written
/// anew, and where a tag looks like an earlier one of its name, nor are the names of its
/// attributes.
class TagSlots {
public:
    /// Works on the reader's members. Bytes up to `bufferEnd` can be read.
    TagSlots(QeXmlName& lastName, QeXmlAttributeSet& lastAttributes, const char* const& bufferEnd,
             Bindings& bindingsInForce);

    /// @name The element's name
    /// @{

    /// Makes the last name that one, resolved. Whether its prefix, if it has one, is bound.
    bool writeElementName(const RawName& name);

    /// The last name as it stands in the document; empty when that is not known.
    std::string_view elementAsWritten() const noexcept { return nameWritten.raw; }

    /// Whether the last name means the same if it is written again here.
    bool meansTheSameHere() const noexcept { return nameWritten.version == bindings.version(); }

    /// @}
    /// @name The attributes
    /// @{

    void writeNoAttributes() noexcept { attributes.clear(); }

    /// Reads the attributes of a tag, up to its '>' or '/'. The input has the cursor.
    void readAttributes(const RawName& element, Input& input, bool expands);

    /// The same by the conforming rules.
    void readAttributes(const RawName& element, Input& input, bool expands, ConformingTags& rules);

    /// @}

    /// For when the document's bytes are about to go.
    void forgetDocument() noexcept;

    /// For when the attributes in the slots are no longer those that were written there.
    void forgetSlots() noexcept {
        if (shape != nullptr) shape->forget();
    }

private:
    // What a name in the slots was written from. Empty raw bytes: not known.
    struct NameWritten {
        std::string_view raw;
        const QeXmlNamespace* binding = nullptr;
        std::uint64_t version = 0;
    };

    // An attribute in the order of the set; `key` is the beginning of its local name.
    struct Ordered {
        std::uint64_t key;
        RawAttribute* attribute;
    };

    // The attributes of an earlier tag as they were written, and the slots that they
    // went to. Where the next tag of that name has the same ones in the same order,
    // as most have, names are only compared, and values go to the slots at once.
    //
    // Tags that turn out different have the next ones skip the comparison: one, then three,
    // seven and so on, until one is alike again.
    struct TagShape {
        // Two things by number, in one array, which is one allocation: `entries[i]` has the
        // attribute that stands in place i of the tag, and what was written to slot i.
        struct Entry {
            std::string_view name;  // no declaration
            std::size_t slot;       // where the attribute went
            NameWritten written;
        };
        std::vector<Entry> entries;
        std::size_t expectedCount = 0;       // so many attributes are expected, if they are in the slots
        QeSlotArray<QeXmlAttribute> parked;  // the slots, unless the delivered set has them
        std::uint64_t version = 0;           // of the bindings, when the slots were written
        std::uint8_t tagsToSkip = 0;         // of so many tags, none is expected to be like this one
        std::uint8_t skippedAfterMiss = 0;   // grows with each tag that turned out different
        bool isInSlots = false;              // whether they have the names that are expected

        std::span<const Entry> expected() const noexcept { return {entries.data(), expectedCount}; }

        void forget() noexcept {
            entries.clear();
            isInSlots = false;
        }
    };

    TagShape* shapeOf(const RawName& element);
    void useShapeOf(const RawName& element);
    bool readKnown(Scanner& scanner, bool expands);
    void readAny(Input& input, bool expands);

    // Whether a tag is compared with the shape of its name.
    bool mayBeKnown() noexcept {
        if (shape->tagsToSkip == 0) return shape->isInSlots && shape->version == bindings.version();
        --shape->tagsToSkip;
        return false;
    }

    void noteMiss() noexcept;
    void readAttribute(Scanner& scanner, bool expands);
    void declare(const RawAttribute& attribute);
    std::string_view valueOf(const RawAttribute& attribute) const noexcept;
    void writeAttributes();
    void writeInOrder(std::span<const Ordered> ordered, bool mayLearn);
    void findValues() noexcept;
    std::span<Ordered> putInOrder(Ordered* few);
    std::span<Ordered> leaveOutRepeated(std::span<Ordered> ordered);
    void openSlots(std::size_t count);
    void takeSlots(std::size_t count);
    void writeAttribute(std::size_t slot, const RawAttribute& attribute);
    void learnShape(std::span<const Ordered> ordered);

    // conforming_slots.cpp
    bool readKnown(Scanner& scanner, bool expands, ConformingTags& rules);
    void readAny(const RawName& element, Input& input, bool expands, ConformingTags& rules);
    void readAttribute(Scanner& scanner, bool expands, ConformingTags& rules, const AttributeList* list);
    bool readOtherValueInto(QeCString& value, Scanner& scanner, bool expands, ConformingTags& rules);
    void addDefaults(const AttributeList& list, ConformingTags& rules, const char* tagEnd, bool expands);
    void writeChecked(const RawName& element, ConformingTags& rules, const char* tagEnd, bool mayLearn);
    void declare(const RawName& name, std::string_view uri, const ConformingTags& rules, const char* place);
    void checkDuplicates(std::span<const Ordered> ordered, ConformingTags& rules, const char* tagEnd);

    bool writeResolved(const RawName& elementName);
    void writeName(QeXmlName& name, NameWritten& written, const RawName& raw, const QeXmlNamespace* binding);
    void writeOtherName(QeXmlName& name, NameWritten& written, const RawName& raw, const QeXmlNamespace* binding);
    void writeLocalName(QeXmlName& name, const RawName& raw);

    static constexpr std::size_t Few = RawAttributes::Few;

    QeXmlName& elementName;
    QeXmlAttributeSet& attributes;
    const char* const& readableEnd;
    Bindings& bindings;
    NameWritten nameWritten;

    // Working storage of a tag, kept between tags so that it is allocated once.
    RawAttributes rawAttributes;
    std::vector<Ordered> manyOrdered;
    QeCString valueScratch;

    // What the tags that are read are expected to hold: eight places, by a hash of the
    // element's name, and one for the first tag of each place. Names that share a place
    // cost comparisons, no more. `shape` is that of the last tag with attributes.
    static constexpr unsigned ShapeBits = 3;
    TagShape firstShape;           // of tags that are the first of their place
    std::uint32_t shapesSeen = 0;  // a bit each
    std::vector<TagShape> shapes;
    TagShape* shape = nullptr;
};

}  // namespace tessit

// The comparison of two documents: two readers side by side, one node at a time.

#include <algorithm>
#include <functional>
#include <span>
#include <string_view>
#include <utility>

#include <tessit/reader/xml_reader.h>
#include <tessit/utils/long_uris.h>
#include <tessit/utils/xml_utils.h>

namespace {

template <typename SameName>
bool sameAttributes(const QeXmlAttributeSet& left, const QeXmlAttributeSet& right, SameName sameName) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](const QeXmlAttribute& mine, const QeXmlAttribute& theirs) {
                          return sameName(mine.getName(), theirs.getName()) && mine.getValue() == theirs.getValue();
                      });
}

std::span<const unsigned char> bytesOf(const QeCString& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.length()};
}

bool standsOn(const QeXmlReader& reader, QeXmlReader::NodeType type) {
    return reader.getLastNodeType() == type;
}

bool standsOnBlankText(const QeXmlReader& reader) {
    const std::string_view text = reader.getLastContent();
    return standsOn(reader, QeXmlReader::Content) && std::all_of(text.begin(), text.end(), QeXmlUtils::isWhiteSpace);
}

}  // namespace

bool QeXmlUtils::compareAttributeSet(const QeXmlAttributeSet& left, const QeXmlAttributeSet& right) noexcept {
    return sameAttributes(left, right, std::equal_to<QeXmlName>());
}

// Passes over blank text that the other document lacks. False where `reader` stands on anything else.
bool QeXmlUtils::verifyEmptyData(QeXmlReader& reader, QeXmlReader& /*other*/) {
    if (!standsOnBlankText(reader)) return false;
    reader.readNextNode();
    return true;
}

// Passes over an element that the other document has as an empty-element tag.
// False where `reader` stands on anything but a start tag whose end follows, with
// nothing but blank text between.
bool QeXmlUtils::verifyEmptyTag(QeXmlReader& reader, QeXmlReader& /*other*/) {
    if (!standsOn(reader, QeXmlReader::ElementStart)) return false;
    reader.readNextNode();
    if (standsOnBlankText(reader)) reader.readNextNode();
    return standsOn(reader, QeXmlReader::ElementEnd);
}

class QeXmlUtils::Comparison {
public:
    Comparison(QeXmlReader& left, QeXmlReader& right) noexcept : a(left), b(right) {}

    bool run() {
        while (!a.eof()) {
            if (b.eof()) return false;
            a.readNextNode();
            b.readNextNode();
            if (!nodesMatch()) return false;
        }
        return b.eof();
    }

private:
    // The last tags that matched. Text is compared after a start only.
    enum class Tags { None, Start, End };

    bool typesMatch() const { return a.getLastNodeType() == b.getLastNodeType(); }

    // Blank text in front of an empty-element tag gives way first: the tag behind
    // it may be the counterpart of the other one.
    bool nodesMatch() {
        if (standsOn(a, QeXmlReader::EmptyElement) && standsOnBlankText(b)) verifyEmptyData(b, a);
        if (standsOn(b, QeXmlReader::EmptyElement) && standsOnBlankText(a)) verifyEmptyData(a, b);
        if (typesMatch()) return sameNodes();
        if (standsOn(a, QeXmlReader::EmptyElement)) return verifyEmptyTag(b, a);
        if (standsOn(b, QeXmlReader::EmptyElement)) return verifyEmptyTag(a, b);
        const bool passed = standsOn(a, QeXmlReader::Content) ? verifyEmptyData(a, b) : verifyEmptyData(b, a);
        return passed && typesMatch() && sameNodes();
    }

    // As `==`, but at the cost of a long URI only once for all names that have it.
    bool sameName(const QeXmlName& left, const QeXmlName& right) {
        return left.getLocalName() == right.getLocalName() &&
               longUris.areEqual(left.getNamespace().getURI(), right.getNamespace().getURI());
    }

    bool sameTags() {
        return sameName(a.getLastName(), b.getLastName()) &&
               sameAttributes(a.getLastAttributes(), b.getLastAttributes(),
                              [this](const QeXmlName& left, const QeXmlName& right) { return sameName(left, right); });
    }

    bool sameNodes() {
        switch (a.getLastNodeType()) {
            case QeXmlReader::ElementStart:
            case QeXmlReader::EmptyElement:
                lastTags = Tags::Start;
                return sameTags();
            case QeXmlReader::ElementEnd:
                lastTags = Tags::End;
                return sameName(a.getLastName(), b.getLastName());
            case QeXmlReader::Content:
                return lastTags != Tags::Start || a.getLastContent() == b.getLastContent();
            default:
                return true;  // nothing was read yet; lenient readers deliver nothing else
        }
    }

    QeXmlReader& a;
    QeXmlReader& b;
    tessit::LongUris longUris;
    Tags lastTags = Tags::None;
};

// Both readers see a document in place: nothing of it is copied but the node that is being compared.
bool QeXmlUtils::compareXml(const QeCString& left, const QeCString& right) {
    QeXmlReader a(bytesOf(left)), b(bytesOf(right));
    return Comparison(a, b).run();
}

bool QeXmlUtils::compareXml(QeXmlInput left, QeXmlInput right) {
    QeXmlReader a(std::move(left)), b(std::move(right));
    return Comparison(a, b).run();
}

bool QeXmlUtils::compareXml(QeXmlReader& left, QeXmlReader& right) {
    return Comparison(left, right).run();
}

// What writing costs as elements grow wide and deep, and texts long: four times the
// input takes about four times the time.

#include <vector>

#include <tessit/reader/xml_reader.h>
#include <tessit/writer/xml_string_writer.h>

#include "cost/growth.h"

using namespace tessit::test;

namespace {

QeCString text(const std::string& from) {
    return QeCString(std::string_view(from));
}

// What is written: attributes for one tag, and a text.
struct Input {
    std::size_t count = 0;
    QeXmlAttributeSet attributes = {};
    QeCString content = {};
};

QeCString numbered(const char* front, std::size_t number) {
    return front + text(std::to_string(1'000'000 + number));
}

// Ascending, since adding in another order moves the attributes behind.
Input eachToBeDeclared(std::size_t count) {
    Input input{count};
    for (std::size_t i = 0; i < count; ++i)
        input.attributes.add(QeXmlName(numbered("a", i), QeXmlNamespace(numbered("p", i), numbered("u", i))), "");
    return input;
}

// Attributes that the reader orders by their prefixes, whose URIs are in the reverse order.
Input outOfOrder(std::size_t count) {
    QeCString document("<e xmlns:q='v' xmlns:r='u'");
    for (std::size_t i = 0; i < count; ++i)
        document += numbered(" q:x", i) + "='' " + numbered("r:x", i) + "='' " + numbered("y", i) + "='z" +
                    text(std::to_string(i)) + "'";
    document += "/>";
    QeXmlReader reader(document);
    return {count, reader.readElementStart("e")};
}

// One part over and over, a hundred times for each of the count.
template <Literal part>
Input runOf(std::size_t count) {
    return {count, {}, text(repeat(part.bytes, 100 * count))};
}

void writeTag(const Input& input) {
    QeXmlStringWriter writer;
    writer.writeElementStart(QeXmlName("e", QeXmlNamespace("p", "u")), input.attributes, true);
}

void writeText(const Input& input) {
    QeXmlStringWriter writer;
    writer.write(input.content, true);
    writer.writeAttribute(QeCString("a"), input.content, true);
    writer.writeSimpleElement(QeCString("e"), input.content, "", false);
}

void writeByteByByte(const Input& input) {
    QeXmlStringWriter writer;
    for (const char byte : input.content) {
        writer.writeToSink(byte);
        writer.removeLastCharFromSink('-');
    }
}

// Binds a prefix of its own at each level, and one more by hand.
void writeDepth(const Input& input) {
    QeXmlStringWriter writer;
    for (std::size_t i = 0; i < input.count; ++i) {
        QeXmlAttributeSet set;
        set.add(QeXmlName("a"), numbered("v", i));
        writer.writeElementStart(QeXmlName("e", QeXmlNamespace(numbered("p", i), numbered("u", i))), set, false);
        writer.addNamespace(QeXmlNamespace(numbered("q", i), numbered("w", i)));
    }
    for (std::size_t i = 0; i < input.count; ++i)
        writer.writeElementEnd(QeXmlName("e"));
}

void writeSiblings(const Input& input) {
    QeXmlStringWriter writer;
    for (std::size_t i = 0; i < input.count; ++i)
        writer.addNamespace(QeXmlNamespace(numbered("p", i), numbered("u", i)));
    for (std::size_t i = 0; i < input.count; ++i) {
        writer.writeSimpleElement(QeXmlName("e", QeXmlNamespace(numbered("p", i), numbered("u", i))), "", "t", true);
        ASSERT_GT(writer.getLength(), i);
    }
}

const struct {
    const char* name;
    Input (*input)(std::size_t count);
    void (*write)(const Input& input);
} Cases[] = {
    {"AttributesThatAreEachToBeDeclared", eachToBeDeclared, writeTag},
    {"SetsOutOfOrder", outOfOrder, writeTag},
    {"Depth", runOf<"">, writeDepth},
    {"Siblings", runOf<"">, writeSiblings},
    {"PlainText", runOf<"x">, writeText},
    {"Quotes", runOf<"'">, writeText},
    {"Ampersands", runOf<"&">, writeText},
    {"References", runOf<"&amp;">, writeText},
    {"ByteByByte", runOf<"-x">, writeByteByByte},
};

}  // namespace

TEST(Cost, OfWritingGrowsWithTheInput) {
    for (const auto& [name, input, write] : Cases)
        expectLinearGrowth(name, 2'000, input, write);
}

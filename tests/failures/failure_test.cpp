// Memory runs out at any allocation, or a class of the application throws at any call: the exception arrives, nothing
// leaks, and what is left is as promised. And what takes no memory, or little.

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <utility>

#include <corvel/value_error.h>
#include <tessit/model/xml_element_imp.h>
#include <tessit/sax/xml_sax_parser.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>
#include <tessit/writer/xml_string_writer.h>

#include "support/documents.h"
#include "support/failing_allocator.h"
#include "support/messages.h"

using namespace tessit::test;

namespace {

// Past what a string holds in place; and so long that names share it.
const QeCString Long(std::string_view(std::string(100, 'l'))), Shared(std::string_view(std::string(300, 's')));

// --- Values.

QeXmlNamespace binding(int number) {
    const std::string text = std::to_string(1000 + number);
    return {"a prefix that takes a block of its own, " + QeCString(text), (number % 2 == 0 ? Long : Shared) + text};
}

QeXmlAttributeSet filledSet(int count) {
    QeXmlAttributeSet set;
    for (int i = count; i-- > 0;)
        set.add(QeXmlName(binding(i).getPrefix(), binding(i)), binding(i).getURI());
    return set;
}

// Two bindings to a scope.
QeXmlNamespaceStack filledStack(int count) {
    QeXmlNamespaceStack stack;
    for (int i = 0; i < count; ++i) {
        if (i % 2 == 0) stack.pushScope();
        stack.addNamespace(binding(i));
    }
    return stack;
}

void expectHolds(const QeXmlNamespaceStack& stack, int count) {
    for (int i = 0; i <= count; ++i) {
        const QeXmlNamespace& bound = i < count ? binding(i) : QeXmlNamespace();
        EXPECT_EQ(stack.getURIForPrefix(binding(i).getPrefix()), bound.getURI()) << i;
        EXPECT_EQ(stack.getPrefixForURI(binding(i).getURI()), bound.getPrefix()) << i;
    }
}

// --- Documents.

// Declarations of twice `count` prefixes, more than are looked up one by one when there are twenty.
std::string declarations(std::size_t count) {
    return numbered(std::string(" xmlns:prefix#='") + Long.data() + "#' xmlns:other#='" + Shared.data() + "#'", count);
}

// All that allocates: conversions, references, many bindings, a tag that is looked at and one that is written anew,
// and an element whose text is converted half-way, where that may be.
std::string documentWith(const std::string& text, bool declaresInside = true) {
    const std::string l = Long.data();
    const std::string inside =
        declaresInside ? "<?xml version='1.0' encoding='US-ASCII'?><?xml version='1.0' encoding='ISO-8859-1'?>" : "";
    return "<?xml version='1.0' encoding='latin1' standalone='yes'?><r" + declarations(10) + ">" + l + "&lt;" + text +
           "<prefix3:a" + declarations(9) + " x='" + l + "&gt;' " + l + "='1' y=''/>" + "<b y='2' x='" + l + "'>" + l +
           "<c/></b><!-- --><d>\xE9" + l + inside + l + "\xE9</d></r>";
}

void readEverything(QeXmlReader& reader) {
    reader.readElementStart("r");
    reader.addNamespace(QeXmlNamespace(Long, Long));
    EXPECT_TRUE(reader.isElementNext("prefix3:a"));
    reader.readElementStart("prefix3:a");
    reader.readElementEnd("prefix3:a");
    EXPECT_TRUE(reader.isElementNext("b"));
    reader.readElement("b");
    EXPECT_FALSE(reader.readElement(QeXmlReader::NullName).empty());
    EXPECT_NE(messageOf<QeXmlParseError>([&] { reader.readElementEnd(Long); }), "");
}

// Or to the first error.
void readToTheEnd(QeXmlReader& reader) {
    try {
        while (!reader.eof())
            reader.readNextNode();
    } catch (const QeXmlParseError&) {
    }
}

// What is left after a failure can be looked at, and read on, whatever it gives.
void readOn(QeXmlReader& reader) {
    describeNode(reader);
    for (const QeXmlAttribute& attribute : reader.getLastAttributes())
        EXPECT_TRUE(reader.getLastAttributes().contains(attribute)) << describe(attribute.getName());
    readToTheEnd(reader);
}

// Counts the events, at each of which it can fail.
int countEvents(QeXmlSAXParser& parser, const QeCString& text) {
    struct Counter final : QeXmlContentHandler {
        void prolog(const QeXmlProlog&) override { count(); }
        void elementStart(const QeXmlName&, const QeXmlAttributeSet&) override { count(); }
        void elementEnd(const QeXmlName&) override { count(); }
        void content(const QeCString&) override { count(); }
        void count() { allocator::call(), ++events; }
        int events = 0;
    } counter;
    parser.setContentHandler(&counter);
    parser.parse(text, "");
    return counter.events;
}

// Or to the first error.
void parseToTheEnd(const QeCString& text) {
    QeXmlSAXParser parser;
    try {
        countEvents(parser, text);
    } catch (const QeXmlParseError&) {
    }
}

// --- Output.

const QeXmlName Root("root-element-with-a-name-of-more-than-23-bytes", binding(1));
const QeXmlName Item("item", QeXmlNamespace("", Shared));
const QeCString Escaped = Shared + "<";

QeXmlAttributeSet someAttributes() {
    QeXmlAttributeSet set;
    set.add(QeXmlName("lang", binding(2)), Long + "'");
    set.add(QeXmlName("quotes"), QeCString(std::string_view(std::string(150, '"'))));
    for (int i = 0; i < 30; ++i)
        set.add(QeXmlName("name" + QeCString(std::to_string(i))), "value" + QeCString(std::to_string(i)));
    set.begin();  // from now on it could be out of order
    return set;
}

void writeOrdinary(QeXmlWriter& writer, const QeXmlAttributeSet& attributes) {
    for (const QeXmlName* name : {&Root, &Item, &Item})
        writer.writeElementStart(*name, attributes, false);
    writer.incrementIndent();
    for (int i = 0; i < 10; ++i) {
        writer.writeNewLine();
        writer.writeElementStart(Item, attributes, true);
        writer.write("a text & <its> escapes", true);
        writer.write(Long, true);
        writer.writeSimpleElement(Item, Escaped, "t", true);
    }
    writer.decrementIndent();
    for (const QeXmlName* name : {&Item, &Item, &Root})
        writer.writeElementEnd(*name);
}

// The slots of a string writer, replaced by ones that can fail before they do anything.
class Failing final : public QeXmlStringWriter {
public:
    void writeToSink(char byte) override { allocator::call(), QeXmlStringWriter::writeToSink(byte); }
    void writeToSink(const char* bytes, unsigned length) override {
        allocator::call(), QeXmlStringWriter::writeToSink(bytes, length);
    }
    void writeToSink(const QeCString& text) override { allocator::call(), QeXmlStringWriter::writeToSink(text); }
    void flush() override { allocator::call(), QeXmlStringWriter::flush(); }
};

// What went to the string stays, and nothing else does.
template <typename Writer>
void writeText(Attempt& attempt) {
    static const QeXmlAttributeSet attributes = someAttributes();
    Writer undisturbed, writer;
    writeOrdinary(undisturbed, attributes);
    const bool done = attempt([&] { writeOrdinary(writer, attributes); });
    const QeCString written = writer.getString(), expected = undisturbed.getString();
    EXPECT_TRUE(std::string_view(expected).starts_with(written));
    EXPECT_EQ(written == expected, done);
    EXPECT_EQ(writer.getLength(), written.length());
}

// Keeps nothing: in its first form by the slot for bytes, in the second by that for strings.
template <bool takesBytes>
struct Discarding final : QeXmlWriter {
    void writeToSink(char) override {}
    void writeToSink(const char* bytes, unsigned length) override {
        if (!takesBytes) QeXmlWriter::writeToSink(bytes, length);
    }
    void writeToSink(const QeCString&) override {}
    void flush() override {}
};

// --- What may fail, and what must hold then.

const struct {
    const char* name;
    void (*run)(Attempt& attempt);
} Failures[] = {
    {"a string stays as it was",
     [](Attempt& attempt) {
         using Change = void (*)(QeCString & text);
         for (const Change change : {Change([](QeCString& text) { text.assign(Long.data(), Long.length()); }),
                                     Change([](QeCString& text) { text.append(Long.data(), Long.length()); }),
                                     Change([](QeCString& text) { text = text + Long.data(); }),
                                     Change([](QeCString& text) { text.reserve(200); })})
             for (const char* target : {"", "in place", "a text of 24 bytes......", "a text that has had a block"}) {
                 QeCString text(target), expected(target);
                 change(expected);
                 const bool done = attempt([&] { change(text); });
                 EXPECT_EQ(text, done ? std::string_view(expected) : target);
             }
     }},
    {"an attribute set stays as it was",
     [](Attempt& attempt) {
         for (const int count : {0, 1, 4, 5, 20}) {  // with and without a spare slot
             QeXmlAttributeSet set = filledSet(count), copy = filledSet(2);
             const std::string before = describe(set), copyBefore = describe(copy);
             const bool wasAdded = attempt([&] { set.add(QeXmlName(Long), Long); });
             EXPECT_TRUE(wasAdded || describe(set) == before);
             const bool wasCopied = attempt([&] { copy = set; });
             EXPECT_EQ(describe(copy), wasCopied ? describe(set) : copyBefore);
         }
     }},
    {"a namespace stack stays as it was",
     [](Attempt& attempt) {
         for (const int count : {0, 1, 2, 3, 15, 16, 17, 40}) {  // an index is made for more than 16
             QeXmlNamespaceStack stack = filledStack(count);
             if (count % 2 == 0) stack.pushScope();
             const auto *const begin = stack.namespacesBegin(), *const end = stack.namespacesEnd();
             const QeXmlNamespace added = binding(count);
             const bool wasAdded = attempt([&] { stack.addNamespace(added); });
             if (!wasAdded) {
                 EXPECT_TRUE(stack.namespacesBegin() == begin && stack.namespacesEnd() == end);
                 expectHolds(stack, count);
                 stack.addNamespace(QeXmlNamespace("another", "in its place"));
             }
             expectHolds(stack, count + (wasAdded ? 1 : 0));
             struct Context {
                 QeXmlNamespaceStack stack;
             } copy{filledStack(20)};  // whose assignment is a default
             const Context from{stack};
             const bool wasCopied = attempt([&] { copy = from; });
             expectHolds(copy.stack, wasCopied ? count + (wasAdded ? 1 : 0) : 20);
         }
     }},
    {"an element stays as it was, though an override of its end, which a removal asks, throws",
     [](Attempt& attempt) {
         struct Element final : QeXmlElementImp {
             using QeXmlElementImp::attributesEnd;
             QeXmlAttribute* attributesEnd() override { return allocator::call(), QeXmlElementImp::attributesEnd(); }
         } element;
         element.addAttribute(QeXmlName("a"), "1");
         const bool done = attempt([&] { element.removeAttribute(element.attributesBegin()); });
         EXPECT_EQ(element.attributeCount(), done ? 0u : 1u);
     }},
    {"a reader can be looked at and read on",
     [](Attempt& attempt) {
         for (const Source source : Sources) {
             const Document document(documentWith(Long.data(), !isInPieces(source)));
             std::unique_ptr<QeXmlReader> reader;
             attempt([&] {
                 reader = document.open(source);
                 readEverything(*reader);
             });
             if (reader != nullptr) readOn(*reader);
         }
     }},
    {"a window that moves can be read on, unless its callback failed, which comes again",
     [](Attempt& attempt) {
         const std::string grows = "<a>" + std::string(40'000, 'x') + "<!--" + std::string(70'000, 'x') + "--><b/></a>";
         const std::string moves = "<a>" + repeat("<b/>", 20'000) + "</a>";
         const auto inDepth = [&](std::size_t depth) { return repeat("<a>", depth) + moves + repeat("</a>", depth); };
         // the last of these levels is the first one that there is no room for
         const std::string documents[] = {grows, moves, encode(moves, Encoding::Utf16LE), inDepth(787), inDepth(1196)};
         for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming})
             for (const std::string& document : documents) {
                 std::string left = "<a><b/></a>";
                 bool isBroken = false;
                 const QeXmlInput::Callback fill = [&](std::span<char> room) {
                     isBroken = true, allocator::call(), isBroken = false;
                     const std::size_t count = left.copy(room.data(), std::min<std::size_t>(room.size(), 9'000));
                     left.erase(0, count);
                     return count;
                 };
                 QeXmlReader reader(QeXmlInput::callback(fill), {.rules = rules});
                 readToTheEnd(reader);
                 QeXmlInput input = QeXmlInput::callback(fill);
                 left = document;
                 bool isReset = false;
                 const bool done = attempt([&] {
                     reader.reset(std::move(input)), isReset = true;
                     readToTheEnd(reader);
                 });
                 EXPECT_TRUE(!done || reader.eof());
                 EXPECT_FALSE((isBroken || !isReset) && reader.eof());
                 EXPECT_THROW(reader.err("found later"), QeXmlParseError);
                 reader.getLastSpan(), reader.getOpenElements();
                 try {
                     if (isBroken || !isReset) reader.readNextNode();
                     EXPECT_FALSE(isBroken || !isReset);
                     readOn(reader);
                 } catch (const allocator::CallFailed&) {
                 } catch (const std::bad_alloc&) {  // no room for more of the document
                 }
             }
     }},
    {"an element that was not noted is not taken for one that was open at its level, and has left the window",
     [](Attempt& attempt) {
         constexpr int Children = 60'000;
         static const Document document("<r><a>x</a>" + repeat("<b/>t\n", Children) + "<" + repeat("n", 5000) + ">y");
         for (const bool matchesTags : {true, false}) {
             QeXmlReader reader(document.inPieces(0, 4096));
             reader.setMatchTags(matchesTags);
             for (int node = 0; node != 4 + 2 * Children; ++node)
                 reader.readNextNode();
             attempt([&] { reader.readNextNode(); });
             for (const QeXmlOpenElement& element : reader.getOpenElements())
                 EXPECT_TRUE(element.name == "r" || element.name.length() == 5000) << element.name;
         }
     }},
    {"a reset that failed is not taken for a document",
     [](Attempt& attempt) {
         QeXmlReader reader(QeXmlInput::copy("<a/>"), {.rules = QeXmlRules::Conforming});
         QeXmlInput input =
             QeXmlInput::copy(QeCString(encode("<a>" + std::string(99, 'x') + "</a>", Encoding::Utf16LE)));
         if (attempt([&] { reader.reset(std::move(input)); })) return;
         EXPECT_THROW(reader.readNextNode(), std::bad_alloc);
     }},
    {"attributes sorted by prefix, not by URI, are found by those that a lookup among many relies on",
     [](Attempt& attempt) {
         std::string inOrder, notInOrder;
         for (char local = 'a'; local <= 'z'; ++local) {
             inOrder += std::string(" ") + local + "=''";
             notInOrder += std::string(" p:") + local + "='" + Long.data() + "' q:" + local + "='" + Long.data() + "'";
         }
         QeXmlReader reader(QeCString("<r xmlns:p='v' xmlns:q='u'><a" + inOrder + "/><b" + notInOrder + "/></r>"));
         reader.readElementStart("r");
         reader.readElementStart("a");
         reader.readElementEnd("a");
         attempt([&] { reader.readElementStart("b"); });
         readOn(reader);
     }},
    {"a binding that could not be added has changed nothing, not even what was resolved before",
     [](Attempt& attempt) {
         QeXmlReader reader("<r xmlns:p='u'><p:a/><a/><p:b/></r>");
         const QeXmlNamespace added("q", Long);
         for (const char* name : {"r", "p:a"})
             reader.readElementStart(name);
         reader.readElementEnd();
         const bool done = attempt([&] { reader.addNamespace(added); });
         EXPECT_EQ(reader.getURIForPrefix("q"), done ? Long : "");
         for (const char* expected : {"/a", "/{u}p:b"}) {
             reader.readNextNode();
             EXPECT_EQ(describeNode(reader), expected);
         }
     }},
    {"a parse ends, and its parser can parse once more",
     [](Attempt& attempt) {
         const QeCString text(documentWith("x"));
         QeXmlSAXParser parser;
         const int expected = countEvents(parser, text);
         int events = 0;
         const bool done = attempt([&] { events = countEvents(parser, text); });
         EXPECT_EQ(events, done ? expected : 0);
         EXPECT_EQ(countEvents(parser, text), expected);
     }},
    {"a text ends", writeText<QeXmlStringWriter>},
    {"a text ends in an override", writeText<Failing>},
    {"a start that failed is as if it had not been written",
     [](Attempt& attempt) {
         const QeXmlAttributeSet attributes = someAttributes();
         QeXmlStringWriter undisturbed, writer;
         writeOrdinary(undisturbed, attributes);
         const auto open = [&] { writer.writeElementStart(Root, attributes, false); };
         if (attempt(open)) {
             writer.writeElementEnd(Root);
         } else {
             EXPECT_EQ(writer.getString(), "");
         }
         const std::size_t before = writer.getString().length();
         writeOrdinary(writer, attributes);
         EXPECT_EQ(writer.getString().substring(before), undisturbed.getString());
     }},
    {"a validator stays as it was",
     [](Attempt& attempt) {
         using V = QeXmlValidator;
         using Check = void (*)(V & validator, const V& part);
         V part(Long);
         part.checkMinLength(Long, "1000");
         for (const Check check : {
                  Check([](V& validator, const V&) { validator.checkMinLength(Long, "1000"); }),
                      Check([](V& validator, const V&) { validator.checkMaxLength(Long, "1"); }),
                      Check([](V& validator, const V&) { validator.checkWhiteSpace(Long + "\t", "replace"); }),
                      Check([](V& validator, const V&) { validator.checkVectorBounds(1, 2, 3); }),
#if !defined(TESSIT_WITHOUT_ICU)
                      Check([](V& validator, const V&) { validator.checkPattern(Long, "^x"); }),
#endif
                      Check([](V& validator, const V& from) { validator.isValid(from); }),
                      Check([](V& validator, const V& from) { validator = from; })
              }) {
             V validator(Long);
             const bool done = attempt([&] { check(validator, part); });
             EXPECT_EQ(validator.isValid(), !done);
             EXPECT_TRUE(done || validator.getErrors().empty());
             EXPECT_FALSE(validator.checkMaxLength("x", "0")) << "checked on";
         }
     }},
    {"a conversion or a comparison ends",
     [](Attempt& attempt) {
         struct Duration final : QeXmlDuration {
             QeCString asString() const override { return allocator::call(), Long; }
             int compareTo(const QeXmlDuration&) override { return allocator::call(), 0; }
         } duration;
         const QeDateTime instant(QeDate(1, 2, 2003), 4, 5, 6, 7, QeZone(90));
         const QeCString document(documentWith("x")), other(documentWith("y"));
         const std::function<void()> conversions[] = {
             [] { QeXmlUtils::changeName(QeXmlName("n", QeXmlNamespace("p", Long)), "<a>" + Long + "</a>"); },
             [] { QeXmlUtils::stripWhiteSpaceAndNewlines(" " + Long, QeCString::stripBoth); },
             [] { EXPECT_NE(messageOf<QeValueError>([] { QeXmlUtils::convertISODateStringToDateTime(Long); }), ""); },
             [] { EXPECT_NE(messageOf<QeValueError>([] { QeDecimalPortable number(Long); }), ""); },
             [] { QeXmlSchemaUtils::ConvertTypeToString(QeDecimalPortable(1e300), ""); },
             [] { QeDecimalPortable("0" + QeCString(std::string_view(std::string(100, '1')))); },
             [&] { QeXmlUtils::convertDateTimeToISOString(instant, "%c %c"); },
             [&] { instant.asString(QeDateTime::Iso8601, QeLocale::defaultLocale(), QeZone(90)); },
             [] { EXPECT_EQ(QeXmlDuration(1, 22, 333, 4444, 55555, 6.5).asString(), "P1Y22M333DT4444H55555M6.5S"); },
             [&] { QeXmlSchemaUtils::ConvertTypeToString(static_cast<const QeXmlDuration&>(duration), ""); },
             [&] { static_cast<QeXmlDuration&>(duration).isEqual(QeXmlDuration()); },
             [] { QeXmlSchemaError error("Bounds error in: " + Long); },
             [&] { EXPECT_TRUE(QeXmlUtils::compareXml(document, document)); },
             [&] { EXPECT_FALSE(QeXmlUtils::compareXml(document, other)); },
         };
         for (const std::function<void()>& convert : conversions)
             attempt(convert);
     }},
};

// --- What takes no memory, once that of the first times is there.

std::size_t allocationsOfReading(const std::string& root, std::string_view record, std::size_t count) {
    const Document document("<r" + root + ">" + numbered(record, count) + "</r>");
    return countAllocations([&] {
        const auto reader = document.open(Source::Span);
        while (!reader->eof()) {
            reader->readNextNode();
            if (reader->getLastNodeType() == QeXmlReader::ElementStart) reader->isElementNext("record");
        }
    });
}

template <bool takesBytes>
std::size_t allocationsOfWriting() {
    const QeXmlAttributeSet attributes = someAttributes();
    Discarding<takesBytes> writer;
    for (int i = 0; i < 100; ++i)  // until each string that is reused has held the longest text
        writeOrdinary(writer, attributes);
    return countAllocations([&] { writeOrdinary(writer, attributes); });
}

// An attribute goes through the buffer of 1,024 bytes as long as its worst case fits: a name and its value, six bytes
// each when escaped, and four around them.
std::size_t allocationsOfAttribute(std::size_t length, char byte, bool escape) {
    const QeCString value(std::string_view(std::string(length, byte)));
    Discarding<true> writer;
    return countAllocations([&] { writer.writeAttribute("a", value, escape); });
}

std::size_t allocationsOfText(const QeCString& text) {
    Discarding<true> writer;
    return countAllocations([&] { writer.write(text, true); });
}

const QeCString Megabyte(std::string_view(std::string(1'000'000, 'x')));

const struct {
    const char* name;
    std::size_t (*count)();
    std::size_t most;
} Allocations[] = {
    {"texts where there is room",
     [] {
         const std::string full(QeCString::InlineCapacity, 'f');
         const QeCString source(full.c_str());
         QeCString block(Long);
         return countAllocations([&] {
             QeCString copy(source);
             copy = full.c_str();
             QeCString moved(std::move(block));
             moved.clear();
             moved.append(Long);
             moved = source;
             moved.assign(Long);
             block = std::move(moved);
         });
     },
     0},
    {"100,000 bytes appended one by one",
     [] {
         return countAllocations([] {
             QeCString text;
             for (int i = 0; i < 100'000; ++i)
                 text += 'x';
         });
     },
     31},
    {"an attribute set that is filled again",
     [] {
         QeXmlAttributeSet set = filledSet(20);
         const QeXmlAttributeSet same(set);
         return countAllocations([&] {
             set.clear();
             for (const QeXmlAttribute& attribute : same)
                 set.add(attribute);
         });
     },
     0},
    {"ordinary output, as bytes", allocationsOfWriting<true>, 0},
    {"ordinary output, as strings", allocationsOfWriting<false>, 0},
    {"a plain long text", [] { return allocationsOfText(Megabyte); }, 0},
    {"a long text with an escape", [] { return allocationsOfText(Megabyte + "&"); }, 1},
    {"a long value", [] { return allocationsOfAttribute(1'000'000, 'x', true); }, 1},
    {"an attribute of 1024 bytes", [] { return allocationsOfAttribute(1019, 'v', false); }, 0},
};

// --- What a document takes beside itself, in times of its bytes.

// A text that each of many declarations doubles, until one asks for more than is allowed.
std::string switching(const std::string& encoding, std::size_t times, const std::string& last = "US-ASCII") {
    const std::string front = "<?xml version='1' encoding='", back = "'?>";
    return "<a>" + repeat(front + encoding + back + front + "US-ASCII" + back, times) + front + last + back +
           repeat("\xE9", 50'000);
}

const struct {
    const char* name;
    std::string document;
    double most;
} Footprints[] = {
    {"open elements", repeat("<a>", 100'000), 2},
    {"open elements that undeclare", repeat("<a xmlns=''>", 100'000), 9},
    {"open elements that declare a prefix", numbered("<a xmlns:a#='u'>", 70'000), 6},
    {"open elements that declare a long URI", repeat("<a xmlns='a URI that takes a block of its own'>", 70'000), 4.5},
    // A delivered attribute is four strings in place, 96 bytes, and its name may have been a single byte.
    {"attributes", "<a" + numbered(" a#=''", 20'000) + "/>", 24},
    {"declarations", "<a" + numbered(" xmlns:a#='u'", 20'000) + "/>", 28},
    {"attributes of one name", "<a" + repeat(" b=''", 20'000) + "/>", 24},
    {"references", "<a b='" + repeat("&lt;", 20'000) + "'/>", 2},
    {"text", "<a>" + repeat("text&lt;", 20'000) + "</a>", 2},
    {"conversions of our own", switching("ISO-8859-1", 30), 13},
    {"conversions by a decoder", switching("latin1", 30), 19},  // less than a megabyte is copied when it grows
    {"a conversion from UTF-16 behind others", switching("ISO-8859-1", 3, "UTF-16"), 13},
};

}  // namespace

TEST(Footprint, IsBounded) {
    for (const auto& [name, bytes, most] : Footprints) {
        const Document document(bytes);
        const QeCString text{std::string_view(bytes)};
        const std::size_t byReader = countPeakBytes([&document] {
            const auto reader = document.open(Source::Span);
            reader->setMatchTags(true);
            readToTheEnd(*reader);
        });
        const std::size_t byParser = countPeakBytes([&text] { parseToTheEnd(text); });
        const double times = static_cast<double>(std::max(byReader, byParser)) / static_cast<double>(bytes.size());
        EXPECT_LE(times, most) << name;
    }
}

// A window's, whatever the document's size: enough that longer ones are read in larger pieces.
TEST(Footprint, OfWindowsDoesNotGrowWithDocuments) {
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming})
        for (const bool isLong : {false, true}) {
            const std::size_t length = isLong ? 8'000'000 : 200'000;
            std::size_t given = 0, largestRoom = 0;
            const QeXmlInput::Callback fill = [&](std::span<char> room) {
                largestRoom = std::max(largestRoom, room.size());
                std::size_t count = 0;
                for (; count != room.size() && given != length; ++given)
                    room[count++] = given < 3 ? "<a>"[given] : "1</r><r>"[given % 8];
                return count;
            };
            const std::size_t peak = countPeakBytes([&] {
                QeXmlReader reader(QeXmlInput::callback(fill), {.rules = rules});
                readToTheEnd(reader);
                EXPECT_EQ(reader.getBytesRead(), length);
            });
            EXPECT_LE(peak, isLong ? 600'000u : 250'000u);
            EXPECT_LE(largestRoom, isLong ? 256u * 1024 : 64u * 1024);
            EXPECT_GE(largestRoom, isLong ? 128u * 1024 : 0u);
        }
}

// Nor does what decides on an encoding, and converts from it, of a reader that has a large window already.
TEST(Footprint, OfWindowsThatWereResetIsThatOfTheWindow) {
    const std::string elements = "<a>" + repeat("<b/>", 250'000) + "</a>";
    for (const std::string& bytes : {elements, encode(elements, Encoding::Utf16LE)})
        for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
            const Document document(bytes);
            const std::size_t peak = countPeakBytes([&] {
                QeXmlReader reader(document.inPieces(0, bytes.size()), {.rules = rules});
                for (int round = 0; round != 3; ++round) {
                    readToTheEnd(reader);
                    reader.reset(document.inPieces(0, bytes.size()));
                }
            });
            EXPECT_LE(peak, 450'000u) << bytes.substr(0, 4);
        }
}

TEST(Failures, LeaveWhatIsPromised) {
    for (const auto& [name, run] : Failures) {
        SCOPED_TRACE(name);
        forEachFailure(run);
    }
}

// A reader that goes on with documents like those it has read.
TEST(Allocations, AreNotMadeByResets) {
    const std::string elements = "<a>" + repeat("<b c='d'>e</b>", 10'000) + "</a>";
    for (const std::string& bytes :
         {std::string("<a>" + repeat("x", 30) + "</a>"), elements, encode(elements, Encoding::Utf16BE),
          "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9" + elements + "</a>"})
        for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
            const Document document(bytes);
            QeXmlReader reader(document.inPieces(0, 5000), {.rules = rules});
            std::size_t byReading = 0;
            for (int round = 0; round != 4; ++round) {
                readToTheEnd(reader);
                QeXmlInput next = document.inPieces(0, 5000);
                byReading = countAllocations([&] {
                    reader.reset(std::move(next));
                    readToTheEnd(reader);
                });
            }
            EXPECT_EQ(byReading, 0u) << bytes.substr(0, 50);
        }
}

TEST(Allocations, AreNotMadeOverAndOver) {
    for (const auto& [name, count, most] : Allocations)
        EXPECT_LE(count(), most) << name;
    const std::string l = Long.data();
    const std::string records[][2] = {
        // the root's attributes, and what is repeated
        {"", "<record>text</record>\n"},
        {"", "<record x='1' y='" + l + "&amp;' " + l + "=''>" + l + "&lt;<![CDATA[" + l + "]]></record>"},
        {"", "<record" + repeat(" :x='1' y='2'", 20) + "/>"},
        {" xmlns='" + l + "'", "<record><a/><b xmlns='' xmlns:p='" + l + "'><p:c/></b></record>"},
        {"", std::string("<p:e xmlns:p='") + Shared.data() + "#'/>"},  // URIs that are not kept
        {declarations(10), "<record><prefix7:a prefix8:b='1'/></record>"},
    };
    for (const auto& [root, record] : records)
        EXPECT_EQ(allocationsOfReading(root, record, 50), allocationsOfReading(root, record, 100)) << record;
}

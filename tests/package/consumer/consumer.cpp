// A program that uses the library from outside: exits with 0 when all of it works, and each error arrives as
// what it is.

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include <tessit/tessit.h>

namespace {

#if defined(TESSIT_WITHOUT_ICU)
constexpr bool WithoutIcu = true;
#else
constexpr bool WithoutIcu = false;
#endif

bool readsWhatItWrote() {
    QeXmlStringWriter writer;
    const QeXmlName order("order", QeXmlNamespace("o", "urn:example:orders"));
    writer.writeElementStart(order, QeXmlAttributeSet(), false);
    writer.writeSimpleElement(QeXmlName("when"), "2003-05-20", "", false);
    writer.writeElementEnd(order);

    QeXmlReader reader(writer.getString());
    reader.readElementStart(order);
    reader.readElementStart("when");
    return QeXmlUtils::convertISODateStringToDate(reader.readElementValue()) == QeDate(20, 5, 2003);
}

// ICU at work, which a static library leaves to the program to link; or its absence.
bool readsWindows1252() {
    std::istringstream in("<?xml version='1.0' encoding='windows-1252'?><price>\x80</price>");
    try {
        QeXmlReader reader(in);
        reader.readElementStart("price");
        return reader.readElementValue() == "\xE2\x82\xAC";
    } catch (const QeXmlParseError& error) {
        return WithoutIcu && std::string_view(error.why()).find("windows-1252") != std::string_view::npos;
    }
}

template <typename Error>
bool catches(void (*action)()) {
    try {
        action();
    } catch (const Error&) {
        return true;
    } catch (...) {
    }
    return false;
}

// Whether what `action` throws in the library is caught here by its class, and by each base that it has.
template <typename Error, typename Base>
bool throwsAs(void (*action)()) {
    return catches<Error>(action) && catches<Base>(action) && catches<Qexmsg>(action);
}

bool catchesByType() {
    return throwsAs<QeXmlParseError, std::domain_error>([] { QeXmlReader(QeCString("<a")).readNextNode(); }) &&
           throwsAs<QeXmlLengthError, QeXmlError>([] { QeThrow(QeXmlLengthError(QeCString("too long"))); }) &&
           throwsAs<QeValueError, std::invalid_argument>([] { QeDate(30, 2, 2003); }) &&
           throwsAs<Qexmsg, Qexmsg>([] { QeXmlValidator("item").checkPattern("a", "("); }) &&
           throwsAs<QeBoundsError, std::out_of_range>([] { static_cast<void>(QeCString("a")[1]); });
}

// Uses what the library has ready for everybody.
QeCString writeWellKnownNames() {
    QeXmlStringWriter writer;
    QeXmlAttributeSet attributes;
    attributes.add(QeXmlSchemaUtils::XsiNilAttributeName, QeXmlWriter::TrueValue);
    attributes.setDefaultNamespaceAttribute(QeXmlNamespace::getEmptyNamespace());
    writer.writeElementStart(QeXmlName("schema", QeXmlNamespace::getXsd()), attributes, false);
    writer.writeSimpleElement(QeXmlName("e", QeXmlNamespace::getXsi()), QeXmlUtils::TZD, "xsd:string", true);
    const bool isShorter = QeXmlDuration("P2M") < QeXmlDuration("P1M");
    writer.write(QeXmlNamespace::getXmlns().infoString() + (isShorter ? "!" : ""), true);
    QeXmlReader reader(writer.getString());
    reader.readElementStart(QeXmlName("schema", QeXmlNamespace::getXsd()));
    return writer.getString();
}

// Made before what it uses, and so destroyed when that would be gone.
struct AtExit {
    ~AtExit() {
        if (!expected.empty() && (writeWellKnownNames() != expected || !readsWindows1252())) std::_Exit(1);
    }
    QeCString expected;
} atExit;

// The same of namespaces, when all else of the library is gone, too, where it is part of the program.
[[gnu::init_priority(101)]] const struct AtTheVeryEnd {
    ~AtTheVeryEnd() {
        if (!QeXmlNamespace::matchXsi(xsi) || !QeXmlNamespace::matchXsd(xsd)) std::_Exit(1);
    }
    QeXmlNamespace xsi{"", "http://www.w3.org/2001/XMLSchema-instance"}, xsd{"", "http://www.w3.org/2001/XMLSchema"};
} atTheVeryEnd;

bool hasOneVersion() {
    return tessit::version() == TESSIT_VERSION && std::string_view(tessit::versionString()) == TESSIT_VERSION_STRING;
}

bool fails(const char* what, bool works) {
    std::printf("%s: %s\n", what, works ? "works" : "FAILS");
    return !works;
}

}  // namespace

int main() {
    atExit.expected = writeWellKnownNames();
    return fails("reading what was written", readsWhatItWrote()) + fails("reading windows-1252", readsWindows1252()) +
           fails("catching errors by type", catchesByType()) + fails("the version", hasOneVersion());
}

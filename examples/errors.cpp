// What can go wrong, and as what it can be caught.

#include <iostream>

#include <tessit/tessit.h>

namespace {

// A caller decides by class: this is about the document, that about the program.
void readPrice(const QeCString& document) {
    try {
        QeXmlReader reader(document);
        reader.readElementStart("price");
        QeCString text;  // an empty-element tag has none
        if (reader.getLastNodeType() == QeXmlReader::ElementStart) text = reader.readElementValue();
        reader.readElementEnd("price");
        if (text.empty()) reader.err("There is no price");
        const QeDecimalPortable price(text);
        std::cout << "price " << price.asString() << '\n';
    } catch (const QeXmlParseError& error) {
        std::cout << error.getLineNumber() << ':' << error.getColumnNumber() << ": " << error.why() << '\n';
    } catch (const QeValueError& error) {
        std::cout << error.why() << '\n';
    }
}

// Throws an error of the library's classes, as an application may, and catches it as the standard exception that
// it is too.
template <typename Error, typename Standard>
void throwAndCatch(const QeCString& text) {
    try {
        QeThrow(Error(text));
    } catch (const Standard& error) {
        std::cout << error.what() << '\n';
    }
}

void throwEachClass() {
    throwAndCatch<QeXmlBadArgError, std::invalid_argument>("an argument that cannot be taken");
    throwAndCatch<QeXmlBoundsError, std::out_of_range>("an index outside a collection");
    throwAndCatch<QeXmlDomainError, std::domain_error>("input outside what is defined");
    throwAndCatch<QeXmlInternalError, std::logic_error>("a state that should not arise");
    throwAndCatch<QeXmlLengthError, std::length_error>("a length past its limit");
    throwAndCatch<QeXmlRangeError, std::range_error>("a result that its type cannot hold");
    throwAndCatch<QeXmlSchemaError, std::logic_error>("a value that its type refuses");
}

// Errors of an application's own can take their text from the catalog, and have the same root.
void throwFromCatalog() {
    try {
        QeThrow(QeXmlError(QeMessage(qetessit_BOUNDED_ARRAY())));
    } catch (const QeXmlError& error) {
        std::cout << error.why() << '\n';
    }
}

void readPastTheEnd(const QeCString& text) {
    try {
        std::cout << text[text.length()] << '\n';
    } catch (const QeBoundsError& error) {
        std::cout << error.why() << '\n';
    }
}

}  // namespace

int main() {
    readPrice("<price>4.50</price>");
    readPrice("<price>4.50\n</prize>");
    readPrice("<price/>");
    readPrice("<price>4,50</price>");
    throwEachClass();
    throwFromCatalog();
    readPastTheEnd("abc");
}

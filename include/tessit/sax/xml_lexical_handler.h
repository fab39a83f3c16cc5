#pragma once

#include <corvel/c_string.h>
#include <tessit/dtd/xml_document_type.h>

/// What a `QeXmlSAXParser` reports besides a document's tags and text: what
/// `QeXmlReaderOptions::nodes` asks for, and nothing else. Each call does nothing by default.
///
/// What is said of `QeXmlContentHandler` holds here, too. Later versions append calls; a
/// handler that was built with fewer of them is not called for the rest.
class TESSIT_API QeXmlLexicalHandler {
public:
    virtual void comment(const QeCString& text);
    virtual void instruction(const QeCString& target, const QeCString& data);

    /// The document type declaration; in front of all tags.
    virtual void documentType(const QeXmlDocumentType& declaration);

    /// A CDATA section, instead of its text as content.
    virtual void cdataSection(const QeCString& text);

    /// A reference in text that was left alone.
    virtual void entityReference(const QeCString& name);

protected:
    // Made in the program: says how many of the calls it knows.
    QeXmlLexicalHandler() noexcept : knownCalls(5) {}
    QeXmlLexicalHandler(const QeXmlLexicalHandler&) = default;
    QeXmlLexicalHandler& operator=(const QeXmlLexicalHandler&) = default;
    ~QeXmlLexicalHandler() = default;

private:
    [[maybe_unused]] int knownCalls;
};

#pragma once

#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_name.h>
#include <tessit/model/xml_prolog.h>

/// What a `QeXmlSAXParser` reports a document to; applications derive from it.
///
/// The arguments are the parser's own and valid only during the call. A call may
/// throw: the exception leaves `parse` unchanged. Handlers are owned by the
/// application and never destroyed through this class. To report is O(1) for the
/// parser, besides `prolog`, which is O(length of the declaration).
class TESSIT_API QeXmlContentHandler {
public:
    /// An element opens. Attributes come sorted by name, namespace declarations among them.
    virtual void elementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes) = 0;

    /// An element closes.
    virtual void elementEnd(const QeXmlName& name) = 0;

    /// A run of text, whitespace between tags included. Never called for text outside the root element's tags
    /// unless there is any but whitespace.
    virtual void content(const QeCString& text) = 0;

    /// The XML declaration, before everything else; not called without one. Does nothing by default.
    virtual void prolog(const QeXmlProlog& prolog);

    QeXmlContentHandler() = default;
    QeXmlContentHandler(const QeXmlContentHandler&) = default;
    QeXmlContentHandler& operator=(const QeXmlContentHandler&) = default;

protected:
    ~QeXmlContentHandler() = default;
};

#pragma once

#include <memory>
#include <span>
#include <utility>

#include <corvel/c_string.h>
#include <tessit/reader/xml_reader.h>
#include <tessit/sax/xml_content_handler.h>
#include <tessit/sax/xml_lexical_handler.h>

/// Reads a whole document and reports it, as a series of events, to a content handler.
///
/// A parser may parse any number of documents, one after another; it keeps nothing
/// between calls. Copies share the handler. Everything but `parse` is O(1). One
/// thread at a time.
class TESSIT_API QeXmlSAXParser {
public:
    QeXmlSAXParser() = default;

    /// The receiver of events; not owned, and null for none. May be changed by the
    /// handler itself: it is looked at before each event.
    void setContentHandler(QeXmlContentHandler* handler) noexcept { contentHandler = handler; }
    QeXmlContentHandler* getContentHandler() const noexcept { return contentHandler; }

    /// The receiver of what is not tags and text; not owned. Without one, CDATA sections and references that were asked
    /// for are content.
    void setLexicalHandler(QeXmlLexicalHandler* handler);
    QeXmlLexicalHandler* getLexicalHandler() const noexcept;

    /// Whether references in attribute values are replaced by what they stand for (the default) or left as written.
    void setExpandAttributeReference(bool expand) noexcept { expandAttributeReference = expand; }
    bool getExpandAttributeReference() const noexcept { return expandAttributeReference; }

    /// Parses `text`, in place and in any encoding that the reader knows; it must
    /// not change meanwhile. The second argument is not used.
    ///
    /// Throws `QeXmlParseError` for what the reader refuses, and for an end tag that
    /// is not that of the innermost open element ("Unmatched start tag for NAME");
    /// events that went out stay out, as they do when the handler throws, or
    /// `std::bad_alloc` comes up. A document that ends while elements are open is no
    /// error: their ends are not reported. O(bytes) and the sorting of each tag's
    /// attributes, as in the reader, besides what the handler does.
    void parse(const QeCString& text, const QeCString& unused);

    /// The same for bytes, with options. By the conforming rules, a document that is not
    /// well-formed throws what the reader throws for it, and "Unmatched start tag" does not come up.
    void parse(std::span<const unsigned char> document, const QeXmlReaderOptions& options = {}) {
        QeXmlReader reader(document, options);
        report(reader);
    }

    /// The same for an input of any kind: what comes piece by piece is read through a window. What the input throws
    /// passes through.
    void parse(QeXmlInput input, const QeXmlReaderOptions& options = {}) {
        QeXmlReader reader(std::move(input), options);
        report(reader);
    }

private:
    struct Settings;

    void report(QeXmlReader& reader);
    TESSIT_NO_EXPORT void reportOther(const QeXmlReader& reader);

    QeXmlContentHandler* contentHandler = nullptr;
    bool expandAttributeReference = true;

    // Room for the settings of later versions, so that programs built today run with them, too.
    std::shared_ptr<const Settings> settings;
};

#pragma once

#include <string_view>
#include <typeinfo>

#include <tessit/model/xml_attribute_set.h>
#include <tessit/writer/completion.h>
#include <tessit/writer/markup.h>
#include <tessit/writer/scopes.h>
#include <tessit/writer/xml_writer.h>

/// What a writer does behind its public members: it puts tags, attributes and texts
/// together, in one way for all sinks, and sends them.
///
/// Knows which pieces a call consists of, which slot each of them goes through, and
/// what is left behind when one cannot be sent. Does not know the rules of namespaces
/// (scopes), where declarations stand (completion), nor how names and values are written
/// (markup, escape). What takes bytes to the sink stands in output.cpp.
class QeXmlWriter::Engine {
public:
    /// The end of a string that bytes can be put at, instead of being sent through the
    /// slots. In front of them come those in a buffer, which is empty while it is written there.
    struct OwnText {
        QeCString* text = nullptr;
        const char* buffer = nullptr;
        std::size_t* bufferedBytes = nullptr;
        const std::type_info* offeredBy = nullptr;  // the class whose slots do just this
    };

    explicit Engine(QeXmlWriter& ofWriter) noexcept : writer(ofWriter), scopes(ofWriter.namespaces) {}

    /// Made by a class whose slots append to a text, and kept where no other class has
    /// overridden one of them. What it points to lives as long as the writer.
    void offerText(const OwnText& offered) noexcept { ownText = offered; }

    void writeElementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty);
    void writeElementEnd(const QeXmlName& name);
    void writeSimpleElement(const QeXmlName& name, const QeCString& content, const QeCString& typeName, bool withType);
    void writeAsIs(const QeCString& text);
    void writeEscaped(const QeCString& text);
    void writeAttribute(tessit::NameParts name, const QeCString& value, bool escape);

    void beginLine();
    void indent();

    /// Passes bytes on through the slot for strings.
    void sendAsString(const char* bytes, unsigned length);

    void addNamespace(const QeXmlNamespace& ns) { scopes.add(ns); }
    void forgetBindings() noexcept { scopes.forget(); }

private:
    class Output;

    void sendEnd(const QeXmlName& name);
    void writeSimpleElement(const QeXmlName& name, const QeXmlAttributeSet& attributes, const QeCString& content);
    void writeLongText(const QeCString& text);
    void sendAttributes(Output& output, const QeXmlAttributeSet& attributes);
    static void sendEach(Output& output, const QeXmlAttributeSet& attributes);

    QeCString* takeOwnText();
    void sendInPieces(const char* bytes, std::size_t length);

    QeXmlWriter& writer;
    OwnText ownText;
    tessit::WriterScopes scopes;

    // Storage that is kept from call to call. It is taken out while in use, so that a
    // sink may call its writer.
    QeCString spareTag;
    QeCString spareBytes;
    QeXmlAttributeSet spareTypeAttribute;
    tessit::CompletionStorage spareCompletion;
};

#pragma once

#include <tessit/reader/conforming.h>
#include <tessit/reader/scanner.h>
#include <tessit/reader/text_builder.h>
#include <tessit/rules/strict_scanner.h>

/// Reads one node by the conforming rules: the same work as the `NodeReader` does for a
/// lenient reader, with the same scanner, slots and bindings. What is rare in a document is
/// read by a `StrictScanner`. Goes into the replacement text of entities and comes back.
class QeXmlReader::Engine::ConformingNodes : tessit::Scanner {
public:
    explicit ConformingNodes(Engine& owner) noexcept
        : Scanner(owner.input, owner.reader.cursor, owner.conforming->end),
          engine(owner),
          reader(owner.reader),
          state(*owner.conforming) {}

    /// The XML declaration, and what is not delivered of what stands in front of the root element.
    void readProlog();

    /// The next node.
    void readNextNode();

    /// Text, which may be empty, up to the next tag; all else in front of that is passed.
    void readContent();

    /// What there is besides tags and text: passed, delivered where it is asked for, or left standing to be delivered.
    enum class Others { Pass, Deliver, Leave };

    bool passOutside(Others others);

private:
    const tessit::Source& source() const noexcept { return input.source(); }
    [[noreturn]] void refuse(tessit::Rule rule, std::string_view found = {}) const {
        tessit::refuse(source(), position(), rule, found);
    }
    [[noreturn]] void refuseEnd() {
        goBackTo(limit());
        tessit::refuseEnd(source());
    }
    char next() {
        if (atEnd()) refuseEnd();
        return peek();
    }
    void require(char byte, tessit::Rule rule) {
        if (next() != byte) refuse(rule);
        skip(1);
    }

    template <typename Read>
    auto apart(const Read& read) {
        const Lending lending(*this);
        ConformingNodes other(engine);
        return read(other);
    }

    void needNode();
    void needRestOfText(Others others);
    tessit::RawName readTagName();
    void readStartTag();
    void closeStartTag(const tessit::RawName& name);
    void readEndTag();
    void passEndTag(std::string_view opened);

    bool readText(Others others);
    bool readLongText(Others others);
    void appendRuns(QeCString& target);
    bool appendCharacter(tessit::TextBuilder& text);
    bool readReference(Others others, bool& found);
    bool readMarkupInText(Others others, bool& found);
    // So many bytes more of text are about to be held.
    void holdText(std::size_t bytes) const {
        tessit::hold(reader.lastContent.length() + bytes, input.limits().text, tessit::Limit::Text);
    }

    // The node goes on at a place in another text.
    void goOnIn(const tessit::Source& text, const char* place);

    void enterEntity(tessit::Entity& entity);
    void leaveEntity();

    // conforming_markup.cpp
    void needOutside(Others others);
    bool beginsWith(std::string_view text);
    bool isCommentHere();
    void requireCDATA();
    bool readMarkup();
    bool readMarkupOutside(Others others);
    void holdMarkup(const char* upTo) const;
    bool isLeft(Others others, QeXmlNodes kind) const;
    bool readComment(Others others);
    bool readInstruction(Others others);
    bool readDocumentType(Others others);
    bool deliverInstruction(Others others);
    void deliver(NodeType type, std::string_view text);
    void appendAsWritten(QeCString& target, std::string_view text);
    void readCDATA(QeCString& text);

    Engine& engine;
    QeXmlReader& reader;
    Conforming& state;
};

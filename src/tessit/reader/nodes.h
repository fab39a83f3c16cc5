#pragma once

#include <tessit/reader/engine.h>
#include <tessit/reader/scanner.h>

/// Reads one node, or what stands between nodes: tells constructs apart by their first
/// bytes, has the scanner pass each, and hands what it finds to the part that it concerns.
/// Says what kind of node it was; knows nothing of what the program expects.
class QeXmlReader::Engine::NodeReader : tessit::Scanner {
public:
    explicit NodeReader(Engine& owner) noexcept : NodeReader(owner, owner.reader) {}
    NodeReader(Engine& owner, QeXmlReader& node) noexcept
        : Scanner(owner.input, node.cursor, node.bufferEnd), engine(owner), reader(node) {}

    /// The next node, whatever it is.
    void readNextNode();

    /// Text, which may be empty, up to the '<' of the next tag. Comments and instructions inside are passed.
    void readContent();

    /// All up to the '<' of the root element.
    void readProlog();

private:
    void readStartTag();
    void readAttributes(const tessit::RawName& name);
    void closeStartTag(const tessit::RawName& name);
    void noteOpen(const tessit::RawName& name);
    void readEndTag();
    void passEndTag();
    void raiseEndInEndTag();
    bool skipLastName() noexcept;
    void matchEndTag();
    bool isLikeInnermost() const;
    template <typename Read>
    void apart(const Read& read);
    void readLongContent();
    void needNextNode();
    bool readMarkupInContent();
    void readDeclarationInContent();

    // prolog.cpp
    void needOutside();
    void readPrologMarkup();
    void readInstruction();
    void readXmlDeclaration();
    void readEncoding();
    void readStandalone();

    Engine& engine;
    QeXmlReader& reader;
};

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <tessit/reader/bindings.h>
#include <tessit/reader/element_path.h>
#include <tessit/reader/input.h>
#include <tessit/reader/node_finder.h>
#include <tessit/reader/open_elements.h>
#include <tessit/reader/tag_slots.h>
#include <tessit/reader/written_markup.h>
#include <tessit/reader/xml_reader.h>

namespace tessit {
class ByteSource;
class Judge;
}  // namespace tessit

namespace voxal {
class PieceConverter;
}

/// What stands behind a reader: its parts, each on the reader's members that it is
/// about, and what the public calls do with them.
///
/// A byte goes from the input through a scanner, which lives as long as a call, to the
/// tag slots or the text; what drives it on is the `NodeReader`. The public calls hold
/// the node that comes of it against what the program expects.
struct QeXmlReader::Engine final : tessit::ErrorContext {
    // Where something begins that was read, and in a conforming reader in which text; nowhere once its bytes are gone.
    struct Written {
        const char* begin = nullptr;
        const tessit::Source* source = nullptr;
    };

    // What was found out for those who asked, so far.
    struct FoundOut {
        tessit::WrittenAttributes ofLastTag;
        std::optional<tessit::ElementPath> path;
        const char* hint = nullptr;
        bool hasLookedForHint = false;
    };

    // What few readers have.
    struct Besides {
        std::unique_ptr<tessit::ByteSource> whole;  // what is read, if that is an input in memory
        std::unique_ptr<tessit::Judge> judge;       // where there is a record
        QeXmlLimits limits;                         // if there are any
    };

    explicit Engine(QeXmlReader& owner, const QeXmlReaderOptions* options = nullptr);
    ~Engine();

    /// With the options that a program passed on, whichever of them its headers had.
    static std::unique_ptr<Engine> make(QeXmlReader& owner, const Passed& passed);

    // nodes.cpp and prolog.cpp
    void readProlog();
    void readLenientApart();
    void needNextNode();
    void readContent();
    void noteOpen(std::string_view name);
    bool closesInnermost() noexcept;

    // conforming.cpp, and conforming_nodes.cpp for what is read over and over
    void openConforming(std::string_view document);
    void readConformingContent();
    void passOutsideOfRoot() noexcept;
    void keepFault();
    void keepFault(const char* place);
    void completeFault(QeXmlParseError& error, const char* place) const;
    [[noreturn]] void raiseFault();
    const char* positionInDocument() const noexcept;
    const char* nextInDocument() const noexcept;

    // windowed.cpp
    /// Have what comes next be there as a whole: a node; all up to the next tag, or reference to an entity; what comes
    /// next of a text; what stands outside of the root. For a document that is in memory they do nothing.
    void needNode() {
        if (windowed != nullptr) needInWindow(wholeUpTo);
    }
    void needText();
    void needInWindow(const char* const& upTo);
    void needRestOfText(bool isNode);
    bool isAtEndOfText(bool isNode) const noexcept;
    bool isInNode() const noexcept;
    void needOutside(bool leavesNodes = false);
    void openWindowed(std::unique_ptr<tessit::ByteSource> source);
    void leaveWindow() noexcept;
    void openConformingWindow();
    void refuseWhileReading() const;
    bool expandsAsFound() const noexcept;
    void noteExpansion() noexcept;
    bool readFirst();
    void readFirstBytes();
    template <typename Read>
    bool readOrKeepFault(const Read& read);
    void nothingIsWhole() noexcept;
    bool readsWindow() const noexcept;
    bool isHalfALineEnd() const noexcept;
    bool fetch();
    bool fetchMore();
    [[noreturn]] void refuseBegun();
    bool fetchQuietly(bool& keeps) noexcept;
    void keepPlaceOfLast();
    void moveWindow();
    void showWindow(const char* place);
    void findFrom(tessit::NodeFinder::Where where);
    void findInWindow();
    void findAnew() noexcept;
    bool mayTrust() const noexcept;
    void readOnTrust() noexcept;
    void goBack() noexcept;
    void convertWindow(voxal::PieceConverter&& converter, const QeCString& name);
    void leaveBeginning() noexcept;
    bool hasBeginning() const noexcept;
    std::size_t levelsInDocument() const noexcept;
    void keepOpenTags(const char* keptFrom);
    const char*& placeInDocument(Written& written) const noexcept;
    void checkConversions();
    void declareEncodingInWindow(const QeCString& name);

    // engine.cpp
    Besides& makeBesides();

    /// Forgets the document.
    void reset();
    void keepFaultOfReset() noexcept;

    /// Takes in a declared encoding. All views of the document may be void behind it.
    void declareEncoding(const QeCString& name);

    // pull.cpp
    const QeXmlName& keepExpected(const QeXmlName& name);
    const QeCString& keepExpected(const QeCString& qname);
    void takeNextNode();
    void lookAhead();
    void demandStart();
    void demandEnd();
    template <typename Name>
    void demandStart(const Name& name);
    template <typename Name>
    void demandEnd(const Name& name);
    template <typename Name>
    bool startsNext(const Name& name);
    const QeCString& uriOf(const ExpectedName& expected) const noexcept;
    bool matchesStart(const ExpectedName& expected) const;
    bool matchesEnd(const ExpectedName& expected) const;
    bool asksForAny(const ExpectedName& expected) const noexcept;
    QeCString readElement(const ExpectedName& expected);
    std::size_t skipToMatchingEnd(RawCopy& copy);
    QeCString rebuildTag() const;
    [[noreturn]] void raiseMismatch(const ExpectedName& expected) const;

    // places.cpp
    QeXmlPosition positionIn(const Written& written, const char* place) const;
    QeXmlPosition endOf(const Written& written, const char* end) const;
    QeXmlSpan spanOf(const Written& written, const char* end) const;
    QeXmlSpan spanOfLastNode() const;
    std::uint64_t offsetOfLastNode() const;
    std::optional<QeXmlPosition> positionOf(std::uint64_t offset) const;
    const char* find(const QeXmlPosition& position) const;
    QeXmlExcerpt excerptAt(const char* place) const;
    QeXmlSpan spanOfTag(const char* tag) const;
    tessit::WrittenAttributes& attributesOfLastTag();
    std::optional<QeXmlAttributeSpans> spansOf(const QeXmlAttribute& attribute);
    const tessit::ElementPath& pathInDocument(const char* place) const;
    const char* beginOfElements() const noexcept;
    const char* inFrontOfUnread(const char* place) const noexcept;
    QeCString pathOfOpenElements(const char* place) const;
    QeCString pathWithEntities(std::size_t levels,
                               const std::function<tessit::PathStep(std::size_t)>& inDocument) const;
    QeCString pathAt(const char* place) const;
    QeCString pathWithoutBeginning(const char* place) const;
    std::vector<QeXmlOpenElement> listWithoutBeginning() const;
    std::optional<QeXmlNote> noteWithoutBeginning(const char* text, const char* place) const;
    std::size_t levelsInFrontOf(const char* place) const noexcept;
    void addElementsOfEntities(std::vector<QeXmlOpenElement>& elements) const;
    std::optional<QeXmlNote> noteOfInnermost(const char* text, const char* place) const;
    [[noreturn]] void refuseEndTag(const Written& tag, std::string_view name) const;
    [[noreturn]] void raiseUnmatched() const;
    FoundOut& makeFoundOut() const;
    QeCString hint(std::string_view rule) const;
    bool isAtAnotherDocument(std::string_view rule) const;
    bool isAtEndOfDocument() const noexcept;
    void complete(tessit::ErrorAccess::Details& details, const char* place) const override;
    std::vector<QeXmlOpenElement> listOpenElements() const;

    // limits.cpp
    void setLimits(const QeXmlLimits& given);
    bool hasLimits() const noexcept { return &input.limits() != &tessit::NoLimits; }
    void limitMarkup(const char* begin, const char* end) const;
    std::uint64_t bytesOfNode(const char* end) const noexcept;
    void holdNode(const char* end) const;
    void limitNode();
    void limitTag();
    void limitEndTag() const;
    void limitLastNode();

    /// Reads a node of a lenient reader, and holds it against the limits.
    template <typename Read>
    void withinLimits(const Read& read) {
        try {
            read();
            limitLastNode();
        } catch (const tessit::Exceeded& exceeded) {
            raiseExceeded(exceeded);
        }
    }
    [[noreturn]] void raiseExceeded(const tessit::Exceeded& exceeded) const;

    /// The same where there may be none.
    template <typename Read>
    void readWithinLimits(const Read& read) {
        hasLimits() ? withinLimits(read) : read();
    }

    // record.cpp
    tessit::Judge* judge() const noexcept { return besides == nullptr ? nullptr : besides->judge.get(); }
    void openRecord(std::string_view document);
    void readWhole(tessit::ByteSource& source);
    void noteUnread(const QeXmlParseError& error);

    /// Reads a node of a lenient reader that may have limits or a record, where what it refuses goes, unless there was
    /// nothing to read.
    template <typename Read>
    void readApart(const Read& read) {
        if (judge() == nullptr) return readWithinLimits(read);
        const bool wasAtEnd = input.position() == input.limit();
        try {
            readWithinLimits(read);
        } catch (const QeXmlParseError& error) {
            if (!wasAtEnd) noteUnread(error);
            throw;
        }
    }

    class NodeReader;
    class LookingAhead;
    class ConformingNodes;
    struct Conforming;
    struct Windowed;

    QeXmlReader& reader;
    std::unique_ptr<Conforming> conforming;  // of a reader that is one
    std::unique_ptr<Windowed> windowed;      // of one whose document comes piece by piece
    std::unique_ptr<Besides> besides;        // made when it is needed
    tessit::Input input;
    tessit::Bindings bindings;
    tessit::TagSlots slots;
    tessit::OpenElements openElements;           // of a reader that matches tags
    QeXmlName expectedName;                      // what the caller demands; working storage of one call
    const char* wholeUpTo = nullptr;             // a node that begins in front of it can be read; at most the limit
    const char* pendingStart = nullptr;          // where the node that was looked at begins, in a document that stays
    Written lastNode, lastTag;                   // the tag is the last one that opened an element
    mutable std::unique_ptr<FoundOut> foundOut;  // made when it is asked for
    RawCopy* rawCopy = nullptr;                  // the copy that `readElement` is making
};

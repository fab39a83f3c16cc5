#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include <tessit/reader/engine.h>
#include <tessit/reader/node_finder.h>
#include <tessit/reader/open_tags.h>
#include <tessit/reader/window.h>

namespace tessit {

/// Has a flag set while this lives.
class SetMeanwhile {
public:
    explicit SetMeanwhile(bool& which) noexcept : flag(which), before(std::exchange(which, true)) {}
    SetMeanwhile(const SetMeanwhile&) = delete;
    SetMeanwhile& operator=(const SetMeanwhile&) = delete;
    ~SetMeanwhile() { flag = before; }

private:
    bool& flag;
    const bool before;
};

}  // namespace tessit

/// What a reader has besides whose document comes piece by piece: the part of it that is in memory, and what finds up
/// to where nodes are whole there.
struct QeXmlReader::Engine::Windowed {
    Windowed(std::unique_ptr<tessit::ByteSource> source, bool isConforming, QeXmlNodes nodes)
        : window(std::move(source)), finder(isConforming, nodes) {}

    /// Begins with another source.
    void begin(std::unique_ptr<tessit::ByteSource> source) noexcept {
        openTags.clear(window.text().size());
        window.reset(std::move(source));
        textsUpTo = nullptr;
        isInRoot = isInEpilog = hasMoved = isOnTrust = isDoubted = false;
        leftNode.reset();
        fault = nullptr;
    }

    tessit::Window window;
    tessit::NodeFinder finder;
    tessit::OpenTags openTags;
    const char* textsUpTo = nullptr;  // all up to the next tag can be read, from a place in front of it
    bool isInRoot = false;            // of a lenient reader: behind the prolog
    bool isInEpilog = false;          // of a conforming reader
    bool isOnTrust = false;           // nodes are read before it was looked whether they are whole
    bool isDoubted = false;           // the next one is not: it was cut once
    bool isLookedAhead = false;
    bool hasMoved = false;     // the document's beginning is no longer there
    bool isReading = false;    // the source is called
    bool keepsLast = false;    // the last node stays, as it may still be asked for
    bool keepsPlace = false;   // where it stands is kept
    std::exception_ptr fault;  // what the source threw: it does so again

    struct LeftNode {
        QeXmlSpan span;
        std::uint64_t offset;
    };
    std::optional<LeftNode> leftNode;  // the last one, if it has gone and its place was kept
};

/// What is scanned while this lives may be returned as it is written.
class QeXmlReader::Engine::LookingAhead {
public:
    explicit LookingAhead(Engine& owner) noexcept : engine(owner) { note(true); }
    ~LookingAhead() { note(false); }
    LookingAhead(const LookingAhead&) = delete;
    LookingAhead& operator=(const LookingAhead&) = delete;

private:
    void note(bool looks) noexcept {
        if (engine.windowed != nullptr) engine.windowed->isLookedAhead = looks;
    }

    Engine& engine;
};

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <corvel/string_access.h>
#include <tessit/writer/engine.h>

/// The way of the bytes of one call to where they are wanted: piece by piece, each
/// put where `begin` says and then sent.
///
/// Knows two ways. A string writer that is no more than that has no override that
/// could see a piece: pieces are put one behind the other at the end of its text, where
/// they count once the call is complete. Any other sink is given each piece through the
/// slot that it is for, the indentation in front of it where a line begins. Does not
/// know what the bytes mean.
class QeXmlWriter::Engine::Output {
public:
    explicit Output(Engine& sender);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output() {
        if (text != nullptr) corvel::StringAccess::setLength(*text, lengthBefore);
    }

    /// Where a piece of up to `room` bytes begins.
    char* begin(std::uint64_t room) {
        if (room + tessit::Slack > static_cast<std::uint64_t>(limit - at)) makeRoom(room);
        return at;
    }

    /// Sends what was put from `begin` to `end` through the slot for bytes, or through that for strings.
    void sendBytes(char* end) {
        if (text == nullptr) return sendPiece(end);
        at = end;
    }
    void sendString(char* end) {
        if (text == nullptr) return sendPieceAsString(end);
        at = end;
    }

    /// Sends what is somewhere else and need not be put anywhere.
    void sendBytes(const QeCString& bytes);
    void sendString(const QeCString& string);

    /// Ends the call: all its pieces have been sent.
    void finish() noexcept {
        if (text != nullptr) corvel::StringAccess::setLength(*text, static_cast<std::size_t>(at - text->data()));
        text = nullptr;
    }

private:
    static constexpr std::size_t FirstRoom = 480;  // in a text that so far fits into its object

    void takeLocalRoom() noexcept {
        at = local;
        limit = local + sizeof local;
    }
    void takeTextRoom() noexcept {
        const std::span spare = corvel::StringAccess::spareRoom(*text);
        at = spare.data();
        limit = at + spare.size();
    }
    void makeRoom(std::uint64_t room);
    void sendPiece(const char* end);
    void sendPieceAsString(const char* end);

    Engine& engine;
    QeCString* text;  // null if the pieces go through the slots, or have all been sent
    char* at;
    char* limit;
    std::size_t lengthBefore = 0;
    std::unique_ptr<char[]> heap;  // for a piece that is too long for the next one
    char local[tessit::ShortEnough + tessit::Slack];
};

inline QeXmlWriter::Engine::Output::Output(Engine& sender) : engine(sender), text(sender.takeOwnText()) {
    if (text == nullptr) {
        takeLocalRoom();
    } else {
        if (engine.writer.atLineStart) engine.indent();
        lengthBefore = text->length();
        takeTextRoom();
    }
}

// The class that offered the text says which one it is: an object of any other may have overridden the slots, and the
// offer is then void. While an object is being made, it is of the class whose constructor runs.
inline QeCString* QeXmlWriter::Engine::takeOwnText() {
    if (ownText.text == nullptr) return nullptr;
    if (&typeid(writer) != ownText.offeredBy) return ownText.text = nullptr;
    if (*ownText.bufferedBytes != 0) {
        ownText.text->append(ownText.buffer, *ownText.bufferedBytes);
        *ownText.bufferedBytes = 0;
    }
    return ownText.text;
}

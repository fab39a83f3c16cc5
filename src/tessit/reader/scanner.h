#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include <corvel/byte_scan.h>
#include <corvel/c_string.h>
#include <corvel/compiler.h>
#include <corvel/string_access.h>
#include <tessit/reader/char_class.h>
#include <tessit/reader/input.h>
#include <tessit/reader/name_scan.h>
#include <tessit/reader/raw_name.h>

namespace tessit {

/// Turns input into names, values and text: one function a construct, each entered and
/// left as its comment says. Knows nothing of namespaces, nor what is open.
///
/// Lives on the stack for the length of one reading call, and has the cursor meanwhile;
/// the input has it again before an error is raised, and when the scanner is gone. Hot
/// loops run over bytes that need no thought to the first that does. What is rare is read
/// by a scanner of its own: the address of the first one is then never taken, and all of it
/// stays in registers.
class Scanner {
public:
    explicit Scanner(Input& source) noexcept : Scanner(source, source.place(), source.limit()) {}

    /// The same, for who knows where the input keeps its place and its end.
    Scanner(Input& source, const char*& place, const char* const& limit) noexcept
        : cursor(place), end(limit), home(place), homeEnd(limit), input(source) {}
    ~Scanner() { home = cursor; }
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    /// Gives the cursor back to the input for as long as this lives, so that others can
    /// move it, or replace the bytes. The scanner then goes on from there, also when an
    /// exception comes by: its own cursor may point into bytes that are gone.
    class Lending {
    public:
        explicit Lending(Scanner& lender) noexcept : scanner(lender) { scanner.home = scanner.cursor; }
        ~Lending() {
            scanner.cursor = scanner.home;
            scanner.end = scanner.homeEnd;
        }
        Lending(const Lending&) = delete;
        Lending& operator=(const Lending&) = delete;

    private:
        Scanner& scanner;
    };

    /// Has another scanner go on from here, and then goes on behind it.
    template <typename Read>
    auto apart(const Read& read) {
        const Lending lending(*this);
        Scanner other(input);
        return read(other);
    }

    /// What a document may have.
    const QeXmlLimits& limits() const noexcept { return input.limits(); }

    const char* position() const noexcept { return cursor; }
    const char* limit() const noexcept { return end; }
    void goBackTo(const char* place) noexcept { cursor = place; }
    bool atEnd() const noexcept { return cursor == end; }

    /// The next byte, of which there must be one.
    char peek() const noexcept { return *cursor; }
    void skip(std::size_t count) noexcept { cursor += count; }
    void stepBack(std::size_t count) noexcept { cursor -= count; }

    /// Takes the next byte; raises an error at the end.
    char take() {
        if (cursor == end) raiseEnd();
        return *cursor++;
    }
    std::string_view take(std::size_t count);

    void skipSpace() noexcept {
        while (cursor != end && isSpace(*cursor))
            ++cursor;
    }

    /// Passes a name. The first character is examined by its class; of the others,
    /// everything past ASCII belongs to the name.
    RawName readName() {
        if (end - cursor >= NameBlock::Size) {
            const NameBlock block(cursor);
            if (block.isWhole()) {
                cursor += block.length();
                return {cursor - block.length(), block.length(), block.localStart()};
            }
        }
        return apart([](Scanner& scanner) { return scanner.readLongName(); });
    }

    /// Whether these bytes stand here, in front of that one.
    bool standsHere(std::string_view bytes, char next) const noexcept {
        if (static_cast<std::size_t>(end - cursor) <= bytes.size() || cursor[bytes.size()] != next) return false;
        return corvel::sameBytes(cursor, bytes.data(), bytes.size());
    }

    /// Passes white space and the name with its '='. If something else stands there, stops anywhere and returns false.
    bool passExpectedName(std::string_view name) noexcept {
        skipSpace();
        if (static_cast<std::size_t>(end - cursor) <= name.size() || cursor[name.size()] != '=') return false;
        const char* const start = cursor;
        cursor += name.size() + 1;
        return corvel::sameBytes(start, name.data(), name.size());
    }

    /// Reads a value with its quotes. If there is none, or a wrong one, stops anywhere and returns false.
    bool readValueInto(QeCString& value, bool expands);

    /// Reads a value with its quotes where that is short and stands for itself by the conforming rules: no
    /// references, and no white space but blanks. Else stays in front of it and returns false.
    bool readPlainValueInto(QeCString& value);

    /// Passes the equals sign of an attribute and the opening quote, which it returns.
    char readEqualsAndQuote();

    /// Passes a value and its closing quote. One without references is returned as it
    /// stands in the document; else its text goes behind that of `scratch`, and the
    /// result is a null view.
    std::string_view readValue(char quote, bool expands, QeCString& scratch);

    /// Reads a text of up to 31 bytes that ends at a tag, without a branch on its
    /// length: such lengths differ from text to text, and are mostly mispredicted.
    /// Else does nothing and returns false. More bytes can be given at which it does nothing.
    template <typename... Byte>
    bool readShortText(QeCString& text, Byte... others);

    /// Reads a text up to what needs thought in it. Returns whether that is the tag that ends it.
    template <typename... Byte>
    bool readTextRun(QeCString& text, Byte... others);

    /// Entered just after an '&'. Passes the name and the semicolon if that is one of the five predefined
    /// entities, and says which character it stands for.
    bool passPredefined(char& character) noexcept;

    /// Appends text up to the next '<', with references replaced and line ends made one line feed.
    void appendText(QeCString& text);

    /// Entered just after "<![". Appends the section's text as it stands, up to the first "]]>".
    void readCDATA(QeCString& text);

    /// Entered just after "<!-".
    void skipComment();

    /// Entered just after the target. Passes the first "?>".
    void skipInstruction();

    /// Entered just after "<!DOCTYPE". Nothing of the declaration is kept. Brackets are
    /// counted, quotes are not special: a '>' in a quoted identifier ends it.
    void skipDocumentType();

    /// Passes an equals sign, an opening quote, and the value to the next quote of either
    /// kind; what stands for the first two is not examined.
    std::string_view readPseudoValue();

    /// Raises an error at the cursor.
    [[noreturn]] void raise(const char* message) const { input.raiseAt(cursor, message); }
    [[noreturn]] void raiseWith(const char* message, std::string_view found) const {
        input.raiseAt(cursor, message, found);
    }

    /// Goes to the end, where something was missing. That is an error, unless more may come.
    [[noreturn]] void raiseEnd() {
        const char* const place = std::exchange(cursor, end);
        input.raiseEnd(place);
    }

private:
    RawName readLongName();
    RawName readNameSlowly(const char* from, std::size_t localStart);
    const char* passCharacter(const char* at, std::uint32_t& codePoint);
    void expandValue(QeCString& target, const char* start, char quote);
    bool readLongValueInto(QeCString& value, bool expands);
    std::string_view readReference(char (&encoded)[4]);
    std::string_view readNumericReference(std::string_view body, char (&encoded)[4]);

    const char* cursor;
    const char* end;
    const char*& home;
    const char* const& homeEnd;

protected:
    Input& input;
};

// Most values are short and without references. What is not is read apart, with nothing of
// this function but its arguments: it has registers enough then.
inline bool Scanner::readValueInto(QeCString& value, bool expands) {
    constexpr std::ptrdiff_t WindowSize = 32;
    if (cursor == end) return false;
    const char quote = *cursor;
    if (quote != '"' && quote != '\'') return false;
    if (end - cursor > WindowSize) {
        const std::size_t length = corvel::findIn32(cursor + 1, quote, '<', expands ? '&' : quote);
        if (length != WindowSize && cursor[1 + length] == quote) {
            corvel::StringAccess::assignFromWindow(value, cursor + 1, length);
            cursor += length + 2;
            return true;
        }
    }
    return apart([&value, expands](Scanner& scanner) { return scanner.readLongValueInto(value, expands); });
}

inline bool Scanner::readPlainValueInto(QeCString& value) {
    constexpr std::ptrdiff_t WindowSize = 32;
    if (end - cursor <= WindowSize) return false;
    const char quote = *cursor;
    if (quote != '"' && quote != '\'') return false;
    const std::size_t length = corvel::findIn32OrControl(cursor + 1, quote, '<', '&');
    if (length == WindowSize || cursor[1 + length] != quote) return false;
    corvel::StringAccess::assignFromWindow(value, cursor + 1, length);
    cursor += length + 2;
    return true;
}

template <typename... Byte>
inline bool Scanner::readShortText(QeCString& text, Byte... others) {
    constexpr std::ptrdiff_t WindowSize = 32;
    if (end - cursor <= WindowSize + 1) return false;
    const bool startsWithLine = cursor[0] == '\r' && cursor[1] == '\n';
    const char* const start = cursor + startsWithLine;
    const std::size_t length = corvel::findIn32(start, '<', '&', '\r', others...);
    const char* const stop = start + length;
    if (length == WindowSize || *stop != '<' || stop[1] == '!' || stop[1] == '?') return false;
    corvel::StringAccess::assignFromWindow(text, start, length);
    cursor = stop;
    return true;
}

}  // namespace tessit

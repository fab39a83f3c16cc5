#pragma once

#include <memory>
#include <stdexcept>
#include <voxal/u_string.h>

#include <corvel/c_string.h>
#include <corvel/exmsg.h>

struct URegularExpression;

/// A pattern that is invalid, or a search that was given up because it takes too long or too much memory.
class QeURegexError : public Qexmsg, public std::runtime_error {
public:
    explicit QeURegexError(const QeCString& msg) : Qexmsg(msg.data()), std::runtime_error(msg.data()) {}
};

/// What a search came to.
class QeURegexResult {
public:
    explicit QeURegexResult(bool wasFound) noexcept : found(wasFound) {}

    /// Whether the text holds a match.
    explicit operator bool() const noexcept { return found; }

private:
    bool found;
};

/// A regular expression in ICU's syntax, compiled once and searched for many times.
///
/// Nothing depends on the locale. ICU keeps what a search may come back to on a
/// heap stack: no text, however long, makes it recurse.
class QeURegularExpression {
public:
    /// The longest pattern, in bytes. Compiling takes quadratic time: a second for the worst of this length.
    static constexpr std::size_t LongestPattern = 64 * 1024;

    /// Compiles a pattern in UTF-8; the empty one matches everywhere. Throws
    /// `QeURegexError` for one that is invalid, naming the pattern and the place
    /// where it stops being valid, that is malformed UTF-8, or too long.
    explicit QeURegularExpression(const QeCString& source);

    const QeCString& getPattern() const noexcept { return pattern; }

    /// Whether the pattern matches anywhere in the text.
    ///
    /// Backtracks at first, which is quick for most texts, but quadratic for some and
    /// exponential for others. It ends after some ten million steps and 64 a unit of
    /// text, or with a stack of 8 MiB and 128 bytes a unit (at most 512 MiB); where a
    /// step can cost more than usual, after fewer. Plain patterns (`readPlainPattern`)
    /// are then searched for in one pass over the text, in time linear in it; for
    /// others, `QeURegexError` is thrown. Counted, not timed, so that the same search
    /// always comes to the same end. The expression can be used again.
    QeURegexResult search(const QeUString& text);

private:
    struct Close {
        void operator()(URegularExpression* expression) const noexcept;
    };

    void setLimits(std::size_t textLength);
    void releaseText() noexcept;
    QeURegexResult searchWithoutBacktracking(std::u16string_view text, const char* excess) const;

    QeCString pattern;
    std::unique_ptr<URegularExpression, Close> compiled;
};

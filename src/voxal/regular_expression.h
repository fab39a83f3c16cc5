#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <corvel/c_string.h>
#include <corvel/exmsg.h>

/// A pattern that is invalid, or a search that was given up because it takes too long or too much memory.
class QeURegexError : public Qexmsg, public std::runtime_error {
public:
    explicit QeURegexError(const QeCString& msg) : Qexmsg(msg.data()), std::runtime_error(msg.data()) {}
};

/// What a search came to.
class QeURegexResult {
public:
    QeURegexResult(bool wasFound, std::int64_t work) noexcept : found(wasFound), charged(work) {}

    /// Whether the text holds a match.
    explicit operator bool() const noexcept { return found; }

    /// The steps that the search was charged with.
    std::int64_t getWork() const noexcept { return charged; }

private:
    bool found;
    std::int64_t charged;
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

    QeURegularExpression(QeURegularExpression&&) noexcept;
    QeURegularExpression& operator=(QeURegularExpression&&) noexcept;
    ~QeURegularExpression();

    const QeCString& getPattern() const noexcept { return pattern; }

    /// Whether the pattern matches anywhere in the text, which is UTF-8: what is
    /// malformed in it counts as U+FFFD. O(text) to convert it.
    ///
    /// Throws `QeURegexError` when the text is longer than 2 GiB, and when the search takes more work than `SearchWork`
    /// allows, or a stack of more than 8 MiB and 128 bytes a unit of text (at most
    /// 512 MiB): the first is what ends a search that would take exponential time.
    /// Counted, not timed, so that the same search always comes to the same end. The
    /// expression can be used again.
    QeURegexResult search(std::string_view text);

private:
    struct Compiled;

    QeCString pattern;
    std::unique_ptr<Compiled> compiled;
};

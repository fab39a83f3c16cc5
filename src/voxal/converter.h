#pragma once

#include <memory>
#include <string_view>

#include <corvel/c_string.h>
#include <corvel/exmsg.h>

struct UConverter;

/// A character encoding that no converter is known for, or text that could not be converted.
class QeUConversionError : public Qexmsg {
public:
    explicit QeUConversionError(const QeCString& msg) : Qexmsg(msg.data()) {}
};

/// Converts bytes in a named encoding into UTF-8, by ICU's converters.
class QeUToUnicodeConverter {
public:
    /// Any name that ICU knows, whatever its case; throws `QeUConversionError` for
    /// others, and for names that hold more than letters, digits and a few signs:
    /// ICU would look for a file of that name.
    explicit QeUToUnicodeConverter(const QeCString& name);

    /// The text of `bytes`; what means nothing in the encoding becomes U+FFFD.
    /// Converts piece by piece: O(bytes) time, no other copy of the whole.
    QeCString toUtf8(std::string_view bytes) const;

    /// Whether both names stand for one encoding in another spelling. The byte
    /// order of UTF-16 and UTF-32 is taken as a matter of spelling.
    static bool sameEncoding(const QeCString& left, const QeCString& right);

private:
    struct Close {
        void operator()(UConverter* converter) const noexcept;
    };
    using Handle = std::unique_ptr<UConverter, Close>;

    static Handle open(const char* name);

    Handle source;
};

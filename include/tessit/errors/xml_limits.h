#pragma once

#include <cstdint>

#include <tessit/errors/xml_error.h>

/// What a document may have at most: a count of N passes, N + 1 is refused with a
/// `QeXmlLimitError`, in either mode. Without limits, memory and time alone bound it.
///
/// Counts are of what is delivered, expanded references, defaults and all that entities bring
/// included; of names and values also what a lenient reader drops, such as the first of two equal
/// attributes. Bytes are those of the text as UTF-8, but for `document`. Fields are set by name: later versions use
/// up the room behind them.
///
/// Of names, a conforming reader counts those in the document type, too, name tokens among them, and those of
/// references, but for the five predefined ones. For a lenient reader the document type has none, nor have references:
/// one that it does not know is text up to its semicolon, whatever that is.
struct QeXmlLimits {
    static constexpr std::uint64_t None = UINT64_MAX;

    std::uint64_t depth = None;       ///< elements within each other
    std::uint64_t attributes = None;  ///< of a tag, declarations of namespaces and declared defaults among them
    std::uint64_t bindings = None;  ///< of prefixes by the elements that are open, shadowed ones too; not that of `xml`
    std::uint64_t name = None;      ///< bytes of a name with its prefix: of tags, attributes, targets, and see above
    std::uint64_t value = None;     ///< bytes of an attribute's value
    std::uint64_t text = None;      ///< bytes of a text, a comment, or the data of an instruction
    std::uint64_t node = None;      ///< bytes as written of a tag, a text with all in it, a comment, ...
    std::uint64_t document = None;  ///< bytes of the input as it came

    /// @name For conforming readers
    /// @{
    std::uint64_t entityDepth = None;      ///< entities within each other, the external subset one of them
    std::uint64_t replacementText = None;  ///< bytes that entities and declared defaults bring, in all
    std::uint64_t declarations = None;     ///< in the document type
    /// @}

    std::uint64_t room[5] = {None, None, None, None, None};  ///< of no meaning yet

    /// For documents from people one does not know: far beyond what documents have that people exchange, and such that
    /// a reader holds some megabytes. docs/conforming.md has the reasons for each figure.
    static constexpr QeXmlLimits forStrangers() noexcept {
        QeXmlLimits limits;
        limits.depth = 512;
        limits.attributes = 512;
        limits.bindings = 512;
        limits.name = 1024;
        limits.value = std::uint64_t{1} << 20;
        limits.text = std::uint64_t{8} << 20;
        limits.node = std::uint64_t{10} << 20;
        limits.document = std::uint64_t{1} << 30;
        limits.entityDepth = 16;
        limits.replacementText = std::uint64_t{16} << 20;
        limits.declarations = 10'000;
        return limits;
    }
};

/// A document that has more of something than the program's limits allow.
class TESSIT_API QeXmlLimitError : public QeXmlParseError {
public:
    QeXmlLimitError(const QeXmlParseError& error, const QeCString& limitName, std::uint64_t most)
        : QeXmlParseError(error), limit(limitName), value(most) {}
    QeXmlLimitError(const QeXmlLimitError&) = default;
    QeXmlLimitError& operator=(const QeXmlLimitError&) = default;
    ~QeXmlLimitError() override;

    /// The name of the limit, as the field is called, and what it was set to.
    const QeCString& getLimit() const noexcept { return limit; }
    std::uint64_t getValue() const noexcept { return value; }

private:
    QeCString limit;
    std::uint64_t value;
};

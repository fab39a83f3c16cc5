#pragma once

#include <memory>
#include <vector>

#include <corvel/c_string.h>
#include <tessit/errors/xml_error.h>

/// Checks one value at a time against the facets of a schema type, and the size
/// of a repeated item against its bounds.
///
/// The application knows the facets: it calls one check for each, then asks
/// `isValid()`, and calls `clear()` before the next value. A check that fails
/// records a `QeXmlSchemaError` that names the item and throws nothing; only
/// patterns that cannot be used throw.
///
/// Results of patterns, enumeration values and bounds gather until `clear()`; of
/// lengths and white space, the last check counts. The list of errors only
/// grows, and has no say in the answer.
///
/// Texts are UTF-8. Every operation that stores something can throw
/// `std::bad_alloc`; after a throw, results and list are as they were. A copy
/// shares nothing with its original, and is O(bytes of the errors). One thread at a
/// time.
///
/// A check, `checkPattern` aside, is O(length of its texts); one that records an
/// error copies the texts, and the item's name, into the message. The list copies
/// the errors that it holds when it grows, amortised O(1) for each that is added.
/// `isValid()` and `getErrors` are O(1).
class TESSIT_API QeXmlValidator {
public:
    /// A validator of the item of that name, which every message quotes.
    explicit QeXmlValidator(const QeCString& itemName);

    QeXmlValidator(const QeXmlValidator&);
    QeXmlValidator(QeXmlValidator&&) noexcept;
    QeXmlValidator& operator=(const QeXmlValidator&);
    QeXmlValidator& operator=(QeXmlValidator&&) noexcept;
    ~QeXmlValidator();

    /// Whether the value has at least, or at most, as many bytes as the facet says.
    /// The facet is read as `atoi` does, in the "C" locale: white space, a sign,
    /// digits; anything else is 0. A negative limit counts as a very large one.
    bool checkMinLength(const QeCString& value, const QeCString& facetValue);
    bool checkMaxLength(const QeCString& value, const QeCString& facetValue);

    /// Whether the pattern matches anywhere in the value; to match the whole value,
    /// begin the pattern with `^(?:` and end it with `)\z`. Records no error: call
    /// `checkPatterns` once the last one was checked.
    ///
    /// Patterns are ICU regular expressions; nothing depends on the locale. In the
    /// value, malformed UTF-8 counts as U+FFFD. A library that was built without ICU
    /// throws for every pattern.
    ///
    /// Throws a `Qexmsg`, and counts as not called, when the pattern is invalid or
    /// malformed UTF-8 (the text names the pattern and the place), when it is longer
    /// than 64 KiB, and when matching takes too many steps or too much memory, as a
    /// pattern does that would take exponential time. A check takes at most 100 million
    /// steps: up to some seconds, whatever the value. A step in a long pattern counts
    /// for several; in one that looks around, all the more in a long value. Patterns that begin with '^' and have one
    /// way only to match take time linear in the value; those that begin with a repetition take quadratic time where
    /// they do not match, and reach the limit on some 10,000 characters. The stack takes at most 8 MiB and 128 bytes
    /// for each UTF-16 unit, up to 512 MiB.
    ///
    /// The last few patterns stay compiled, so that checking value after value
    /// against the same ones compiles nothing. Before it is matched, the value is
    /// converted to UTF-16, O(length); one of more than 2 GiB throws a `Qexmsg`, too.
    bool checkPattern(const QeCString& value, const QeCString& pattern);

    /// Whether no pattern was checked since the last `clear()`, or one matched; else records an error.
    bool checkPatterns();

    /// Whether the value equals this one, byte for byte. Records no error: call
    /// `checkEnumerations` once the last value was checked.
    bool checkEnumeration(const QeCString& value, const QeCString& enumerationValue);

    /// Whether no enumeration value was checked since the last `clear()`, or one was equal; else records an error.
    bool checkEnumerations();

    /// Whether the value obeys the facet: under "replace" it holds no tab, line feed
    /// or carriage return, under "collapse" no two blanks in a row. Any other facet
    /// allows everything.
    bool checkWhiteSpace(const QeCString& value, const QeCString& facetValue);

    /// Whether the size lies within the bounds. A bound of 0 or less is none.
    bool checkVectorBounds(int size, int minOccurs, int maxOccurs);

    /// Whether all checks were passed: of patterns and of enumeration values one,
    /// where any was checked.
    bool isValid() const noexcept;

    /// Takes the results and errors of `other`, a validator of a part, into this
    /// one and answers for both. Where both have checked patterns, both must have
    /// matched one; the same for enumeration values. When memory runs out, some of
    /// the errors may have been taken, but no result. O(bytes of the errors taken).
    bool isValid(const QeXmlValidator& other);
    bool isValid(QeXmlValidator& other) { return isValid(static_cast<const QeXmlValidator&>(other)); }

    /// The recorded errors, the oldest first. The reference lives as long as the
    /// validator, its elements until the list next grows or is emptied.
    const std::vector<QeXmlSchemaError>& getErrors() const noexcept { return errors; }

    /// Appends an error of the application's own. The answer stays as it is. O(length
    /// of its text), and the growth of the list.
    void addError(QeXmlSchemaError error);

    /// Back to the state of a new validator of the same name, with its compiled
    /// patterns kept. O(errors).
    void clear() noexcept;

    /// Empties the list of errors; results stay. O(errors).
    void clearErrors() noexcept;

private:
    // The patterns that were checked last, compiled. Each validator has its own: a copy starts without any.
    class CompiledPatterns {
    public:
        TESSIT_NO_EXPORT CompiledPatterns() noexcept;
        TESSIT_NO_EXPORT CompiledPatterns(const CompiledPatterns&) noexcept;
        CompiledPatterns& operator=(const CompiledPatterns&) noexcept { return *this; }
        TESSIT_NO_EXPORT ~CompiledPatterns();

        TESSIT_NO_EXPORT bool match(const QeCString& value, const QeCString& pattern);

    private:
        class Cache;
        std::unique_ptr<Cache> cache;
    };

    TESSIT_NO_EXPORT void recordFacet(const char* label, const QeCString& value, const QeCString& facetValue);
    TESSIT_NO_EXPORT bool requireMatch(bool checked, bool matched, const char* label);

    QeCString name;
    std::vector<QeXmlSchemaError> errors;
    bool minLengthOk = true;
    bool maxLengthOk = true;
    bool patternMatched = false;
    bool patternChecked = false;
    bool enumerationMatched = false;
    bool enumerationChecked = false;
    bool whiteSpaceOk = true;
    bool boundsOk = true;
    CompiledPatterns compiledPatterns;
};

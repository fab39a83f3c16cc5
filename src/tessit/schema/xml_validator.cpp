#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <voxal/regular_expression.h>

#include <tessit/schema/xml_validator.h>

// A handful of expressions, the one used last in front.
class QeXmlValidator::CompiledPatterns::Cache {
public:
    // Strong guarantee; O(patterns kept).
    QeURegularExpression& get(const QeCString& pattern) {
        auto found = std::find_if(kept.begin(), kept.end(), [&](const QeURegularExpression& expression) {
            return expression.getPattern() == pattern;
        });
        if (found == kept.end()) {
            QeURegularExpression compiled(pattern);
            if (kept.size() == MostKept) kept.pop_back();
            found = kept.insert(kept.end(), std::move(compiled));
        }
        std::rotate(kept.begin(), found, found + 1);
        return kept.front();
    }

private:
    // More than types have patterns; few enough to look through.
    static constexpr std::size_t MostKept = 32;

    std::vector<QeURegularExpression> kept;
};

QeXmlValidator::CompiledPatterns::CompiledPatterns() noexcept = default;
QeXmlValidator::CompiledPatterns::CompiledPatterns(const CompiledPatterns&) noexcept {}
QeXmlValidator::CompiledPatterns::~CompiledPatterns() = default;

bool QeXmlValidator::CompiledPatterns::match(const QeCString& value, const QeCString& pattern) {
    if (cache == nullptr) cache = std::make_unique<Cache>();
    return static_cast<bool>(cache->get(pattern).search(value));
}

QeXmlValidator::QeXmlValidator(const QeCString& itemName) : name(itemName) {}
QeXmlValidator::QeXmlValidator(const QeXmlValidator&) = default;
QeXmlValidator::QeXmlValidator(QeXmlValidator&&) noexcept = default;
QeXmlValidator& QeXmlValidator::operator=(const QeXmlValidator&) = default;
QeXmlValidator& QeXmlValidator::operator=(QeXmlValidator&&) noexcept = default;
QeXmlValidator::~QeXmlValidator() = default;

namespace {

// Reads a number as `atoi` does, but beyond an `int` too. A negative one becomes very large.
std::uint64_t readLimit(std::string_view text) {
    constexpr std::int64_t Enough = 100'000'000'000'000'000;  // longer than any text; another digit still fits
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    std::int64_t number = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') break;
        if (number < Enough) number = number * 10 + (digit - '0');
    }
    return static_cast<std::uint64_t>(negative ? -number : number);
}

}  // namespace

void QeXmlValidator::recordFacet(const char* label, const QeCString& value, const QeCString& facetValue) {
    addError(QeXmlSchemaError(label + name + " value = " + value + " facet value = " + facetValue));
}

bool QeXmlValidator::checkMinLength(const QeCString& value, const QeCString& facetValue) {
    const bool ok = value.length() >= readLimit(facetValue);
    if (!ok) recordFacet("MinLength error in: ", value, facetValue);
    return minLengthOk = ok;
}

bool QeXmlValidator::checkMaxLength(const QeCString& value, const QeCString& facetValue) {
    const bool ok = value.length() <= readLimit(facetValue);
    if (!ok) recordFacet("MaxLength error in: ", value, facetValue);
    return maxLengthOk = ok;
}

bool QeXmlValidator::checkPattern(const QeCString& value, const QeCString& pattern) {
    const bool matched = compiledPatterns.match(value, pattern);
    patternChecked = true;
    patternMatched = patternMatched || matched;
    return matched;
}

bool QeXmlValidator::requireMatch(bool checked, bool matched, const char* label) {
    const bool ok = !checked || matched;
    if (!ok) addError(QeXmlSchemaError(label + name));
    return ok;
}

bool QeXmlValidator::checkPatterns() {
    return requireMatch(patternChecked, patternMatched, "Pattern error in: ");
}

bool QeXmlValidator::checkEnumeration(const QeCString& value, const QeCString& enumerationValue) {
    const bool equal = value == enumerationValue;
    enumerationChecked = true;
    enumerationMatched = enumerationMatched || equal;
    return equal;
}

bool QeXmlValidator::checkEnumerations() {
    return requireMatch(enumerationChecked, enumerationMatched, "Enumeration error in: ");
}

namespace {

bool obeysWhiteSpace(const QeCString& value, const QeCString& facetValue) {
    if (facetValue == "replace") return value.findFirstOf("\t\n\r") == QeCString::npos;
    if (facetValue == "collapse") return value.find("  ") == QeCString::npos;
    return true;
}

}  // namespace

bool QeXmlValidator::checkWhiteSpace(const QeCString& value, const QeCString& facetValue) {
    const bool ok = obeysWhiteSpace(value, facetValue);
    if (!ok) recordFacet("Whitespace error in: ", value, facetValue);
    return whiteSpaceOk = ok;
}

bool QeXmlValidator::checkVectorBounds(int size, int minOccurs, int maxOccurs) {
    const bool ok = (minOccurs <= 0 || size >= minOccurs) && (maxOccurs <= 0 || size <= maxOccurs);
    if (!ok)
        addError(QeXmlSchemaError("Bounds error in: " + name + "size = " + std::to_string(size) + " minOccurs = " +
                                  std::to_string(minOccurs) + " maxOccurs = " + std::to_string(maxOccurs)));
    boundsOk = boundsOk && ok;
    return ok;
}

bool QeXmlValidator::isValid() const noexcept {
    return (!enumerationChecked || enumerationMatched) && (!patternChecked || patternMatched) && minLengthOk &&
           maxLengthOk && whiteSpaceOk && boundsOk;
}

namespace {

// What is known of a kind of check of which one has to succeed, after a part's checks of the kind were added.
void mergeMatches(bool& checked, bool& matched, bool otherChecked, bool otherMatched) {
    if (!otherChecked) return;
    matched = otherMatched && (!checked || matched);
    checked = true;
}

}  // namespace

bool QeXmlValidator::isValid(const QeXmlValidator& other) {
    const std::size_t added = other.errors.size();  // counted before: `other` may be this validator
    for (std::size_t i = 0; i < added; ++i)
        addError(other.errors[i]);
    mergeMatches(enumerationChecked, enumerationMatched, other.enumerationChecked, other.enumerationMatched);
    mergeMatches(patternChecked, patternMatched, other.patternChecked, other.patternMatched);
    minLengthOk = minLengthOk && other.minLengthOk;
    maxLengthOk = maxLengthOk && other.maxLengthOk;
    whiteSpaceOk = whiteSpaceOk && other.whiteSpaceOk;
    boundsOk = boundsOk && other.boundsOk;
    return isValid();
}

void QeXmlValidator::addError(QeXmlSchemaError error) {
    errors.push_back(std::move(error));
}

void QeXmlValidator::clear() noexcept {
    minLengthOk = maxLengthOk = whiteSpaceOk = boundsOk = true;
    patternChecked = patternMatched = enumerationChecked = enumerationMatched = false;
    clearErrors();
}

void QeXmlValidator::clearErrors() noexcept {
    errors.clear();
}

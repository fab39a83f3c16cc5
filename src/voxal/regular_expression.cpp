#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unicode/uregex.h>
#include <unicode/ustring.h>
#include <voxal/regular_expression.h>
#include <voxal/search_work.h>

#include <corvel/value_message.h>

namespace {

struct Reason {
    UErrorCode code;
    const char* words;
};

constexpr Reason Reasons[] = {
    {U_ILLEGAL_CHAR_FOUND, "unknown character name"},
    {U_ILLEGAL_ARGUMENT_ERROR, "unknown character property"},
    {U_REGEX_INTERNAL_ERROR, "groups or sets are nested too deeply"},
    {U_REGEX_RULE_SYNTAX, "this cannot stand here"},
    {U_REGEX_BAD_ESCAPE_SEQUENCE, "unknown escape sequence"},
    {U_REGEX_PROPERTY_SYNTAX, "unknown character property"},
    {U_REGEX_UNIMPLEMENTED, "this is not supported"},
    {U_REGEX_MISMATCHED_PAREN, "a parenthesis has no counterpart"},
    {U_REGEX_NUMBER_TOO_BIG, "the number is too large"},
    {U_REGEX_BAD_INTERVAL, "a repetition in braces is incomplete"},
    {U_REGEX_MAX_LT_MIN, "the repetition's maximum is less than its minimum"},
    {U_REGEX_INVALID_BACK_REF, "there is no group of that number"},
    {U_REGEX_INVALID_FLAG, "unknown flag"},
    {U_REGEX_LOOK_BEHIND_LIMIT, "what stands behind the place must have a limited length"},
    {U_REGEX_MISSING_CLOSE_BRACKET, "a set has no closing bracket"},
    {U_REGEX_INVALID_RANGE, "the range has no end, or one before its beginning"},
    {U_REGEX_PATTERN_TOO_BIG, "the pattern is too large"},
    {U_REGEX_INVALID_CAPTURE_GROUP_NAME, "unknown or malformed group name"},
};

const char* describe(UErrorCode code) {
    const auto found = std::find_if(std::begin(Reasons), std::end(Reasons),
                                    [code](const Reason& reason) { return reason.code == code; });
    return found != std::end(Reasons) ? found->words : "this cannot be compiled";
}

QeCString quote(const QeCString& pattern) {
    return "'" + pattern + "'";
}

[[noreturn]] void raiseInvalid(const QeCString& pattern, const std::string& place, const char* reason) {
    throw QeURegexError("Invalid pattern " + quote(pattern) + place + ": " + reason);
}

[[noreturn]] void raiseTooLong(const QeCString& pattern) {
    constexpr std::size_t Limit = QeURegularExpression::LongestPattern;
    const QeCString begin(corvel::front(pattern));
    const std::string place = "at byte " + std::to_string(Limit), length = std::to_string(pattern.length());
    throw QeURegexError("Invalid pattern '" + begin + "...' " + place + ": its " + length + " bytes are more than " +
                        std::to_string(Limit));
}

void requireSuccess(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status)) throw QeURegexError("the pattern cannot be searched for");
}

// Each malformed sequence becomes U+FFFD. ICU cannot count more than 2 GiB.
std::u16string toUtf16(std::string_view utf8) {
    constexpr UChar32 Replacement = 0xFFFD;
    if (utf8.size() > std::numeric_limits<std::int32_t>::max())
        throw QeURegexError("a text of more than 2 GiB cannot be held against a pattern");
    const auto length = static_cast<std::int32_t>(utf8.size());
    std::u16string text(utf8.size(), u'\0');  // no byte makes more than one unit
    std::int32_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(text.data(), length, &written, utf8.data(), length, Replacement, nullptr, &status);
    requireSuccess(status);
    text.resize(static_cast<std::size_t>(written));
    return text;
}

URegularExpression* open(std::u16string_view pattern, UParseError& place, UErrorCode& status) {
    // Other dialects' escapes would stand for their letters otherwise, and patterns silently mean something else.
    constexpr std::uint32_t Flags = UREGEX_ERROR_ON_UNKNOWN_ESCAPES;
    return uregex_open(pattern.data(), static_cast<std::int32_t>(pattern.size()), Flags, &place, &status);
}

// The length of the shortest front of an invalid pattern that is invalid for the
// same reason. Compiles some ten to twenty of them.
std::size_t failingLength(std::u16string_view pattern, UErrorCode reason) {
    std::size_t valid = 0, failing = pattern.size();
    while (failing - valid > 1) {
        const std::size_t length = valid + (failing - valid) / 2;
        UParseError place{};
        UErrorCode status = U_ZERO_ERROR;
        uregex_close(open(pattern.substr(0, length), place, status));
        (status == reason ? failing : valid) = length;
    }
    return failing;
}

std::int32_t toCount(std::ptrdiff_t count) {
    return static_cast<std::int32_t>(count);
}

// ICU does not know the place of every error, such as an unknown name.
void findPlace(UParseError& place, std::u16string_view pattern, UErrorCode reason) {
    const std::u16string_view failing = pattern.substr(0, failingLength(pattern, reason));
    const std::u16string_view line = failing.substr(failing.rfind(u'\n') + 1);
    const auto continues = [](char16_t unit) { return (unit & 0xFC00) == 0xDC00; };  // a surrogate pair
    place.line = 1 + toCount(std::ranges::count(failing, u'\n'));
    place.offset = toCount(std::ssize(line) - std::ranges::count_if(line, continues));
}

// Lines and characters count from 1.
std::string describePlace(const UParseError& place) {
    return " at line " + std::to_string(place.line) + ", character " + std::to_string(place.offset);
}

// How many bytes a unit takes in UTF-8. Of a surrogate pair's four, each has two.
std::size_t utf8Length(char16_t unit) {
    const bool isSurrogate = (unit & 0xF800) == 0xD800;
    return unit < 0x80 ? 1 : unit < 0x800 || isSurrogate ? 2 : 3;
}

// A pattern is its author's own text: what is not UTF-8 in it is a mistake, and
// not to be replaced silently. `units` is the pattern with replacements.
void requireUtf8(const QeCString& pattern, std::u16string_view units) {
    std::size_t at = 0;
    for (const char16_t unit : units) {
        if (unit == 0xFFFD && !pattern.substring(at).starts_with("\xEF\xBF\xBD"))
            raiseInvalid(pattern, " at byte " + std::to_string(at), "malformed UTF-8");
        at += utf8Length(unit);
    }
}

}  // namespace

// What a pattern was compiled to, and how far it looks.
struct QeURegularExpression::Compiled {
    Compiled(const QeCString& pattern, std::u16string_view units);
    Compiled(const Compiled&) = delete;
    Compiled& operator=(const Compiled&) = delete;
    ~Compiled() { uregex_close(expression); }

    void begin(voxal::SearchWork& work, std::u16string_view text);
    void releaseText() noexcept;

    voxal::PatternSight sight;
    URegularExpression* expression;
};

QeURegularExpression::Compiled::Compiled(const QeCString& pattern, std::u16string_view units) : sight(pattern) {
    UParseError place{};
    UErrorCode status = U_ZERO_ERROR;
    expression = open(units, place, status);
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_SUCCESS(status)) return;
    if (place.line < 1) findPlace(place, units, status);
    raiseInvalid(pattern, describePlace(place), describe(status));
}

QeURegularExpression::QeURegularExpression(const QeCString& source) : pattern(source) {
    if (pattern.length() > LongestPattern) raiseTooLong(pattern);
    const std::u16string units = toUtf16(pattern);
    requireUtf8(pattern, units);
    compiled = std::make_unique<Compiled>(pattern, pattern.empty() ? u"(?:)" : units);  // ICU refuses an empty one
}

QeURegularExpression::QeURegularExpression(QeURegularExpression&&) noexcept = default;
QeURegularExpression& QeURegularExpression::operator=(QeURegularExpression&&) noexcept = default;
QeURegularExpression::~QeURegularExpression() = default;

namespace {

std::int32_t stackLimit(std::int64_t textLength) {
    constexpr std::int64_t MiB = 1024 * 1024;
    return static_cast<std::int32_t>(std::min(8 * MiB + 128 * textLength, 512 * MiB));
}

voxal::SearchWork& workOf(const void* context) {
    return *const_cast<voxal::SearchWork*>(static_cast<const voxal::SearchWork*>(context));
}

UBool U_CALLCONV chargeStart(const void* context, std::int64_t) {
    return workOf(context).chargeStart();
}

UBool U_CALLCONV chargeSteps(const void* context, std::int32_t) {
    return workOf(context).chargeSteps();
}

}  // namespace

// Has ICU ask `work` at each place where a match is tried, and after each portion of steps.
void QeURegularExpression::Compiled::begin(voxal::SearchWork& work, std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    uregex_setFindProgressCallback(expression, chargeStart, &work, &status);
    uregex_setMatchCallback(expression, chargeSteps, &work, &status);
    uregex_setStackLimit(expression, stackLimit(std::ssize(text)), &status);
    uregex_setText(expression, text.data(), static_cast<std::int32_t>(text.size()), &status);
    requireSuccess(status);
}

// Lets go of the caller's text, and of the stack that a long one made grow.
void QeURegularExpression::Compiled::releaseText() noexcept {
    constexpr std::int32_t KeptStack = 64 * 1024;
    UErrorCode status = U_ZERO_ERROR;
    uregex_setText(expression, u"", 0, &status);
    uregex_setStackLimit(expression, KeptStack, &status);
}

namespace {

[[noreturn]] void raiseTooMuch(const char* what, const QeCString& pattern, std::u16string_view text) {
    throw QeURegexError("Pattern " + quote(pattern) + " takes too " + what + " on a text of " +
                        std::to_string(text.size()) + " UTF-16 units");
}

}  // namespace

QeURegexResult QeURegularExpression::search(std::string_view text) {
    const std::u16string units = toUtf16(text);
    voxal::SearchWork work(compiled->sight, units);
    if (!work.affordsPortion()) raiseTooMuch("many steps", pattern, units);
    compiled->begin(work, units);
    UErrorCode status = U_ZERO_ERROR;
    const bool found = uregex_find(compiled->expression, 0, &status);
    compiled->releaseText();
    if (status == U_REGEX_STOPPED_BY_CALLER) raiseTooMuch("many steps", pattern, units);
    if (status == U_REGEX_STACK_OVERFLOW) raiseTooMuch("much memory", pattern, units);
    requireSuccess(status);
    return {found, work.charged()};
}

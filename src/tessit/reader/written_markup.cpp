// What is known to be whole is gone through in few steps: nothing in it is wrong.

#include <algorithm>
#include <tuple>

#include <corvel/byte_scan.h>
#include <tessit/reader/char_class.h>
#include <tessit/reader/written_markup.h>

namespace tessit {

namespace {

const char* behindText(const char* from, const char* limit, std::string_view text) noexcept {
    const char* const found = corvel::findText(from, limit, text);
    return found == limit ? nullptr : found + text.size();
}

bool endsName(char byte) noexcept {
    return isSpace(byte) || byte == '/' || byte == '>';
}

// The closing quote of a value, from behind the opening one on; the limit where there is none.
const char* endOfValue(const char* at, const char* limit, char quote, bool expands) noexcept {
    for (;;) {
        at = corvel::findAny(at, limit, quote, expands ? '&' : quote);
        if (at == limit || *at == quote) return at;
        at = corvel::findByte(at, limit, ';');
    }
}

// Quotes are those of values: nothing else in a tag may hold one.
const char* endOfTag(const char* at, const char* limit, bool expands) noexcept {
    for (;;) {
        at = corvel::findAny(at, limit, '>', '"', '\'');
        if (at == limit) return nullptr;
        if (*at == '>') return at + 1;
        const char* const quote = endOfValue(at + 1, limit, *at, expands);
        if (quote == limit) return nullptr;
        at = quote + 1;
    }
}

// Brackets have to pair up.
const char* endOfDocumentType(const char* at, const char* limit) noexcept {
    for (std::ptrdiff_t brackets = 0; (at = corvel::findAny(at, limit, '[', ']', '>')) != limit; ++at) {
        if (*at == '[') ++brackets;
        if (*at == ']') --brackets;
        if (*at == '>' && brackets == 0) return at + 1;
    }
    return nullptr;
}

}  // namespace

const char* endOfMarkup(const char* begin, const char* limit, bool expands) noexcept {
    const std::string_view markup(begin, static_cast<std::size_t>(limit - begin));
    if (markup.starts_with("<!--")) return behindText(begin + 4, limit, "-->");
    if (markup.starts_with("<![")) return behindText(begin, limit, "]]>");
    constexpr std::string_view Declaration = "<?xml";
    if (markup.starts_with(Declaration) && markup.size() > Declaration.size() && isSpace(markup[Declaration.size()]))
        return endOfTag(begin, limit, false);  // for a lenient reader, its end is a '>'
    if (markup.starts_with("<?")) return behindText(begin + 2, limit, "?>");
    return markup.starts_with("<!") ? endOfDocumentType(begin, limit) : endOfTag(begin, limit, expands);
}

std::string_view nameInTag(const char* begin, std::size_t most) noexcept {
    const char* const first = begin + (begin[1] == '/' ? 2 : 1);
    const char* last = first;
    while (static_cast<std::size_t>(last - first) != most && !endsName(*last))
        ++last;
    return {first, static_cast<std::size_t>(last - first)};
}

namespace {

constexpr std::size_t Few = 16;

bool isBefore(const WrittenAttributes::Attribute& left, const WrittenAttributes::Attribute& right) noexcept {
    return left.name < right.name;
}

}  // namespace

// Looks for ends all the same: how references count can have been set anew since the tag was read.
void WrittenAttributes::lookThrough(const char* tag, const char* limit, bool expands) {
    attributes.clear();
    lastTag = nullptr;  // until all is there: an insertion can throw
    for (const char* at = nameInTag(tag).end();;) {
        while (at != limit && isSpace(*at))
            ++at;
        const char* const name = at;
        while (at != limit && !endsName(*at) && *at != '=')
            ++at;
        std::string_view whole(name, static_cast<std::size_t>(at - name));
        if (whole.starts_with(':')) whole.remove_prefix(1);  // of an empty prefix, nothing is delivered
        const char* const quote = corvel::findAny(at, limit, '"', '\'', '>');
        if (whole.empty() || quote == limit || *quote == '>') break;
        at = endOfValue(quote + 1, limit, *quote, expands);
        if (at == limit) break;
        attributes.push_back({whole, {quote + 1, static_cast<std::size_t>(at - quote - 1)}});
        ++at;
    }
    if (attributes.size() > Few) std::stable_sort(attributes.begin(), attributes.end(), isBefore);
    lastTag = tag;
}

std::optional<WrittenAttributes::Attribute> WrittenAttributes::find(const char* tag, const char* limit, bool expands,
                                                                    std::string_view name) {
    if (tag != lastTag) lookThrough(tag, limit, expands);
    const bool isSorted = attributes.size() > Few;
    const Attribute sought{name, {}};
    auto first = attributes.begin(), last = attributes.end();
    if (isSorted) std::tie(first, last) = std::equal_range(first, last, sought, isBefore);
    const auto hasName = [name](const Attribute& attribute) { return attribute.name == name; };
    first = std::find_if(first, last, hasName);
    if (first == last) return std::nullopt;
    while (!hasName(*(last - 1)))
        --last;
    return Attribute{first->name, (last - 1)->value};
}

}  // namespace tessit

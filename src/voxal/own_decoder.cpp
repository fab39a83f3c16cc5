// The encodings that need no tables, for libraries that are built without ICU.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <voxal/converter.h>
#include <voxal/decoder.h>
#include <voxal/transcode.h>

namespace voxal {

namespace {

constexpr char32_t Replacement = 0xFFFD;

// How the bytes of a character are put together.
enum Form { AsTheyAre, Latin1, Utf16, Utf32 };

struct KnownEncoding {
    std::string_view canonical;
    Form form;
    bool bigEndian = true;
};

// Without a mark, and where the name tells no order, the most significant byte comes first.
constexpr KnownEncoding Encodings[] = {
    {"UTF-8", AsTheyAre}, {"US-ASCII", AsTheyAre}, {"ISO-8859-1", Latin1},
    {"UTF-16", Utf16},    {"UTF-16BE", Utf16},     {"UTF-16LE", Utf16, false},
    {"UTF-32", Utf32},    {"UTF-32BE", Utf32},     {"UTF-32LE", Utf32, false},
};

constexpr struct {
    std::string_view name, canonical;
} Aliases[] = {{"ASCII", "US-ASCII"},
               {"latin1", "ISO-8859-1"},
               {"l1", "ISO-8859-1"},
               {"ISO-10646-UCS-2", "UTF-16"},
               {"ISO-10646-UCS-4", "UTF-32"}};

// The next byte of a name that counts, as a small letter; NUL at its end.
char takeLetter(std::string_view& name) {
    const std::size_t first = std::min(name.find_first_not_of("-_"), name.size());
    const char letter = first == name.size() ? '\0' : name[first];
    name.remove_prefix(std::min(first + 1, name.size()));
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

// Whatever the case; hyphens and underlines do not count.
bool isSameName(std::string_view left, std::string_view right) {
    for (;;) {
        const char letter = takeLetter(left);
        if (letter != takeLetter(right)) return false;
        if (letter == '\0') return true;
    }
}

const KnownEncoding* findEncoding(std::string_view name) {
    for (const auto& alias : Aliases)
        if (isSameName(name, alias.name)) name = alias.canonical;
    const auto found = std::find_if(std::begin(Encodings), std::end(Encodings), [&](const KnownEncoding& encoding) {
        return isSameName(name, encoding.canonical);
    });
    return found == std::end(Encodings) ? nullptr : found;
}

bool isHighSurrogate(char32_t unit) {
    return (unit & 0xFFFFFC00) == 0xD800;
}

bool isLowSurrogate(char32_t unit) {
    return (unit & 0xFFFFFC00) == 0xDC00;
}

// Gathers the bytes of one character.
class OwnDecoder : public Decoder {
public:
    OwnDecoder(const KnownEncoding& known, Malformed malformed) : encoding(known), onMalformed(malformed) {}

    bool decode(const char*& at, const char* end, bool isLast, char*& out, const char* outEnd) override {
        for (; at != end && !hasEnded(); ++at) {
            if (outEnd - out < 8)
                return false;  // two characters: a high surrogate's, and what stands in its pair's place
            take(static_cast<unsigned char>(*at), out);
        }
        if (!isLast || hasEnded()) return true;
        if (high != 0)
            putMalformed(out, high, unitLength());
        else if (count != 0)
            putMalformed(out, unit, count);
        unit = high = 0;
        count = 0;
        return true;
    }

private:
    unsigned unitLength() const { return encoding.form == Utf32 ? 4 : encoding.form == Utf16 ? 2 : 1; }

    // Where a byte of a unit has its bits.
    unsigned shiftOf(unsigned byte) const { return 8 * (encoding.bigEndian ? unitLength() - 1 - byte : byte); }

    void take(unsigned char byte, char*& out) {
        if (encoding.form == AsTheyAre) {
            *out++ = static_cast<char>(byte);
            return;
        }
        unit |= char32_t{byte} << shiftOf(count);
        if (++count < unitLength()) return;
        takeUnit(out);
        unit = 0;
        count = 0;
    }

    void takeUnit(char*& out) {
        if (encoding.form == Utf16 && high != 0 && isLowSurrogate(unit)) {
            out = putUtf8(out, ((high - 0xD800) << 10) + (unit - 0xDC00) + 0x10000);
            high = 0;
            return;
        }
        if (high != 0) putMalformed(out, high, unitLength());
        if (hasEnded()) return;
        high = encoding.form == Utf16 && isHighSurrogate(unit) ? unit : 0;
        if (high != 0) return;
        if (unit <= 0x10FFFF && !isHighSurrogate(unit) && !isLowSurrogate(unit))
            out = putUtf8(out, unit);
        else
            putMalformed(out, unit, unitLength());
    }

    // So many bytes of a unit.
    void putMalformed(char*& out, char32_t bits, unsigned bytes) {
        if (onMalformed == Malformed::Replaced) {
            out = putUtf8(out, Replacement);
            return;
        }
        char found[4];
        for (unsigned i = 0; i < bytes; ++i)
            found[i] = static_cast<char>(bits >> shiftOf(i));
        endAt({found, bytes});
    }

    const KnownEncoding& encoding;
    Malformed onMalformed;
    char32_t unit = 0;   // as far as it is known
    unsigned count = 0;  // its bytes
    char32_t high = 0;   // a high surrogate whose pair is to come
};

}  // namespace

std::unique_ptr<Decoder> openDecoder(const QeCString& name, Malformed malformed) {
    const KnownEncoding* known = findEncoding(name);
    if (known == nullptr) throw QeUConversionError("this library was built without ICU, and has no converter for it");
    return std::make_unique<OwnDecoder>(*known, malformed);
}

std::string_view canonicalName(const QeCString& name) {
    const KnownEncoding* known = findEncoding(name);
    return known == nullptr ? std::string_view() : known->canonical;
}

}  // namespace voxal

#pragma once

#include <cstdint>
#include <string_view>
#include <type_traits>

/// What every library has to do with a document to be compared: look at all of it.
namespace tessit::benchmarks {

/// How many strings of one kind there were, how many units (bytes, or UTF-16 units)
/// they have together, and the sum of their first and last units: that cannot be
/// told without having each string at hand.
struct StringSum {
    std::uint64_t count = 0;
    std::uint64_t units = 0;
    std::uint64_t ends = 0;

    template <typename Char>
    void add(std::basic_string_view<Char> text) {
        add(text, text);
    }

    /// A string that is delivered in two pieces with something of `between` units in the middle.
    template <typename Char>
    void add(std::basic_string_view<Char> head, std::basic_string_view<Char> tail, std::size_t between) {
        add(head, tail);
        units += head.size() + between;
    }

    StringSum& operator+=(const StringSum& other) {
        count += other.count;
        units += other.units;
        ends += other.ends;
        return *this;
    }

    StringSum& operator-=(const StringSum& other) {
        count -= other.count;
        units -= other.units;
        ends -= other.ends;
        return *this;
    }

private:
    friend class Tally;

    template <typename Char>
    static std::uint64_t valueOf(Char unit) {
        if constexpr (std::is_same_v<Char, char>)
            return static_cast<unsigned char>(unit);
        else
            return unit;
    }

    template <typename Char>
    void add(std::basic_string_view<Char> head, std::basic_string_view<Char> tail) {
        ++count;
        units += tail.size();
        if (!head.empty()) ends += valueOf(head.front());
        if (!tail.empty()) ends += valueOf(tail.back());
    }
};

/// The elements, attributes and texts of a document.
///
/// Libraries cut texts differently (at references, line ends, buffer borders, CDATA
/// sections, comments), so pieces up to the next tag are put together here: they
/// count as one text. That is why the ends of elements are reported too.
class Tally {
public:
    /// A start tag. The name is the one written, with its prefix.
    template <typename Char>
    void element(std::basic_string_view<Char> name) {
        tag();
        ++elements;
        names.add(name);
    }

    /// The same by its parts, with the namespace that it is in.
    template <typename Char>
    void element(std::basic_string_view<Char> prefix, std::basic_string_view<Char> local,
                 std::basic_string_view<Char> uri) {
        tag();
        ++elements;
        addName(prefix, local);
        addUri(uri);
    }

    /// An attribute; namespace declarations count as attributes, and their names are in no namespace.
    template <typename Char>
    void attribute(std::basic_string_view<Char> name, std::basic_string_view<Char> value) {
        names.add(name);
        values.add(value);
    }

    template <typename Char>
    void attribute(std::basic_string_view<Char> prefix, std::basic_string_view<Char> local,
                   std::basic_string_view<Char> uri, std::basic_string_view<Char> value) {
        addName(prefix, local);
        addUri(uri);
        values.add(value);
    }

    /// For names that come whole.
    template <typename Char>
    void addUri(std::basic_string_view<Char> uri) {
        if (!uri.empty()) uris.add(uri);
    }

    template <typename Char>
    void text(std::basic_string_view<Char> piece) {
        if (piece.empty()) return;
        if (!insideText) {
            insideText = true;
            ++texts.count;
            texts.ends += StringSum::valueOf(piece.front());
        }
        texts.units += piece.size();
        lastUnit = StringSum::valueOf(piece.back());
    }

    /// The end of an element.
    void elementEnd() { tag(); }

    /// Adds what was counted in another document.
    Tally& operator+=(const Tally& other) {
        elements += other.elements;
        names += other.names;
        values += other.values;
        texts += other.texts;
        uris += other.uris;
        return *this;
    }

    std::uint64_t nodes() const { return elements + texts.count; }

    std::uint64_t elements = 0;
    StringSum names;  // of elements and attributes
    StringSum values;
    StringSum texts;
    StringSum uris;

private:
    void tag() {
        if (insideText) texts.ends += lastUnit;
        insideText = false;
    }

    template <typename Char>
    void addName(std::basic_string_view<Char> prefix, std::basic_string_view<Char> local) {
        if (prefix.empty())
            names.add(local);
        else
            names.add(prefix, local, 1);
    }

    bool insideText = false;
    std::uint64_t lastUnit = 0;
};

}  // namespace tessit::benchmarks

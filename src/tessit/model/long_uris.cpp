#include <utility>

#include <corvel/keyed_hash.h>
#include <tessit/model/long_uris.h>

namespace tessit {

LongUris::LongUris() = default;
LongUris::~LongUris() = default;

std::size_t LongUris::Hash::operator()(std::string_view text) const noexcept {
    return static_cast<std::size_t>(keyedHash(text, HashSecret::ofProcess()));
}

const LongUris::Known* LongUris::find(const QeCString& uri) {
    if (!uri.isShared()) return findText(uri);
    if (const Known* const known = findPlace(uri)) return known;
    const Known* const known = findText(uri);
    if (known != nullptr) keepPlace(uri, *known);
    return known;
}

const LongUris::Known& LongUris::remember(const QeCString& uri) {
    if (const Known* const known = findPlace(uri)) return *known;
    const Known* known = findText(uri);
    if (known == nullptr) {
        Known added{{}, keyedHash(uri, HashSecret::ofProcess())};
        added.uri.shareBlockOf(uri);
        known = &texts.try_emplace(uri, std::move(added)).first->second;
    }
    keepPlace(uri, *known);
    return *known;
}

const LongUris::Known* LongUris::findPlace(const QeCString& uri) const {
    const auto found = places.find(uri.data());
    return found == places.end() ? nullptr : found->second.known;
}

const LongUris::Known* LongUris::findText(const QeCString& uri) const {
    const auto found = texts.find(uri);
    return found == texts.end() ? nullptr : &found->second;
}

// Shares the text, so that nothing else can ever stand there.
void LongUris::keepPlace(const QeCString& uri, const Known& known) {
    Place& place = places[uri.data()];
    place.uri.shareBlockOf(uri);
    place.known = &known;
}

}  // namespace tessit

#include <new>
#include <unicode/uregex.h>
#include <unicode/utf16.h>
#include <voxal/character_set.h>
#include <voxal/u_string.h>

namespace voxal {

void CharacterSet::Close::operator()(URegularExpression* closed) const noexcept {
    uregex_close(closed);
}

CharacterSet::CharacterSet(std::u16string_view pattern, std::uint32_t flags) : source(pattern) {
    UErrorCode status = U_ZERO_ERROR;
    const auto length = static_cast<std::int32_t>(source.size());
    expression.reset(uregex_open(source.data(), length, flags, nullptr, &status));
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (isUsable()) lowest = askForBlock(0);
}

CharacterSet::Block CharacterSet::askForBlock(char32_t first) {
    std::u16string characters;
    for (char32_t character = first; character < first + BlockSize; ++character) {
        if (character > 0xFFFF) characters += static_cast<char16_t>(U16_LEAD(character));
        characters += static_cast<char16_t>(character > 0xFFFF ? U16_TRAIL(character) : character);
    }
    Block block;
    UErrorCode status = U_ZERO_ERROR;
    uregex_setText(expression.get(), characters.data(), static_cast<std::int32_t>(characters.size()), &status);
    while (uregex_findNext(expression.get(), &status))
        block.set(static_cast<std::size_t>(uregex_start(expression.get(), 0, &status)) / unitCount(first));
    if (U_FAILURE(status)) throw std::bad_alloc();  // all that is left to fail
    return block;
}

bool CharacterSet::contains(char32_t character) {
    if (character < BlockSize) return lowest[character];
    const char32_t first = character / BlockSize * BlockSize;
    auto known = further.find(first);
    if (known == further.end()) known = further.emplace(first, askForBlock(first)).first;
    return known->second[character - first];
}

}  // namespace voxal

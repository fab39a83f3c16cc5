// Calls on strings, held against std::string. Arguments may be part of the string itself.

#include <string>

#include <corvel/c_string.h>

#include "fuzzing.h"

using tessit::fuzz::Input;
using tessit::fuzz::require;

namespace {

struct Pair {
    QeCString text;
    std::string model;

    void requireEqual() const {
        require(std::string_view(text) == model && text.length() == model.size(), "the same bytes");
        require(text.data()[text.length()] == '\0', "a terminator behind them");
    }
};

// Bytes of the input, or of the string that will take them.
std::string_view takeText(const Pair& pair, Input& input) {
    const std::size_t length = input.byte();
    if (length < 160) return input.text(length / 2);
    return pair.text.substring(input.byte(), length - 160);
}

void call(Pair& one, Pair& other, Input& input) {
    switch (input.below(12)) {
        case 0: {
            const std::string_view text = takeText(one, input);
            one.model = std::string(text);
            return one.text.assign(text);
        }
        case 1:
        case 2: {
            const std::string_view text = takeText(one, input);
            one.model += std::string(text);
            return one.text.append(text);
        }
        case 3: {
            const char byte = static_cast<char>(input.byte());
            one.model += byte;
            return one.text.append(byte);
        }
        case 4: {
            const std::size_t length = input.byte();
            if (length < one.model.size()) one.model.resize(length);
            return one.text.truncate(length);
        }
        case 5: {
            const std::size_t length = input.byte();
            one.model.assign(length, 'x');
            std::fill_n(one.text.resizeForOverwrite(length), length, 'x');
            return;
        }
        case 6:
            return one.text.reserve(2 * input.byte());
        case 7:
            for (char& byte : one.model)
                if (byte >= 'a' && byte <= 'z') byte = static_cast<char>(byte - 0x20);
            return one.text.toUpper();
        case 8:
            other = one;
            return;
        case 9:
            one = Pair(std::move(other));
            other.model.clear();  // what was moved from is empty, and can be used
            return;
        case 10:
            if (one.model.empty()) return;
            one.text[one.model.size() - 1] = one.model.back() = 'y';
            return;
        default: {
            const std::string_view text = takeText(one, input);
            require(one.text.find(text, 1) == one.model.find(text, 1), "found at the same place");
            require((one.text == text) == (one.model == text), "equal to the same texts");
            require((one.text < other.text) == (one.model < other.model), "in the same order");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Pair one, other;
    while (!input.empty()) {
        call(one, other, input);
        one.requireEqual();
        other.requireEqual();
    }
    return 0;
}

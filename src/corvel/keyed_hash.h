#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// A hash for tables whose keys come from documents.
///
/// SipHash-1-3: whoever does not know the secret cannot choose keys that fall
/// together, however much of the function is known.
namespace corvel {

struct HashSecret {
    std::uint64_t first;
    std::uint64_t second;

    /// The secret of this process, drawn at the first call.
    static const HashSecret& ofProcess();
};

class SipState {
public:
    explicit SipState(const HashSecret& secret) noexcept
        : a(secret.first ^ 0x736F6D6570736575u),
          b(secret.second ^ 0x646F72616E646F6Du),
          c(secret.first ^ 0x6C7967656E657261u),
          d(secret.second ^ 0x7465646279746573u) {}

    void add(std::uint64_t word) noexcept {
        d ^= word;
        mix();
        a ^= word;
    }

    std::uint64_t finish() noexcept {
        c ^= 0xFF;
        mix();
        mix();
        mix();
        return a ^ b ^ c ^ d;
    }

private:
    void mix() noexcept {
        a += b;
        c += d;
        b = std::rotl(b, 13) ^ a;
        d = std::rotl(d, 16) ^ c;
        a = std::rotl(a, 32) + d;
        c += b;
        d = std::rotl(d, 21) ^ a;
        b = std::rotl(b, 17) ^ c;
        c = std::rotl(c, 32);
    }

    std::uint64_t a, b, c, d;
};

inline std::uint64_t keyedHash(std::string_view key, const HashSecret& secret) noexcept {
    SipState state(secret);
    std::size_t at = 0;
    for (std::uint64_t word; key.size() - at >= sizeof word; at += sizeof word) {
        std::memcpy(&word, key.data() + at, sizeof word);
        state.add(word);
    }
    std::uint64_t rest = static_cast<std::uint64_t>(key.size()) << 56;  // no key is another one with zeros behind it
    for (int shift = 0; at < key.size(); ++at, shift += 8)
        rest |= static_cast<std::uint64_t>(static_cast<unsigned char>(key[at])) << shift;
    state.add(rest);
    return state.finish();
}

}  // namespace corvel

#include <chrono>
#include <exception>
#include <random>

#include <corvel/keyed_hash.h>

namespace corvel {

namespace {

// Without a source of random numbers, an address and the time have to do.
HashSecret drawSecret() {
    try {
        std::random_device random;
        const auto draw = [&] { return static_cast<std::uint64_t>(random()) << 32 | random(); };
        const std::uint64_t first = draw();
        return {first, draw()};
    } catch (const std::exception&) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        return {reinterpret_cast<std::uintptr_t>(&drawSecret), static_cast<std::uint64_t>(now)};
    }
}

}  // namespace

const HashSecret& HashSecret::ofProcess() {
    static const HashSecret secret = drawSecret();
    return secret;
}

}  // namespace corvel

#pragma once

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tessit::benchmarks {

/// Marks the upper halves of the vector registers as unused.
///
/// A library that was compiled for wide vectors may leave them in use. On some
/// processors, ordinary vector instructions then wait for each other, in whatever is
/// called next, until somebody does this: Qt's reader would slow down ours threefold.
#if defined(__x86_64__)
[[gnu::target("avx")]] inline void clearUpperHalves() {
    _mm256_zeroupper();
}
inline void settleVectorState() {
    if (__builtin_cpu_supports("avx")) clearUpperHalves();
}
#else
inline void settleVectorState() {}
#endif

}  // namespace tessit::benchmarks

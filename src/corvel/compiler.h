#pragma once

/// What compilers have each in their own way, or not at all: nowhere else does the
/// library use anything that the language itself does not promise. Attributes that a
/// compiler does not know cost time there, never a result.

#if defined(__GNUC__)  // clang says so, too
#define TESSIT_FLATTEN [[gnu::flatten]]
#define TESSIT_NOINLINE [[gnu::noinline]]
#define TESSIT_ALWAYS_INLINE [[gnu::always_inline]]
#else
#define TESSIT_FLATTEN
#define TESSIT_NOINLINE
#define TESSIT_ALWAYS_INLINE
#endif

// The C library's linear search for a text in another. Not where what is portable is to be tested.
#if !defined(TESSIT_SCALAR) && (defined(__unix__) || defined(__APPLE__))
#define TESSIT_HAS_MEMMEM
#endif

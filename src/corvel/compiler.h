#pragma once

/// What compilers have each in their own way, or not at all. Elsewhere, only scans by
/// blocks use more than the language itself promises, each with a way that does not.
/// Attributes that a compiler does not know cost time there; and without the last one,
/// programs that are linked with the library statically may use the names of
/// `QeXmlSchemaUtils` only once `main` has begun.

#if defined(__GNUC__)  // clang says so, too
#define TESSIT_FLATTEN [[gnu::flatten]]
#define TESSIT_NOINLINE [[gnu::noinline]]
#define TESSIT_ALWAYS_INLINE [[gnu::always_inline]]
#define TESSIT_MADE_FIRST [[gnu::init_priority(101)]]  // before the objects of other sources
#else
#define TESSIT_FLATTEN
#define TESSIT_NOINLINE
#define TESSIT_ALWAYS_INLINE
#define TESSIT_MADE_FIRST
#endif

// The C library's linear search for a text in another. Not where what is portable is to be tested.
#if !defined(TESSIT_SCALAR) && (defined(__unix__) || defined(__APPLE__))
#define TESSIT_HAS_MEMMEM
#endif

#pragma once

#include <cstddef>

/// The calls of `operator new` in this program so far.
extern std::size_t allocations;

/// How many calls of `operator new` from now on succeed, before one fails; negative: all.
extern long allocationsUntilFailure;

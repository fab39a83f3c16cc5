#pragma once

#include <string>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_START_INSTRUMENTATION static_cast<void>(0)
#define CALLGRIND_STOP_INSTRUMENTATION static_cast<void>(0)
#define CALLGRIND_DUMP_STATS_AT(name) static_cast<void>(name)
#endif

namespace tessit::benchmarks {

/// Has callgrind, where the program runs in it, count the instructions of a piece of
/// work and write them down under that name. Elsewhere the work is done all the same.
template <typename Work>
void countInstructions(const std::string& name, Work work) {
    CALLGRIND_START_INSTRUMENTATION;
    work();
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
}

}  // namespace tessit::benchmarks

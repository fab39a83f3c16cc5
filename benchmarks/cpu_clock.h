#pragma once

#include <ctime>

namespace tessit::benchmarks {

/// The processor time of this thread: what other programs take away does not count.
class CpuClock {
public:
    /// Since construction.
    double seconds() const { return now() - start; }

private:
    static double now() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }

    double start = now();
};

}  // namespace tessit::benchmarks

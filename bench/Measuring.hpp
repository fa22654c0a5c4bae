// Helpers of the timed programs: pinning to processors, rounds and their medians.
#pragma once

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace quorvane {

[[noreturn]] inline void die(const char* what) {
    std::perror(what);
    std::exit(1);
}

inline void pin(int processor) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(static_cast<std::size_t>(processor), &set);
    if (sched_setaffinity(0, sizeof set, &set) != 0) die("sched_setaffinity");
}

// The processor for the other side of a pair; the first one where there is only one.
inline int secondProcessor() { return sysconf(_SC_NPROCESSORS_ONLN) < 2 ? 0 : 1; }

inline double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::ranges::sort(values);
    return values[values.size() / 2];
}

inline double microsecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::micro>{std::chrono::steady_clock::now() - begin}
        .count();
}

template <typename Action>
double microsecondsOf(Action&& action) {
    const auto begin = std::chrono::steady_clock::now();
    action();
    return microsecondsSince(begin);
}

// The times of one contestant, one value per round. Ratios are taken within a round, so that a
// moment in which the machine is slow slows both sides.
struct Times {
    std::vector<double> rounds{};  // microseconds

    void add(double microseconds) { rounds.push_back(microseconds); }
    double median() const { return quorvane::median(rounds); }
    double over(const Times& other) const {
        std::vector<double> ratios;
        for (std::size_t i = 0; i < std::min(rounds.size(), other.rounds.size()); ++i)
            ratios.push_back(rounds[i] / other.rounds[i]);
        return quorvane::median(ratios);
    }
};

}  // namespace quorvane

// Observes a card while its title scrolls: the add-on's, and the same card in other toolkits.
#pragma once

#include <sys/types.h>

#include "bench/BenchSession.hpp"

namespace quorvane {

// Too long for the card in any font.
inline constexpr char kLongTitle[] = "A Slow Parade of Clouds over the Long Way Home";

struct ScrollingCard {
    double share = 0;   // of one processor, percent: the program and the X server
    double frames = 0;  // per second
    double memory = 0;  // proportional, bytes, of all the program's processes
};

// Waits until the program's title has rested and moves again, then observes it, so that every card
// is measured in the same part of its cycle and none while it starts. nullopt when no title moves.
std::optional<ScrollingCard> observeScrolling(BenchSession& session, pid_t program);

// Measures the rivals on the session's X server, one after another, and reports a row for each,
// also for one that is not installed.
void tellCardRivals(BenchSession& session, const ScrollingCard& own);

}  // namespace quorvane

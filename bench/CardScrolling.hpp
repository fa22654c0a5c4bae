// A card while its title scrolls: the add-on's, and the same card in other toolkits.
#pragma once

#include <sys/types.h>

#include "bench/BenchSession.hpp"

namespace quorvane {

// Too long for the card in any font.
inline constexpr char kLongTitle[] = "A Slow Parade of Clouds over the Long Way Home";

struct ScrollingCard {
    double share = 0;   // of one processor, percent: the program and the X server
    double frames = 0;  // a second
    double memory = 0;  // proportional, bytes, of all the program's processes
};

// Waits until the program's title has rested and moves again, and looks on from there: all cards
// are seen in the same part of their round, and none while it starts. Nothing when no title moves.
std::optional<ScrollingCard> observeScrolling(BenchSession& session, pid_t program);

// Measures the rivals on the session's X server, one after the other, and tells the rows. One that
// is not installed is said to be so.
void tellCardRivals(BenchSession& session, const ScrollingCard& own);

}  // namespace quorvane

// The card windows of this edition.
#pragma once

#include "drawing/CardWindows.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// The core lifts windows through the window server's private interface.
CardWindows makeCardWindowsMacOS(const Clock& clock);

}  // namespace quorvane

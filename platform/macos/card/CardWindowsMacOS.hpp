// The card windows of this edition.
#pragma once

#include "drawing/CardWindows.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// Windows are lifted through the window server's own interface, by the core: `liftAboveLock` does
// nothing.
CardWindows makeCardWindowsMacOS(const Clock& clock);

}  // namespace quorvane

// The screens as the system lists them.
#pragma once

#include "drawing/Screens.hpp"

namespace quorvane {

// No screen has areas to keep clear, because the lock screen keeps its own areas free.
Screens makeScreensMacOS();

}  // namespace quorvane

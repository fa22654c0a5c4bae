// The screens as the system lists them.
#pragma once

#include "drawing/Screens.hpp"

namespace quorvane {

// The lock screen keeps its own areas free here: no screen has any to keep clear.
Screens makeScreensMacOS();

}  // namespace quorvane

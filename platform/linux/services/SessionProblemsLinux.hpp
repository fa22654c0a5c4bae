// Session problems found in the program's environment. Portable.
#pragma once

#include <optional>
#include <string>

#include "lockers/WaylandSessions.hpp"

namespace quorvane {

SessionVariables sessionVariables();
std::optional<std::string> screenProblem(const SessionVariables& session);

}  // namespace quorvane

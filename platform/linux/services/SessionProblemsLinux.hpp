// Session problems found in the program's environment. Portable.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "lockers/WaylandSessions.hpp"

namespace quorvane {

SessionVariables sessionVariables();
std::optional<std::string> screenProblem(const SessionVariables& session);
// `reason` says why the runtime folder cannot be used.
std::string portsProblem(std::string_view runtimeVariable, const std::string& runtimeFolder,
                         const std::string& reason);

}  // namespace quorvane

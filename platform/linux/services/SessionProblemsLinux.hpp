// Session problems found in the program's environment. Portable.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

// Takes the values of the environment variables; an unset one is empty.
std::optional<std::string> screenProblem(std::string_view display, std::string_view waylandDisplay);
// `reason` says why the runtime folder cannot be used.
std::string portsProblem(std::string_view runtimeVariable, const std::string& runtimeFolder,
                         const std::string& reason);

}  // namespace quorvane

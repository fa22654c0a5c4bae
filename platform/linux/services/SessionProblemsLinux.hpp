// What the environment of a program says of its session. Portable.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

// From the environment's variables; an unset one is empty.
std::optional<std::string> screenProblem(std::string_view display, std::string_view waylandDisplay);
// `reason` is why the runtime folder cannot be used.
std::string portsProblem(std::string_view runtimeVariable, const std::string& runtimeFolder,
                         const std::string& reason);

// The value, "" when it is unset.
std::string_view environmentVariable(const char* name);

}  // namespace quorvane

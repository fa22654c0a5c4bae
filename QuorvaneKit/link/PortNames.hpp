// Names of the link's ports and of the threads and queues that serve them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvane {

// The main port's name; the query ports' names begin with it.
inline constexpr std::string_view kMessagePortBaseName =
    "group.example.quillon.Quorvane.messageport";
inline constexpr std::size_t kQueryPortCount = 4;

inline std::string queryPortName(std::string_view baseName, std::size_t index) {
    return std::string{baseName} + ".query." + std::to_string(index);
}

// Threads and queues of this process, as debuggers show them.
inline constexpr std::string_view kMainPortThreadName = "example.quillon.Quorvane.messageport";

inline std::string queryPortThreadName(std::size_t index) {
    return queryPortName(kMainPortThreadName, index);
}

inline std::string queryClientQueueLabel(std::size_t index) {
    return std::string{kMainPortThreadName} + ".query-client." + std::to_string(index);
}

}  // namespace quorvane

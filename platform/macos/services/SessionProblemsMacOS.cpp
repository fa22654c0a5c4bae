// Finds no problems, because every login on this system has a screen, ports and notices.
#include "platform/SessionProblems.hpp"

namespace quorvane {

SessionProblems findSessionProblems(const LiveServices&) { return {}; }

std::optional<std::string> findPortsProblem() { return std::nullopt; }

}  // namespace quorvane

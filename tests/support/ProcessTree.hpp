// The processes that a program has started. Some lockers leave theirs behind when they are ended.
#pragma once

#include <signal.h>
#include <sys/types.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace quorvane {

// The parent, or 0 when the process has gone.
inline pid_t parentOf(const std::filesystem::path& process) {
    std::ifstream file{process / "stat"};
    std::string line;
    std::getline(file, line);
    // The name stands in brackets and may hold anything; state and parent follow.
    const std::size_t end = line.rfind(')');
    return end == std::string::npos ? 0 : std::atoi(line.c_str() + end + 3);
}

// Children and theirs, as they are now.
inline std::vector<pid_t> descendantsOf(pid_t process) {
    std::multimap<pid_t, pid_t> children;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator{"/proc", error})
        if (const pid_t id = std::atoi(entry.path().filename().c_str()); id > 0)
            children.emplace(parentOf(entry.path()), id);
    std::vector<pid_t> found{process};
    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto [begin, end] = children.equal_range(found[i]);
        for (auto child = begin; child != end; ++child) found.push_back(child->second);
    }
    found.erase(found.begin());
    return found;
}

inline void killAll(const std::vector<pid_t>& processes) {
    for (const pid_t process : processes) kill(process, SIGKILL);
}

}  // namespace quorvane

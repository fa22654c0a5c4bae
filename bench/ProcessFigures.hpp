// The kernel's figures for a process.
#pragma once

#include <sys/types.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace quorvane {

struct ProcessMemory {
    double resident = 0;  // bytes
    double proportional = 0;
    double anonymous = 0;
};

inline std::filesystem::path processFolder(pid_t process) {
    return "/proc/" + std::to_string(process);
}

inline ProcessMemory memoryOf(pid_t process) {
    ProcessMemory memory;
    std::ifstream file{processFolder(process) / "smaps_rollup"};
    std::string name;
    std::string line;
    std::getline(file, line);  // the range of addresses
    while (file >> name) {
        double kilobytes = 0;
        file >> kilobytes;
        std::getline(file, line);
        if (name == "Rss:") memory.resident = kilobytes * 1024;
        if (name == "Pss:") memory.proportional = kilobytes * 1024;
        if (name == "Anonymous:") memory.anonymous = kilobytes * 1024;
    }
    return memory;
}

// Voluntary context switches of all its threads: each ends in a wake-up.
inline std::int64_t wakeUpsOf(pid_t process) {
    std::int64_t sum = 0;
    std::error_code ignored;
    for (const auto& thread :
         std::filesystem::directory_iterator{processFolder(process) / "task", ignored}) {
        std::ifstream file{thread.path() / "status"};
        std::string word;
        while (file >> word)
            if (word == "voluntary_ctxt_switches:") {
                std::int64_t count = 0;
                file >> count;
                sum += count;
            }
    }
    return sum;
}

// Seconds that its threads have run.
inline double processorTimeOf(pid_t process) {
    double sum = 0;
    std::error_code ignored;
    for (const auto& thread :
         std::filesystem::directory_iterator{processFolder(process) / "task", ignored}) {
        std::ifstream file{thread.path() / "schedstat"};
        double nanoseconds = 0;
        file >> nanoseconds;
        sum += nanoseconds / 1e9;
    }
    return sum;
}

// The process and all its descendants.
inline std::vector<pid_t> familyOf(pid_t process) {
    std::vector<pid_t> family{process};
    std::error_code ignored;
    for (const auto& thread :
         std::filesystem::directory_iterator{processFolder(process) / "task", ignored}) {
        std::ifstream file{thread.path() / "children"};
        for (pid_t child = 0; file >> child;)
            std::ranges::copy(familyOf(child), back_inserter(family));
    }
    return family;
}

// The shared libraries it has mapped.
inline std::set<std::string> librariesOf(pid_t process) {
    std::set<std::string> libraries;
    std::ifstream file{processFolder(process) / "maps"};
    std::string line;
    while (std::getline(file, line)) {
        const std::size_t path = line.find('/');
        if (path != std::string::npos && line.find(".so", path) != std::string::npos)
            libraries.insert(line.substr(path));
    }
    return libraries;
}

}  // namespace quorvane

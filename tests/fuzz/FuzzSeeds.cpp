// Writes the seeds of each fuzz target to a subfolder of the given folder.
#include <filesystem>
#include <fstream>

#include "tests/fuzz/FuzzTargets.hpp"

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    for (const auto& target : quorvane::fuzzTargets()) {
        const auto folder = std::filesystem::path{arguments[1]} / target.name;
        std::filesystem::create_directories(folder);
        int number = 0;
        for (const std::string_view seed : target.seeds)
            std::ofstream{folder / ("seed-" + std::to_string(++number)), std::ios::binary} << seed;
    }
}

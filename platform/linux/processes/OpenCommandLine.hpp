// The command line of quorvane-open. Pure values.
#pragma once

#include <expected>
#include <span>
#include <string>
#include <vector>

namespace quorvane {

struct OpenCommandLine {
    enum class Command { open, help, version };

    Command command = Command::open;
    bool isAlwaysNew = false;  // also when the application runs already
    std::string bundle{};
    std::vector<std::string> arguments{};  // the application's
    bool operator==(const OpenCommandLine&) const = default;

    // `arguments` without the program's own name. A failure is one sentence for a person.
    static std::expected<OpenCommandLine, std::string> parse(
        std::span<const std::string> arguments);
    static std::string help();
};

}  // namespace quorvane

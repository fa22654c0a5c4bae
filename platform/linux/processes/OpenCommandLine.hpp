// Command line of quorvane-open, as a plain value.
#pragma once

#include <expected>
#include <span>
#include <string>
#include <vector>

namespace quorvane {

struct OpenCommandLine {
    enum class Command { open, help, version };

    Command command = Command::open;
    bool isAlwaysNew = false;  // even if the application already runs
    std::string bundle{};
    std::vector<std::string> arguments{};  // the application's
    bool operator==(const OpenCommandLine&) const = default;

    // `arguments` excludes the program's own name. The error is one sentence for the user.
    static std::expected<OpenCommandLine, std::string> parse(
        std::span<const std::string> arguments);
    static std::string help();
};

}  // namespace quorvane

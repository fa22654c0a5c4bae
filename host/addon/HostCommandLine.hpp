// The command line of quorvane-host. Pure values.
#pragma once

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quorvane {

// The program's exit statuses.
enum HostExitStatus {
    kHostDone = 0,
    kHostFailed = 1,  // also for `status` when no host is running
    kHostMisused = 2,
};

struct HostCommandLine {
    enum class Command {
        run,
        install,
        update,
        launch,
        status,
        quit,
        remove,
        enable,
        disable,
        players,
        set,
        unset,
        lock,
        help,
        version,
    };

    Command command = Command::run;
    std::optional<std::string> script{};      // to play; nullopt: follow the session's players
    std::optional<std::string> onlyPlayer{};  // the name of the players to follow
    std::optional<std::string> bundle{};      // to install; nullopt: the program's own
    std::vector<std::string> words{};         // that follow `set` and `unset`
    std::vector<std::string> locker{};        // the command of `lock`
    bool operator==(const HostCommandLine&) const = default;

    // `arguments` excludes the program's own name. An error is one sentence for the user.
    static std::expected<HostCommandLine, std::string> parse(
        std::span<const std::string> arguments);
    static std::string help();
};

}  // namespace quorvane

// The command line of quorvane-host. Pure values.
#pragma once

#include <expected>
#include <optional>
#include <span>
#include <string>

namespace quorvane {

// What the program exits with.
enum HostExitStatus {
    kHostDone = 0,
    kHostFailed = 1,  // of `status` also: no host is running
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
        help,
        version,
    };
    enum class Player { mpris, scripted };

    Command command = Command::run;
    Player player = Player::mpris;
    std::optional<std::string> script{};      // always there when scripted
    std::optional<std::string> onlyPlayer{};  // the name of the players to follow
    std::optional<std::string> bundle{};      // to install; the program's own when not named
    bool operator==(const HostCommandLine&) const = default;

    // `arguments` without the program's own name. A failure is one sentence for a person.
    static std::expected<HostCommandLine, std::string> parse(
        std::span<const std::string> arguments);
    static std::string help();
};

}  // namespace quorvane

#include "host/addon/HostCommandLine.hpp"

#include <algorithm>
#include <string_view>

namespace quorvane {

namespace {

using Command = HostCommandLine::Command;
using Player = HostCommandLine::Player;

struct CommandRow {
    std::string_view name;
    Command command;
    std::string_view help;
};

constexpr CommandRow kCommands[] = {
    {"run", Command::run, "serve the add-on until interrupted (default)"},
    {"install", Command::install, "install the add-on, turn the card on, start the add-on"},
    {"update", Command::update, "install a newer version; the card stays on or off"},
    {"launch", Command::launch, "start the installed add-on unless it is running"},
    {"status", Command::status, "show what plays, whether the card is on, and the add-on's state"},
    {"quit", Command::quit, "quit the add-on until the next login"},
    {"remove", Command::remove, "remove the add-on with its login item, files and settings"},
    {"enable", Command::enable, "turn the card on"},
    {"disable", Command::disable, "turn the card off"},
};

struct OptionRow {
    std::string_view name;
    std::string_view value;
    std::string_view help;
    void (*set)(HostCommandLine& line, const std::string& value);
};

constexpr OptionRow kInstallOptions[] = {
    {"--from", "PATH", "install this bundle instead of the one that comes with this program",
     [](HostCommandLine& line, const std::string& value) { line.bundle = value; }},
};

constexpr OptionRow kRunOptions[] = {
    {"--player", "KIND", "mpris: the session's music players (default); scripted: see --script",
     nullptr},
    {"--script", "FILE", "play the tracks of a JSON file instead of a real player",
     [](HostCommandLine& line, const std::string& value) { line.script = value; }},
    {"--only", "NAME", "follow only players of this name, for example mpv",
     [](HostCommandLine& line, const std::string& value) { line.onlyPlayer = value; }},
};

std::string inQuotes(std::string_view text) { return "'" + std::string{text} + "'"; }

// Takes the arguments one by one.
struct Parser {
    std::span<const std::string> arguments;
    HostCommandLine line{};
    std::optional<Command> command{};
    std::optional<Player> player{};
    std::string_view firstRunOption{};
    std::string_view firstInstallOption{};
    std::string mistake{};

    bool takeCommand(const std::string& word) {
        const auto row = std::ranges::find(kCommands, word, &CommandRow::name);
        if (row == std::end(kCommands)) return fail("unknown command " + inQuotes(word));
        if (command)
            return fail("unexpected argument " + inQuotes(word) + ": give one command at a time");
        command = row->command;
        return true;
    }

    bool takeOption(const std::string& word) {
        const std::string name = word.substr(0, word.find('='));
        const OptionRow* const row = findOption(name);
        if (!row) return fail("unknown option " + inQuotes(name));
        std::string value;
        if (name.size() < word.size()) {
            value = word.substr(name.size() + 1);
        } else if (!arguments.empty()) {
            value = arguments.front();
            arguments = arguments.subspan(1);
        }
        if (value.empty() || (name.size() == word.size() && value.starts_with("--")))
            return fail(name + " needs a value: " + name + " " + std::string{row->value});
        if (!row->set) return takePlayer(value);
        row->set(line, value);
        return true;
    }

    const OptionRow* findOption(std::string_view name) {
        const auto among = [name](std::span<const OptionRow> rows, std::string_view& first) {
            const auto row = std::ranges::find(rows, name, &OptionRow::name);
            if (row == rows.end()) return static_cast<const OptionRow*>(nullptr);
            if (first.empty()) first = row->name;
            return &*row;
        };
        if (const auto* row = among(kRunOptions, firstRunOption)) return row;
        return among(kInstallOptions, firstInstallOption);
    }

    bool takePlayer(const std::string& kind) {
        if (kind == "mpris")
            player = Player::mpris;
        else if (kind == "scripted")
            player = Player::scripted;
        else
            return fail("--player takes mpris or scripted, not " + inQuotes(kind));
        return true;
    }

    bool finish() {
        line.command = command.value_or(Command::run);
        line.player = player.value_or(line.script ? Player::scripted : Player::mpris);
        if (line.command != Command::run && !firstRunOption.empty())
            return fail(std::string{firstRunOption} + " is an option of 'run' only");
        if (line.command != Command::install && line.command != Command::update &&
            !firstInstallOption.empty())
            return fail(std::string{firstInstallOption} +
                        " is an option of 'install' and 'update' only");
        if (line.player == Player::scripted && !line.script)
            return fail("--player scripted needs --script FILE");
        if (line.player == Player::mpris && line.script)
            return fail("--script cannot be used with --player mpris");
        if (line.player == Player::scripted && line.onlyPlayer)
            return fail("--only cannot be used with a scripted player");
        return true;
    }

    bool fail(std::string reason) {
        mistake = std::move(reason);
        return false;
    }
};

bool contains(std::span<const std::string> arguments, std::string_view longName,
              std::string_view shortName) {
    return std::ranges::any_of(arguments, [&](const std::string& argument) {
        return argument == longName || argument == shortName;
    });
}

std::string helpRow(std::string left, std::string_view right) {
    constexpr std::size_t width = 20;
    left.resize(std::max(width, left.size() + 2), ' ');
    return "  " + left + std::string{right} + '\n';
}

}  // namespace

std::expected<HostCommandLine, std::string> HostCommandLine::parse(
    std::span<const std::string> arguments) {
    // --help takes precedence over all other arguments.
    if (contains(arguments, "--help", "-h")) return HostCommandLine{.command = Command::help};
    if (contains(arguments, "--version", "-V")) return HostCommandLine{.command = Command::version};
    Parser parser{.arguments = arguments};
    bool isFine = true;
    while (isFine && !parser.arguments.empty()) {
        const std::string& word = parser.arguments.front();
        parser.arguments = parser.arguments.subspan(1);
        isFine = word.starts_with('-') ? parser.takeOption(word) : parser.takeCommand(word);
    }
    if (!isFine || !parser.finish()) return std::unexpected{parser.mistake};
    return parser.line;
}

std::string HostCommandLine::help() {
    std::string text =
        "Usage: quorvane-host [COMMAND] [OPTION]...\n"
        "\n"
        "Serves, installs and removes the add-on that shows the playing track on the lock screen.\n"
        "\n"
        "Commands:\n";
    for (const CommandRow& row : kCommands) text += helpRow(std::string{row.name}, row.help);
    text += "\nOptions of run:\n";
    for (const OptionRow& row : kRunOptions)
        text += helpRow(std::string{row.name} + ' ' + std::string{row.value}, row.help);
    text += "\nOptions of install and update:\n";
    for (const OptionRow& row : kInstallOptions)
        text += helpRow(std::string{row.name} + ' ' + std::string{row.value}, row.help);
    text += "\nOther options:\n" + helpRow("-h, --help", "show this text and exit") +
            helpRow("-V, --version", "show the version and exit");
    text +=
        "\nThe format of a script is described in scripted-player.md, in the folder docs of the\n"
        "source and in /usr/share/doc/quorvane-lock-screen of the package.\n"
        "\n"
        "Exit status: 0 on success, 1 if the command failed (for status: or no host is running),\n"
        "2 for a wrong command line.\n";
    return text;
}

}  // namespace quorvane

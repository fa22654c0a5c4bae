#include "host/addon/HostCommandLine.hpp"

#include <algorithm>
#include <map>
#include <string_view>

#include "host/settings/Settings.hpp"

namespace quorvane {

namespace {

using Command = HostCommandLine::Command;

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
    {"players", Command::players, "list the music players, and why one is followed"},
    {"set", Command::set, "show all settings; or: set NAME, set NAME VALUE..."},
    {"unset", Command::unset, "return a setting to its default: unset NAME"},
    {"lock", Command::lock, "run a locker and announce its lock: lock -- COMMAND"},
};

struct OptionRow {
    std::string_view name;
    std::string_view value;
    std::string_view help;
};

constexpr OptionRow kOptions[] = {
    {"--player", "KIND", "mpris: the session's music players (default); scripted: see --script"},
    {"--script", "FILE", "play the tracks of a JSON file instead of a real player"},
    {"--only", "NAME", "follow only players of this name, for example mpv"},
    {"--from", "PATH", "install this bundle instead of the one that comes with this program"},
};
constexpr std::span kRunOptions = std::span{kOptions}.first<3>();
constexpr std::span kInstallOptions = std::span{kOptions}.last<1>();

// The options that a command line gives, by name.
using Values = std::map<std::string, std::string>;

std::optional<std::string> valueOf(const Values& values, const std::string& name) {
    const auto value = values.find(name);
    return value == values.end() ? std::nullopt : std::optional{value->second};
}

std::string inQuotes(const std::string& text) { return "'" + text + "'"; }

// The reason why the options do not fit together or do not fit the command, if there is one.
std::optional<std::string> conflict(Command command, const Values& values) {
    const bool installs = command == Command::install || command == Command::update;
    for (const auto& [name, value] : values) {
        const bool isForInstalling = name == kInstallOptions.front().name;
        if (isForInstalling && !installs)
            return name + " is an option of 'install' and 'update' only";
        if (!isForInstalling && command != Command::run)
            return name + " is an option of 'run' only";
    }
    const auto player = valueOf(values, "--player");
    const bool hasScript = values.contains("--script");
    if (player && player != "mpris" && player != "scripted")
        return "--player takes mpris or scripted, not " + inQuotes(*player);
    if (player == "scripted" && !hasScript) return "--player scripted needs --script FILE";
    if (player == "mpris" && hasScript) return "--script cannot be used with --player mpris";
    if (hasScript && values.contains("--only"))
        return "--only cannot be used with a scripted player";
    return std::nullopt;
}

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

std::string helpRows(std::span<const OptionRow> options) {
    std::string text;
    for (const OptionRow& row : options)
        text += helpRow(std::string{row.name} + ' ' + std::string{row.value}, row.help);
    return text;
}

}  // namespace

std::expected<HostCommandLine, std::string> HostCommandLine::parse(
    std::span<const std::string> arguments) {
    const auto separator = std::ranges::find(arguments, "--");
    const std::vector<std::string> locker(separator == arguments.end() ? separator : separator + 1,
                                          arguments.end());
    arguments = {arguments.begin(), separator};
    // --help takes precedence over all other arguments.
    if (contains(arguments, "--help", "-h")) return HostCommandLine{.command = Command::help};
    if (contains(arguments, "--version", "-V")) return HostCommandLine{.command = Command::version};
    std::optional<Command> command;
    Values values;
    std::vector<std::string> words;
    for (auto word = arguments.begin(); word != arguments.end(); ++word) {
        if (command == Command::set || command == Command::unset) {
            words.push_back(*word);
            continue;
        }
        if (!word->starts_with('-')) {
            const auto row = std::ranges::find(kCommands, *word, &CommandRow::name);
            if (row == std::end(kCommands))
                return std::unexpected{"unknown command " + inQuotes(*word)};
            if (command)
                return std::unexpected{"unexpected argument " + inQuotes(*word) +
                                       ": give one command at a time"};
            command = row->command;
            continue;
        }
        const std::string name = word->substr(0, word->find('='));
        const auto option = std::ranges::find(kOptions, name, &OptionRow::name);
        if (option == std::end(kOptions))
            return std::unexpected{"unknown option " + inQuotes(name)};
        std::string value;
        if (name.size() < word->size())
            value = word->substr(name.size() + 1);
        else if (word + 1 != arguments.end() && !word[1].starts_with("--"))
            value = *++word;
        if (value.empty())
            return std::unexpected{name + " needs a value: " + name + " " +
                                   std::string{option->value}};
        values[name] = std::move(value);
    }
    if (locker.empty() == (command == Command::lock))
        return std::unexpected{"'lock' needs a command, and no other takes one: lock -- COMMAND"};
    if (auto reason = conflict(command.value_or(Command::run), values))
        return std::unexpected{*std::move(reason)};
    return HostCommandLine{.command = command.value_or(Command::run),
                           .script = valueOf(values, "--script"),
                           .onlyPlayer = valueOf(values, "--only"),
                           .bundle = valueOf(values, "--from"),
                           .words = std::move(words),
                           .locker = locker};
}

std::string HostCommandLine::help() {
    std::string text =
        "Usage: quorvane-host [COMMAND] [OPTION]...\n"
        "\n"
        "Serves, installs and removes the add-on that shows the playing track on the lock screen.\n"
        "\n"
        "Commands:\n";
    for (const CommandRow& row : kCommands) text += helpRow(std::string{row.name}, row.help);
    text += "\nSettings:\n";
    for (const SettingRow& row : kSettings) text += helpRow(std::string{row.name}, row.meaning);
    text += "\nOptions of run:\n" + helpRows(kRunOptions) + "\nOptions of install and update:\n" +
            helpRows(kInstallOptions) + "\nOther options:\n" +
            helpRow("-h, --help", "show this text and exit") +
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

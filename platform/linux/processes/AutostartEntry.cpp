#include "platform/linux/processes/AutostartEntry.hpp"

#include <optional>

#include "platform/Trimmed.hpp"

namespace quorvane {
namespace {

constexpr std::string_view kGroup = "[Desktop Entry]";

std::optional<std::string_view> valueOf(std::string_view entry, std::string_view key) {
    bool isInGroup = false;
    while (!entry.empty()) {
        const std::size_t end = std::min(entry.find('\n'), entry.size());
        const std::string_view line = trimmed(entry.substr(0, end));
        entry.remove_prefix(std::min(end + 1, entry.size()));
        if (line.starts_with('[')) isInGroup = line == kGroup;
        const std::size_t equals = line.find('=');
        if (isInGroup && equals != line.npos && trimmed(line.substr(0, equals)) == key)
            return trimmed(line.substr(equals + 1));
    }
    return std::nullopt;
}

// Escapes a value of a desktop entry.
std::string escapedValue(std::string_view text) {
    std::string escaped;
    for (const char character : text) switch (character) {
            case '\\': escaped += "\\\\"; break;
            case '\n': escaped += "\\n"; break;
            case '\r': escaped += "\\r"; break;
            case '\t': escaped += "\\t"; break;
            default: escaped += character;
        }
    return escaped;
}

// Quotes an argument of an Exec command line; the result still needs the escaping of a value.
std::string quotedArgument(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (std::string_view{"\"`$\\"}.contains(character)) quoted += '\\';
        if (character == '%') quoted += '%';
        quoted += character;
    }
    return quoted + '"';
}

std::string commandOf(const std::filesystem::path& executable) {
    return escapedValue(quotedArgument(executable.string()));
}

}  // namespace

std::string AutostartEntry::text() const {
    return std::string{kGroup} + "\nType=Application\nName=" + escapedValue(name) +
           "\nExec=" + commandOf(executable) + "\nTryExec=" + escapedValue(executable.string()) +
           "\nTerminal=false\nNoDisplay=true\nX-GNOME-Autostart-enabled=true\n";
}

bool AutostartEntry::isStartedBy(std::string_view entry) const {
    return valueOf(entry, "Exec") == commandOf(executable);
}

bool AutostartEntry::isSwitchedOff(std::string_view entry) {
    return valueOf(entry, "Hidden") == "true" ||
           valueOf(entry, "X-GNOME-Autostart-enabled") == "false" ||
           valueOf(entry, "X-MATE-Autostart-enabled") == "false";
}

}  // namespace quorvane

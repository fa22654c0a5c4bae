#include "platform/linux/processes/LoginItemLinux.hpp"

#include <unistd.h>

#include "platform/KeyFile.hpp"
#include "platform/RegularFiles.hpp"
#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/FilesLinux.hpp"
#include "platform/linux/files/FoldersLinux.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

constexpr std::uint64_t kLargestEntry = 1 << 20;
constexpr std::string_view kGroup = "[Desktop Entry]";

std::optional<std::string_view> valueOf(std::string_view entry, std::string_view key) {
    return keyFileValue(entry, kGroup, key);
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

// Text of an XDG autostart entry: a desktop file that the session manager starts at login.
std::string entryText(const std::filesystem::path& executable) {
    return std::string{kGroup} +
           "\nType=Application\nName=" + escapedValue(executable.filename().string()) +
           "\nExec=" + commandOf(executable) + "\nTryExec=" + escapedValue(executable.string()) +
           "\nTerminal=false\nNoDisplay=true\nX-GNOME-Autostart-enabled=true\n";
}

// The desktop file in which KDE Plasma's compositor finds the permission of the program.
std::string permissionText(const std::filesystem::path& program) {
    return std::string{kGroup} +
           "\nType=Application\nName=Quorvane Lock Screen\nExec=" + commandOf(program) +
           "\nNoDisplay=true\nX-KDE-Wayland-Interfaces=kde_lockscreen_overlay_v1\n";
}

// The name of both desktop files.
std::optional<std::string> entryName(const ProcessInfo& process) {
    const auto* identifier = find<std::string>(process.bundleProperties, "CFBundleIdentifier");
    if (identifier == nullptr || !isPlainFileName(*identifier)) return std::nullopt;
    return *identifier + ".desktop";
}

std::optional<std::filesystem::path> permissionFile(const ProcessInfo& process) {
    const auto name = entryName(process);
    const auto folder = dataFolder();
    if (!name || !folder) return std::nullopt;
    return *folder / "applications" / *name;
}

Result<void> writeEntry(const std::filesystem::path& file, const std::string& text) {
    if (auto made = makePrivateFolders(file.parent_path()); !made) return made;
    return writeFileAtomically(file, bytesOf(text));
}

// Whether the user has disabled the entry, in any desktop's way.
bool isSwitchedOff(std::string_view entry) {
    return valueOf(entry, "Hidden") == "true" ||
           valueOf(entry, "X-GNOME-Autostart-enabled") == "false" ||
           valueOf(entry, "X-MATE-Autostart-enabled") == "false";
}

struct LoginItem {
    std::filesystem::path file;
    std::filesystem::path executable;  // started without arguments
    std::optional<std::filesystem::path> permission;

    std::int64_t status() const {
        const auto present = makeLiveRegularFiles().read(file, kLargestEntry);
        if (!present) return LoginItemClient::kNotRegistered;
        const std::string_view text = textOf(present->contents);
        if (isSwitchedOff(text)) return LoginItemClient::kRequiresApproval;
        return valueOf(text, "Exec") == commandOf(executable) ? LoginItemClient::kEnabled
                                                              : LoginItemClient::kNotRegistered;
    }
    Result<void> registerItem() const { return writeEntry(file, entryText(executable)); }
    Result<void> unregisterItem() const {
        if (permission && unlink(permission->c_str()) != 0 && errno != ENOENT)
            return posixError(*permission);
        if (unlink(file.c_str()) != 0 && errno != ENOENT) return posixError(file);
        return {};
    }
};

LoginItemClient noLoginItem() {
    const auto fails = []() -> Result<void> {
        return std::unexpected{PlatformError{.description = "only an application in a bundle of a "
                                                            "user with a home is a login item"}};
    };
    return {.status = [] { return LoginItemClient::kNotFound; },
            .registerItem = fails,
            .unregisterItem = fails};
}

}  // namespace

LoginItemClient makeLoginItem(std::optional<std::filesystem::path> autostartFolder,
                              const ProcessInfo& process) {
    const auto name = entryName(process);
    const auto executable = executableOfBundle(process.bundle, process.bundleProperties);
    if (!autostartFolder || !name || !executable) return noLoginItem();
    const LoginItem item{*autostartFolder / *name, *executable, permissionFile(process)};
    return {.status = [item] { return item.status(); },
            .registerItem = [item] { return item.registerItem(); },
            .unregisterItem = [item] { return item.unregisterItem(); }};
}

Result<void> permitAboveLock(const std::filesystem::path& program, const ProcessInfo& process) {
    const auto file = permissionFile(process);
    if (!file)
        return std::unexpected{
            PlatformError{.description = "only an application in a bundle of a user with a home "
                                         "is permitted above the lock screen"}};
    const auto present = makeLiveRegularFiles().read(*file, kLargestEntry);
    if (present && textOf(present->contents) == permissionText(program)) return {};
    return writeEntry(*file, permissionText(program));
}

}  // namespace quorvane

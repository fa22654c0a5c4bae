#include "platform/linux/files/FoldersLinux.hpp"

#include <pwd.h>
#include <unistd.h>

#include <vector>

#include "platform/linux/files/Environment.hpp"

namespace quorvane {
namespace {

std::optional<std::filesystem::path> absoluteFolder(std::string_view text) {
    if (!text.starts_with('/')) return std::nullopt;
    return std::filesystem::path{text};
}

std::optional<std::filesystem::path> folder(const char* variable, const char* inHome) {
    if (auto path = absoluteFolder(environmentVariable(variable))) return path;
    auto home = homeFolder();
    if (home) *home /= inHome;
    return home;
}

}  // namespace

std::optional<std::filesystem::path> homeFolder() {
    if (auto path = absoluteFolder(environmentVariable("HOME"))) return path;
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return std::nullopt;
    return absoluteFolder(found->pw_dir);
}

std::optional<std::filesystem::path> configFolder() { return folder("XDG_CONFIG_HOME", ".config"); }

std::optional<std::filesystem::path> dataFolder() {
    return folder("XDG_DATA_HOME", ".local/share");
}

bool isPlainFileName(std::string_view name) {
    return !name.empty() && name.size() <= 200 && !name.starts_with('.') &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

}  // namespace quorvane

#include "platform/linux/files/FileManagerLinux.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string_view>
#include <vector>

#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

// Limits the recursion, which keeps one folder open per level; no bundle is nearly as deep.
constexpr int kDeepestFolder = 64;

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

Result<void> removeAt(int folder, const std::string& name, const std::filesystem::path& path,
                      int depth);

Result<std::vector<std::string>> namesIn(DIR* directory, const std::filesystem::path& path) {
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* const entry = readdir(directory)) {
        const std::string_view name{entry->d_name};
        if (name != "." && name != "..") names.emplace_back(name);
        errno = 0;
    }
    if (errno != 0) return posixError(path);
    return names;
}

// Works with descriptors and never follows links, so that a folder that is swapped for a link
// during the removal is not entered.
Result<void> removeFolderAt(int folder, const std::string& name, const std::filesystem::path& path,
                            int depth) {
    if (depth > kDeepestFolder) return posixError(path, ELOOP);
    const int descriptor =
        openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return posixError(path);
    const Directory directory{fdopendir(descriptor)};
    if (!directory) {
        auto failure = posixError(path);
        close(descriptor);
        return failure;
    }
    const auto names = namesIn(directory.get(), path);
    if (!names) return std::unexpected{names.error()};
    for (const std::string& each : *names) {
        auto removed = removeAt(descriptor, each, path / each, depth + 1);
        if (!removed && removed.error().code != ENOENT) return removed;
    }
    if (unlinkat(folder, name.c_str(), AT_REMOVEDIR) != 0) return posixError(path);
    return {};
}

Result<void> removeAt(int folder, const std::string& name, const std::filesystem::path& path,
                      int depth) {
    if (unlinkat(folder, name.c_str(), 0) == 0) return {};
    if (errno != EISDIR && errno != EPERM) return posixError(path);
    return removeFolderAt(folder, name, path, depth);
}

Result<void> removeItem(const std::filesystem::path& path) {
    auto removed = removeAt(AT_FDCWD, path.string(), path, 0);
    if (!removed && removed.error().code == ENOENT)
        return std::unexpected{PlatformError{PlatformError::Domain::cocoa,
                                             FileManagerClient::kNoSuchFile,
                                             std::move(removed).error().description}};
    return removed;
}

// A path that cannot be examined counts as existing.
bool fileExists(const std::filesystem::path& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

std::optional<std::string> identity(const std::filesystem::path& bundle) {
    const PropertyDictionary properties = propertiesOfBundle(bundle);
    const std::string* const identifier = find<std::string>(properties, "CFBundleIdentifier");
    if (identifier == nullptr) return std::nullopt;
    return *identifier;
}

}  // namespace

FileManagerClient makeFileManager() {
    return {.removeItem = removeItem, .fileExists = fileExists, .identity = identity};
}

}  // namespace quorvane

#include "platform/linux/files/FileManagerLinux.hpp"

#include <sys/stat.h>

#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

// The library works with descriptors and never follows links, so that a folder that is swapped for
// a link during the removal is not entered.
Result<void> removeItem(const std::filesystem::path& path) {
    std::error_code error;
    const auto removed = std::filesystem::remove_all(path, error);
    if (error) return posixError(path, error.value());
    if (removed > 0) return {};
    return std::unexpected{PlatformError{PlatformError::Domain::cocoa,
                                         FileManagerClient::kNoSuchFile,
                                         posixError(path, ENOENT).error().description}};
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

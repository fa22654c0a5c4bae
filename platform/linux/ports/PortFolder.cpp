#include "platform/linux/ports/PortFolder.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstring>

#include "platform/linux/files/FoldersLinux.hpp"

namespace quorvane {
namespace {

constexpr mode_t kOthers = 077;
// The sticky bit asks cleaners of the runtime folder to leave the file.
constexpr mode_t kOwnFile = S_ISVTX | S_IRUSR | S_IWUSR;

}  // namespace

std::optional<PortFolder> PortFolder::open(const std::filesystem::path& path, Purpose purpose) {
    if (path.empty()) return std::nullopt;
    if (purpose == Purpose::serve) mkdir(path.c_str(), S_IRWXU);
    FileDescriptor descriptor{
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)};
    struct stat status {};
    if (!descriptor || fstat(descriptor.get(), &status) != 0 || status.st_uid != geteuid())
        return std::nullopt;
    if ((status.st_mode & kOthers) != 0 &&
        (purpose == Purpose::look || fchmod(descriptor.get(), S_IRWXU) != 0))
        return std::nullopt;
    return PortFolder{path, std::move(descriptor)};
}

std::optional<SocketAddress> PortFolder::address(const std::string& name) const {
    if (!isPlainFileName(name)) return std::nullopt;
    std::string place = (path_ / name).native();
    SocketAddress address;
    if (place.size() >= sizeof address.name.sun_path) place = throughDescriptor(name);
    if (place.size() >= sizeof address.name.sun_path) return std::nullopt;
    address.name.sun_family = AF_UNIX;
    std::memcpy(address.name.sun_path, place.c_str(), place.size() + 1);
    address.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + place.size() + 1);
    return address;
}

std::optional<FileLock> PortFolder::lock(const std::string& name) const {
    if (!isPlainFileName(name)) return std::nullopt;
    const std::string file = name + ".lock";
    auto lock = FileLock::acquire(throughDescriptor(file), Duration{});
    if (!lock) return std::nullopt;
    protect(file);
    return *std::move(lock);
}

// A path to the checked folder, even if another one has replaced it. Short enough for any folder.
std::string PortFolder::throughDescriptor(const std::string& name) const {
    return "/proc/self/fd/" + std::to_string(descriptor_.get()) + "/" + name;
}

bool PortFolder::remove(const std::string& name) const {
    return unlinkat(descriptor_.get(), name.c_str(), 0) == 0 || errno == ENOENT;
}

void PortFolder::protect(const std::string& name) const {
    fchmodat(descriptor_.get(), name.c_str(), kOwnFile, 0);
}

}  // namespace quorvane

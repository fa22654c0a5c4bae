#include "platform/linux/ports/PortFolder.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cstring>

namespace quorvane {
namespace {

constexpr std::size_t kLongestName = 80;
constexpr mode_t kOthers = 077;
// The sticky bit asks cleaners of the runtime folder to leave the file.
constexpr mode_t kOwnFile = S_ISVTX | S_IRUSR | S_IWUSR;

bool isFileName(const std::string& name) {
    return !name.empty() && name.size() <= kLongestName && name != "." && name != ".." &&
           name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
}

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
    if (!isFileName(name)) return std::nullopt;
    std::string place = (path_ / name).native();
    SocketAddress address;
    // A longer path is reached through the open folder.
    if (place.size() >= sizeof address.name.sun_path)
        place = "/proc/self/fd/" + std::to_string(descriptor_.get()) + "/" + name;
    if (place.size() >= sizeof address.name.sun_path) return std::nullopt;
    address.name.sun_family = AF_UNIX;
    std::memcpy(address.name.sun_path, place.c_str(), place.size() + 1);
    address.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + place.size() + 1);
    return address;
}

std::optional<FileDescriptor> PortFolder::lock(const std::string& name) const {
    if (!isFileName(name)) return std::nullopt;
    const std::string file = name + ".lock";
    FileDescriptor lock{openat(descriptor_.get(), file.c_str(),
                               O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR)};
    if (!lock || flock(lock.get(), LOCK_EX | LOCK_NB) != 0) return std::nullopt;
    fchmod(lock.get(), kOwnFile);
    // Another process may have removed the file between open and lock; then no other process would
    // see this lock.
    struct stat held {};
    struct stat standing {};
    if (fstat(lock.get(), &held) != 0 ||
        fstatat(descriptor_.get(), file.c_str(), &standing, AT_SYMLINK_NOFOLLOW) != 0 ||
        held.st_ino != standing.st_ino || held.st_dev != standing.st_dev)
        return std::nullopt;
    return lock;
}

bool PortFolder::remove(const std::string& name) const {
    return unlinkat(descriptor_.get(), name.c_str(), 0) == 0 || errno == ENOENT;
}

void PortFolder::protect(const std::string& name) const {
    fchmodat(descriptor_.get(), name.c_str(), kOwnFile, 0);
}

bool peerIsOwnUser(int socket) {
    ucred peer{};
    socklen_t length = sizeof peer;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           peer.uid == geteuid();
}

}  // namespace quorvane

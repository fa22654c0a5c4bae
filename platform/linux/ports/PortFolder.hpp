// Folder of the ports' sockets and lock files.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <filesystem>
#include <optional>
#include <string>

#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/FileLock.hpp"

namespace quorvane {

struct SocketAddress {
    sockaddr_un name{};
    socklen_t length = 0;
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&name); }
};

// Opens only a real folder that belongs to this user and is closed to all others.
class PortFolder {
public:
    // A client only looks; a server creates the folder and closes it to others.
    enum class Purpose { look, serve };
    static std::optional<PortFolder> open(const std::filesystem::path& path, Purpose purpose);

    // The address of the socket with this name; valid while the folder is open. Nullopt when the
    // name is not a valid file name or is too long.
    std::optional<SocketAddress> address(const std::string& name) const;

    // The lock that makes its holder the name's only owner; nullopt when another holds it.
    std::optional<FileLock> lock(const std::string& name) const;

    bool remove(const std::string& name) const;
    // Protects the socket file from other users and from cleanup while it is in use.
    void protect(const std::string& name) const;

private:
    PortFolder(std::filesystem::path path, FileDescriptor descriptor)
        : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

    std::string throughDescriptor(const std::string& name) const;

    std::filesystem::path path_;
    FileDescriptor descriptor_;
};

}  // namespace quorvane

// The folder that holds the sockets of the ports, and what stands in it.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <filesystem>
#include <optional>
#include <string>

#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {

struct SocketAddress {
    sockaddr_un name{};
    socklen_t length = 0;
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&name); }
};

// Open only when the folder is a real one, belongs to this user and is closed to all others.
class PortFolder {
public:
    // A client looks; a server makes the folder and closes it to others.
    enum class Purpose { look, serve };
    static std::optional<PortFolder> open(const std::filesystem::path& path, Purpose purpose);

    // Of the socket with this name; valid while the folder is open. Nothing when the name cannot be
    // a file's or is too long.
    std::optional<SocketAddress> address(const std::string& name) const;

    // The lock that makes its holder the one owner of the name; nothing when somebody has it.
    std::optional<FileDescriptor> lock(const std::string& name) const;

    bool remove(const std::string& name) const;
    // Keeps the socket file from others and from being cleaned away while it is in use.
    void protect(const std::string& name) const;

private:
    PortFolder(std::filesystem::path path, FileDescriptor descriptor)
        : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

    std::filesystem::path path_;
    FileDescriptor descriptor_;
};

// True when the process at the other end runs as this user.
bool peerIsOwnUser(int socket);

}  // namespace quorvane

// Peer check of a local socket.
#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <optional>

namespace quorvane {

// The process that connected or listened, if it runs as this user; nullopt otherwise.
inline std::optional<pid_t> ownPeer(int socket) {
    ucred peer{};
    socklen_t length = sizeof peer;
    if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) != 0 || peer.uid != geteuid())
        return std::nullopt;
    return peer.pid;
}

}  // namespace quorvane

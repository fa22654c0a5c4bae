// The connection secret: made by the main application, read by both sides.
#pragma once

#include <optional>

#include "platform/FileStore.hpp"
#include "platform/Log.hpp"

namespace quorvane {

struct MessagePortSecret {
    static constexpr char kFileName[] = "ipc-secret";

    // Puts new random bytes into the shared container and returns what the clients read there.
    // Another writer may have been faster: a secret that exists is kept, other contents are
    // replaced. Nullopt when a step failed, which is logged. Only the holder of the main port calls
    // this, because the secret of a server that runs must not change.
    static std::optional<Bytes> make(const FillRandom& fillRandom, const FileStore& files,
                                     const LogSink& log);

    // The file's contents whatever their length; nothing when it cannot be read. Any thread. The
    // caller wipes them after use.
    static std::optional<Bytes> read(const FileStore& files);

    // What has been read, if it is a secret; nothing, and wiped, when its length is another.
    static std::optional<Bytes> checked(std::optional<Bytes> contents);
};

}  // namespace quorvane

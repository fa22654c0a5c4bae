// The connection secret: made by the main application, read by the add-on.
#pragma once

#include <optional>

#include "platform/FileStore.hpp"
#include "platform/Log.hpp"

namespace quorvane {

struct MessagePortSecret {
    static constexpr char kFileName[] = "ipc-secret";

    // New random bytes, kept in the shared container. Nothing when any of it failed, which is
    // logged: a secret that the clients cannot read is none.
    static std::optional<Bytes> make(const FillRandom& fillRandom, const FileStore& files,
                                     const LogSink& log);

    // The file's contents whatever their length; nothing when it cannot be read. Any thread. The
    // caller wipes them after use.
    static std::optional<Bytes> read(const FileStore& files);

    // What has been read, if it is a secret; nothing, and wiped, when its length is another.
    static std::optional<Bytes> checked(std::optional<Bytes> contents);
};

}  // namespace quorvane

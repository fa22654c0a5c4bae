// The connection secret: made by the main application, read by both sides.
#pragma once

#include <optional>

#include "platform/FileStore.hpp"
#include "platform/Log.hpp"

namespace quorvane {

struct MessagePortSecret {
    static constexpr char kFileName[] = "ipc-secret";

    // Puts new random bytes into the shared container and returns the secret that clients read
    // there. Another writer may have been faster, so an existing secret is kept and any other
    // contents are replaced. Returns nullopt when a step failed, which is logged. Only the holder
    // of the main port calls this, because a running server's secret must not change.
    static std::optional<Bytes> make(const FillRandom& fillRandom, const FileStore& files,
                                     const LogSink& log);

    // The file's contents, whatever their length; nullopt when unreadable. Any thread. The caller
    // wipes them after use.
    static std::optional<Bytes> read(const FileStore& files);

    // Returns `contents` if they have a secret's length; otherwise wipes them and returns nullopt.
    static std::optional<Bytes> checked(std::optional<Bytes> contents);
};

}  // namespace quorvane

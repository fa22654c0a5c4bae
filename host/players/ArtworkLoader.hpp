// The picture that a player points to, read in the background and kept until another one is wanted.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "QuorvaneKit/records/SharedBytes.hpp"
#include "platform/MainThread.hpp"
#include "platform/RegularFiles.hpp"
#include "platform/SerialQueue.hpp"

namespace quorvane {

// Main thread only; the files are read on a queue of its own, so that a slow or dead file system
// costs the picture and nothing else. A picture that cannot be read is none.
class ArtworkLoader {
public:
    static constexpr std::uint64_t kLargest = 8u << 20;

    // `onLoaded` is called when `picture` has changed other than by `want`.
    ArtworkLoader(RegularFiles files, MainThread mainThread, std::unique_ptr<SerialQueue> queue,
                  std::function<void()> onLoaded);
    ~ArtworkLoader();

    // The URL of the picture that is wanted from now on, for the given track. A player may use one
    // file for all its tracks, so each track has the file looked at anew.
    void want(const std::string& trackKey, const std::string& url);
    // Looks whether the wanted file has changed, or is there by now.
    void lookAgain();

    const std::optional<SharedBytes>& picture() const;

private:
    struct State;
    std::shared_ptr<State> state_;  // shared only to be held weakly by work in flight
    std::unique_ptr<SerialQueue> queue_;
};

}  // namespace quorvane

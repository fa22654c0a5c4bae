// Background loader of the picture that a player points to; keeps it until another is wanted.
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

// Main thread only. Files are read on a separate queue, so that a slow or dead file system delays
// only the picture. A picture that cannot be read is nullopt.
class ArtworkLoader {
public:
    static constexpr std::uint64_t kLargest = 8u << 20;

    // `onLoaded` is called when `picture` has changed other than by `want`.
    ArtworkLoader(RegularFiles files, MainThread mainThread, std::unique_ptr<SerialQueue> queue,
                  std::function<void()> onLoaded);
    ~ArtworkLoader();

    // Sets the URL of the wanted picture and its track. The file is checked again for each track,
    // because a player may use one file for all its tracks.
    void want(const std::string& trackKey, const std::string& url);
    // Checks whether the wanted file has changed or now exists.
    void lookAgain();

    const std::optional<SharedBytes>& picture() const;

private:
    struct State;
    std::shared_ptr<State> state_;  // shared only so that pending work can hold it weakly
    std::unique_ptr<SerialQueue> queue_;
};

}  // namespace quorvane

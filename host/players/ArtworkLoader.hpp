// Background loader of the picture that a player points to; keeps it until another is wanted.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "QuorvaneKit/records/SharedBytes.hpp"
#include "platform/LifeToken.hpp"
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
                  std::function<void()> onLoaded)
        : files_(std::move(files)),
          mainThread_(std::move(mainThread)),
          queue_(std::move(queue)),
          onLoaded_(std::move(onLoaded)) {}

    // Sets the URL of the wanted picture and its track. The file is checked again for each track,
    // because a player may use one file for all its tracks.
    void want(const std::string& trackKey, const std::string& url);
    // Checks whether the wanted file has changed or now exists.
    void lookAgain();

    const std::optional<SharedBytes>& picture() const { return picture_; }

private:
    // The result of checking a file.
    struct Look {
        bool isUnchanged = false;           // the file is the one that was read before
        std::optional<StampedFile> file{};  // otherwise its contents, if readable
    };
    static Look look(const RegularFiles& files, const std::filesystem::path& path,
                     const std::optional<FileStamp>& known);
    void apply(Look look);

    RegularFiles files_;
    MainThread mainThread_;
    std::unique_ptr<SerialQueue> queue_;
    std::function<void()> onLoaded_;

    std::string wantedTrack_;
    std::optional<std::filesystem::path> wanted_;
    bool isLooking_ = false;
    bool isOutdated_ = false;  // check again after the present check
    // The wanted file as it was read last; nullopt before that.
    std::optional<FileStamp> knownStamp_;
    std::optional<SharedBytes> picture_;
    LifeToken life_;
};

}  // namespace quorvane

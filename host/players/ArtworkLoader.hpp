// Background loader of the picture that a player points to; keeps it until another is wanted.
#pragma once

#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "QuorvaneKit/records/SharedBytes.hpp"
#include "platform/FetchPicture.hpp"
#include "platform/LifeToken.hpp"
#include "platform/Log.hpp"
#include "platform/MainThread.hpp"
#include "platform/RegularFiles.hpp"
#include "platform/SerialQueue.hpp"

namespace quorvane {

// Main thread only. Files are read and "data:" URLs decoded on a separate queue, so that a slow
// file system or a large picture delays only the picture. The log says once why there is none.
class ArtworkLoader {
public:
    using URL = std::shared_ptr<const std::string>;  // may be null

    struct Services {
        RegularFiles files;
        FetchPicture fetchPicture;  // null where nothing can be fetched
        MainThread mainThread;
        std::unique_ptr<SerialQueue> queue;
        Logger log;
    };
    // `onLoaded` is called after each check and each fetch that has changed `picture`.
    ArtworkLoader(Services services, std::function<void()> onLoaded)
        : services_(std::move(services)), onLoaded_(std::move(onLoaded)) {}

    // Sets the URL of the wanted picture and its track. A file is checked again for each track,
    // because a player may use one file for all its tracks.
    void want(const std::string& trackKey, URL url);
    // Checks whether the wanted file has changed or now exists.
    void checkAgain();

    // The wanted picture; nullopt until it has been found to be the one of this track.
    std::optional<SharedBytes> picture() const { return isChecked_ ? picture_ : std::nullopt; }

private:
    using Picture = std::expected<SharedBytes, std::string>;  // or the reason for having none
    // The result of a check.
    struct Reading {
        std::optional<FileStamp> stamp{};
        std::optional<Picture> picture{};  // nullopt: the file that was read before
    };
    static Reading read(const RegularFiles& files, const std::string& url,
                        const std::optional<FileStamp>& known);
    static Reading without(std::string reason);
    // Sends a request to a web server, after this number of redirects.
    void fetch(const std::string& url, int redirects);
    void answered(FetchAnswer answer, int redirects);
    // For tracks that come back.
    void keep(const SharedBytes& picture);
    void apply(Reading reading);
    void log(const std::string& reason);

    Services services_;
    std::function<void()> onLoaded_;

    std::string wantedTrack_;
    URL wanted_;
    bool isChecked_ = false;  // for the wanted URL and track
    bool isReading_ = false;
    // The wanted file as it was read last; nullopt before that.
    std::optional<FileStamp> knownStamp_;
    std::optional<SharedBytes> picture_;
    std::string logged_;                          // the last reason for having no picture
    Handle request_;                              // to a web server, while it is pending
    std::map<std::string, SharedBytes> fetched_;  // from the web, by URL
    std::size_t fetchedBytes_ = 0;
    LifeToken life_;
};

}  // namespace quorvane

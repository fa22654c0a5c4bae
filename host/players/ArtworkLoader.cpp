#include "host/players/ArtworkLoader.hpp"

#include "host/players/DataURL.hpp"
#include "host/players/FileURL.hpp"

namespace quorvane {

void ArtworkLoader::want(const std::string& trackKey, URL url) {
    const bool isSameURL = wanted_ == url || (wanted_ && url && *wanted_ == *url);
    if (isSameURL && wantedTrack_ == trackKey) return;
    wantedTrack_ = trackKey;
    if (!isSameURL) {
        wanted_ = std::move(url);
        knownStamp_.reset();
        picture_.reset();
        fetcher_.cancel();
        logged_.clear();
    }
    // Only a file may hold another picture for another track.
    isChecked_ = isSameURL && picture_ && !localFile(*wanted_);
    lookAgain();
}

void ArtworkLoader::lookAgain() {
    if (!wanted_ || (isChecked_ && !localFile(*wanted_))) return;
    if (isWebURL(*wanted_)) return fetch();
    isOutdated_ = isLooking_;
    if (isLooking_) return;
    // This object may be destroyed before the result arrives. If the system refuses a thread, no
    // picture is read; the next check retries.
    isLooking_ = services_.queue->async([this, watch = life_.watch(), files = services_.files,
                                         mainThread = services_.mainThread, url = wanted_,
                                         track = wantedTrack_, known = knownStamp_] {
        auto found = std::make_shared<Look>(look(files, *url, known));
        mainThread.post([this, watch, url, track, found] {
            if (watch.isOver()) return;
            isLooking_ = false;
            const bool isDue = std::exchange(isOutdated_, false);
            if (wanted_ == url && wantedTrack_ == track) apply(std::move(*found));
            if (isDue) lookAgain();
        });
    });
}

ArtworkLoader::Look ArtworkLoader::look(const RegularFiles& files, const std::string& url,
                                        const std::optional<FileStamp>& known) {
    const auto without = [](std::string reason) {
        return Look{.picture = Picture{std::unexpected{std::move(reason)}}};
    };
    if (isDataURL(url)) {
        auto data = dataOf(url);
        if (!data) return without(std::string{data.error()});
        return {.picture = SharedBytes{*std::move(data)}};
    }
    const auto path = localFile(url);
    if (!path) return without("its URL names no file of this machine: " + url.substr(0, 200));
    const auto stamp = files.stamp(*path);
    if (!stamp) return without(stamp.error().description);
    if (known && *stamp == *known) return {};
    auto file = files.read(*path, kLargestArtwork);
    if (!file) return without(file.error().description);
    if (file->contents.empty()) return {file->stamp, without("the file is empty").picture};
    return {.stamp = file->stamp, .picture = SharedBytes{std::move(file->contents)}};
}

void ArtworkLoader::fetch() {
    if (fetcher_.isFetching()) return;
    fetcher_.fetch(*wanted_, [this](Picture picture) { apply({.picture = std::move(picture)}); });
}

void ArtworkLoader::apply(Look look) {
    const auto before = picture();
    isChecked_ = true;
    if (look.picture) {
        knownStamp_ = look.stamp;
        picture_.reset();
        if (*look.picture) {
            picture_ = **std::move(look.picture);
            logged_.clear();
        } else {
            log(look.picture->error());
        }
    }
    if (picture() != before) onLoaded_();
}

void ArtworkLoader::log(const std::string& reason) {
    if (std::exchange(logged_, reason) != reason)
        services_.log.info("players: no artwork: %{private}s", reason);
}

}  // namespace quorvane

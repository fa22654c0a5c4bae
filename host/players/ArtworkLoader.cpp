#include "host/players/ArtworkLoader.hpp"

#include "host/players/PlayerURL.hpp"

namespace quorvane {

namespace {

constexpr int kMaxRedirects = 3;
constexpr std::size_t kMaxFetchedBytes = 4u << 20;  // enough for the covers of an evening

}  // namespace

void ArtworkLoader::want(const std::string& trackKey, URL url) {
    const bool isSameURL = wanted_ == url || (wanted_ && url && *wanted_ == *url);
    if (isSameURL && wantedTrack_ == trackKey) return;
    wantedTrack_ = trackKey;
    if (!isSameURL) {
        wanted_ = std::move(url);
        knownStamp_.reset();
        picture_.reset();
        request_.reset();
        logged_.clear();
    }
    // Only a file may hold another picture for another track.
    isChecked_ = isSameURL && picture_ && !localFile(*wanted_);
    checkAgain();
}

void ArtworkLoader::checkAgain() {
    if (!wanted_ || (isChecked_ && !localFile(*wanted_))) return;
    if (isWebURL(*wanted_)) {
        const auto earlier = fetched_.find(*wanted_);
        if (earlier != fetched_.end()) return apply({.picture = earlier->second});
        if (!request_) fetch(*wanted_, 0);
        return;
    }
    if (isReading_) return;
    // This object may be destroyed before the result arrives. If the system refuses a thread, no
    // picture is read; the next check retries.
    isReading_ = services_.queue->async([this, watch = life_.watch(), files = services_.files,
                                         mainThread = services_.mainThread, url = wanted_,
                                         track = wantedTrack_, known = knownStamp_] {
        auto found = std::make_shared<Reading>(read(files, *url, known));
        mainThread.post([this, watch, url, track, found] {
            if (watch.isOver()) return;
            isReading_ = false;
            if (wanted_ != url || wantedTrack_ != track) return checkAgain();
            apply(std::move(*found));
        });
    });
}

ArtworkLoader::Reading ArtworkLoader::read(const RegularFiles& files, const std::string& url,
                                           const std::optional<FileStamp>& known) {
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

ArtworkLoader::Reading ArtworkLoader::without(std::string reason) {
    return {.picture = Picture{std::unexpected{std::move(reason)}}};
}

void ArtworkLoader::fetch(const std::string& url, int redirects) {
    if (!services_.fetchPicture) return apply(without("this edition fetches no pictures"));
    if (url.size() > kLongestFetchURL) return apply(without("the picture's URL is too long"));
    if (!isWebURL(url)) return apply(without("the server redirects to another protocol"));
    if (redirects > kMaxRedirects) return apply(without("the server redirects too often"));
    request_ = services_.fetchPicture(
        url, [this, redirects](FetchAnswer answer) { answered(std::move(answer), redirects); });
}

void ArtworkLoader::answered(FetchAnswer answer, int redirects) {
    request_.reset();
    if (const auto* elsewhere = std::get_if<FetchRedirect>(&answer))
        return fetch(elsewhere->url, redirects + 1);
    if (const auto* failure = std::get_if<FetchFailure>(&answer))
        return apply(without(failure->sentence));
    SharedBytes picture{std::get<Bytes>(std::move(answer))};
    keep(picture);
    apply({.picture = std::move(picture)});
}

void ArtworkLoader::keep(const SharedBytes& picture) {
    fetchedBytes_ += picture.size();
    if (fetchedBytes_ > kMaxFetchedBytes) {
        fetched_.clear();
        fetchedBytes_ = picture.size();
    }
    fetched_.emplace(*wanted_, picture);
}

void ArtworkLoader::apply(Reading reading) {
    const auto before = picture();
    isChecked_ = true;
    if (reading.picture) {
        knownStamp_ = reading.stamp;
        picture_.reset();
        if (*reading.picture) {
            picture_ = **std::move(reading.picture);
            logged_.clear();
        } else {
            log(reading.picture->error());
        }
    }
    if (picture() != before) onLoaded_();
}

void ArtworkLoader::log(const std::string& reason) {
    if (std::exchange(logged_, reason) != reason)
        services_.log.info("players: no artwork: %{private}s", reason);
}

}  // namespace quorvane

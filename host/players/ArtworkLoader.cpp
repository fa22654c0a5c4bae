#include "host/players/ArtworkLoader.hpp"

#include "host/players/FileURL.hpp"

namespace quorvane {

void ArtworkLoader::want(const std::string& trackKey, const std::string& url) {
    auto path = localFile(url);
    if (wantedTrack_ == trackKey && wanted_ == path) return;
    wantedTrack_ = trackKey;
    if (wanted_ != path) {
        wanted_ = std::move(path);
        knownStamp_.reset();
        picture_.reset();
    }
    lookAgain();
}

void ArtworkLoader::lookAgain() {
    if (!wanted_) return;
    isOutdated_ = isLooking_;
    if (isLooking_) return;
    // This object may be destroyed before the result arrives. If the system refuses a thread, no
    // picture is read; the next check retries.
    isLooking_ = queue_->async([this, watch = life_.watch(), files = files_,
                                mainThread = mainThread_, path = *wanted_, known = knownStamp_] {
        auto found = std::make_shared<Look>(look(files, path, known));
        mainThread.post([this, watch, path, found] {
            if (watch.isOver()) return;
            isLooking_ = false;
            const bool isDue = std::exchange(isOutdated_, false);
            if (wanted_ == path) apply(std::move(*found));
            if (isDue) lookAgain();
        });
    });
}

ArtworkLoader::Look ArtworkLoader::look(const RegularFiles& files,
                                        const std::filesystem::path& path,
                                        const std::optional<FileStamp>& known) {
    const auto stamp = files.stamp(path);
    if (!stamp) return {};
    if (known && *stamp == *known) return {.isUnchanged = true};
    auto file = files.read(path, kLargest);
    if (!file) return {};
    return {.file = *std::move(file)};
}

void ArtworkLoader::apply(Look look) {
    if (look.isUnchanged) return;
    const bool hadPicture = picture_.has_value();
    knownStamp_ = look.file ? std::optional{look.file->stamp} : std::nullopt;
    picture_.reset();
    if (look.file && !look.file->contents.empty()) picture_.emplace(std::move(look.file->contents));
    if (hadPicture || picture_) onLoaded_();
}

}  // namespace quorvane

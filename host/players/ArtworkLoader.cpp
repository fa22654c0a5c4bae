#include "host/players/ArtworkLoader.hpp"

#include "host/players/FileURL.hpp"

namespace quorvane {

namespace {

// The result of checking a file.
struct Look {
    bool isUnchanged = false;         // the file is the one that was read before
    std::optional<StampedFile> file;  // otherwise its contents, if readable
};

Look lookAt(const RegularFiles& files, const std::filesystem::path& path,
            const std::optional<FileStamp>& known) {
    const auto stamp = files.stamp(path);
    if (!stamp) return {};
    if (known && *stamp == *known) return {.isUnchanged = true, .file = {}};
    auto file = files.read(path, ArtworkLoader::kLargest);
    if (!file) return {};
    return {.isUnchanged = false, .file = *std::move(file)};
}

}  // namespace

struct ArtworkLoader::State : std::enable_shared_from_this<State> {
    RegularFiles files;
    MainThread mainThread;
    std::function<void()> onLoaded;

    std::string wantedTrack;
    std::optional<std::filesystem::path> wanted;
    bool isLooking = false;
    bool isOutdated = false;  // check again after the present check
    // The file read last; `picture` is nullopt while another file is wanted.
    std::optional<std::filesystem::path> knownPath;
    std::optional<FileStamp> knownStamp;
    std::optional<SharedBytes> picture;

    void look(SerialQueue& queue);
    void apply(const std::filesystem::path& path, Look look);
};

void ArtworkLoader::State::look(SerialQueue& queue) {
    if (!wanted) return;
    isOutdated = isLooking;
    if (isLooking) return;
    // The state and the queue may be destroyed before the result arrives. If the system refuses a
    // thread, no picture is read; the next check retries.
    isLooking = queue.async([weak = weak_from_this(), queue = &queue, files = files,
                             mainThread = mainThread, path = *wanted,
                             known = knownPath == wanted ? knownStamp : std::nullopt] {
        auto look = std::make_shared<Look>(lookAt(files, path, known));
        mainThread.post([weak, queue, path, look] {
            const auto state = weak.lock();
            if (!state) return;
            state->isLooking = false;
            const bool isDue = std::exchange(state->isOutdated, false);
            if (state->wanted == path) state->apply(path, std::move(*look));
            if (isDue) state->look(*queue);
        });
    });
}

void ArtworkLoader::State::apply(const std::filesystem::path& path, Look look) {
    if (look.isUnchanged) return;
    const bool hadPicture = picture.has_value();
    knownPath = path;
    knownStamp = look.file ? std::optional{look.file->stamp} : std::nullopt;
    picture.reset();
    if (look.file && !look.file->contents.empty()) picture.emplace(std::move(look.file->contents));
    if (hadPicture || picture) onLoaded();
}

ArtworkLoader::ArtworkLoader(RegularFiles files, MainThread mainThread,
                             std::unique_ptr<SerialQueue> queue, std::function<void()> onLoaded)
    : state_(std::make_shared<State>()), queue_(std::move(queue)) {
    state_->files = std::move(files);
    state_->mainThread = std::move(mainThread);
    state_->onLoaded = std::move(onLoaded);
}

ArtworkLoader::~ArtworkLoader() = default;

void ArtworkLoader::want(const std::string& trackKey, const std::string& url) {
    auto path = localFile(url);
    if (state_->wantedTrack == trackKey && state_->wanted == path) return;
    state_->wantedTrack = trackKey;
    if (state_->wanted != path) {
        state_->wanted = std::move(path);
        state_->knownPath.reset();
        state_->picture.reset();
    }
    state_->look(*queue_);
}

void ArtworkLoader::lookAgain() { state_->look(*queue_); }

const std::optional<SharedBytes>& ArtworkLoader::picture() const { return state_->picture; }

}  // namespace quorvane

// Times a state poll with a megabyte of artwork, from the host's encoder through the port to the
// model's update, with changed and with unchanged artwork. The floor is a bare stream that carries
// as many bytes. Both sides share a processor, so that work is timed and not wake-ups.

#include "AddOnKit/player/PlayerModel.hpp"
#include "QuorvaneKit/link/MessagePortClient.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "bench/LinkRival.hpp"
#include "bench/LinkServer.hpp"
#include "bench/Report.hpp"
#include "bench/SampleStates.hpp"
#include "drawing/pictures/EncodedImage.hpp"
#include "platform/linux/loop/SerialQueueLinux.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

constexpr int kRounds = 151;
constexpr std::size_t kArtworkSize = 1024 * 1024;

MessagePortHandlers handlersOf(bool changesArtwork) {
    MessagePortHandlers handlers;
    handlers.onStateRequested = [changesArtwork, count = 0, one = sampleArtwork(kArtworkSize, 1),
                                 two = sampleArtwork(kArtworkSize, 2)]() mutable {
        return std::optional{sampleState(changesArtwork && ++count % 2 == 0 ? two : one)};
    };
    return handlers;
}

MessagePortClient::Services servicesIn(const std::filesystem::path& folder) {
    return {.log = {},
            .connectPort = makeConnectPortLinux(folder),
            .makeSerialQueue = makeSerialQueuesLinux(),
            .mainThread = {.post = [](const std::function<void()>&) {}},
            .clock = {.now = [] { return Instant{std::chrono::steady_clock::now()}; },
                      .after = [](Duration, const std::function<void()>&) { return Timer{}; },
                      .afterAbout = {}},
            .darwinNotices = {.post = [](const std::string&) {},
                              .observe = [](const std::string&,
                                            const std::function<void()>&) { return Handle{}; }}};
}

// The product's two ends. They do everything that a poll needs except reading the secret's file.
class Poll {
public:
    explicit Poll(bool changesArtwork)
        : server_(0, folder_.path(), [&] { return handlersOf(changesArtwork); }),
          client_(
              kMessagePortBaseName, [] { return std::optional{LinkServer::secret()}; },
              servicesIn(folder_.path())) {
        client_.onStateChanged = [this](const QuorvanePlayerState& state) {
            model_.apply(state);
            ++updates_;
        };
        client_.connect();
        client_.setPolling(true);
    }

    void round() {
        const int before = updates_;
        times_.add(microsecondsOf([this] { client_.requestStateUpdate(); }));
        if (updates_ != before + 1) std::abort();
    }
    const Times& times() const { return times_; }
    int newPictures() const { return newPictures_; }

private:
    int newPictures_ = 0;
    TemporaryFolder folder_;
    LinkServer server_;
    PlayerModel model_{[] { return WallTime{std::chrono::system_clock::now()}; },
                       [this](ByteView encoded) -> ImageRef {
                           ++newPictures_;
                           return std::make_shared<EncodedImage>(copyOf(encoded));
                       }};
    MessagePortClient client_;
    int updates_ = 0;
    Times times_;
};

void tell(const char* what, const Times& own, const Times& floor, double limit) {
    const double ratio = own.over(floor);
    report(
        {.what = what,
         .ratio = ratio,
         .against = "a bare Unix stream that carries as many bytes",
         .figure = timeText(own.median()) + " to " + timeText(floor.median()),
         .goal = "≤ " + numberText(limit, " ×"),
         .isMet = ratio <= limit,
         .reason = "the host encodes the state, and the add-on compares its text with the last"});
}

int runBench() {
    pin(0);
    Poll changed{true};
    Poll unchanged{false};
    const std::size_t length =
        XPCCodableHelpers::encode(sampleState(sampleArtwork(kArtworkSize, 1)))->size();
    const auto stream = makeBareStream({.request = 33, .reply = length}, 0);
    Times floor;
    for (int round = 0; round < kRounds; ++round) {
        changed.round();
        unchanged.round();
        floor.add(microsecondsOf([&] { stream->call(); }));
    }
    // Connecting has fetched the first one.
    if (changed.newPictures() != kRounds + 1 || unchanged.newPictures() != 1) {
        std::fprintf(stderr, "the artwork changed %d and %d times\n", changed.newPictures(),
                     unchanged.newPictures());
        return 1;
    }
    beginReport("A whole state poll with 1 MB of artwork");
    tell("artwork changed", changed.times(), floor, 9);
    tell("artwork unchanged", unchanged.times(), floor, 3);
    return 0;
}

}  // namespace
}  // namespace quorvane

int main() { return quorvane::runBench(); }

// One state poll with a megabyte of artwork, from the host's encoder through the port to the
// model's update, when the artwork changed and when not; against the same state as JSON by another
// library over a message bus. Both sides on one processor: what is timed is work, not wake-ups.

#include <cstring>

#include "AddOnKit/player/PlayerModel.hpp"
#include "QuorvaneKit/json/Base64.hpp"
#include "QuorvaneKit/link/MessagePortClient.hpp"
#include "bench/JSONRivals.hpp"
#include "bench/LinkRival.hpp"
#include "bench/LinkServer.hpp"
#include "bench/Report.hpp"
#include "bench/SampleStates.hpp"
#include "drawing/pictures/EncodedImage.hpp"
#include "platform/linux/loop/SerialQueueLinux.hpp"
#include "tests/support/PrivateBus.hpp"

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

// The product's two ends, all of what they do in a poll but reading the secret's file.
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
        const ImageRef picture = model_.artwork.get();
        times_.add(microsecondsOf([this] { client_.requestStateUpdate(); }));
        if (updates_ != before + 1) std::abort();
        if (model_.artwork.get() != picture) ++newPictures_;
    }
    const Times& times() const { return times_; }
    std::int64_t newPictures() const { return newPictures_; }

private:
    TemporaryFolder folder_;
    LinkServer server_;
    PlayerModel model_{[] { return WallTime{std::chrono::system_clock::now()}; },
                       [](ByteView encoded) -> ImageRef {
                           return std::make_shared<EncodedImage>(copyOf(encoded));
                       }};
    MessagePortClient client_;
    int updates_ = 0;
    std::int64_t newPictures_ = 0;
    Times times_;
};

std::unique_ptr<LinkRival> makeRival(const JSONRival& library, const std::string& address) {
    const auto makeReply = [library, text = std::string{}]() mutable {
        static const SharedBytes artwork = sampleArtwork(kArtworkSize, 1);
        Bytes base64;
        appendBase64(base64, artwork.view());
        text = library.encode(textOf(base64));
        return bytesOf(text);
    };
    const auto take = [library](ByteView reply) {
        if (library.decode(textOf(reply)) != kArtworkSize) std::abort();
    };
    return makeBusCall({.request = Bytes(33, std::byte{1}), .makeReply = makeReply, .take = take},
                       0, address);
}

void tell(const char* what, const Times& own, const Times& rival, double limit) {
    ReportRow row{.what = what,
                  .figure = timeText(own.median()),
                  .goal = "≤ " + timeText(limit),
                  .isMet = own.median() <= limit,
                  .reason =
                      "1.4 MB of text go into the socket, out of it and through the comparison "
                      "with the last; with nothing but polls, and so with warm caches, they take "
                      "three quarters of this"};
    if (!rival.rounds.empty()) {
        row.ratio = rival.over(own);
        row.against = "faster than nlohmann over dbus-daemon";
        row.figure += " to " + timeText(rival.median());
    }
    report(row);
}

int runBench() {
    pin(0);
    const PrivateBus bus;
    Poll changed{true};
    Poll unchanged{false};
    const auto library = nlohmannRival();
    const auto rival = library ? makeRival(*library, bus.address()) : nullptr;
    Times rivalTimes;
    for (int round = 0; round < kRounds; ++round) {
        changed.round();
        unchanged.round();
        if (rival) rivalTimes.add(microsecondsOf([&] { rival->call(); }));
    }
    if (changed.newPictures() != kRounds || unchanged.newPictures() != 0) {
        std::fprintf(stderr, "the artwork changed %ld and %ld times\n",
                     static_cast<long>(changed.newPictures()),
                     static_cast<long>(unchanged.newPictures()));
        return 1;
    }
    beginReport("A whole state poll with 1 MB of artwork");
    tell("artwork changed", changed.times(), rivalTimes, 1500);
    tell("artwork unchanged", unchanged.times(), rivalTimes, 400);
    return 0;
}

}  // namespace
}  // namespace quorvane

int main() { return quorvane::runBench(); }

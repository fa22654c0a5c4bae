// The players of the session bus, followed on a thread of their own.
#include "platform/MediaPlayers.hpp"

#include <malloc.h>

#include <mutex>
#include <utility>

#include "platform/FetchPicture.hpp"
#include "platform/linux/bus/MprisPlayers.hpp"
#include "platform/linux/fetch/FetchProcess.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"

namespace quorvane {
namespace {

// The C library learns from a freed large block to keep such blocks. With fixed limits, the memory
// of a large message returns to the system.
void returnLargeBlocks() {
    constexpr int kLarge = 4 << 20;
    mallopt(M_MMAP_THRESHOLD, kLarge);
    mallopt(M_TRIM_THRESHOLD, 2 * kLarge);
}

// Follows the players on a separate thread with a second loop and bus connection, because the bus
// library checks each text as a whole, which may take half a second for a player's text. Main
// thread only, except the private functions and members that say otherwise.
class PlayersThread {
public:
    explicit PlayersThread(const LiveServices& services)
        : mainThread_(services.mainThread),
          thread_(services.makeSerialQueue("example.quillon.Quorvane.players")) {
        publication_ = players_.observe([this] { publish(); });
        players_.start();
        if (!thread_->async([this] { loop_.run(); }))
            Logger{services.log, kPlatformSubsystem, "players"}.error(
                "players: none is followed, because the system refuses a thread");
    }
    ~PlayersThread() {
        loop_.mainThread().post([this] { loop_.quit(EXIT_SUCCESS); });
        thread_.reset();
    }
    PlayersThread(const PlayersThread&) = delete;
    PlayersThread& operator=(const PlayersThread&) = delete;

    const std::vector<MediaPlayer>& list() const { return list_; }
    Handle observe(std::function<void()> handler) { return listeners_.add(std::move(handler)); }
    void post(std::function<void(MprisPlayers&)> action) {
        loop_.mainThread().post([this, action = std::move(action)] { action(players_); });
    }

private:
    // On the players' thread. The main thread takes the newest list only.
    void publish() {
        const std::lock_guard guard{mutex_};
        if (std::exchange(newest_, players_.list())) return;
        mainThread_.post([this, watch = life_.watch()] {
            if (!watch.isOver()) take();
        });
    }
    void take() {
        std::unique_lock lock{mutex_};
        auto newest = *std::exchange(newest_, std::nullopt);
        lock.unlock();
        list_.swap(newest);
        listeners_.call();
    }

    const MainThread mainThread_;
    std::vector<MediaPlayer> list_;
    Listeners<> listeners_;
    std::mutex mutex_;
    std::optional<std::vector<MediaPlayer>> newest_;  // under mutex, until the main thread takes it
    LifeToken life_;
    // Used by the players' thread while it runs.
    EventLoop loop_;
    SessionBus bus_{loop_, {}};  // the other connection logs its state
    MprisPlayers players_{bus_, loop_.clock(), loop_.mainThread()};
    Handle publication_;
    std::unique_ptr<SerialQueue> thread_;
};

}  // namespace

MediaPlayers makeLiveMediaPlayers(const LiveServices& services) {
    returnLargeBlocks();
    const auto players = std::make_shared<PlayersThread>(services);
    return {.list = [players]() -> const std::vector<MediaPlayer>& { return players->list(); },
            .observe = [players](auto handler) { return players->observe(std::move(handler)); },
            .refresh =
                [players](const std::string& name) {
                    players->post([name](MprisPlayers& its) { its.refresh(name); });
                },
            .call =
                [players](const std::string& name, const std::string& method) {
                    players->post([name, method](MprisPlayers& its) { its.call(name, method); });
                },
            .set =
                [players](const std::string& name, const std::string& property,
                          const PropertyValue& value) {
                    players->post([name, property, value](MprisPlayers& its) {
                        its.set(name, property, value);
                    });
                }};
}

FetchPicture makeLiveFetchPicture(const LiveServices& services, std::filesystem::path program) {
    return makeFetchPicture(HeadlessPlatform::of(services).loop, std::move(program));
}

}  // namespace quorvane

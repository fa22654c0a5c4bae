#include "host/link/HostCoordinator.hpp"

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"

namespace quorvane {

namespace {

// A track change arrives as several changes in quick succession, the artwork last. They are
// coalesced into one notice to the add-on.
constexpr Duration kCoalescing = std::chrono::milliseconds{50};
constexpr std::size_t kPortCount = kQueryPortCount + 1;

}  // namespace

// State that the handlers on the ports' threads share. `host` is null once the coordinator is
// destroyed; only the main thread reads it.
struct HostCoordinator::Link {
    SharedSnapshot state;
    MainThread mainThread;
    std::function<Instant()> now;
    WallClock wallClock;
    HostCoordinator* host = nullptr;

    // Runs the action soon on the main thread, if the coordinator is still alive.
    static void post(const std::shared_ptr<Link>& link,
                     std::function<void(HostCoordinator&)> action) {
        link->mainThread.post([weak = std::weak_ptr{link}, action = std::move(action)] {
            const auto held = weak.lock();
            if (held && held->host) action(*held->host);
        });
    }
};

HostCoordinator::HostCoordinator(Services services, std::unique_ptr<PlayerSource> player)
    : services_(std::move(services)),
      log_(services_.log, kIdentifierPrefix, "host"),
      player_(std::move(player)),
      defaults_(services_.sharedSuite),
      desk_(defaults_, services_.wallClock, log_),
      link_(std::make_shared<Link>()) {
    desk_.onRemovalDelivered = [this] {
        if (onRemovalDelivered) onRemovalDelivered();
    };
    link_->mainThread = services_.mainThread;
    link_->now = services_.clock.now;
    link_->wallClock = services_.wallClock;
    link_->host = this;
}

HostCoordinator::~HostCoordinator() {
    stop();
    link_->host = nullptr;
}

bool HostCoordinator::start() {
    player_->onChanged = [this] { playerChanged(); };
    playerChanged();
    wait_ = std::make_shared<CancellableWait>();
    ports_.emplace(services_.openPort, [this] { findSecret(); });
    server_.emplace(MessagePortServer::Services{.log = services_.log,
                                                .openPort = countingOpenPort(),
                                                .portsProblem = services_.portsProblem,
                                                .nameCurrentThread = services_.nameCurrentThread,
                                                .makeWait = [wait = wait_] { return wait; }});
    server_->handlers = makeHandlers();
    starting_ = services_.makeSerialQueue("example.quillon.Quorvane.host");
    return starting_->async([server = &*server_, link = link_] {
        server->start();
        Link::post(link, [](HostCoordinator& host) { host.starting_.reset(); });
    });
}

void HostCoordinator::stop() {
    if (!server_) return;
    player_->onChanged = nullptr;
    announcement_.reset();
    wait_->cancel();
    ports_->end();
    starting_.reset();
    server_->stop();  // its threads use `server_`
    server_.reset();
    if (isServing()) {
        log_.info("host: ending");
        services_.darwinNotices.post(QuorvaneDarwinNotification::mainAppWillTerminate);
    }
    openPorts_ = 0;
}

bool HostCoordinator::isServing() const { return openPorts_ == kPortCount; }

bool HostCoordinator::hasSecret() const { return server_ && server_->expectedSecret; }

// Runs on the main port's thread, before any port of this server answers. Not earlier, because a
// new secret would cut off the add-on of a host that still serves.
void HostCoordinator::findSecret() {
    auto& secret = server_->expectedSecret;
    secret = MessagePortSecret::checked(MessagePortSecret::read(services_.files));
    if (!secret)
        secret = MessagePortSecret::make(services_.fillRandom, services_.files, services_.log);
}

OpenPort HostCoordinator::countingOpenPort() {
    return [ports = &*ports_, link = link_](const std::string& name, PortHandler handler) {
        auto port = ports->open(name, std::move(handler));
        if (port) Link::post(link, [](HostCoordinator& host) { host.portOpened(); });
        return port;
    };
}

void HostCoordinator::portOpened() {
    if (!server_) return;  // posted before the server stopped
    ++openPorts_;
    if (!isServing()) return;
    log_.info("host: serving");
    // Any previous host has ended, so make the add-on reconnect and say hello.
    services_.darwinNotices.post(QuorvaneDarwinNotification::playerStateChanged);
    services_.darwinNotices.post(QuorvaneDarwinNotification::lockScreenConfigurationChanged);
    if (onServing) onServing();
}

MessagePortHandlers HostCoordinator::makeHandlers() const {
    MessagePortHandlers handlers;
    handlers.onStateRequested = [link = link_] {
        Link::post(link, [](HostCoordinator& host) { host.player_->refresh(); });
        return std::optional{stateAt(link->state.snapshot(), link->now(), link->wallClock())};
    };
    handlers.onActionReceived = [link = link_](QuorvaneAction action) {
        Link::post(link, [action](HostCoordinator& host) {
            host.log_.info("host: %{public}s", actionName(action));
            host.commandEnded(host.player_->perform(action));
        });
    };
    handlers.onVolumeChangeReceived = [link = link_](std::int64_t volume) {
        Link::post(link, [volume](HostCoordinator& host) {
            host.commandEnded(host.player_->setVolume(volume));
        });
    };
    handlers.onRatingChangeReceived = [link = link_](std::int64_t rating) {
        Link::post(link, [rating](HostCoordinator& host) {
            host.commandEnded(host.player_->setRating(rating));
        });
    };
    handlers.onLockScreenHelloReceived = [link = link_](Bytes request,
                                                        MessagePortHandlers::Answer answer) {
        Link::post(link, [request = std::move(request), answer = std::move(answer)](
                             HostCoordinator& host) { answer(host.desk_.answer(request)); });
    };
    return handlers;
}

void HostCoordinator::playerChanged() {
    link_->state.publish(player_->snapshot());
    announceSoon();
}

// The card already shows the command's expected result. If the command fails, a notice without a
// change makes the card request the true state.
void HostCoordinator::commandEnded(bool isCarriedOut) {
    if (isCarriedOut) return;
    announced_.reset();
    announceSoon();
}

void HostCoordinator::announceSoon() {
    if (announcement_) return;
    announcement_ = services_.clock.after(kCoalescing, [this] { announce(); });
}

void HostCoordinator::announce() {
    announcement_.reset();
    PlayerSnapshot now = player_->snapshot();
    if (announced_ && !isNews(*announced_, now, services_.clock.now())) return;
    announced_ = std::move(now);
    if (isServing()) services_.darwinNotices.post(QuorvaneDarwinNotification::playerStateChanged);
}

}  // namespace quorvane

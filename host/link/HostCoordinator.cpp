#include "host/link/HostCoordinator.hpp"

#include <mutex>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "QuorvaneKit/records/LockScreenConfigurationBuilder.hpp"
#include "QuorvaneKit/records/LockScreenHelloOutcome.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"

namespace quorvane {

namespace {

// A track change arrives as several changes in quick succession, the artwork last. They are
// coalesced into one notice to the add-on.
constexpr Duration kCoalescing = std::chrono::milliseconds{50};
constexpr std::size_t kPortCount = kQueryPortCount + 1;
constexpr Duration kLongestWait = std::chrono::hours{24 * 365};

}  // namespace

// State that the handlers on the ports' threads share. The handlers end before the coordinator.
// They use `host` only in actions for the main thread.
struct HostCoordinator::Link {
    HostCoordinator& host;
    MainThread mainThread;
    std::function<Instant()> now;
    WallClock wallClock;
    std::mutex mutex;
    PlayerSnapshot snapshot{};  // under mutex

    // Runs the action soon on the main thread, if the coordinator is still alive.
    static void post(const std::shared_ptr<Link>& link,
                     std::function<void(HostCoordinator&)> action) {
        link->mainThread.post([weak = std::weak_ptr{link}, action = std::move(action)] {
            if (const auto held = weak.lock()) action(held->host);
        });
    }
    // Makes the state available while the main thread is busy.
    void publish(PlayerSnapshot newest) {
        // The old snapshot is destroyed after the lock is released, because it may hold a large
        // picture.
        const std::lock_guard guard{mutex};
        std::swap(snapshot, newest);
    }
    QuorvanePlayerState state() {
        std::unique_lock lock{mutex};
        const PlayerSnapshot present = snapshot;
        lock.unlock();
        return stateAt(present, now(), wallClock());
    }
};

HostCoordinator::HostCoordinator(Services services, std::unique_ptr<PlayerSource> player)
    : services_(std::move(services)),
      log_(services_.log, kIdentifierPrefix, "host"),
      player_(std::move(player)),
      defaults_(services_.sharedSuite),
      link_(std::make_shared<Link>(*this, services_.mainThread, services_.clock.now,
                                   services_.wallClock)) {}

HostCoordinator::~HostCoordinator() { stop(); }

bool HostCoordinator::start() {
    player_->onChanged = [this] { playerChanged(); };
    playerChanged();
    wait_ = std::make_shared<CancellableWait>();
    server_.emplace(MessagePortServer::Services{.log = services_.log,
                                                .openPort = openMainPortFirst(),
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
    playersRequests_.reset();
    wait_->cancel();
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

// The host that holds the main port is the one that serves. A query port waits for the first
// attempt to open the main port, and counts as taken while another host holds that. If two hosts
// start together, one of them gets all ports.
OpenPort HostCoordinator::openMainPortFirst() {
    enum class MainPort { untried, taken, held };
    const auto mainPort = std::make_shared<MainPort>(MainPort::untried);  // changed by `wait`
    return
        [this, wait = wait_, link = link_, mainPort](const std::string& name, PortHandler handler) {
            const bool isMain = name == kMessagePortBaseName;
            const auto isTried = [&] { return *mainPort != MainPort::untried; };
            const auto isHeld = [&] { return *mainPort == MainPort::held; };
            std::unique_ptr<LocalPort> port;
            if (isMain || (wait->waitFor(kLongestWait, isTried) && wait->waitFor({}, isHeld)))
                port = services_.openPort(name, std::move(handler));
            if (isMain) {
                if (port) findSecret();
                wait->update([&] { *mainPort = port ? MainPort::held : MainPort::taken; });
            }
            if (port) Link::post(link, [](HostCoordinator& host) { host.portOpened(); });
            return port;
        };
}

void HostCoordinator::portOpened() {
    if (!server_) return;  // posted before the server stopped
    ++openPorts_;
    if (!isServing()) return;
    log_.info("host: serving");
    playersRequests_ = services_.darwinNotices.observe(PlayerList::kRequest, [this] {
        services_.distributedNotices.post(PlayerList::kAnswer, player_->players().userInfo());
    });
    // Any previous host has ended, so make the add-on reconnect and say hello.
    services_.darwinNotices.post(QuorvaneDarwinNotification::playerStateChanged);
    services_.darwinNotices.post(QuorvaneDarwinNotification::lockScreenConfigurationChanged);
    if (onServing) onServing();
}

MessagePortHandlers HostCoordinator::makeHandlers() const {
    MessagePortHandlers handlers;
    handlers.onStateRequested = [link = link_] {
        Link::post(link, [](HostCoordinator& host) { host.player_->refresh(); });
        return std::optional{link->state()};
    };
    handlers.onActionReceived = [link = link_](QuorvaneAction action) {
        Link::post(link, [action](HostCoordinator& host) {
            host.log_.info("host: %{public}s", actionName(action));
            host.commandEnded(host.player_->perform(action));
        });
    };
    const auto handlerOf = [this](bool (PlayerSource::*command)(std::int64_t percent)) {
        return [command, link = link_](std::int64_t percent) {
            Link::post(link, [command, percent](HostCoordinator& host) {
                host.commandEnded((*host.player_.*command)(percent));
            });
        };
    };
    handlers.onVolumeChangeReceived = handlerOf(&PlayerSource::setVolume);
    handlers.onRatingChangeReceived = handlerOf(&PlayerSource::setRating);
    handlers.onLockScreenHelloReceived = [link = link_](Bytes request,
                                                        MessagePortHandlers::Answer answer) {
        Link::post(link, [request = std::move(request), answer = std::move(answer)](
                             HostCoordinator& host) { answer(host.answerHello(request)); });
    };
    return handlers;
}

void HostCoordinator::playerChanged() {
    link_->publish(player_->snapshot());
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
    if (announced_ && !mustBeAnnounced(*announced_, now, services_.clock.now())) return;
    announced_ = std::move(now);
    if (isServing()) services_.darwinNotices.post(QuorvaneDarwinNotification::playerStateChanged);
}

Bytes HostCoordinator::answerHello(ByteView request) {
    const auto hello = XPCCodableHelpers::decode<LockScreenAddOnHello>(request);
    LockScreenAddOnConfiguration configuration = LockScreenConfigurationBuilder{}.build();
    if (hello)
        configuration = configurationFor(*hello);
    else
        log_.error("Lock-screen hello undecodable: answering locked");
    return XPCCodableHelpers::encode(configuration).value_or(Bytes{});
}

LockScreenAddOnConfiguration HostCoordinator::configurationFor(const LockScreenAddOnHello& hello) {
    report("the add-on's hello",
           defaults_.setLockScreenAddOnLastSeen(sightingOf(hello, services_.wallClock())));
    LockScreenConfigurationBuilder builder{.isEnabled = defaults_.lockScreenEnabled(),
                                           .removalRequested = false};
    switch (decideLockScreenHello(defaults_.lockScreenPendingRemoval(), hello)) {
        case LockScreenHelloOutcome::answer: break;
        case LockScreenHelloOutcome::deliverRemoval:
            log_.standard("hello: asking the add-on to remove itself");
            builder.removalRequested = true;
            if (onRemovalDelivered) onRemovalDelivered();
            break;
        case LockScreenHelloOutcome::supersedeRemoval:
            log_.standard("hello: from an add-on that the pending removal is not meant for");
            report("the end of the removal", defaults_.setLockScreenPendingRemoval(std::nullopt));
            break;
    }
    return builder.build();
}

void HostCoordinator::report(const char* what, const Result<void>& written) const {
    if (!written)
        log_.error("defaults: cannot keep %{public}s: %{public}s", what,
                   written.error().description);
}

}  // namespace quorvane

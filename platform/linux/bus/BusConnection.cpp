#include "platform/linux/bus/BusConnection.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <utility>

#include "platform/Listeners.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

using std::chrono::seconds;

constexpr Duration kFirstRetryDelay = seconds{1};
constexpr Duration kLastRetryDelay = seconds{512};

// A bus's owner can read and forge every notice. An address that is inherited by mistake, for
// example through `sudo`, leads to another user's bus.
bool runsAsThisUser(sd_bus* bus) {
    ucred peer{};
    socklen_t size = sizeof peer;
    const int descriptor = sd_bus_get_fd(bus);
    return descriptor >= 0 && getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == geteuid();
}

int openSessionBus(sd_bus** bus) {
    const int result = sd_bus_open_user(bus);
    if (result < 0 || runsAsThisUser(*bus)) return result;
    *bus = sd_bus_close_unref(*bus);
    return -EPERM;
}

}  // namespace

struct BusConnection::State : std::enable_shared_from_this<State> {
    struct Match {
        State* state;
        std::string rule;
        std::function<void(sd_bus_message*)> handler;
        sd_bus_slot* slot = nullptr;
    };

    EventLoop& loop;
    const Logger log;
    const char* const name;
    const Open openBus;
    sd_bus* bus = nullptr;
    sd_bus_slot* answerSlot = nullptr;
    sd_bus_slot* disconnectedSlot = nullptr;
    std::map<std::uint64_t, std::unique_ptr<Match>> matches;
    std::uint64_t matchesMade = 0;
    Listeners<> losses;
    Listeners<> reconnections;
    bool isEstablished = false;  // the bus has answered on this connection
    bool isMissed = false;       // no bus, and that was logged; until the bus answers again
    Duration retryDelay = kFirstRetryDelay;
    Timer retry;

    State(EventLoop& eventLoop, Logger logger, const char* busName, Open opener)
        : loop(eventLoop), log(std::move(logger)), name(busName), openBus(opener) {}
    ~State();

    sd_bus* usable();
    int open();
    int watchConnection();
    void install(Match& match);
    void established();
    void lost();
    void drop();
    void retryLater();
};

BusConnection::State::~State() {
    for (auto& [number, match] : matches) sd_bus_slot_unref(match->slot);
    sd_bus_slot_unref(answerSlot);
    sd_bus_slot_unref(disconnectedSlot);
    sd_bus_flush_close_unref(bus);
}

sd_bus* BusConnection::State::usable() {
    if (bus && sd_bus_is_open(bus) <= 0) lost();
    if (bus) return bus;
    const int result = open();
    if (result >= 0) return bus;
    drop();
    if (!std::exchange(isMissed, true))
        log.error("bus: no %{public}s bus: %{public}s", name, errnoText(-result));
    retryLater();
    return nullptr;
}

int BusConnection::State::open() {
    int result = openBus(&bus);
    if (result < 0) return result;
    result = watchConnection();
    if (result < 0) return result;
    result = sd_bus_attach_event(bus, loop.event(), SD_EVENT_PRIORITY_NORMAL);
    if (result < 0) return result;
    for (auto& [number, match] : matches) install(*match);
    return 0;
}

int BusConnection::State::watchConnection() {
    constexpr char kLocal[] = "org.freedesktop.DBus.Local";
    constexpr char kBus[] = "org.freedesktop.DBus";
    // A socket that accepts the connection does not prove that a bus answers.
    const auto onAnswer = [](sd_bus_message* answer, void* self, sd_bus_error*) {
        if (!sd_bus_message_is_method_error(answer, nullptr))
            static_cast<State*>(self)->established();
        return 0;
    };
    // Deferred, because a connection must not be dropped inside its own callback.
    const auto onDisconnected = [](sd_bus_message*, void* self, sd_bus_error*) {
        auto* state = static_cast<State*>(self);
        state->loop.mainThread().post([weak = state->weak_from_this()] {
            const auto owner = weak.lock();
            if (owner && owner->bus && sd_bus_is_open(owner->bus) <= 0) owner->lost();
        });
        return 0;
    };
    const int result =
        sd_bus_call_method_async(bus, &answerSlot, kBus, "/org/freedesktop/DBus",
                                 "org.freedesktop.DBus.Peer", "Ping", onAnswer, this, nullptr);
    if (result < 0) return result;
    // The library generates this signal locally, without a request to the bus.
    return sd_bus_match_signal(bus, &disconnectedSlot, kLocal, nullptr, kLocal, "Disconnected",
                               onDisconnected, this);
}

void BusConnection::State::install(Match& match) {
    const auto onMessage = [](sd_bus_message* message, void* self, sd_bus_error*) {
        // A copy, because the handler may drop its own handle.
        const auto handler = static_cast<Match*>(self)->handler;
        handler(message);
        return 0;
    };
    const auto onInstalled = [](sd_bus_message* message, void* self, sd_bus_error*) {
        if (const sd_bus_error* error = sd_bus_message_get_error(message))
            static_cast<Match*>(self)->state->log.error(
                "bus: match refused: %{public}s", error->message ? error->message : error->name);
        return 0;
    };
    const int result = sd_bus_add_match_async(bus, &match.slot, match.rule.c_str(), onMessage,
                                              onInstalled, &match);
    if (result < 0) log.error("bus: match not made: %{public}s", errnoText(-result));
}

void BusConnection::State::established() {
    isEstablished = true;
    retryDelay = kFirstRetryDelay;
    retry.reset();
    if (!std::exchange(isMissed, false)) return;
    log.standard("bus: the %{public}s bus is back", name);
    reconnections.call();
}

void BusConnection::State::lost() {
    drop();
    const bool wasEstablished = std::exchange(isEstablished, false);
    if (wasEstablished)
        log.error("bus: the %{public}s bus went away", name);
    else if (!isMissed)
        log.error("bus: the %{public}s bus does not answer", name);
    isMissed = true;
    retryLater();
    if (wasEstablished) losses.call();
}

void BusConnection::State::drop() {
    for (auto& [number, match] : matches) match->slot = sd_bus_slot_unref(match->slot);
    answerSlot = sd_bus_slot_unref(answerSlot);
    disconnectedSlot = sd_bus_slot_unref(disconnectedSlot);
    bus = sd_bus_close_unref(bus);
}

// Using the connection does not postpone the timer. At the longest delays the tolerance lets it
// coalesce with the hello's timer.
void BusConnection::State::retryLater() {
    if (retry) return;
    retry = loop.clock().afterAbout(retryDelay, retryDelay / 4, [this] {
        retry.reset();
        usable();
    });
    retryDelay = std::min(2 * retryDelay, kLastRetryDelay);
}

BusConnection::BusConnection(EventLoop& loop, Logger log, const char* name, Open open)
    : state_(std::make_shared<State>(loop, std::move(log), name, open)) {}
BusConnection::~BusConnection() = default;

sd_bus* BusConnection::connection() { return state_->usable(); }

Handle BusConnection::match(const std::string& rule, std::function<void(sd_bus_message*)> handler) {
    State& state = *state_;
    sd_bus* bus = state.usable();
    const auto number = state.matchesMade++;
    auto& match = *state.matches
                       .emplace(number, std::make_unique<State::Match>(
                                            State::Match{&state, rule, std::move(handler)}))
                       .first->second;
    if (bus) state.install(match);
    return Handle{[number, weak = std::weak_ptr{state_}] {
        const auto owner = weak.lock();
        if (!owner) return;
        const auto entry = owner->matches.find(number);
        sd_bus_slot_unref(entry->second->slot);
        owner->matches.erase(entry);
    }};
}

Handle BusConnection::observeLoss(std::function<void()> handler) {
    return state_->losses.add(std::move(handler));
}

Handle BusConnection::observeReconnection(std::function<void()> handler) {
    return state_->reconnections.add(std::move(handler));
}

SessionBus::SessionBus(EventLoop& loop, Logger log)
    : BusConnection(loop, std::move(log), "session", openSessionBus) {}

SystemBus::SystemBus(EventLoop& loop, Logger log)
    : BusConnection(loop, std::move(log), "system", sd_bus_open_system) {}

}  // namespace quorvane

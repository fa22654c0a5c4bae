#include "platform/linux/SessionBus.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <map>
#include <system_error>
#include <utility>

#include "platform/linux/Listeners.hpp"

namespace quorvane {
namespace {

using std::chrono::seconds;

constexpr Duration kFirstRetryDelay = seconds{1};
constexpr Duration kLastRetryDelay = seconds{512};

// Whoever owns the bus reads and may forge every notice. An address that is inherited by mistake,
// for example through `sudo`, names another user's.
bool runsAsThisUser(sd_bus* bus) {
    ucred peer{};
    socklen_t size = sizeof peer;
    const int descriptor = sd_bus_get_fd(bus);
    return descriptor >= 0 && getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == geteuid();
}

}  // namespace

struct SessionBus::State : std::enable_shared_from_this<State> {
    struct Match {
        State* state;
        std::string rule;
        std::function<void(sd_bus_message*)> handler;
        sd_bus_slot* slot = nullptr;
    };

    EventLoop& loop;
    Logger log;
    sd_bus* bus = nullptr;
    // Once its slots are gone a lost connection is of no use any more.
    sd_bus_slot* answerSlot = nullptr;
    sd_bus_slot* disconnectedSlot = nullptr;
    std::map<std::uint64_t, std::unique_ptr<Match>> matches;
    std::uint64_t matchesMade = 0;
    Listeners<> reconnections;
    bool isEstablished = false;   // the bus has answered on this connection
    bool wasEstablished = false;  // on this or an earlier one
    bool hasSaidUnavailable = false;
    Duration retryDelay = kFirstRetryDelay;
    Timer retry;

    State(EventLoop& eventLoop, Logger logger) : loop(eventLoop), log(std::move(logger)) {}
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

SessionBus::State::~State() {
    for (auto& [number, match] : matches) sd_bus_slot_unref(match->slot);
    sd_bus_slot_unref(answerSlot);
    sd_bus_slot_unref(disconnectedSlot);
    sd_bus_flush_close_unref(bus);
}

sd_bus* SessionBus::State::usable() {
    if (bus && sd_bus_is_open(bus) > 0) return bus;
    if (bus) lost();
    const int result = open();
    if (result >= 0) return bus;
    drop();
    if (!std::exchange(hasSaidUnavailable, true))
        log.error("bus: no session bus: %{public}s", std::system_category().message(-result));
    return nullptr;
}

int SessionBus::State::open() {
    int result = sd_bus_open_user(&bus);
    if (result < 0) return result;
    if (!runsAsThisUser(bus)) return -EPERM;
    result = watchConnection();
    if (result < 0) return result;
    result = sd_bus_attach_event(bus, loop.event(), SD_EVENT_PRIORITY_NORMAL);
    if (result < 0) return result;
    for (auto& [number, match] : matches) install(*match);
    return 0;
}

int SessionBus::State::watchConnection() {
    constexpr char kLocal[] = "org.freedesktop.DBus.Local";
    constexpr char kBus[] = "org.freedesktop.DBus";
    // A connection stands long before anybody has answered on it.
    const auto onAnswer = [](sd_bus_message* answer, void* self, sd_bus_error*) {
        if (!sd_bus_message_is_method_error(answer, nullptr))
            static_cast<State*>(self)->established();
        return 0;
    };
    // Later: a connection is not dropped from inside its own call.
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
    // The library itself makes this signal; the bus is not asked for it.
    return sd_bus_match_signal(bus, &disconnectedSlot, kLocal, nullptr, kLocal, "Disconnected",
                               onDisconnected, this);
}

void SessionBus::State::install(Match& match) {
    const auto onMessage = [](sd_bus_message* message, void* self, sd_bus_error*) {
        // A copy: the handler may drop its own handle.
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
    if (result < 0)
        log.error("bus: match not made: %{public}s", std::system_category().message(-result));
}

void SessionBus::State::established() {
    isEstablished = true;
    hasSaidUnavailable = false;
    retryDelay = kFirstRetryDelay;
    retry.reset();
    if (!std::exchange(wasEstablished, true)) return;
    log.standard("bus: connected again");
    reconnections.call();
}

void SessionBus::State::lost() {
    drop();
    if (std::exchange(isEstablished, false))
        log.error("bus: the session bus went away");
    else if (!hasSaidUnavailable)
        log.error("bus: the session bus does not answer");
    hasSaidUnavailable = true;
    if (wasEstablished) retryLater();
}

void SessionBus::State::drop() {
    for (auto& [number, match] : matches) match->slot = sd_bus_slot_unref(match->slot);
    answerSlot = sd_bus_slot_unref(answerSlot);
    disconnectedSlot = sd_bus_slot_unref(disconnectedSlot);
    bus = sd_bus_close_unref(bus);
}

void SessionBus::State::retryLater() {
    if (retryDelay > kLastRetryDelay) return;
    retry = loop.clock().after(retryDelay, [this] {
        if (!usable()) retryLater();
    });
    retryDelay *= 2;
}

SessionBus::SessionBus(EventLoop& loop, Logger log)
    : state_(std::make_shared<State>(loop, std::move(log))) {}
SessionBus::~SessionBus() = default;

sd_bus* SessionBus::connection() { return state_->usable(); }

Handle SessionBus::match(const std::string& rule, std::function<void(sd_bus_message*)> handler) {
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

Handle SessionBus::observeReconnection(std::function<void()> handler) {
    return state_->reconnections.add(std::move(handler));
}

}  // namespace quorvane

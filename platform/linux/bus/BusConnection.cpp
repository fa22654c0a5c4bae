#include "platform/linux/bus/BusConnection.hpp"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/linux/files/OwnPeer.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

constexpr Duration kLastRetryDelay = std::chrono::seconds{512};

// A bus's owner can read and forge every notice. An address that is inherited by mistake, for
// example through `sudo`, leads to another user's bus.
int openSessionBus(sd_bus** bus) {
    const int result = sd_bus_open_user(bus);
    if (result < 0 || ownPeer(sd_bus_get_fd(*bus))) return result;
    *bus = sd_bus_close_unref(*bus);
    return -EPERM;
}

}  // namespace

BusConnection::BusConnection(EventLoop& loop, Logger log, const char* name, Open opener)
    : loop_(loop), log_(std::move(log)), name_(name), openBus_(opener) {}

BusConnection::~BusConnection() {
    for (Match& match : matches_) sd_bus_slot_unref(match.slot);
    sd_bus_slot_unref(answerSlot_);
    sd_bus_slot_unref(disconnectedSlot_);
    sd_bus_flush_close_unref(bus_);
}

sd_bus* BusConnection::connection() {
    if (bus_ && sd_bus_is_open(bus_) <= 0) lost();
    if (bus_) return bus_;
    const int result = open();
    if (result >= 0) return bus_;
    drop();
    if (!std::exchange(isMissed_, true))
        log_.error("bus: no %{public}s bus: %{public}s", name_, errnoText(-result));
    retryLater();
    return nullptr;
}

int BusConnection::open() {
    int result = openBus_(&bus_);
    if (result < 0) return result;
    result = watchConnection();
    if (result < 0) return result;
    result = sd_bus_attach_event(bus_, loop_.event(), SD_EVENT_PRIORITY_NORMAL);
    if (result < 0) return result;
    for (Match& match : matches_) install(match);
    return 0;
}

int BusConnection::watchConnection() {
    constexpr char kLocal[] = "org.freedesktop.DBus.Local";
    constexpr char kBus[] = "org.freedesktop.DBus";
    // A socket that accepts the connection does not prove that a bus answers.
    const auto onAnswer = [](sd_bus_message* answer, void* self, sd_bus_error*) {
        if (!sd_bus_message_is_method_error(answer, nullptr))
            static_cast<BusConnection*>(self)->established();
        return 0;
    };
    // Deferred, because a connection must not be dropped inside its own callback.
    const auto onDisconnected = [](sd_bus_message*, void* self, sd_bus_error*) {
        auto* connection = static_cast<BusConnection*>(self);
        connection->loop_.mainThread().post([connection, life = connection->life_.watch()] {
            if (life.isOver()) return;
            if (connection->bus_ && sd_bus_is_open(connection->bus_) <= 0) connection->lost();
        });
        return 0;
    };
    const int result =
        sd_bus_call_method_async(bus_, &answerSlot_, kBus, "/org/freedesktop/DBus",
                                 "org.freedesktop.DBus.Peer", "Ping", onAnswer, this, nullptr);
    if (result < 0) return result;
    // The library generates this signal locally, without a request to the bus.
    return sd_bus_match_signal(bus_, &disconnectedSlot_, kLocal, nullptr, kLocal, "Disconnected",
                               onDisconnected, this);
}

void BusConnection::install(Match& match) {
    const auto onMessage = [](sd_bus_message* message, void* self, sd_bus_error*) {
        // A copy, because the handler may drop its own handle.
        const auto handler = static_cast<Match*>(self)->handler;
        handler(message);
        return 0;
    };
    const auto onInstalled = [](sd_bus_message* message, void* self, sd_bus_error*) {
        if (const sd_bus_error* error = sd_bus_message_get_error(message))
            static_cast<Match*>(self)->owner.log_.error(
                "bus: match refused: %{public}s", error->message ? error->message : error->name);
        return 0;
    };
    const int result = sd_bus_add_match_async(bus_, &match.slot, match.rule.c_str(), onMessage,
                                              onInstalled, &match);
    if (result < 0) log_.error("bus: match not made: %{public}s", errnoText(-result));
}

void BusConnection::established() {
    isEstablished_ = true;
    retryDelay_ = kFirstRetryDelay;
    retry_.reset();
    if (!std::exchange(isMissed_, false)) return;
    log_.standard("bus: the %{public}s bus is back", name_);
    states_.call(true);
}

void BusConnection::lost() {
    drop();
    const bool wasEstablished = std::exchange(isEstablished_, false);
    if (wasEstablished)
        log_.error("bus: the %{public}s bus went away", name_);
    else if (!isMissed_)
        log_.error("bus: the %{public}s bus does not answer", name_);
    isMissed_ = true;
    retryLater();
    if (wasEstablished) states_.call(false);
}

void BusConnection::drop() {
    for (Match& match : matches_) match.slot = sd_bus_slot_unref(match.slot);
    answerSlot_ = sd_bus_slot_unref(answerSlot_);
    disconnectedSlot_ = sd_bus_slot_unref(disconnectedSlot_);
    bus_ = sd_bus_close_unref(bus_);
}

// Using the connection does not postpone the timer. At the longest delays the tolerance lets it
// coalesce with the hello's timer.
void BusConnection::retryLater() {
    if (retry_) return;
    retry_ = loop_.clock().afterAbout(retryDelay_, retryDelay_ / 4, [this] {
        retry_.reset();
        connection();
    });
    retryDelay_ = std::min(2 * retryDelay_, kLastRetryDelay);
}

Handle BusConnection::match(const std::string& rule, std::function<void(sd_bus_message*)> handler) {
    const bool isConnected = connection() != nullptr;
    const auto match = matches_.insert(matches_.end(), Match{*this, rule, std::move(handler)});
    if (isConnected) install(*match);
    return Handle{[this, match, life = life_.watch()] {
        if (life.isOver()) return;
        sd_bus_slot_unref(match->slot);
        matches_.erase(match);
    }};
}

Handle BusConnection::observeOwner(const std::string& service, std::function<void()> handler) {
    return match(
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg0='" +
            service + "'",
        [handler = std::move(handler)](sd_bus_message*) { handler(); });
}

SessionBus::SessionBus(EventLoop& loop, Logger log)
    : BusConnection(loop, std::move(log), "session", openSessionBus) {}

SystemBus::SystemBus(EventLoop& loop, Logger log)
    : BusConnection(loop, std::move(log), "system", sd_bus_open_system) {}

}  // namespace quorvane

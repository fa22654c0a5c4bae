// The players of the session bus that speak MPRIS. Every question to a player is put without
// waiting for its answer.
#include "platform/MediaPlayers.hpp"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/Observable.hpp"
#include "platform/linux/BusValues.hpp"
#include "platform/linux/ServicesLinux.hpp"

namespace quorvane {

namespace {

constexpr char kRoot[] = "org.mpris.MediaPlayer2";
constexpr char kPlayer[] = "org.mpris.MediaPlayer2.Player";
constexpr char kPath[] = "/org/mpris/MediaPlayer2";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
constexpr std::string_view kNamePrefix = "org.mpris.MediaPlayer2.";
// An answer that comes later than this is not waited for.
constexpr std::uint64_t kAnswerMicroseconds = 5'000'000;

using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

// A call that never starts the service it is for: players are followed, not started.
Message newCall(sd_bus* bus, const char* destination, const char* path, const char* interface,
                const char* member) {
    sd_bus_message* message = nullptr;
    if (bus) sd_bus_message_new_method_call(bus, &message, destination, path, interface, member);
    if (message) sd_bus_message_set_auto_start(message, 0);
    return {message, &sd_bus_message_unref};
}

// Whether the call is on its way. `onReply` runs at most once: with the answer or the error that
// stands for it; not at all when the connection is dropped.
bool send(sd_bus* bus, const Message& call, std::function<void(sd_bus_message*)> onReply) {
    if (!bus || !call) return false;
    using Action = std::function<void(sd_bus_message*)>;
    const auto run = [](sd_bus_message* reply, void* action, sd_bus_error*) {
        (*static_cast<Action*>(action))(reply);
        return 0;
    };
    auto action = std::make_unique<Action>(std::move(onReply));
    sd_bus_slot* slot = nullptr;
    if (sd_bus_call_async(bus, &slot, call.get(), run, action.get(), kAnswerMicroseconds) < 0)
        return false;
    sd_bus_slot_set_destroy_callback(slot, [](void* owned) { delete static_cast<Action*>(owned); });
    action.release();
    sd_bus_slot_set_floating(slot, 1);
    sd_bus_slot_unref(slot);
    return true;
}

void sendWithoutReply(sd_bus* bus, const Message& call) {
    if (!bus || !call) return;
    sd_bus_message_set_expect_reply(call.get(), 0);
    sd_bus_send(bus, call.get(), nullptr);
}

bool isError(sd_bus_message* message) { return sd_bus_message_is_method_error(message, nullptr); }

// One name on the bus and the player behind it.
struct Entry {
    std::uint64_t number = 0;  // tells this owner of the name from an earlier one
    std::string owner;         // the connection's own name, from which its signals come
    bool isDescribed = false;
    bool isDescribing = false;
    bool isAskedForPosition = false;
    MediaPlayer player;
};

class Players : public std::enable_shared_from_this<Players> {
public:
    Players(SessionBus& bus, Clock clock, MainThread mainThread)
        : bus_(bus), clock_(std::move(clock)), mainThread_(std::move(mainThread)) {}

    void start();
    const std::vector<MediaPlayer>& list() const { return list_; }
    Handle observe(std::function<void()> handler) {
        return revision_.subscribe(std::move(handler));
    }
    void askPosition(const std::string& name);
    void call(const std::string& name, const char* interface, const std::string& method);
    void set(const std::string& name, const std::string& property, const PropertyValue& value);

private:
    void findPlayers();
    void findOwner(const std::string& name);
    void add(const std::string& name, const std::string& owner);
    void describe(const std::string& name);
    void onIdentity(Entry& entry, sd_bus_message* reply);
    void onDescription(Entry& entry, sd_bus_message* reply);
    void onNameOwner(sd_bus_message* message);
    void onPropertiesChanged(sd_bus_message* message);
    void onSeeked(sd_bus_message* message);
    static void takePosition(Entry& entry, std::int64_t microseconds, Instant now);
    bool ask(const std::string& name, const Message& question,
             void (Players::*answer)(Entry&, sd_bus_message*));
    void onPosition(Entry& entry, sd_bus_message* reply);
    // The names that the sender of a signal owns.
    template <typename Action>
    void forSender(sd_bus_message* message, Action action);
    void changed();
    void publish();

    SessionBus& bus_;
    Clock clock_;
    MainThread mainThread_;
    std::map<std::string, Entry> entries_;
    std::uint64_t entriesMade_ = 0;
    std::vector<MediaPlayer> list_;
    bool isPublishing_ = false;
    Observable<std::uint64_t> revision_{0};
    std::vector<Handle> handles_;
};

void Players::start() {
    const auto listen = [this](const std::string& rule, void (Players::*handler)(sd_bus_message*)) {
        handles_.push_back(bus_.match(rule, [weak = weak_from_this(), handler](sd_bus_message* m) {
            if (const auto self = weak.lock()) ((*self).*handler)(m);
        }));
    };
    const std::string fromPlayers = std::string{"type='signal',path='"} + kPath + "',";
    listen(
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg0namespace='" +
            std::string{kRoot} + "'",
        &Players::onNameOwner);
    listen(fromPlayers + "interface='" + kProperties + "',member='PropertiesChanged',arg0='" +
               kPlayer + "'",
           &Players::onPropertiesChanged);
    listen(fromPlayers + "interface='" + kPlayer + "',member='Seeked'", &Players::onSeeked);
    handles_.push_back(bus_.observeReconnection([weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        self->entries_.clear();
        self->changed();
        self->findPlayers();
    }));
    findPlayers();
}

void Players::findPlayers() {
    sd_bus* bus = bus_.connection();
    const Message question = newCall(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                     "org.freedesktop.DBus", "ListNames");
    send(bus, question, [weak = weak_from_this()](sd_bus_message* reply) {
        const auto self = weak.lock();
        if (!self || isError(reply) || sd_bus_message_enter_container(reply, 'a', "s") < 0) return;
        const char* name = nullptr;
        while (sd_bus_message_read_basic(reply, 's', &name) > 0)
            if (std::string_view{name}.starts_with(kNamePrefix)) self->findOwner(name);
    });
}

// The bus answers this, not the player: one that hangs now is known by what it says later.
void Players::findOwner(const std::string& name) {
    const Message question =
        newCall(bus_.connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                "org.freedesktop.DBus", "GetNameOwner");
    if (question) sd_bus_message_append(question.get(), "s", name.c_str());
    send(bus_.connection(), question, [weak = weak_from_this(), name](sd_bus_message* reply) {
        const auto self = weak.lock();
        const char* owner = nullptr;
        if (!self || isError(reply) || sd_bus_message_read(reply, "s", &owner) < 0) return;
        if (!self->entries_.contains(name)) self->add(name, owner);
    });
}

void Players::add(const std::string& name, const std::string& owner) {
    Entry entry;
    entry.number = ++entriesMade_;
    entry.owner = owner;
    entry.player.busName = name;
    entries_.insert_or_assign(name, std::move(entry));
    describe(name);
}

void Players::describe(const std::string& name) {
    Entry& entry = entries_.at(name);
    if (entry.isDescribing) return;
    sd_bus* bus = bus_.connection();
    const Message identity = newCall(bus, name.c_str(), kPath, kProperties, "Get");
    if (identity) sd_bus_message_append(identity.get(), "ss", kRoot, "Identity");
    ask(name, identity, &Players::onIdentity);
    const Message everything = newCall(bus, name.c_str(), kPath, kProperties, "GetAll");
    if (everything) sd_bus_message_append(everything.get(), "s", kPlayer);
    entry.isDescribing = ask(name, everything, &Players::onDescription);
}

bool Players::ask(const std::string& name, const Message& question,
                  void (Players::*answer)(Entry&, sd_bus_message*)) {
    const auto number = entries_.at(name).number;
    return send(bus_.connection(), question,
                [weak = weak_from_this(), name, number, answer](sd_bus_message* reply) {
                    const auto self = weak.lock();
                    if (!self) return;
                    const auto entry = self->entries_.find(name);
                    if (entry != self->entries_.end() && entry->second.number == number)
                        ((*self).*answer)(entry->second, reply);
                });
}

void Players::onIdentity(Entry& entry, sd_bus_message* reply) {
    const char* text = nullptr;
    if (isError(reply) || sd_bus_message_read(reply, "v", "s", &text) < 0) return;
    entry.player.identity = text;
    if (entry.isDescribed) changed();
}

void Players::onDescription(Entry& entry, sd_bus_message* reply) {
    entry.isDescribing = false;
    PropertyDictionary properties;
    if (isError(reply) || readBusDictionary(reply, properties) < 0) return;
    if (const auto* position = find<std::int64_t>(properties, "Position"))
        takePosition(entry, *position, clock_.now());
    properties.erase("Position");
    entry.player.properties = std::move(properties);
    entry.isDescribed = true;
    changed();
}

void Players::onNameOwner(sd_bus_message* message) {
    const char *name = nullptr, *before = nullptr, *owner = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &before, &owner) < 0) return;
    if (!std::string_view{name}.starts_with(kNamePrefix)) return;
    if (entries_.erase(name) > 0) changed();
    if (*owner) add(name, owner);
}

template <typename Action>
void Players::forSender(sd_bus_message* message, Action action) {
    const char* sender = sd_bus_message_get_sender(message);
    if (!sender) return;
    for (auto& [name, entry] : entries_)
        if (entry.owner == sender) action(entry);
}

void Players::onPropertiesChanged(sd_bus_message* message) {
    const char* interface = nullptr;
    PropertyDictionary changes;
    if (sd_bus_message_read(message, "s", &interface) < 0 ||
        readBusDictionary(message, changes) < 0)
        return;
    changes.erase("Position");
    const bool isIncomplete = sd_bus_message_enter_container(message, 'a', "s") > 0 &&
                              sd_bus_message_at_end(message, 0) == 0;
    forSender(message, [&](Entry& entry) {
        for (const auto& [key, value] : changes)
            entry.player.properties.insert_or_assign(key, value);
        // Some values are said to have changed without being told, or the player did not answer
        // when it was asked first.
        if (isIncomplete || !entry.isDescribed) describe(entry.player.busName);
        if (entry.isDescribed) changed();
    });
}

void Players::onSeeked(sd_bus_message* message) {
    std::int64_t position = 0;
    if (sd_bus_message_read(message, "x", &position) < 0) return;
    forSender(message, [&](Entry& entry) {
        takePosition(entry, position, clock_.now());
        changed();
    });
}

void Players::askPosition(const std::string& name) {
    const auto entry = entries_.find(name);
    if (entry == entries_.end() || entry->second.isAskedForPosition) return;
    const Message question = newCall(bus_.connection(), name.c_str(), kPath, kProperties, "Get");
    if (question) sd_bus_message_append(question.get(), "ss", kPlayer, "Position");
    entry->second.isAskedForPosition = ask(name, question, &Players::onPosition);
}

void Players::onPosition(Entry& entry, sd_bus_message* reply) {
    entry.isAskedForPosition = false;
    std::int64_t position = 0;
    if (isError(reply) || sd_bus_message_read(reply, "v", "x", &position) < 0) return;
    takePosition(entry, position, clock_.now());
    changed();
}

void Players::takePosition(Entry& entry, std::int64_t microseconds, Instant now) {
    entry.player.position = microseconds;
    entry.player.positionAt = now;
}

void Players::call(const std::string& name, const char* interface, const std::string& method) {
    sd_bus* bus = bus_.connection();
    sendWithoutReply(bus, newCall(bus, name.c_str(), kPath, interface, method.c_str()));
}

void Players::set(const std::string& name, const std::string& property,
                  const PropertyValue& value) {
    sd_bus* bus = bus_.connection();
    const Message message = newCall(bus, name.c_str(), kPath, kProperties, "Set");
    if (!message || sd_bus_message_append(message.get(), "ss", kPlayer, property.c_str()) < 0 ||
        appendBusVariant(message.get(), value) < 0)
        return;
    sendWithoutReply(bus, message);
}

// Listeners hear once of what one turn of the main loop has brought, however much that was.
void Players::changed() {
    if (std::exchange(isPublishing_, true)) return;
    mainThread_.post([weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->publish();
    });
}

void Players::publish() {
    isPublishing_ = false;
    list_.clear();
    for (const auto& [name, entry] : entries_)
        if (entry.isDescribed) list_.push_back(entry.player);
    revision_.set(revision_.get() + 1);
}

}  // namespace

MediaPlayers makeLiveMediaPlayers(const LiveServices& services) {
    auto players = std::make_shared<Players>(ServicesLinux::of(services).sessionBus, services.clock,
                                             services.mainThread);
    players->start();
    return {.list = [players]() -> const std::vector<MediaPlayer>& { return players->list(); },
            .observe = [players](auto handler) { return players->observe(std::move(handler)); },
            .askPosition = [players](const std::string& name) { players->askPosition(name); },
            .call = [players](const std::string& name,
                              const std::string& method) { players->call(name, kPlayer, method); },
            .set = [players](const std::string& name, const std::string& property,
                             const PropertyValue& value) { players->set(name, property, value); },
            .raise = [players](const std::string& name) { players->call(name, kRoot, "Raise"); }};
}

}  // namespace quorvane

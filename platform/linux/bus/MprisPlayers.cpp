#include "platform/linux/bus/MprisPlayers.hpp"

#include <cstring>
#include <utility>

#include "platform/linux/bus/BusValues.hpp"

namespace quorvane {
namespace {

constexpr char kRoot[] = "org.mpris.MediaPlayer2";
constexpr char kPlayer[] = "org.mpris.MediaPlayer2.Player";
constexpr char kPlayerPath[] = "/org/mpris/MediaPlayer2";
constexpr char kBus[] = "org.freedesktop.DBus";
constexpr char kBusPath[] = "/org/freedesktop/DBus";
constexpr char kMetadata[] = "Metadata";
constexpr std::string_view kNamePrefix = "org.mpris.MediaPlayer2.";
// A player whose artwork's URL is longer is asked only for its position again.
constexpr std::size_t kLongestRepeated = 64 * 1024;
// Limits on the values kept of misbehaving players. The interface has 16 properties, and everything
// but the metadata is a number or a word.
constexpr std::size_t kMaxPlayers = 100;
constexpr std::size_t kMaxProperties = 64;
constexpr std::size_t kLongestWord = 256;
// A player that takes longer counts as silent.
constexpr Duration kPatience = std::chrono::seconds{5};
// A silent player that recovers still answers the pending query, and so returns.
constexpr Duration kUntilItAnswers = std::chrono::hours{24 * 365};

// Moves the artwork's URL out of the metadata.
std::shared_ptr<const std::string> takeArtworkURL(PropertyDictionary& properties) {
    const auto found = properties.find(kMetadata);
    if (found == properties.end()) return nullptr;
    auto* const metadata = std::get_if<PropertyDictionary>(&found->second.value);
    if (!metadata) return nullptr;
    const auto entry = metadata->extract("mpris:artUrl");
    auto* const url = entry ? std::get_if<std::string>(&entry.mapped().value) : nullptr;
    if (!url || url->empty()) return nullptr;
    return std::make_shared<const std::string>(std::move(*url));
}

bool isWordOrNumber(const PropertyValue& value) {
    const auto* const text = value.as<std::string>();
    return (text && text->size() <= kLongestWord) || value.as<bool>() || value.as<double>() ||
           value.as<std::int64_t>();
}

void merge(PropertyDictionary changes, PropertyDictionary& properties) {
    for (auto& [key, value] : changes) {
        const bool isKnown = properties.contains(key) || properties.size() < kMaxProperties;
        if (isKnown && (key == kMetadata || isWordOrNumber(value)))
            properties.insert_or_assign(key, std::move(value));
    }
}

}  // namespace

void MprisPlayers::start() {
    const auto listen = [this](const std::string& rule,
                               void (MprisPlayers::*handler)(sd_bus_message*)) {
        observations_.push_back(bus_.match(
            rule, [this, handler](sd_bus_message* message) { (this->*handler)(message); }));
    };
    const std::string fromBus =
        std::string{"type='signal',sender='"} + kBus + "',interface='" + kBus;
    const std::string fromPlayers =
        std::string{"type='signal',path='"} + kPlayerPath + "',interface='";
    listen(fromBus + "',member='NameOwnerChanged',arg0namespace='" + kRoot + "'",
           &MprisPlayers::onNameOwner);
    listen(fromPlayers + kBusProperties + "',member='PropertiesChanged',arg0='" + kPlayer + "'",
           &MprisPlayers::onPropertiesChanged);
    listen(fromPlayers + kPlayer + "',member='Seeked'", &MprisPlayers::onSeeked);
    observations_.push_back(bus_.observeState([this](bool isConnected) {
        isLost_ = !isConnected;
        changed();
        if (!isConnected) return;
        entries_.clear();
        findPlayers();
    }));
    findPlayers();
}

void MprisPlayers::findPlayers() {
    lookups_.clear();
    const BusMethod list{kBus, kBusPath, kBus, "ListNames"};
    lookups_.push_back(callBus(bus_, list, kPatience, [this](sd_bus_message* reply) {
        if (!reply || sd_bus_message_enter_container(reply, 'a', "s") < 0) return;
        const char* name = nullptr;
        while (sd_bus_message_read_basic(reply, 's', &name) > 0)
            if (std::string_view{name}.starts_with(kNamePrefix)) findOwner(name);
    }));
}

// The bus answers this, not the player. A player that hangs now is matched by its owner when it
// sends signals later.
void MprisPlayers::findOwner(const std::string& name) {
    const BusMethod get{kBus, kBusPath, kBus, "GetNameOwner", {name}};
    lookups_.push_back(callBus(bus_, get, kPatience, [this, name](sd_bus_message* reply) {
        const char* owner = nullptr;
        if (!reply || sd_bus_message_read(reply, "s", &owner) < 0) return;
        if (!entries_.contains(name)) add(name, owner);
    }));
}

void MprisPlayers::add(const std::string& name, const std::string& owner) {
    if (entries_.size() >= kMaxPlayers) return;
    Entry& entry = entries_[name];
    entry.owner = owner;
    entry.player.busName = name;
    const BusMethod get{kBus, kBusPath, kBus, "GetConnectionUnixProcessID", {owner}};
    entry.processID = callBus(bus_, get, kPatience, [this, &entry](sd_bus_message* reply) {
        std::uint32_t processID = 0;
        if (!reply || sd_bus_message_read(reply, "u", &processID) < 0) return;
        entry.player.processID = processID;
        if (entry.isDescribed) changed();
    });
    describe(entry);
}

void MprisPlayers::askIdentity(Entry& entry) {
    const BusMethod get{
        entry.player.busName, kPlayerPath, kBusProperties, "Get", {kRoot, "Identity"}};
    entry.identity = callBus(bus_, get, kPatience, [this, &entry](sd_bus_message* reply) {
        const char* text = nullptr;
        if (!reply || sd_bus_message_read(reply, "v", "s", &text) < 0) return;
        entry.player.identity = std::strlen(text) <= kLongestWord ? text : "";
        if (entry.isDescribed) changed();
    });
}

void MprisPlayers::describe(Entry& entry) {
    if (!entry.isDescribed && !entry.description) askIdentity(entry);
    const BusMethod get{entry.player.busName, kPlayerPath, kBusProperties, "GetAll", {kPlayer}};
    ask(entry, entry.description, get, &MprisPlayers::onDescription);
}

void MprisPlayers::ask(Entry& entry, Handle& question, const BusMethod& get,
                       void (MprisPlayers::*onReply)(Entry&, sd_bus_message*)) {
    if (question) return;
    const auto answered = [this, &entry, &question, onReply](sd_bus_message* reply) {
        question.reset();
        entry.patience.reset();
        if (std::exchange(entry.player.isSilent, false)) changed();
        if (reply) (this->*onReply)(entry, reply);
    };
    question = callBus(bus_, get, kUntilItAnswers, answered);
    entry.patience = clock_.after(kPatience, [this, &entry] {
        entry.player.isSilent = true;
        changed();
    });
}

void MprisPlayers::onDescription(Entry& entry, sd_bus_message* reply) {
    PropertyDictionary properties;
    if (readBusDictionary(reply, properties) < 0) return;
    if (const auto* position = find<std::int64_t>(properties, "Position"))
        takePosition(entry, *position);
    properties.erase("Position");
    entry.player.artworkURL = takeArtworkURL(properties);
    entry.player.properties.clear();
    merge(std::move(properties), entry.player.properties);
    entry.isDescribed = true;
    changed();
}

void MprisPlayers::onPosition(Entry& entry, sd_bus_message* reply) {
    std::int64_t position = 0;
    if (sd_bus_message_read(reply, "v", "x", &position) >= 0) takePosition(entry, position);
}

void MprisPlayers::onNameOwner(sd_bus_message* message) {
    const char *name = nullptr, *before = nullptr, *owner = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &before, &owner) < 0) return;
    if (!std::string_view{name}.starts_with(kNamePrefix)) return;
    if (entries_.erase(name) > 0) changed();
    if (*owner) add(name, owner);
}

template <typename Action>
void MprisPlayers::forSender(sd_bus_message* message, Action action) {
    const char* sender = sd_bus_message_get_sender(message);
    if (!sender) return;
    for (auto& [name, entry] : entries_)
        if (entry.owner == sender) action(entry);
}

void MprisPlayers::onPropertiesChanged(sd_bus_message* message) {
    const char* interface = nullptr;
    PropertyDictionary changes;
    if (sd_bus_message_read(message, "s", &interface) < 0 ||
        readBusDictionary(message, changes) < 0)
        return;
    changes.erase("Position");
    const bool isIncomplete = sd_bus_message_enter_container(message, 'a', "s") > 0 &&
                              sd_bus_message_at_end(message, 0) == 0;
    const bool changesMetadata = changes.contains(kMetadata);
    const auto artworkURL = takeArtworkURL(changes);
    forSender(message, [&](Entry& entry) {
        if (changesMetadata) entry.player.artworkURL = artworkURL;
        merge(changes, entry.player.properties);
        // Some properties changed without their new values, or the player did not answer the first
        // request.
        if (isIncomplete || !entry.isDescribed) describe(entry);
        if (entry.isDescribed) changed();
    });
}

void MprisPlayers::onSeeked(sd_bus_message* message) {
    std::int64_t position = 0;
    if (sd_bus_message_read(message, "x", &position) < 0) return;
    forSender(message, [&](Entry& entry) { takePosition(entry, position); });
}

void MprisPlayers::refresh(const std::string& name) {
    const auto found = entries_.find(name);
    if (found == entries_.end()) return;
    Entry& entry = found->second;
    const auto& url = entry.player.artworkURL;
    if (!url || url->size() <= kLongestRepeated) return describe(entry);
    ask(entry, entry.position, {name, kPlayerPath, kBusProperties, "Get", {kPlayer, "Position"}},
        &MprisPlayers::onPosition);
}

void MprisPlayers::takePosition(Entry& entry, std::int64_t microseconds) {
    entry.player.position = microseconds;
    entry.player.positionAt = clock_.now();
    changed();
}

void MprisPlayers::call(const std::string& name, const std::string& method) {
    const char* const interface = method == "Raise" ? kRoot : kPlayer;
    send(newBusRequest(bus_.connection(), {name, kPlayerPath, interface, method}));
}

void MprisPlayers::set(const std::string& name, const std::string& property,
                       const PropertyValue& value) {
    const BusRequest message = newBusRequest(
        bus_.connection(), {name, kPlayerPath, kBusProperties, "Set", {kPlayer, property}});
    if (message && appendBusVariant(message.get(), value) >= 0) send(message);
}

// Expects no reply, because the result appears in the player's properties.
void MprisPlayers::send(const BusRequest& call) {
    if (!call) return;
    sd_bus_message_set_expect_reply(call.get(), 0);
    sd_bus_send(nullptr, call.get(), nullptr);
}

// Coalesces all changes of one turn of the main loop into one notification.
void MprisPlayers::changed() {
    if (std::exchange(isPublishing_, true)) return;
    mainThread_.post([this, life = life_.watch()] {
        if (!life.isOver()) publish();
    });
}

void MprisPlayers::publish() {
    isPublishing_ = false;
    // Not earlier, because a loss may be detected while an entry is in use.
    if (std::exchange(isLost_, false)) entries_.clear();
    list_.clear();
    for (const auto& [name, entry] : entries_)
        if (entry.isDescribed || entry.player.isSilent) list_.push_back(entry.player);
    listeners_.call();
}

}  // namespace quorvane

#include "platform/linux/accessibility/AtspiConnection.hpp"

#include <algorithm>

#include "drawing/AccessibleScene.hpp"

namespace quorvane {
namespace {

constexpr char kRegistry[] = "org.a11y.atspi.Registry";
constexpr char kSocket[] = "org.a11y.atspi.Socket";
constexpr char kEvents[] = "org.a11y.atspi.Event.Object";
constexpr char kLocal[] = "org.freedesktop.DBus.Local";

// The object cache for clients, always empty: there are few objects, and querying one costs less
// than updating every client's copies.
int cachedItems(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "a((so)(so)(so)iiassusau)", 0);
}
constexpr sd_bus_vtable kCacheMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetItems", "", "a((so)(so)(so)iiassusau)", cachedItems, 0), SD_BUS_VTABLE_END};

int findObject(sd_bus*, const char* path, const char* name, void* data, void** found,
               sd_bus_error*) {
    AtspiObjects& objects = atspiObjects(data);
    const auto node = objects.tree.find(path);
    if (!node) return 0;
    objects.target = *node;
    *found = data;
    return std::ranges::any_of(kAtspiInterfaces, [&](const AtspiInterface* interface) {
        return std::string_view{name} == interface->name && interface->isOf(*node);
    });
}

}  // namespace

std::unique_ptr<AtspiConnection> AtspiConnection::open(EventLoop& loop, const std::string& address,
                                                       std::function<void()> lost) {
    std::unique_ptr<AtspiConnection> connection{new AtspiConnection{std::move(lost)}};
    return connection->start(loop, address) < 0 ? nullptr : std::move(connection);
}

// Drops unsent messages, because waiting for a bus that does not read would block.
AtspiConnection::~AtspiConnection() { sd_bus_close_unref(bus_); }

int AtspiConnection::addObjects() {
    int result = sd_bus_add_object_vtable(bus_, nullptr, "/org/a11y/atspi/cache",
                                          "org.a11y.atspi.Cache", kCacheMembers, nullptr);
    for (const AtspiInterface* interface : kAtspiInterfaces)
        if (result >= 0)
            result = sd_bus_add_fallback_vtable(bus_, nullptr, AtspiTree::kPrefix, interface->name,
                                                interface->members, findObject, &objects_);
    return result;
}

int AtspiConnection::start(EventLoop& loop, const std::string& address) {
    // The library generates these signals. Waiting for the first one here would block.
    const auto onConnected = [](sd_bus_message*, void* self, sd_bus_error*) {
        return static_cast<AtspiConnection*>(self)->embed();
    };
    const auto onDisconnected = [](sd_bus_message*, void* self, sd_bus_error*) {
        const auto lost = static_cast<AtspiConnection*>(self)->lost_;
        lost();
        return 0;
    };
    int result = sd_bus_new(&bus_);
    if (result >= 0) result = sd_bus_set_address(bus_, address.c_str());
    if (result >= 0) result = sd_bus_set_bus_client(bus_, 1);
    if (result >= 0) result = sd_bus_set_connected_signal(bus_, 1);
    if (result >= 0) result = addObjects();
    if (result >= 0) result = sd_bus_start(bus_);
    if (result >= 0)
        result = sd_bus_match_signal_async(bus_, nullptr, kLocal, nullptr, kLocal, "Connected",
                                           onConnected, nullptr, this);
    if (result >= 0)
        result = sd_bus_match_signal_async(bus_, nullptr, kLocal, nullptr, kLocal, "Disconnected",
                                           onDisconnected, nullptr, this);
    if (result >= 0) result = sd_bus_attach_event(bus_, loop.event(), SD_EVENT_PRIORITY_NORMAL);
    return result;
}

// Registers the application; the registry then queries everything else.
int AtspiConnection::embed() {
    const char* name = nullptr;
    if (const int result = sd_bus_get_unique_name(bus_, &name); result < 0) return result;
    objects_.busName = name;
    return sd_bus_call_method_async(bus_, nullptr, kRegistry, AtspiTree::kRootPath, kSocket,
                                    "Embed", nullptr, nullptr, "(so)", name, AtspiTree::kRootPath);
}

void AtspiConnection::childChanged(const AtspiNode& parent, const char* what, int index,
                                   const std::string& child) {
    if (objects_.busName.empty()) return;  // the application is not yet registered
    sd_bus_emit_signal(bus_, AtspiTree::path(parent).c_str(), kEvents, "ChildrenChanged",
                       "siiva{sv}", what, index, 0, "(so)", objects_.busName.c_str(), child.c_str(),
                       0);
}

void AtspiConnection::add(AccessibleCard& card) {
    const AtspiNode node = objects_.tree.add(card);
    lastSent_[&card] = card.accessibleScene().controls;
    childChanged({}, "add", objects_.tree.indexInParent(node), AtspiTree::path(node));
}

void AtspiConnection::changed(const AccessibleCard& card) {
    using Kind = AccessibilityChange::Kind;
    const AtspiNode node = objects_.tree.node(card);
    const auto& now = card.accessibleScene().controls;
    const auto before = std::exchange(lastSent_[&card], now);
    for (const AccessibilityChange& change : accessibilityChanges(before, now)) {
        const bool hasGone = change.kind == Kind::disappeared;
        const auto& controls = hasGone ? before : now;
        const auto control = std::ranges::find(controls, change.control, &SceneControl::id);
        const auto index = static_cast<int>(control - controls.begin());
        const std::string path = AtspiTree::path(node, change.control);
        if (hasGone || change.kind == Kind::appeared)
            childChanged(node, hasGone ? "remove" : "add", index, path);
        else if (change.kind == Kind::label || control->role == SceneControl::Role::text)
            sd_bus_emit_signal(bus_, path.c_str(), kEvents, "PropertyChange", "siiva{sv}",
                               "accessible-name", 0, 0, "s", spokenName(*control).c_str(), 0);
        else
            sd_bus_emit_signal(bus_, path.c_str(), kEvents, "PropertyChange", "siiva{sv}",
                               "accessible-value", 0, 0, "d", control->number, 0);
    }
}

void AtspiConnection::remove(const AccessibleCard& card) {
    lastSent_.erase(&card);
    const AtspiNode node = objects_.tree.node(card);
    const int index = objects_.tree.indexInParent(node);
    objects_.tree.remove(card);
    childChanged({}, "remove", index, AtspiTree::path(node));
}

}  // namespace quorvane

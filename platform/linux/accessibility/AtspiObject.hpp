// Shared parts of the accessible objects' interfaces: lookup of a message's target object, and
// encoding of objects and texts in replies.
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/accessibility/AtspiTree.hpp"

namespace quorvane {

// The user data of every handler.
struct AtspiObjects {
    AtspiTree tree;
    std::string busName;                 // this connection's unique name
    std::int32_t applicationNumber = 0;  // assigned by the registry

    // Appends a reference to the object; null appends the null reference.
    int append(sd_bus_message* message, const AtspiNode* node) const {
        return node ? sd_bus_message_append(message, "(so)", busName.c_str(),
                                            AtspiTree::path(*node).c_str())
                    : sd_bus_message_append(message, "(so)", "", "/org/a11y/atspi/null");
    }
};

inline AtspiObjects& atspiObjects(void* userData) { return *static_cast<AtspiObjects*>(userData); }

// The object at a path that was found before; the application if the object has been removed since.
inline AtspiNode atspiNode(void* userData, const char* path) {
    return atspiObjects(userData).tree.find(path).value_or(AtspiNode{});
}
inline AtspiNode atspiNode(void* userData, sd_bus_message* call) {
    return atspiNode(userData, sd_bus_message_get_path(call));
}

// An interface: its members and the objects that implement it.
struct AtspiInterface {
    const char* name;
    bool (*isOf)(const AtspiNode& node);
    const sd_bus_vtable* members;
};

extern const AtspiInterface kAtspiAccessible;
extern const AtspiInterface kAtspiApplication;
extern const AtspiInterface kAtspiAction;
extern const AtspiInterface kAtspiComponent;
extern const AtspiInterface kAtspiValue;

inline constexpr const AtspiInterface* kAtspiInterfaces[] = {
    &kAtspiAccessible, &kAtspiApplication, &kAtspiAction, &kAtspiComponent, &kAtspiValue};

// Members of the single cache object.
extern const sd_bus_vtable kAtspiCacheMembers[];

// The name that a screen reader speaks.
std::string atspiName(const AtspiNode& node);

}  // namespace quorvane

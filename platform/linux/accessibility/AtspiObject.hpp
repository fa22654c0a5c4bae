// What the interfaces of accessible objects share: the object that a message is for, and how
// objects and texts are written into answers.
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/accessibility/AtspiTree.hpp"

namespace quorvane {

// What every handler gets as its user data.
struct AtspiObjects {
    AtspiTree tree;
    std::string busName;                 // our own unique one
    std::int32_t applicationNumber = 0;  // the registry gives it

    // Null names no object.
    int append(sd_bus_message* message, const AtspiNode* node) const {
        return node ? sd_bus_message_append(message, "(so)", busName.c_str(),
                                            AtspiTree::path(*node).c_str())
                    : sd_bus_message_append(message, "(so)", "", "/org/a11y/atspi/null");
    }
};

inline AtspiObjects& atspiObjects(void* userData) { return *static_cast<AtspiObjects*>(userData); }

// The object at a path that was found already; the application if it has gone since.
inline AtspiNode atspiNode(void* userData, const char* path) {
    return atspiObjects(userData).tree.find(path).value_or(AtspiNode{});
}
inline AtspiNode atspiNode(void* userData, sd_bus_message* call) {
    return atspiNode(userData, sd_bus_message_get_path(call));
}

// An interface: which objects have it, and its members.
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

// Of the one object that stands for the cache.
extern const sd_bus_vtable kAtspiCacheMembers[];

// The name that a screen reader speaks.
std::string atspiName(const AtspiNode& node);

}  // namespace quorvane

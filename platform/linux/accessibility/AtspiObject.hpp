// Shared parts of the accessible objects' interfaces: lookup of a message's target object, and
// encoding of objects in replies.
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

    // Appends a reference to the object; for null, the null reference.
    int append(sd_bus_message* message, const AtspiNode* node) const {
        return sd_bus_message_append(message, "(so)", node ? busName.c_str() : "",
                                     path(node).c_str());
    }
    int answer(sd_bus_message* call, const AtspiNode* node) const {
        return sd_bus_reply_method_return(call, "(so)", node ? busName.c_str() : "",
                                          path(node).c_str());
    }

private:
    static std::string path(const AtspiNode* node) {
        return node ? AtspiTree::path(*node) : "/org/a11y/atspi/null";
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

// A label's name is its text.
inline const std::string& spokenName(const SceneControl& control) {
    return control.label.empty() ? control.value : control.label;
}

// Replies with an array. `append` adds one element and returns the bus library's error number.
template <typename Range, typename Append>
int answerAtspiArray(sd_bus_message* call, const char* type, Range&& elements, Append append) {
    sd_bus_message* reply = nullptr;
    int result = sd_bus_message_new_method_return(call, &reply);
    if (result >= 0) result = sd_bus_message_open_container(reply, 'a', type);
    for (const auto& element : elements)
        if (result >= 0) result = append(reply, element);
    if (result >= 0) result = sd_bus_message_close_container(reply);
    if (result >= 0) result = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return result;
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

}  // namespace quorvane

// Shared parts of the accessible objects' interfaces: requests with their target object, and the
// encoding of answers.
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <string>

#include "platform/linux/accessibility/AtspiTree.hpp"

namespace quorvane {

// The user data of every handler. The bus library reads some properties directly from its fields.
struct AtspiObjects {
    AtspiTree tree;
    AtspiNode target;                    // of the message that is being handled
    std::string busName;                 // this connection's unique name
    std::int32_t applicationNumber = 0;  // assigned by the registry
    const char* toolkit = "Quorvane";
    const char* version = "2.1";  // of the interfaces
    const char* empty = "";
};

// A method call or the reading of a property. Handlers append their answer and return the bus
// library's error number.
struct AtspiRequest {
    const AtspiObjects& objects;
    sd_bus_message* reply;
    sd_bus_message* call = nullptr;  // with a method's arguments
    const AtspiNode& node = objects.target;

    int answer(const char* types, auto... values) const {
        return sd_bus_message_append(reply, types, values...);
    }
    // A reference to the object; for null, the null reference.
    int answerObject(const AtspiNode* object) const {
        return object ? answer("(so)", objects.busName.c_str(), AtspiTree::path(*object).c_str())
                      : answer("(so)", "", "/org/a11y/atspi/null");
    }
    // An array. `append` answers with one element.
    int answerArray(const char* type, const auto& elements, auto append) const {
        int result = sd_bus_message_open_container(reply, 'a', type);
        for (const auto& element : elements)
            if (result >= 0) result = append(element);
        return result < 0 ? result : sd_bus_message_close_container(reply);
    }
};

inline AtspiObjects& atspiObjects(void* userData) { return *static_cast<AtspiObjects*>(userData); }

using AtspiHandler = int (*)(const AtspiRequest& request);

template <AtspiHandler handle>
int atspiMethod(sd_bus_message* call, void* userData, sd_bus_error*) {
    sd_bus_message* reply = nullptr;
    int result = sd_bus_message_new_method_return(call, &reply);
    if (result >= 0) result = handle({atspiObjects(userData), reply, call});
    if (result >= 0) result = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return result;
}

template <AtspiHandler handle>
int atspiProperty(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                  void* userData, sd_bus_error*) {
    return handle({atspiObjects(userData), reply});
}

// A label's name is its text.
inline const std::string& spokenName(const SceneControl& control) {
    return control.label.empty() ? control.value : control.label;
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

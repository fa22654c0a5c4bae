// Actions that assistive technology can perform on a control. A press is a click.
#include <span>

#include "drawing/AccessibleScene.hpp"
#include "platform/linux/accessibility/AtspiObject.hpp"

namespace quorvane {
namespace {

std::span<const AccessibilityAction> actionsOf(const AtspiNode& node) {
    if (!node.control) return {};
    return accessibilityActions(node.control->role);
}

// These names belong to the interface and are not translated.
const char* nameOf(AccessibilityAction action) {
    switch (action) {
        case AccessibilityAction::press: return "click";
        case AccessibilityAction::increment: return "increment";
        case AccessibilityAction::decrement: return "decrement";
    }
    return "";
}

std::optional<AccessibilityAction> readAction(sd_bus_message* call, const AtspiNode& node) {
    std::int32_t index = -1;
    const auto actions = actionsOf(node);
    if (sd_bus_message_read(call, "i", &index) < 0 || index < 0 ||
        static_cast<std::size_t>(index) >= actions.size())
        return std::nullopt;
    return actions[static_cast<std::size_t>(index)];
}

int perform(sd_bus_message* call, void* data, sd_bus_error*) {
    const AtspiNode node = atspiNode(data, call);
    const auto action = readAction(call, node);
    if (action) node.card->perform(node.control->id, *action);
    return sd_bus_reply_method_return(call, "b", action.has_value());
}

int name(sd_bus_message* call, void* data, sd_bus_error*) {
    const auto action = readAction(call, atspiNode(data, call));
    return sd_bus_reply_method_return(call, "s", action ? nameOf(*action) : "");
}

int nothing(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "s", "");
}

int all(sd_bus_message* call, void* data, sd_bus_error*) {
    return answerAtspiArray(call, "(sss)", actionsOf(atspiNode(data, call)),
                            [](sd_bus_message* reply, AccessibilityAction action) {
                                return sd_bus_message_append(reply, "(sss)", nameOf(action), "",
                                                             "");
                            });
}

int count(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply, void* data,
          sd_bus_error*) {
    const auto actions = actionsOf(atspiNode(data, path));
    return sd_bus_message_append(reply, "i", static_cast<std::int32_t>(actions.size()));
}

constexpr sd_bus_vtable kActionMembers[] = {SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
                                            SD_BUS_PROPERTY("NActions", "i", count, 0, 0),
                                            SD_BUS_METHOD("GetName", "i", "s", name, 0),
                                            SD_BUS_METHOD("GetLocalizedName", "i", "s", name, 0),
                                            SD_BUS_METHOD("GetDescription", "i", "s", nothing, 0),
                                            SD_BUS_METHOD("GetKeyBinding", "i", "s", nothing, 0),
                                            SD_BUS_METHOD("GetActions", "", "a(sss)", all, 0),
                                            SD_BUS_METHOD("DoAction", "i", "b", perform, 0),
                                            SD_BUS_VTABLE_END};

}  // namespace

constinit const AtspiInterface kAtspiAction{
    "org.a11y.atspi.Action", [](const AtspiNode& node) { return !actionsOf(node).empty(); },
    kActionMembers};

}  // namespace quorvane

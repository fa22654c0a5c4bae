// Actions that assistive technology can perform on a control. A press is a click.
#include <span>

#include "platform/linux/accessibility/AtspiObject.hpp"

namespace quorvane {
namespace {

// In the order in which they are offered.
std::span<const AccessibilityAction> actionsOf(const AtspiNode& node) {
    static constexpr AccessibilityAction kOfButtons[] = {AccessibilityAction::press};
    static constexpr AccessibilityAction kOfSliders[] = {AccessibilityAction::increment,
                                                         AccessibilityAction::decrement};
    if (!node.control) return {};
    switch (node.control->role) {
        case SceneControl::Role::button: return kOfButtons;
        case SceneControl::Role::slider: return kOfSliders;
        default: return {};
    }
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

std::optional<AccessibilityAction> readAction(const AtspiRequest& request) {
    std::int32_t index = -1;
    const auto actions = actionsOf(request.node);
    if (sd_bus_message_read(request.call, "i", &index) < 0 || index < 0 ||
        static_cast<std::size_t>(index) >= actions.size())
        return std::nullopt;
    return actions[static_cast<std::size_t>(index)];
}

int perform(const AtspiRequest& request) {
    const auto action = readAction(request);
    if (action) request.node.card->perform(request.node.control->id, *action);
    return request.answer("b", action.has_value());
}

int actionName(const AtspiRequest& request) {
    const auto action = readAction(request);
    return request.answer("s", action ? nameOf(*action) : "");
}

int noText(const AtspiRequest& request) { return request.answer("s", ""); }

int allActions(const AtspiRequest& request) {
    return request.answerArray("(sss)", actionsOf(request.node), [&](AccessibilityAction action) {
        return request.answer("(sss)", nameOf(action), "", "");
    });
}

int actionCount(const AtspiRequest& request) {
    return request.answer("i", static_cast<std::int32_t>(actionsOf(request.node).size()));
}

constexpr sd_bus_vtable kActionMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("NActions", "i", atspiProperty<actionCount>, 0, 0),
    SD_BUS_METHOD("GetName", "i", "s", atspiMethod<actionName>, 0),
    SD_BUS_METHOD("GetLocalizedName", "i", "s", atspiMethod<actionName>, 0),
    SD_BUS_METHOD("GetDescription", "i", "s", atspiMethod<noText>, 0),
    SD_BUS_METHOD("GetKeyBinding", "i", "s", atspiMethod<noText>, 0),
    SD_BUS_METHOD("GetActions", "", "a(sss)", atspiMethod<allActions>, 0),
    SD_BUS_METHOD("DoAction", "i", "b", atspiMethod<perform>, 0),
    SD_BUS_VTABLE_END};

}  // namespace

constinit const AtspiInterface kAtspiAction{
    "org.a11y.atspi.Action", [](const AtspiNode& node) { return !actionsOf(node).empty(); },
    kActionMembers};

}  // namespace quorvane

// The interface that every object implements, and the interface of the application.
#include <cstddef>

#include "platform/linux/accessibility/AtspiObject.hpp"
#include "platform/linux/language/UserLanguage.hpp"

namespace quorvane {
namespace {

// Number and name of a role in the interface.
struct Role {
    std::uint32_t number;
    const char* name;
};
enum State { kEnabled = 8, kHorizontal = 14, kSensitive = 24, kShowing = 25, kVisible = 30 };

// The name that a screen reader speaks.
std::string nameOf(const AtspiNode& node) {
    if (!node.card) return "Quorvane Lock Screen";
    if (!node.control) return node.card->accessibleScene().label;
    return spokenName(*node.control);
}

Role roleOf(const AtspiNode& node) {
    if (!node.card) return {75, "application"};
    if (!node.control) return {99, "grouping"};
    switch (node.control->role) {
        case SceneControl::Role::button: return {43, "push button"};
        case SceneControl::Role::slider: return {51, "slider"};
        case SceneControl::Role::text: return {29, "label"};
        case SceneControl::Role::image: return {27, "image"};
        case SceneControl::Role::progress: return {42, "progress bar"};
    }
    return {};
}

std::uint32_t statesOf(const AtspiNode& node) {
    std::uint32_t states = 1u << kEnabled | 1u << kSensitive | 1u << kShowing | 1u << kVisible;
    if (node.control && kAtspiValue.isOf(node)) states |= 1u << kHorizontal;
    return states;
}

int name(const AtspiRequest& request) { return request.answer("s", nameOf(request.node).c_str()); }

int parent(const AtspiRequest& request) {
    const auto above = AtspiTree::parent(request.node);
    return request.answerObject(above ? &*above : nullptr);
}

int childCount(const AtspiRequest& request) {
    const auto children = request.objects.tree.children(request.node);
    return request.answer("i", static_cast<std::int32_t>(children.size()));
}

int locale(const AtspiRequest& request) {
    const auto locales = preferredLocales();
    return request.answer("s", locales.empty() ? "en" : locales.front().c_str());
}

int childAt(const AtspiRequest& request) {
    std::int32_t index = 0;
    if (const int result = sd_bus_message_read(request.call, "i", &index); result < 0)
        return result;
    const auto children = request.objects.tree.children(request.node);
    const bool isThere = index >= 0 && static_cast<std::size_t>(index) < children.size();
    return request.answerObject(isThere ? &children[static_cast<std::size_t>(index)] : nullptr);
}

int allChildren(const AtspiRequest& request) {
    return request.answerArray(
        "(so)", request.objects.tree.children(request.node),
        [&](const AtspiNode& child) { return request.answerObject(&child); });
}

int application(const AtspiRequest& request) {
    const AtspiNode root;
    return request.answerObject(&root);
}

int indexInParent(const AtspiRequest& request) {
    return request.answer("i", request.objects.tree.indexInParent(request.node));
}

int relations(const AtspiRequest& request) { return request.answer("a(ua(so))", 0); }

int attributes(const AtspiRequest& request) {
    return request.answer("a{ss}", 1, "toolkit", request.objects.toolkit);
}

int role(const AtspiRequest& request) { return request.answer("u", roleOf(request.node).number); }

int roleName(const AtspiRequest& request) { return request.answer("s", roleOf(request.node).name); }

int states(const AtspiRequest& request) {
    return request.answer("au", 2, statesOf(request.node), 0u);
}

int interfaces(const AtspiRequest& request) {
    return request.answerArray("s", kAtspiInterfaces, [&](const AtspiInterface* interface) {
        return interface->isOf(request.node) ? request.answer("s", interface->name) : 0;
    });
}

constexpr sd_bus_vtable kAccessibleMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("Name", "s", atspiProperty<name>, 0, 0),
    SD_BUS_PROPERTY("Description", "s", nullptr, offsetof(AtspiObjects, empty), 0),
    SD_BUS_PROPERTY("Parent", "(so)", atspiProperty<parent>, 0, 0),
    SD_BUS_PROPERTY("ChildCount", "i", atspiProperty<childCount>, 0, 0),
    SD_BUS_PROPERTY("Locale", "s", atspiProperty<locale>, 0, 0),
    SD_BUS_PROPERTY("AccessibleId", "s", nullptr, offsetof(AtspiObjects, empty), 0),
    SD_BUS_METHOD("GetChildAtIndex", "i", "(so)", atspiMethod<childAt>, 0),
    SD_BUS_METHOD("GetChildren", "", "a(so)", atspiMethod<allChildren>, 0),
    SD_BUS_METHOD("GetIndexInParent", "", "i", atspiMethod<indexInParent>, 0),
    SD_BUS_METHOD("GetRelationSet", "", "a(ua(so))", atspiMethod<relations>, 0),
    SD_BUS_METHOD("GetRole", "", "u", atspiMethod<role>, 0),
    SD_BUS_METHOD("GetRoleName", "", "s", atspiMethod<roleName>, 0),
    SD_BUS_METHOD("GetLocalizedRoleName", "", "s", atspiMethod<roleName>, 0),
    SD_BUS_METHOD("GetState", "", "au", atspiMethod<states>, 0),
    SD_BUS_METHOD("GetAttributes", "", "a{ss}", atspiMethod<attributes>, 0),
    SD_BUS_METHOD("GetApplication", "", "(so)", atspiMethod<application>, 0),
    SD_BUS_METHOD("GetInterfaces", "", "as", atspiMethod<interfaces>, 0),
    SD_BUS_VTABLE_END};

constexpr sd_bus_vtable kApplicationMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("ToolkitName", "s", nullptr, offsetof(AtspiObjects, toolkit), 0),
    SD_BUS_PROPERTY("Version", "s", nullptr, offsetof(AtspiObjects, version), 0),
    SD_BUS_PROPERTY("AtspiVersion", "s", nullptr, offsetof(AtspiObjects, version), 0),
    SD_BUS_WRITABLE_PROPERTY("Id", "i", nullptr, nullptr, offsetof(AtspiObjects, applicationNumber),
                             0),
    SD_BUS_METHOD("GetLocale", "u", "s", atspiMethod<locale>, 0),
    SD_BUS_VTABLE_END};

}  // namespace

constinit const AtspiInterface kAtspiAccessible{
    "org.a11y.atspi.Accessible", [](const AtspiNode&) { return true; }, kAccessibleMembers};
constinit const AtspiInterface kAtspiApplication{"org.a11y.atspi.Application",
                                                 [](const AtspiNode& node) { return !node.card; },
                                                 kApplicationMembers};

}  // namespace quorvane

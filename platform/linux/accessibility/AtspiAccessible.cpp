// The interface that every object implements, and the interface of the application.
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

std::string locale() {
    const auto locales = preferredLocales();
    return locales.empty() ? "en" : locales.front();
}

int answer(sd_bus_message* call, const char* types, auto... values) {
    return sd_bus_reply_method_return(call, types, values...);
}

int childAt(sd_bus_message* call, void* data, sd_bus_error*) {
    std::int32_t index = 0;
    if (const int result = sd_bus_message_read(call, "i", &index); result < 0) return result;
    const auto children = atspiObjects(data).tree.children(atspiNode(data, call));
    const bool isThere = index >= 0 && static_cast<std::size_t>(index) < children.size();
    return atspiObjects(data).answer(
        call, isThere ? &children[static_cast<std::size_t>(index)] : nullptr);
}

int allChildren(sd_bus_message* call, void* data, sd_bus_error*) {
    const AtspiObjects& objects = atspiObjects(data);
    return answerAtspiArray(call, "(so)", objects.tree.children(atspiNode(data, call)),
                            [&](sd_bus_message* reply, const AtspiNode& child) {
                                return objects.append(reply, &child);
                            });
}

int application(sd_bus_message* call, void* data, sd_bus_error*) {
    const AtspiNode root;
    return atspiObjects(data).answer(call, &root);
}

int indexInParent(sd_bus_message* call, void* data, sd_bus_error*) {
    return answer(call, "i", atspiObjects(data).tree.indexInParent(atspiNode(data, call)));
}

int relations(sd_bus_message* call, void*, sd_bus_error*) { return answer(call, "a(ua(so))", 0); }

int attributes(sd_bus_message* call, void*, sd_bus_error*) {
    return answer(call, "a{ss}", 1, "toolkit", "Quorvane");
}

int role(sd_bus_message* call, void* data, sd_bus_error*) {
    return answer(call, "u", roleOf(atspiNode(data, call)).number);
}

int roleName(sd_bus_message* call, void* data, sd_bus_error*) {
    return answer(call, "s", roleOf(atspiNode(data, call)).name);
}

int states(sd_bus_message* call, void* data, sd_bus_error*) {
    return answer(call, "au", 2, statesOf(atspiNode(data, call)), 0u);
}

int interfaces(sd_bus_message* call, void* data, sd_bus_error*) {
    const AtspiNode node = atspiNode(data, call);
    return answerAtspiArray(call, "s", kAtspiInterfaces,
                            [&](sd_bus_message* reply, const AtspiInterface* interface) {
                                if (!interface->isOf(node)) return 0;
                                return sd_bus_message_append(reply, "s", interface->name);
                            });
}

int name(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply, void* data,
         sd_bus_error*) {
    return sd_bus_message_append(reply, "s", nameOf(atspiNode(data, path)).c_str());
}

int nothing(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
            sd_bus_error*) {
    return sd_bus_message_append(reply, "s", "");
}

int parent(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply, void* data,
           sd_bus_error*) {
    const auto above = AtspiTree::parent(atspiNode(data, path));
    return atspiObjects(data).append(reply, above ? &*above : nullptr);
}

int childCount(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply,
               void* data, sd_bus_error*) {
    const auto children = atspiObjects(data).tree.children(atspiNode(data, path));
    return sd_bus_message_append(reply, "i", static_cast<std::int32_t>(children.size()));
}

int localeProperty(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                   sd_bus_error*) {
    return sd_bus_message_append(reply, "s", locale().c_str());
}

constexpr sd_bus_vtable kAccessibleMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("Name", "s", name, 0, 0),
    SD_BUS_PROPERTY("Description", "s", nothing, 0, 0),
    SD_BUS_PROPERTY("Parent", "(so)", parent, 0, 0),
    SD_BUS_PROPERTY("ChildCount", "i", childCount, 0, 0),
    SD_BUS_PROPERTY("Locale", "s", localeProperty, 0, 0),
    SD_BUS_PROPERTY("AccessibleId", "s", nothing, 0, 0),
    SD_BUS_METHOD("GetChildAtIndex", "i", "(so)", childAt, 0),
    SD_BUS_METHOD("GetChildren", "", "a(so)", allChildren, 0),
    SD_BUS_METHOD("GetIndexInParent", "", "i", indexInParent, 0),
    SD_BUS_METHOD("GetRelationSet", "", "a(ua(so))", relations, 0),
    SD_BUS_METHOD("GetRole", "", "u", role, 0),
    SD_BUS_METHOD("GetRoleName", "", "s", roleName, 0),
    SD_BUS_METHOD("GetLocalizedRoleName", "", "s", roleName, 0),
    SD_BUS_METHOD("GetState", "", "au", states, 0),
    SD_BUS_METHOD("GetAttributes", "", "a{ss}", attributes, 0),
    SD_BUS_METHOD("GetApplication", "", "(so)", application, 0),
    SD_BUS_METHOD("GetInterfaces", "", "as", interfaces, 0),
    SD_BUS_VTABLE_END};

int toolkit(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
            sd_bus_error*) {
    return sd_bus_message_append(reply, "s", "Quorvane");
}

int version(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
            sd_bus_error*) {
    return sd_bus_message_append(reply, "s", "2.1");  // version of the interfaces
}

int applicationNumber(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                      void* data, sd_bus_error*) {
    return sd_bus_message_append(reply, "i", atspiObjects(data).applicationNumber);
}

int setApplicationNumber(sd_bus*, const char*, const char*, const char*, sd_bus_message* value,
                         void* data, sd_bus_error*) {
    return sd_bus_message_read(value, "i", &atspiObjects(data).applicationNumber);
}

int applicationLocale(sd_bus_message* call, void*, sd_bus_error*) {
    return answer(call, "s", locale().c_str());
}

constexpr sd_bus_vtable kApplicationMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("ToolkitName", "s", toolkit, 0, 0),
    SD_BUS_PROPERTY("Version", "s", version, 0, 0),
    SD_BUS_PROPERTY("AtspiVersion", "s", version, 0, 0),
    SD_BUS_WRITABLE_PROPERTY("Id", "i", applicationNumber, setApplicationNumber, 0, 0),
    SD_BUS_METHOD("GetLocale", "u", "s", applicationLocale, 0),
    SD_BUS_VTABLE_END};

}  // namespace

constinit const AtspiInterface kAtspiAccessible{
    "org.a11y.atspi.Accessible", [](const AtspiNode&) { return true; }, kAccessibleMembers};
constinit const AtspiInterface kAtspiApplication{"org.a11y.atspi.Application",
                                                 [](const AtspiNode& node) { return !node.card; },
                                                 kApplicationMembers};

}  // namespace quorvane

// Numeric values of sliders and progress indicators.
#include "platform/linux/accessibility/AtspiObject.hpp"

namespace quorvane {
namespace {

SceneControl controlAt(void* data, const char* path) {
    const AtspiNode node = atspiNode(data, path);
    return node.control ? *node.control : SceneControl{};
}

bool isSlider(const AtspiNode& node) {
    return node.control && node.control->role == SceneControl::Role::slider;
}

template <double SceneControl::*field>
int number(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply, void* data,
           sd_bus_error*) {
    return sd_bus_message_append(reply, "d", controlAt(data, path).*field);
}

int setNumber(sd_bus*, const char* path, const char*, const char*, sd_bus_message* value,
              void* data, sd_bus_error*) {
    double wanted = 0;
    const int result = sd_bus_message_read(value, "d", &wanted);
    const AtspiNode node = atspiNode(data, path);
    if (result >= 0 && isSlider(node)) node.card->setNumber(node.control->id, wanted);
    return result;
}

int text(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply, void* data,
         sd_bus_error*) {
    return sd_bus_message_append(reply, "s", controlAt(data, path).value.c_str());
}

constexpr sd_bus_vtable kValueMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("MinimumValue", "d", number<&SceneControl::minimum>, 0, 0),
    SD_BUS_PROPERTY("MaximumValue", "d", number<&SceneControl::maximum>, 0, 0),
    SD_BUS_PROPERTY("MinimumIncrement", "d", number<&SceneControl::step>, 0, 0),
    SD_BUS_WRITABLE_PROPERTY("CurrentValue", "d", number<&SceneControl::number>, setNumber, 0, 0),
    SD_BUS_PROPERTY("Text", "s", text, 0, 0),
    SD_BUS_VTABLE_END};

}  // namespace

constinit const AtspiInterface kAtspiValue{
    "org.a11y.atspi.Value",
    [](const AtspiNode& node) {
        return isSlider(node) ||
               (node.control && node.control->role == SceneControl::Role::progress);
    },
    kValueMembers};

}  // namespace quorvane

// Numeric values of sliders and progress indicators.
#include "platform/linux/accessibility/AtspiObject.hpp"

namespace quorvane {
namespace {

bool isSlider(const AtspiNode& node) {
    return node.control && node.control->role == SceneControl::Role::slider;
}

template <double SceneControl::*field>
int number(const AtspiRequest& request) {
    return request.answer("d", request.node.control->*field);
}

int setNumber(sd_bus*, const char*, const char*, const char*, sd_bus_message* value, void* data,
              sd_bus_error*) {
    double wanted = 0;
    const int result = sd_bus_message_read(value, "d", &wanted);
    const AtspiNode& node = atspiObjects(data).target;
    if (result >= 0 && isSlider(node)) node.card->setNumber(node.control->id, wanted);
    return result;
}

int valueText(const AtspiRequest& request) {
    return request.answer("s", request.node.control->value.c_str());
}

constexpr sd_bus_vtable kValueMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("MinimumValue", "d", atspiProperty<number<&SceneControl::minimum>>, 0, 0),
    SD_BUS_PROPERTY("MaximumValue", "d", atspiProperty<number<&SceneControl::maximum>>, 0, 0),
    SD_BUS_PROPERTY("MinimumIncrement", "d", atspiProperty<number<&SceneControl::step>>, 0, 0),
    SD_BUS_WRITABLE_PROPERTY("CurrentValue", "d", atspiProperty<number<&SceneControl::number>>,
                             setNumber, 0, 0),
    SD_BUS_PROPERTY("Text", "s", atspiProperty<valueText>, 0, 0),
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

// Positions and sizes of objects.
#include <cmath>

#include "drawing/AccessibleScene.hpp"
#include "platform/linux/accessibility/AtspiObject.hpp"

namespace quorvane {
namespace {

// Numbers of the interface. A card is its own window.
enum class Coordinates : std::uint32_t { screen = 0, window = 1, parent = 2 };
constexpr std::uint32_t kWidgetLayer = 3;
constexpr std::uint32_t kWindowLayer = 7;

// The card's top left corner in the requested coordinates, in pixels.
Point originFor(const AtspiNode& node, Coordinates coordinates) {
    const bool isInCard =
        coordinates == Coordinates::window || (coordinates == Coordinates::parent && node.control);
    return isInCard ? Point{} : node.card->accessibleOrigin();
}

Rect extents(const AtspiNode& node, Coordinates coordinates) {
    if (!node.card) return {};
    const double scale = node.card->accessibleScale();
    const Point origin = originFor(node, coordinates);
    const Rect points = node.control ? node.control->frame
                                     : Rect{0, 0, node.card->accessibleSize().width,
                                            node.card->accessibleSize().height};
    return {origin.x + points.x * scale, origin.y + points.y * scale, points.width * scale,
            points.height * scale};
}

std::int32_t whole(double number) { return static_cast<std::int32_t>(std::lround(number)); }

Coordinates readCoordinates(sd_bus_message* call) {
    std::uint32_t number = 0;
    sd_bus_message_read(call, "u", &number);
    return Coordinates{number};
}

int extentsOf(sd_bus_message* call, void* data, sd_bus_error*) {
    const Rect area = extents(atspiNode(data, call), readCoordinates(call));
    return sd_bus_reply_method_return(call, "(iiii)", whole(area.x), whole(area.y),
                                      whole(area.width), whole(area.height));
}

int position(sd_bus_message* call, void* data, sd_bus_error*) {
    const Rect area = extents(atspiNode(data, call), readCoordinates(call));
    return sd_bus_reply_method_return(call, "ii", whole(area.x), whole(area.y));
}

int size(sd_bus_message* call, void* data, sd_bus_error*) {
    const Rect area = extents(atspiNode(data, call), Coordinates::window);
    return sd_bus_reply_method_return(call, "ii", whole(area.width), whole(area.height));
}

struct Asked {
    Point point{};
    Coordinates coordinates{};
};

Asked readPoint(sd_bus_message* call) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::uint32_t coordinates = 0;
    sd_bus_message_read(call, "iiu", &x, &y, &coordinates);
    return {{double(x), double(y)}, Coordinates{coordinates}};
}

int contains(sd_bus_message* call, void* data, sd_bus_error*) {
    const Asked asked = readPoint(call);
    const bool isInside = extents(atspiNode(data, call), asked.coordinates).contains(asked.point);
    return sd_bus_reply_method_return(call, "b", isInside);
}

// The card's control at the point, else the object itself if it contains the point.
std::optional<AtspiNode> nodeAt(const AtspiNode& node, const Asked& asked) {
    if (!node.card || !extents(node, asked.coordinates).contains(asked.point)) return std::nullopt;
    if (node.control) return node;
    const Point origin = originFor(node, asked.coordinates);
    const double scale = node.card->accessibleScale();
    AtspiNode found = node;
    found.control = accessibleControlAt(
        node.card->accessibleScene().controls,
        {(asked.point.x - origin.x) / scale, (asked.point.y - origin.y) / scale});
    return found;
}

int atPoint(sd_bus_message* call, void* data, sd_bus_error*) {
    const auto found = nodeAt(atspiNode(data, call), readPoint(call));
    return atspiObjects(data).answer(call, found ? &*found : nullptr);
}

int layer(sd_bus_message* call, void* data, sd_bus_error*) {
    const bool isWindow = !atspiNode(data, call).control;
    return sd_bus_reply_method_return(call, "u", isWindow ? kWindowLayer : kWidgetLayer);
}

int order(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "n", 0);
}

int opacity(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "d", 1.0);
}

// Refuses the keyboard focus, because the locker owns the keyboard.
int refuse(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "b", 0);
}

constexpr sd_bus_vtable kComponentMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Contains", "iiu", "b", contains, 0),
    SD_BUS_METHOD("GetAccessibleAtPoint", "iiu", "(so)", atPoint, 0),
    SD_BUS_METHOD("GetExtents", "u", "(iiii)", extentsOf, 0),
    SD_BUS_METHOD("GetPosition", "u", "ii", position, 0),
    SD_BUS_METHOD("GetSize", "", "ii", size, 0),
    SD_BUS_METHOD("GetLayer", "", "u", layer, 0),
    SD_BUS_METHOD("GetMDIZOrder", "", "n", order, 0),
    SD_BUS_METHOD("GetAlpha", "", "d", opacity, 0),
    SD_BUS_METHOD("GrabFocus", "", "b", refuse, 0),
    SD_BUS_VTABLE_END};

}  // namespace

constinit const AtspiInterface kAtspiComponent{
    "org.a11y.atspi.Component", [](const AtspiNode& node) { return node.card != nullptr; },
    kComponentMembers};

}  // namespace quorvane

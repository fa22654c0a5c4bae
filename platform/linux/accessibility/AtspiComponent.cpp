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

int extentsOf(const AtspiRequest& request) {
    const Rect area = extents(request.node, readCoordinates(request.call));
    return request.answer("(iiii)", whole(area.x), whole(area.y), whole(area.width),
                          whole(area.height));
}

int position(const AtspiRequest& request) {
    const Rect area = extents(request.node, readCoordinates(request.call));
    return request.answer("ii", whole(area.x), whole(area.y));
}

int size(const AtspiRequest& request) {
    const Rect area = extents(request.node, Coordinates::window);
    return request.answer("ii", whole(area.width), whole(area.height));
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

int contains(const AtspiRequest& request) {
    const Asked asked = readPoint(request.call);
    return request.answer("b", extents(request.node, asked.coordinates).contains(asked.point));
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

int atPoint(const AtspiRequest& request) {
    const auto found = nodeAt(request.node, readPoint(request.call));
    return request.answerObject(found ? &*found : nullptr);
}

int layer(const AtspiRequest& request) {
    return request.answer("u", request.node.control ? kWidgetLayer : kWindowLayer);
}

int order(const AtspiRequest& request) { return request.answer("n", 0); }

int opacity(const AtspiRequest& request) { return request.answer("d", 1.0); }

// Refuses the keyboard focus, because the locker owns the keyboard.
int refuse(const AtspiRequest& request) { return request.answer("b", 0); }

constexpr sd_bus_vtable kComponentMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Contains", "iiu", "b", atspiMethod<contains>, 0),
    SD_BUS_METHOD("GetAccessibleAtPoint", "iiu", "(so)", atspiMethod<atPoint>, 0),
    SD_BUS_METHOD("GetExtents", "u", "(iiii)", atspiMethod<extentsOf>, 0),
    SD_BUS_METHOD("GetPosition", "u", "ii", atspiMethod<position>, 0),
    SD_BUS_METHOD("GetSize", "", "ii", atspiMethod<size>, 0),
    SD_BUS_METHOD("GetLayer", "", "u", atspiMethod<layer>, 0),
    SD_BUS_METHOD("GetMDIZOrder", "", "n", atspiMethod<order>, 0),
    SD_BUS_METHOD("GetAlpha", "", "d", atspiMethod<opacity>, 0),
    SD_BUS_METHOD("GrabFocus", "", "b", atspiMethod<refuse>, 0),
    SD_BUS_VTABLE_END};

}  // namespace

constinit const AtspiInterface kAtspiComponent{
    "org.a11y.atspi.Component", [](const AtspiNode& node) { return node.card != nullptr; },
    kComponentMembers};

}  // namespace quorvane

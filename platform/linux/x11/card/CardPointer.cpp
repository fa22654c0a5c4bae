#include "platform/linux/x11/card/CardPointer.hpp"

#include <xcb/xfixes.h>

#include <algorithm>
#include <span>
#include <utility>

#include "platform/linux/x11/XcbReply.hpp"
#include "platform/linux/x11/card/CardRequests.hpp"

namespace quorvane {

CardPointer::CardPointer(X11Session& x11, CardXWindow& child, const CardStyle& style, double scale,
                         Listener listener)
    : x11_(x11),
      child_(child),
      style_(style),
      shape_(style.card, style.cornerRadius),
      scale_(scale),
      listener_(std::move(listener)) {
    presses_ = x11_.observePointer([this](const RawPointerEvent& event) { handle(event); });
    moves_ = x11_.observePointerMoves([this](Point point) { moved(point); });
    observeCursor();
}

// The server reports changes of the displayed cursor to any selecting window. The selection ends
// with this pointer, and at the latest with the card's window.
void CardPointer::observeCursor() {
    xcb_connection_t* connection = x11_.connection();
    const auto* extension = presentExtension(connection, xcb_xfixes_id);
    if (!extension) return;
    // The server refuses XFixes requests until a version is agreed; the answer does not matter
    // here.
    xcb_discard_reply(connection, xcb_xfixes_query_version(connection, 5, 0).sequence);
    xcb_xfixes_select_cursor_input(connection, child_.window(),
                                   XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
    cursorChanges_ = x11_.observeEvents(
        static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_CURSOR_NOTIFY),
        [this](const xcb_generic_event_t&) { cursorChanged(); });
}

void CardPointer::cursorChanged() {
    if (!isOver_) return;
    isOver_ = false;
    cardMoved();
}

void CardPointer::cardMoved() {
    if (const auto place = pointerOn(x11_.connection(), x11_.screen().root)) moved(*place);
}

CardPointer::~CardPointer() {
    if (cursorChanges_ && child_.exists())
        xcb_xfixes_select_cursor_input(x11_.connection(), child_.window(), 0);
    report(press_.cancel());
    if (showsArrow_) listener_.arrow(std::nullopt);
}

// In card coordinates.
Point CardPointer::locationOf(Point rootPoint) const {
    const Point origin = child_.origin();
    // The pointer's position is the centre of its pixel.
    return {(rootPoint.x + 0.5 - origin.x) / scale_ - style_.shadowMargin,
            (rootPoint.y + 0.5 - origin.y) / scale_ - style_.shadowMargin};
}

bool CardPointer::isOnCard(Point rootPoint) const {
    return shape_.contains(locationOf(rootPoint)) && child_.isOnTopAt(rootPoint);
}

void CardPointer::handle(const RawPointerEvent& event) {
    // Whether the card is on top there is a question to the server, asked only if it matters.
    const bool mayBegin = event.kind == PointerEvent::Kind::down &&
                          event.button == PressTracker::kPrimary && !press_.isPressed();
    report(press_.handle(event.kind, event.button, locationOf(event.position),
                         mayBegin && isOnCard(event.position)));
}

void CardPointer::moved(Point rootPoint) {
    const bool isOver = isOnCard(rootPoint);
    // The locker's pointer is queried once each time the pointer enters the card, and when the
    // cursor changes.
    const bool shows = isOver && (isOver_ ? showsArrow_ : lockerHidesPointer());
    isOver_ = isOver;
    if (!std::exchange(showsArrow_, shows) && !shows) return;
    if (!shows) return listener_.arrow(std::nullopt);
    const Point origin = child_.origin();
    listener_.arrow(Point{(rootPoint.x - origin.x) / scale_, (rootPoint.y - origin.y) / scale_});
}

void CardPointer::report(const std::optional<PointerEvent>& event) {
    if (event) listener_.event(*event);
}

// A locker hides the pointer by grabbing it with an empty cursor picture.
bool CardPointer::lockerHidesPointer() {
    xcb_connection_t* connection = x11_.connection();
    if (!presentExtension(connection, xcb_xfixes_id)) return false;
    const auto image = xcbReply(xcb_xfixes_get_cursor_image_reply, connection,
                                xcb_xfixes_get_cursor_image(connection));
    if (!image) return false;
    const std::span pixels{
        xcb_xfixes_get_cursor_image_cursor_image(image.get()),
        static_cast<std::size_t>(xcb_xfixes_get_cursor_image_cursor_image_length(image.get()))};
    return std::ranges::none_of(pixels, [](std::uint32_t pixel) { return pixel >> 24 != 0; });
}

}  // namespace quorvane

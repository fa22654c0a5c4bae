#include "platform/linux/x11/RawPointer.hpp"

#include <xcb/xinput.h>

#include <utility>

#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {
namespace {

// Since this version, raw events also reach clients that do not hold the grab.
constexpr std::uint16_t kMajorVersion = 2;
constexpr std::uint16_t kMinorVersion = 2;

constexpr std::uint32_t kPresses =
    XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
    XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_END;
constexpr std::uint32_t kMoves =
    XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_UPDATE;
constexpr unsigned kPrimary = 1;

}  // namespace

RawPointer::RawPointer(X11Connection& x11)
    : x11_(x11),
      listeners_([this] { select(); }),
      moveListeners_([this] { select(); }),
      events_(x11.observeEvents(XCB_GE_GENERIC, [this](const auto& event) { handle(event); })),
      quiet_(x11.observeQuiet([this] { reportMove(); })) {}

bool RawPointer::isSupported() {
    if (major_ >= 0) return major_ > 0;
    const auto* extension = presentExtension(x11_.connection(), xcb_input_id);
    const auto version =
        extension
            ? xcbReply(xcb_input_xi_query_version_reply, x11_.connection(),
                       xcb_input_xi_query_version(x11_.connection(), kMajorVersion, kMinorVersion))
            : nullptr;
    const bool isNewEnough =
        version &&
        (version->major_version > kMajorVersion ||
         (version->major_version == kMajorVersion && version->minor_version >= kMinorVersion));
    major_ = isNewEnough ? extension->major_opcode : 0;
    return major_ > 0;
}

void RawPointer::select() {
    if (listeners_.isEmpty()) {
        buttonsDown_.clear();
        touch_.reset();
    }
    std::uint32_t wanted = listeners_.isEmpty() ? 0 : kPresses;
    if (!buttonsDown_.empty() || !moveListeners_.isEmpty()) wanted |= kMoves;
    if (wanted == selected_ || !isSupported()) return;
    selected_ = wanted;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const masks{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, wanted};
    xcb_input_xi_select_events(x11_.connection(), x11_.root(), 1, &masks.head);
}

void RawPointer::handle(const xcb_generic_event_t& event) {
    const auto& head = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (head.extension != major_) return;
    const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
    switch (head.event_type) {
        case XCB_INPUT_RAW_BUTTON_PRESS: return press(logicalButton(raw.detail), true);
        case XCB_INPUT_RAW_BUTTON_RELEASE: return press(logicalButton(raw.detail), false);
        case XCB_INPUT_RAW_TOUCH_BEGIN: return beginTouch(raw.detail, raw.sourceid);
        case XCB_INPUT_RAW_TOUCH_END:
            if (touch_ != raw.detail) return;
            touch_.reset();
            return press(kPrimary, false);
        // A fast mouse sends a thousand moves a second, so moves are coalesced.
        case XCB_INPUT_RAW_MOTION:
        case XCB_INPUT_RAW_TOUCH_UPDATE: hasMoved_ = true;
    }
}

// The server moves the pointer with the first finger, so the pointer's position is the finger's.
void RawPointer::beginTouch(std::uint32_t touch, std::uint16_t device) {
    if (touch_ || !isTouchScreen(device)) return;
    touch_ = touch;
    press(kPrimary, true);
}

// A finger on a touch pad also begins a touch, but is not a press.
bool RawPointer::isTouchScreen(std::uint16_t device) {
    const auto reply = xcbReply(xcb_input_xi_query_device_reply, x11_.connection(),
                                xcb_input_xi_query_device(x11_.connection(), device));
    if (!reply) return false;
    for (auto info = xcb_input_xi_query_device_infos_iterator(reply.get()); info.rem > 0;
         xcb_input_xi_device_info_next(&info))
        for (auto each = xcb_input_xi_device_info_classes_iterator(info.data); each.rem > 0;
             xcb_input_device_class_next(&each))
            if (each.data->type == XCB_INPUT_DEVICE_CLASS_TYPE_TOUCH &&
                reinterpret_cast<const xcb_input_touch_class_t*>(each.data)->mode ==
                    XCB_INPUT_TOUCH_MODE_DIRECT)
                return true;
    return false;
}

// Raw events carry relative movements, so the position is queried.
void RawPointer::press(unsigned button, bool isDown) {
    const auto place = button == 0 ? std::nullopt : pointerOn(x11_.connection(), x11_.root());
    if (!place) return;
    if (isDown)
        buttonsDown_.insert(button);
    else
        buttonsDown_.erase(button);
    select();
    listeners_.call({isDown ? PointerEvent::Kind::down : PointerEvent::Kind::up, button, *place});
}

void RawPointer::reportMove() {
    const auto place =
        std::exchange(hasMoved_, false) ? pointerOn(x11_.connection(), x11_.root()) : std::nullopt;
    if (!place) return;
    // The last moves may arrive after the button is up.
    if (!buttonsDown_.empty()) listeners_.call({PointerEvent::Kind::dragged, 0, *place});
    moveListeners_.call(*place);
}

// Raw events carry the physical button number, before the user's button mapping.
unsigned RawPointer::logicalButton(unsigned physicalButton) {
    const auto mapping = xcbReply(xcb_get_pointer_mapping_reply, x11_.connection(),
                                  xcb_get_pointer_mapping(x11_.connection()));
    if (!mapping || physicalButton == 0) return 0;
    const int length = xcb_get_pointer_mapping_map_length(mapping.get());
    if (physicalButton > static_cast<unsigned>(length)) return physicalButton;
    return xcb_get_pointer_mapping_map(mapping.get())[physicalButton - 1];
}

}  // namespace quorvane

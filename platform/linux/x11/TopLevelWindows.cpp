#include "platform/linux/x11/TopLevelWindows.hpp"

#include <xcb/composite.h>

#include <algorithm>
#include <optional>
#include <ranges>
#include <utility>

#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {
namespace {

// Focus events reveal keyboard grabs, because the server reports a grab as a focus change.
constexpr std::uint32_t kWindowMask = XCB_EVENT_MASK_FOCUS_CHANGE;
constexpr std::uint32_t kParentMask = kWindowMask | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
constexpr std::uint32_t kClosestMask = kParentMask | XCB_EVENT_MASK_PROPERTY_CHANGE;
// The monitors, which share this connection, need the root's own changes.
constexpr std::uint32_t kRootMask = kParentMask | XCB_EVENT_MASK_STRUCTURE_NOTIFY;

constexpr char kScreenSaverStatus[] = "_SCREENSAVER_STATUS";

// A pending query for a window's attributes and geometry. The constructor sends the requests.
// Create the queries for all windows before taking the first answer: one round trip instead of
// hundreds.
class WindowQuery {
public:
    struct Answer {
        WindowStack::Entry entry;
        bool isDrawable;
    };

    WindowQuery(xcb_connection_t* connection, xcb_window_t window)
        : connection_(connection),
          window_(window),
          attributes_(xcb_get_window_attributes(connection, window)),
          geometry_(xcb_get_geometry(connection, window)) {}

    // Call once. Returns nullopt when the window is gone.
    std::optional<Answer> answer() const {
        const auto attributes = xcbReply(xcb_get_window_attributes_reply, connection_, attributes_);
        const auto geometry = xcbReply(xcb_get_geometry_reply, connection_, geometry_);
        if (!attributes || !geometry) return std::nullopt;
        return Answer{
            {window_, frameWithBorder(*geometry), attributes->map_state != XCB_MAP_STATE_UNMAPPED,
             attributes->override_redirect != 0},
            attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT};
    }

private:
    xcb_connection_t* connection_;
    xcb_window_t window_;
    xcb_get_window_attributes_cookie_t attributes_;
    xcb_get_geometry_cookie_t geometry_;
};

}  // namespace

TopLevelWindows::TopLevelWindows(X11Connection& x11, std::function<void()> changed)
    : x11_(x11), changed_(std::move(changed)), root_(x11.root()) {
    events_ = x11_.observeWindows(
        [this](xcb_window_t window, const xcb_generic_event_t& event) { handle(window, event); });
    // Select events before reading the state: changes in between are reported, and applying one
    // twice is harmless.
    select(x11_.root(), kRootMask);
    readChildren(root_);
    findOverlay();
}

std::vector<WindowStack::Entry> TopLevelWindows::windows() const {
    std::vector<WindowStack::Entry> list;
    const auto add = [&](const WindowStack& stack) {
        for (const auto& entry : stack.entries() | std::views::reverse)
            if (isForeign(entry.window)) list.push_back(entry);
    };
    for (const WindowStack& stack : overlays_) {
        // The server does not list its overlay among the root's children: an overlay missing from
        // the stack is mapped.
        const auto* overlay = root_.find(stack.parent());
        if (!overlay || overlay->isMapped) add(stack);
    }
    add(root_);
    return list;
}

bool TopLevelWindows::isForeign(xcb_window_t window) const {
    return !x11_.isOwn(window) && x11_.clientOf(window) != 0;
}

void TopLevelWindows::handle(xcb_window_t window, const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    bool isChange = false;
    if (type == XCB_FOCUS_IN || type == XCB_FOCUS_OUT)
        isChange = handleFocus(reinterpret_cast<const xcb_focus_in_event_t&>(event));
    else if (type == XCB_PROPERTY_NOTIFY)
        isChange = handleProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    else if (WindowStack* stack = stackOf(window))
        isChange = handleStack(*stack, event);
    else if (watchedClosely_.contains(window))
        isChange = concernsForeignChild(event);
    if (isChange) changed_();
}

WindowStack* TopLevelWindows::stackOf(xcb_window_t parent) {
    if (parent == root_.parent()) return &root_;
    const auto overlay = std::ranges::find(overlays_, parent, &WindowStack::parent);
    return overlay == overlays_.end() ? nullptr : &*overlay;
}

bool TopLevelWindows::handleStack(WindowStack& stack, const xcb_generic_event_t& event) {
    // All events about children carry the child's ID at the same offset.
    const xcb_window_t child = reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
    switch (event.response_type & 0x7f) {
        case XCB_CREATE_NOTIFY:
            if (x11_.clientOf(child) == 0)
                followOverlay(child);
            else if (isForeign(child))
                select(child, kWindowMask);
            break;
        case XCB_REPARENT_NOTIFY: {
            if (!stack.apply(event) || !stack.find(child)) return true;
            if (const auto found = WindowQuery{x11_.connection(), child}.answer())
                stack.put(found->entry);
            if (isForeign(child) && !watchedClosely_.contains(child)) select(child, kWindowMask);
            return true;
        }
        case XCB_DESTROY_NOTIFY: forget(child); break;
    }
    return stack.apply(event);
}

bool TopLevelWindows::handleFocus(const xcb_focus_in_event_t& event) {
    KeyboardHold hold = keyboard_;
    if (event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_WHILE_GRABBED)
        hold = KeyboardHold::isHeld;
    else if (event.mode == XCB_NOTIFY_MODE_UNGRAB)
        hold = KeyboardHold::isFree;
    return std::exchange(keyboard_, hold) != hold;
}

bool TopLevelWindows::handleProperty(const xcb_property_notify_event_t& event) {
    if (event.window == x11_.root()) return event.atom == x11_.atom(kScreenSaverStatus);
    return event.atom == XCB_ATOM_WM_CLASS && details_.erase(event.window) > 0;
}

bool TopLevelWindows::concernsForeignChild(const xcb_generic_event_t& event) const {
    const int type = event.response_type & 0x7f;
    return type >= XCB_CREATE_NOTIFY && type <= XCB_CIRCULATE_NOTIFY &&
           isForeign(reinterpret_cast<const xcb_map_notify_event_t&>(event).window);
}

void TopLevelWindows::forget(xcb_window_t window) {
    details_.erase(window);
    if (watchedClosely_.erase(window) > 0) destroyed_.insert(window);
    std::erase_if(overlays_, [&](const WindowStack& stack) { return stack.parent() == window; });
}

void TopLevelWindows::select(xcb_window_t window, std::uint32_t mask) {
    xcb_change_window_attributes(x11_.connection(), window, XCB_CW_EVENT_MASK, &mask);
}

std::vector<std::uint32_t> TopLevelWindows::rootNumbers(const char* property,
                                                        xcb_atom_t type) const {
    constexpr std::uint32_t kMaxNumbers = 4096;
    const auto reply = xcbReply(xcb_get_property_reply, x11_.connection(),
                                xcb_get_property(x11_.connection(), false, x11_.root(),
                                                 x11_.atom(property), type, 0, kMaxNumbers));
    if (!reply || reply->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

void TopLevelWindows::readChildren(WindowStack& stack) {
    std::vector<WindowQuery> questions;
    for (const xcb_window_t child : childrenOf(x11_.connection(), stack.parent())) {
        if (x11_.clientOf(child) == 0) followOverlay(child);
        if (!isForeign(child)) continue;
        select(child, kWindowMask);
        questions.emplace_back(x11_.connection(), child);
    }
    for (const WindowQuery& question : questions)
        if (const auto found = question.answer()) stack.put(found->entry);
}

const TopLevelWindows::Details* TopLevelWindows::details(xcb_window_t window) {
    if (const auto known = details_.find(window); known != details_.end()) return &known->second;
    xcb_connection_t* connection = x11_.connection();
    const WindowQuery question{connection, window};
    const auto asked = askForText(connection, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
    const auto found = question.answer();
    const std::string names = textOf(connection, asked, XCB_ATOM_STRING);
    if (!found) return nullptr;
    // Two NUL-terminated strings.
    Details details{.isDrawable = found->isDrawable, .instance = names.c_str(), .className = {}};
    if (names.size() > details.instance.size())
        details.className = names.c_str() + details.instance.size() + 1;
    return &details_.emplace(window, std::move(details)).first->second;
}

void TopLevelWindows::watchClosely(xcb_window_t window) {
    if (watchedClosely_.insert(window).second) {
        select(window, kClosestMask);
        details_.erase(window);  // the class may have been set before property events were selected
    }
}

std::vector<Rect> TopLevelWindows::mappedChildren(xcb_window_t parent, const Rect& frame) {
    std::vector<WindowQuery> questions;
    for (const xcb_window_t child : childrenOf(x11_.connection(), parent))
        if (isForeign(child)) questions.emplace_back(x11_.connection(), child);
    std::vector<Rect> frames;
    for (const WindowQuery& question : questions) {
        const auto found = question.answer();
        if (found && found->entry.isMapped && found->isDrawable)
            frames.push_back(found->entry.frame.movedBy(frame.x, frame.y));
    }
    return frames;
}

std::set<std::uint32_t> TopLevelWindows::desktopClients() {
    const std::string screen = std::to_string(x11_.screenNumber());
    std::set<std::uint32_t> clients;
    for (const std::string& selection : {"WM_S" + screen, "_NET_WM_CM_S" + screen}) {
        const auto owner = ownerOf(x11_.connection(), x11_.atom(selection.c_str()));
        if (owner != XCB_WINDOW_NONE) clients.insert(x11_.clientOf(owner));
    }
    for (const xcb_window_t check : rootNumbers("_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW))
        clients.insert(x11_.clientOf(check));
    return clients;
}

std::set<std::uint32_t> TopLevelWindows::managedClients() {
    std::set<std::uint32_t> clients;
    for (const xcb_window_t window : rootNumbers("_NET_CLIENT_LIST", XCB_ATOM_WINDOW))
        clients.insert(x11_.clientOf(window));
    return clients;
}

// No event reports a pointer grab reliably. The server answers a grab on an unmapped window with
// "already grabbed" or "not viewable", so this request never succeeds and never takes the pointer.
bool TopLevelWindows::pointerIsHeld() {
    xcb_connection_t* connection = x11_.connection();
    if (probe_ == XCB_WINDOW_NONE) {
        probe_ = xcb_generate_id(connection);
        xcb_create_window(connection, 0, probe_, x11_.root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    }
    const auto reply = xcbReply(
        xcb_grab_pointer_reply, connection,
        xcb_grab_pointer(connection, false, probe_, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                         XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME));
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

void TopLevelWindows::followScreenSaver(bool follows) {
    if (std::exchange(followsScreenSaver_, follows) != follows)
        select(x11_.root(), follows ? kRootMask | XCB_EVENT_MASK_PROPERTY_CHANGE : kRootMask);
}

bool TopLevelWindows::screenSaverIsLocked() {
    const auto status = rootNumbers(kScreenSaverStatus, XCB_ATOM_INTEGER);
    return !status.empty() && status.front() == x11_.atom("LOCK");
}

// Requesting the overlay creates one if there is none, which hides everything for a moment. So it
// is requested only if a client is known to use it: a compositor, or a locker whose second window
// is a child of the root.
void TopLevelWindows::findOverlay() {
    const std::string selection = "_NET_WM_CM_S" + std::to_string(x11_.screenNumber());
    const bool isInUse =
        ownerOf(x11_.connection(), x11_.atom(selection.c_str())) != XCB_WINDOW_NONE ||
        std::ranges::any_of(root_.entries(), [this](const WindowStack::Entry& entry) {
            const Details* details = entry.isMapped ? this->details(entry.window) : nullptr;
            return details && details->instance == "obscurer" &&
                   details->className == "xsecurelock";
        });
    if (!isInUse || !presentExtension(x11_.connection(), xcb_composite_id)) return;
    xcbReply(xcb_composite_query_version_reply, x11_.connection(),
             xcb_composite_query_version(x11_.connection(), 0, 3));
    const auto overlay = xcbReply(xcb_composite_get_overlay_window_reply, x11_.connection(),
                                  xcb_composite_get_overlay_window(x11_.connection(), x11_.root()));
    if (!overlay) return;
    xcb_composite_release_overlay_window(x11_.connection(), x11_.root());
    followOverlay(overlay->overlay_win);
}

void TopLevelWindows::followOverlay(xcb_window_t overlay) {
    if (stackOf(overlay)) return;
    select(overlay, kParentMask);
    WindowStack stack{overlay};
    readChildren(stack);
    overlays_.push_back(std::move(stack));
}

}  // namespace quorvane

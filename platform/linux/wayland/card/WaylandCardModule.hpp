// The entry of the drawing module for Wayland.
#pragma once

#include "drawing/CardWindows.hpp"
#include "platform/Clock.hpp"
#include "platform/Log.hpp"
#include "platform/MainThread.hpp"
#include "platform/SerialQueue.hpp"
#include "platform/linux/accessibility/AccessibleCard.hpp"
#include "platform/linux/wayland/WaylandSession.hpp"

namespace quorvane {

struct WaylandCardServices {
    WaylandSession& session;
    Clock clock;
    MainThread mainThread;
    LogSink log;
    MakeSerialQueue makeSerialQueue{};         // for decoding pictures; synchronous if empty
    AccessibleCards* accessibility = nullptr;  // notified of the cards that are visible
};

// It fills `makeWindow`, `makeStage` and `measureText`.
using MakeWaylandCardWindows = CardWindows (*)(const WaylandCardServices&);
inline constexpr char kMakeWaylandCardWindowsSymbol[] = "quorvaneMakeWaylandCardWindows";

}  // namespace quorvane

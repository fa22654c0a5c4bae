// The interface of the card modules, one library for X11 and one for Wayland, with all code that
// needs the drawing libraries. The add-on loads its display's module with the first card and runs
// without those libraries until then.
#pragma once

#include "drawing/CardWindows.hpp"
#include "platform/Clock.hpp"
#include "platform/Log.hpp"
#include "platform/MainThread.hpp"
#include "platform/SerialQueue.hpp"
#include "platform/linux/accessibility/AccessibleCard.hpp"

namespace quorvane {

struct CardModuleServices {
    Clock clock;
    MainThread mainThread;
    LogSink log;
    MakeSerialQueue makeSerialQueue{};         // for decoding pictures; synchronous if empty
    AccessibleCards* accessibility = nullptr;  // notified of the cards that are visible
};

// Each module exports one such function under this name. It fills `makeWindow`, `makeStage` and
// `measureText`. `session` is the display's X11Session or WaylandSession.
using MakeCardWindows = CardWindows (*)(const CardModuleServices& services, void* session);
inline constexpr char kMakeCardWindows[] = "quorvaneMakeCardWindows";

}  // namespace quorvane

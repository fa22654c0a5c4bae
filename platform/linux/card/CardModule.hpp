// The interface of the drawing module, a separate library with all code that needs the drawing
// libraries. The add-on loads it with the first card and runs without those libraries until then.
#pragma once

#include "drawing/CardWindows.hpp"
#include "platform/Clock.hpp"
#include "platform/Log.hpp"
#include "platform/MainThread.hpp"
#include "platform/SerialQueue.hpp"
#include "platform/linux/accessibility/AccessibleCard.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

struct CardModuleServices {
    X11Session& x11;
    Clock clock;
    MainThread mainThread;
    LogSink log;
    MakeSerialQueue makeSerialQueue{};         // for decoding pictures; synchronous if empty
    AccessibleCards* accessibility = nullptr;  // notified of the cards that are visible
};

// The module's one exported function, under the name below. It fills `makeWindow`, `makeStage` and
// `measureText`.
using MakeCardWindows = CardWindows (*)(const CardModuleServices&);
inline constexpr char kMakeCardWindowsSymbol[] = "quorvaneMakeCardWindows";
inline constexpr char kCardModuleFile[] = "quorvane-card.so";  // beside the executable

}  // namespace quorvane

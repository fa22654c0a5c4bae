// The drawing module: everything that needs the drawing libraries, in a library of its own that is
// loaded when the first card is made. Until then the add-on runs without them.
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
    MakeSerialQueue makeSerialQueue{};  // for decoding pictures; without it that is done at once
    AccessibleCards* accessibility = nullptr;  // who is told of the cards that are to be seen
};

// The module's one exported function, under the name below. It fills `makeWindow`, `makeStage` and
// `measureText`.
using MakeCardWindows = CardWindows (*)(const CardModuleServices&);
inline constexpr char kMakeCardWindowsSymbol[] = "quorvaneMakeCardWindows";
inline constexpr char kCardModuleFile[] = "quorvane-card.so";  // beside the executable

}  // namespace quorvane

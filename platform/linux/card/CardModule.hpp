// The interface of the drawing module, a separate library with all code that needs the drawing
// libraries. The add-on loads it with the first card and runs without those libraries until then.
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

// The module exports one such function for each kind of session, under the names below. It fills
// `makeWindow`, `makeStage` and `measureText`.
template <typename Session>
using MakeCardWindows = CardWindows (*)(const CardModuleServices& services, Session& session);
inline constexpr char kMakeX11CardWindows[] = "quorvaneMakeX11CardWindows";
inline constexpr char kMakeWaylandCardWindows[] = "quorvaneMakeWaylandCardWindows";
inline constexpr char kCardModuleFile[] = "quorvane-card.so";  // beside the executable

}  // namespace quorvane

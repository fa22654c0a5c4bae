// Distributed and Darwin notices as signals on the session bus.
#pragma once

#include "platform/DarwinNotices.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/linux/bus/BusConnection.hpp"
#include "platform/linux/bus/LocalNotices.hpp"

namespace quorvane {

// Signals from this path: Notice(s name, a{sv} userInfo) and DarwinNotice(s name).
inline constexpr char kNoticePath[] = "/example/quillon/Quorvane";
inline constexpr char kNoticeInterface[] = "example.quillon.Quorvane.Notices";

// Both tables refer to the bus. Without a bus, posting does nothing and observers receive nothing.
// They also receive nothing for a name with a quote or a backslash, because no match rule can
// contain it.
//
// Names that LocalNotices owns are observed only there; posting such a name does nothing.
DistributedNotices makeDistributedNotices(SessionBus& bus, LocalNotices& localNotices, Logger log);
DarwinNotices makeDarwinNotices(SessionBus& bus, Logger log);

}  // namespace quorvane

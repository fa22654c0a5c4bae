// Distributed and Darwin notices as signals on the session bus.
#pragma once

#include "platform/DarwinNotices.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/linux/bus/LocalNotices.hpp"
#include "platform/linux/bus/SessionBus.hpp"

namespace quorvane {

// What travels, from this path: Notice(s name, a{sv} userInfo) and DarwinNotice(s name).
inline constexpr char kNoticePath[] = "/example/quillon/Quorvane";
inline constexpr char kNoticeInterface[] = "example.quillon.Quorvane.Notices";

// Both tables refer to the bus. Without a bus posting does nothing and nothing is heard. A name
// with a quote or a backslash, which no match rule can hold, is never heard either.
//
// Names that LocalNotices owns are observed there only; posting such a name reaches nobody.
DistributedNotices makeDistributedNotices(SessionBus& bus, LocalNotices& localNotices, Logger log);
DarwinNotices makeDarwinNotices(SessionBus& bus, Logger log);

}  // namespace quorvane

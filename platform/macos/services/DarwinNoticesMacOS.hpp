// Darwin notices over the system's Darwin notification centre, which other logins share.
#pragma once

#include "platform/DarwinNotices.hpp"

namespace quorvane {

DarwinNotices makeDarwinNoticesMacOS();

}  // namespace quorvane

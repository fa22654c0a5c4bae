// The Darwin notification centre. Its notices cross from one login to another.
#pragma once

#include "platform/DarwinNotices.hpp"

namespace quorvane {

DarwinNotices makeDarwinNoticesMacOS();

}  // namespace quorvane

// Checks of property lists before the library parses them. The library follows a list until it
// exhausts the stack or the memory, and it ends the process on text with a NUL.
#pragma once

#include <cstddef>

#include "platform/Bytes.hpp"

namespace quorvane {

// Limit on the values in a list; each counts once per reference to it.
inline constexpr std::size_t kMaxListValues = 20'000;
inline constexpr int kDeepestList = 100;

bool isBinaryList(ByteView contents);
// Whether all reachable objects of a binary list lie within the data and unfold within the limits.
// Containers refer to others by number, so a container that contains itself fails.
bool binaryListIsSafe(ByteView contents);
// The same check for the XML format. Values in comments count too.
bool xmlListIsSafe(ByteView contents);

}  // namespace quorvane

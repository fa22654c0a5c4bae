// What the library that reads property lists must not be given: it follows a list until the stack
// or the memory ends, and ends the process itself where text holds a NUL.
#pragma once

#include <cstddef>

#include "platform/Bytes.hpp"

namespace quorvane {

// Values in a list, each counted as often as it is referred to.
inline constexpr std::size_t kMostListValues = 20'000;
inline constexpr int kDeepestList = 100;

bool isBinaryList(ByteView contents);
// Of the binary form, whose containers refer to others by number: whether all of it that can be
// reached is there and unfolds within the limits. A container that holds itself does not.
bool binaryListIsSafe(ByteView contents);
// The same of the XML form. Values in comments count too.
bool xmlListIsSafe(ByteView contents);

}  // namespace quorvane

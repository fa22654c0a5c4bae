// What a property list may ask of the library that reads it.
#pragma once

#include <cstddef>

#include "platform/Bytes.hpp"

namespace quorvane {

// Values in a list, each counted as often as it is referred to.
inline constexpr std::size_t kMostListValues = 20'000;
inline constexpr int kDeepestList = 100;

bool isBinaryList(ByteView contents);
// Whether a list in the binary form, whose containers refer to others by number, unfolds within the
// limits. Containers that hold themselves do not.
bool binaryListIsModest(ByteView contents);
// The same of the XML form. Commented-out values count too.
bool xmlListIsModest(ByteView contents);

}  // namespace quorvane

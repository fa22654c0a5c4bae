// Preference keys of the add-on that carry a removal from one launch to the next. The installer
// clears the keys that an interrupted removal has left.
#pragma once

namespace quorvane {

inline constexpr char kRemovalPendingKey[] = "removalPending";                // a boolean
inline constexpr char kRemovalBundleIdentityKey[] = "removalBundleIdentity";  // a string

}  // namespace quorvane

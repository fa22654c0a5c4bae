// The preferences that carry a removal from one launch to the next.
#pragma once

namespace quorvane {

inline constexpr char kRemovalPendingKey[] = "removalPending";                // a boolean
inline constexpr char kRemovalBundleIdentityKey[] = "removalBundleIdentity";  // a string

}  // namespace quorvane

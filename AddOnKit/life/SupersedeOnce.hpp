// One-time statement that this copy of the add-on was installed after a removal was requested, so
// that the removal does not apply to it.
#pragma once

#include <chrono>

namespace quorvane {

// How long a new installation repeats the statement if its hellos fail. A removal requested later
// applies, even if no hello reached the main application before.
inline constexpr std::chrono::minutes kSupersedeLifetime{5};

// Main thread only. Pending until the main application has received it. A hello that was not sent
// must not consume it, because the next hello would then fetch the old removal.
class SupersedeOnce {
public:
    SupersedeOnce() = default;
    explicit SupersedeOnce(bool loaded) : loaded_(loaded), isPending_(loaded) {}

    bool loaded() const { return loaded_; }
    bool isPending() const { return isPending_; }
    void consume() { isPending_ = false; }

    // Compares only `loaded_`, because consuming the statement does not change the add-on's
    // identity.
    bool operator==(const SupersedeOnce& other) const { return loaded_ == other.loaded_; }

private:
    bool loaded_ = false;
    bool isPending_ = false;
};

}  // namespace quorvane

// The word, said once, that this copy of the add-on was installed after a removal was requested, so
// that the removal is not meant for it.
#pragma once

#include <chrono>

namespace quorvane {

// How long an installation keeps the word for its first hello. A removal that is requested later
// holds, even when the main application was not there to be greeted before.
inline constexpr std::chrono::minutes kSupersedeLifetime{5};

// Main thread only. Pending until the main application has received it: a hello that was not sent
// must not use it up, or the next one would fetch the old removal.
class SupersedeOnce {
public:
    SupersedeOnce() = default;
    explicit SupersedeOnce(bool loaded) : loaded_(loaded), isPending_(loaded) {}

    bool loaded() const { return loaded_; }
    bool isPending() const { return isPending_; }
    void consume() { isPending_ = false; }

    // Equal when loaded alike: who the add-on is does not change when the word is consumed.
    bool operator==(const SupersedeOnce& other) const { return loaded_ == other.loaded_; }

private:
    bool loaded_ = false;
    bool isPending_ = false;
};

}  // namespace quorvane

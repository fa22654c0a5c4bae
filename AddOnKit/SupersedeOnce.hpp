// Says once that this copy of the add-on was installed after a removal was asked for, so that the
// removal is not meant for it.
#pragma once

namespace quorvane {

// Main thread only. It is pending until an answer shows that the main application has heard it: a
// hello that fails must not use it up, or the next one would fetch the old removal.
class SupersedeOnce {
public:
    SupersedeOnce() = default;
    explicit SupersedeOnce(bool loaded) : loaded_(loaded), isPending_(loaded) {}

    bool loaded() const { return loaded_; }
    bool isPending() const { return isPending_; }
    void consume() { isPending_ = false; }

    // By how it was loaded; what has been consumed since makes no other identity.
    bool operator==(const SupersedeOnce& other) const { return loaded_ == other.loaded_; }

private:
    bool loaded_ = false;
    bool isPending_ = false;
};

}  // namespace quorvane

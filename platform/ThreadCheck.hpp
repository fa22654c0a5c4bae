// Asserts that an object is used on the thread on which it was made.
#pragma once

#include <cstdlib>
#include <thread>

namespace quorvane {

// A member of the object that it guards.
class ThreadCheck {
public:
    // On any other thread the process ends here: what two threads break together shows later, and
    // somewhere else.
    void require() const {
        if (std::this_thread::get_id() != owner_) std::abort();
    }

private:
    std::thread::id owner_ = std::this_thread::get_id();
};

}  // namespace quorvane

// Check that an object is used only on the thread that created it.
#pragma once

#include <cstdlib>
#include <thread>

namespace quorvane {

// A member of the object that it guards.
class ThreadCheck {
public:
    // Aborts on any other thread, because the damage of a data race would appear later and
    // elsewhere.
    void require() const {
        if (std::this_thread::get_id() != owner_) std::abort();
    }

private:
    std::thread::id owner_ = std::this_thread::get_id();
};

}  // namespace quorvane

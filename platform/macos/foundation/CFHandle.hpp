// Owner of one reference to a Core Foundation object.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace quorvane {

// Move-only. Takes ownership of the reference that a "Create" or "Copy" function returned, and
// releases it.
template <typename Reference>
class CFHandle {
public:
    explicit CFHandle(Reference reference = nullptr) : reference_(reference) {}
    CFHandle(CFHandle&& other) noexcept : reference_(std::exchange(other.reference_, nullptr)) {}
    CFHandle& operator=(CFHandle&& other) noexcept {
        std::swap(reference_, other.reference_);
        return *this;
    }
    CFHandle(const CFHandle&) = delete;
    CFHandle& operator=(const CFHandle&) = delete;
    ~CFHandle() {
        if (reference_) CFRelease(reference_);
    }

    // Retains an object that another owner holds.
    static CFHandle retaining(Reference reference) {
        if (reference) CFRetain(reference);
        return CFHandle{reference};
    }

    Reference get() const { return reference_; }
    explicit operator bool() const { return reference_ != nullptr; }

private:
    Reference reference_;
};

}  // namespace quorvane

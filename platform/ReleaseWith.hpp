// Deleter of std::unique_ptr for an object of a C library: calls the library's function.
#pragma once

namespace quorvane {

template <auto release>
struct ReleaseWith {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

}  // namespace quorvane

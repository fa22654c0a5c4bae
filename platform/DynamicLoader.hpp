// Loader of libraries by path, and of the symbols in them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quorvane {

// Main thread only. Libraries are never unloaded.
struct DynamicLoader {
    std::function<void*(const char* path)> open;  // null on failure
    std::function<void*(void* library, const char* name)> symbol;
    std::function<std::optional<std::string>()> lastError;
    // A system array object that holds one number, in the form that the loaded functions take. The
    // object is released with the pointer.
    std::function<std::shared_ptr<const void>(std::uint64_t number)> arrayOfNumber;
};

}  // namespace quorvane

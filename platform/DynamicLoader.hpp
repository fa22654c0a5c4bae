// Loading a library by path and looking symbols up in it.
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
    // An array object of the system that holds one number, as the loaded functions take it;
    // released with the pointer.
    std::function<std::shared_ptr<const void>(std::uint64_t number)> arrayOfNumber;
};

}  // namespace quorvane

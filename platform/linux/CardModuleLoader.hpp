// Loader of the card module, which provides the card windows and loads with the first card.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/PlatformError.hpp"
#include "platform/linux/card/CardModule.hpp"

namespace quorvane {

// A function that the module exports. The module stays loaded.
Result<void*> functionOfModule(const std::filesystem::path& file, const char* name);

// Main thread only. If the module cannot be loaded, each attempt logs that, and there are no
// windows.
class CardModuleLoader {
public:
    // `session` is what the module's function takes.
    CardModuleLoader(std::filesystem::path file, CardModuleServices services, void* session);

    // `reducesMotion` stays empty. The table refers to this loader.
    CardWindows windows();

private:
    const CardWindows* loaded();

    std::filesystem::path file_;
    CardModuleServices services_;
    Logger log_;
    void* session_;
    std::optional<CardWindows> windows_;
};

}  // namespace quorvane

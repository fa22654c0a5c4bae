// The card windows, from the drawing module that is loaded when the first card is made.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/linux/card/CardModule.hpp"

namespace quorvane {

// Main thread only. The module stays loaded. Where it cannot be loaded that is logged at each
// attempt, and there are no windows.
class CardModuleLoader {
public:
    CardModuleLoader(std::filesystem::path file, CardModuleServices services);

    // `liftAboveLock` and `reducesMotion` are left out. Refers to the loader.
    CardWindows windows();

private:
    const CardWindows* loaded();

    std::filesystem::path file_;
    CardModuleServices services_;
    Logger log_;
    std::optional<CardWindows> windows_;
};

}  // namespace quorvane

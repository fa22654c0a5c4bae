// Loader of the drawing module, which provides the card windows and loads with the first card.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/linux/card/CardModule.hpp"

namespace quorvane {

// Main thread only. The module stays loaded. If it cannot be loaded, each attempt logs that, and
// there are no windows.
class CardModuleLoader {
public:
    CardModuleLoader(std::filesystem::path file, CardModuleServices services);

    // `reducesMotion` stays empty. The table refers to this loader.
    CardWindows windows();

private:
    const CardWindows* loaded();

    std::filesystem::path file_;
    CardModuleServices services_;
    Logger log_;
    std::optional<CardWindows> windows_;
};

}  // namespace quorvane

// Loader of the drawing module, which provides the card windows and loads with the first card.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>

#include "drawing/CardWindows.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only. The module stays loaded. If it cannot be loaded, each attempt logs that, and
// there are no windows.
class CardModuleLoader {
public:
    // Calls the module's entry, which it finds by its name.
    struct Entry {
        const char* symbol;
        std::function<CardWindows(void* entry)> makeWindows;
    };

    CardModuleLoader(std::filesystem::path file, Logger log, Entry entry);

    // `reducesMotion` stays empty. The table refers to this loader.
    CardWindows windows();

private:
    const CardWindows* loaded();

    std::filesystem::path file_;
    Logger log_;
    Entry entry_;
    std::optional<CardWindows> windows_;
};

}  // namespace quorvane

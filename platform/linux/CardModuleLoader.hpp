// Loader of the drawing module, which provides the card windows and loads with the first card.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>

#include "platform/linux/card/CardModule.hpp"

namespace quorvane {

// Main thread only. The module stays loaded. If it cannot be loaded, each attempt logs that, and
// there are no windows.
class CardModuleLoader {
public:
    // The module's function for one session.
    struct Entry {
        const char* symbol;
        std::function<CardWindows(void* function, const CardModuleServices& services)> call;

        template <typename Session>
        static Entry of(const char* symbol, Session& session) {
            return {symbol, [&session](void* function, const CardModuleServices& services) {
                        return reinterpret_cast<MakeCardWindows<Session>>(function)(services,
                                                                                    session);
                    }};
        }
    };

    CardModuleLoader(std::filesystem::path file, CardModuleServices services, Entry entry);

    // `reducesMotion` stays empty. The table refers to this loader.
    CardWindows windows();

private:
    const CardWindows* loaded();

    std::filesystem::path file_;
    CardModuleServices services_;
    Logger log_;
    Entry entry_;
    std::optional<CardWindows> windows_;
};

}  // namespace quorvane

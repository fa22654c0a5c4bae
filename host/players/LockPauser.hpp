// Pauses players at a lock and at a wake-up, and resumes them at the unlock, as the settings say.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/settings/Settings.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/LockSources.hpp"
#include "platform/Log.hpp"
#include "platform/MediaPlayers.hpp"
#include "platform/Observable.hpp"

namespace quorvane {

// Main thread only. Watches nothing while the settings ask for no pause.
class LockPauser {
public:
    struct Services {
        MediaPlayers players;
        DistributedNotices notices;
        std::function<LockSources()> makeLockSources;
        LogSink log;
    };

    // Pauses only players that the host considers. The settings outlive this object.
    LockPauser(Services services, Observable<Settings>& settings,
               std::optional<std::string> onlyNamed);

private:
    struct Watch {
        LockSources sources;
        std::vector<Handle> observations{};
    };
    struct Paused {
        std::string track;
        bool hasPaused = false;  // an older report, which says that it plays, does not count
    };

    void watchIfNeeded();
    void pause(const char* reason);
    // Forgets paused players that have gone, stopped, changed their track, or played again since.
    void forgetChanged();
    void resume();

    Services services_;
    Observable<Settings>& settings_;
    std::optional<std::string> onlyNamed_;
    Logger log_;
    std::map<std::string, Paused> paused_;  // by bus name
    std::optional<Watch> watch_;
    Handle settingsObservation_;
};

}  // namespace quorvane

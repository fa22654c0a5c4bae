// Removal of the add-on from the user's account: login item, files and preferences. A flag written
// before the first deletion lets the next launch finish an interrupted removal.
#pragma once

#include <filesystem>
#include <functional>

#include "platform/FileManagerClient.hpp"
#include "platform/Log.hpp"
#include "platform/LoginItemClient.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// Runs in a process that does nothing else. It always ends with `terminate`, and deletes nothing
// when the flag cannot be written. Main thread only.
struct SelfRemoval {
    UserDefaults defaults;
    LoginItemClient loginItem;
    FileManagerClient fileManager;
    std::filesystem::path bundle;            // the running add-on's own
    std::filesystem::path supportDirectory;  // where it is installed
    std::function<void()> terminate;
    Logger log;  // category "removal"

    void perform() const;

private:
    Result<void> markPending() const;
    bool removeLoginItem() const;
    bool isOwnSupportDirectory() const;
    bool removeSupportDirectory() const;
    bool removeBundle() const;  // true when it no longer exists
    bool remove(const std::filesystem::path& path, const char* label) const;
    void clearPreferences() const;
};

}  // namespace quorvane

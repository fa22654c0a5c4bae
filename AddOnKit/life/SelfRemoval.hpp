// Removes the add-on from the user's account: its login item, its files, its preferences. A flag
// written before the first deletion lets the next launch finish what was interrupted.
#pragma once

#include <filesystem>
#include <functional>

#include "platform/FileManagerClient.hpp"
#include "platform/Log.hpp"
#include "platform/LoginItemClient.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// Run by a process that does nothing else; it ends with `terminate` in every case, and without a
// deletion when the flag cannot be written. Main thread only.
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
    bool removeBundle() const;  // whether it is gone
    bool remove(const std::filesystem::path& path, const char* label) const;
    void clearPreferences() const;
};

}  // namespace quorvane

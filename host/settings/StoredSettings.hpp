// The settings as kept in the host's defaults, shared by the serving host and the commands.
#pragma once

#include <expected>
#include <span>
#include <string>

#include "host/settings/Settings.hpp"
#include "platform/DarwinNotices.hpp"
#include "platform/Observable.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// Main thread only. Settings that this version does not know are kept.
class StoredSettings {
public:
    // `current` follows changes that any process makes.
    StoredSettings(UserDefaults defaults, DarwinNotices notices);

    Observable<Settings>& current() { return current_; }

    // The commands "set" and "unset" with the words that follow them. The result is for the user:
    // an output, or what is wrong.
    using Outcome = std::expected<std::string, std::string>;
    Outcome set(std::span<const std::string> words);
    Outcome unset(std::span<const std::string> words);

private:
    Settings::Texts texts() const;
    Outcome write(const std::string& name, const Settings::Texts& texts);

    UserDefaults defaults_;
    DarwinNotices notices_;
    Observable<Settings> current_;
    Handle observation_;
};

}  // namespace quorvane

// The commands of `quorvane-host` that change the add-on or the card.
#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <string>

#include "host/addon/AddOnControl.hpp"
#include "host/addon/AddOnInstallation.hpp"
#include "platform/BundleFiles.hpp"
#include "platform/DarwinNotices.hpp"
#include "platform/FileManagerClient.hpp"
#include "platform/MessagePort.hpp"
#include "platform/OpenApplication.hpp"
#include "platform/SessionProblems.hpp"
#include "platform/UserDefaults.hpp"
#include "shared/DetachedLaunch.hpp"

namespace quorvane {

// Main thread only; one command at a time. Each calls `done` once, later or inside the call, with a
// text of what was done, or one sentence with the reason for failure. A failed command changes
// nothing, unless the sentence says how far it got. Each may be repeated.
class AddOnCommands {
public:
    struct Services {
        std::optional<std::filesystem::path> applicationSupport{};
        BundleFiles bundleFiles{};
        FileManagerClient fileManager{};
        OpenApplication openApplication{};
        AddOnControl::Services control{};
        ConnectPort connectPort{};
        DarwinNotices darwinNotices{};
        std::optional<UserDefaults> sharedSuite{};
        std::optional<UserDefaults> addOnDefaults{};
        SessionProblems problems{};
    };
    using Outcome = std::expected<std::string, std::string>;
    using Done = std::function<void(Outcome)>;

    explicit AddOnCommands(Services services);

    // Puts the bundle in its place, turns the card on and starts the add-on.
    void install(const std::filesystem::path& bundle, Done done);
    // Like install, but only for a newer version than the installed one; the card stays on or off.
    void update(const std::filesystem::path& bundle, Done done);
    void launch(Done done);
    void quit(Done done);
    // Makes the add-on remove itself and everything it has stored.
    void remove(Done done);
    // Turns the card on or off.
    void setCardEnabled(bool isEnabled, Done done);

private:
    // Ends the command and returns nullopt when the place is not the add-on's.
    std::optional<AddOnInstallation> begin(Done done);
    // Both return the reason for failure; nullopt on success.
    std::optional<std::string> put(const std::filesystem::path& bundle,
                                   const AddOnInstallation& place);
    std::optional<std::string> start(const AddOnInstallation& place,
                                     const std::vector<std::string>& arguments) const;

    void replaceRunning(const AddOnInstallation& place, std::string text);
    void startAndReport(const AddOnInstallation& place, const std::vector<std::string>& arguments,
                        std::string text);
    std::string sessionNotes() const;
    void forgetRemoval();
    void recordRemoval();
    void uninstall(const AddOnInstallation& place);
    void finishRemoval();
    void end(Outcome outcome);
    void fail(std::string reason) { end(std::unexpected{std::move(reason)}); }

    Services services_;
    AddOnControl control_;
    Done done_;
};

}  // namespace quorvane

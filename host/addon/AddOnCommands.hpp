// What `quorvane-host` does with the add-on for people: install, update, launch, quit, remove.
#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/addon/AddOnControl.hpp"
#include "host/addon/AddOnPlace.hpp"
#include "platform/BundleFiles.hpp"
#include "platform/DarwinNotices.hpp"
#include "platform/FileManagerClient.hpp"
#include "platform/OpenCommand.hpp"
#include "platform/SessionProblems.hpp"
#include "platform/UserDefaults.hpp"
#include "shared/DetachedLaunch.hpp"

namespace quorvane {

// Main thread only; one command at a time. Each ends by calling `done` once, later or inside the
// call, with what was done or with one sentence why it failed. After a failure things are as they
// were, unless the sentence says how far it got. Each may be repeated.
class AddOnCommands {
public:
    struct Services {
        std::optional<std::filesystem::path> applicationSupport;
        BundleFiles bundleFiles;
        FileManagerClient fileManager;
        RunOpenCommand runOpenCommand;
        AddOnControl::Services control;
        DarwinNotices darwinNotices;
        std::optional<UserDefaults> sharedSuite;
        std::optional<UserDefaults> addOnDefaults;
        SessionProblems problems{};
    };
    using Outcome = std::expected<std::string, std::string>;
    using Done = std::function<void(Outcome)>;

    explicit AddOnCommands(Services services);

    // Puts the bundle in its place, turns the card on and starts the add-on.
    void install(const std::filesystem::path& bundle, Done done);
    // The same for a newer version than the one installed; the card stays on or off.
    void update(const std::filesystem::path& bundle, Done done);
    void launch(Done done);
    void quit(Done done);
    // Has the add-on remove itself with all that it has left.
    void remove(Done done);

private:
    std::expected<AddOnPlace, std::string> place() const;
    // Both return why it was not done.
    std::optional<std::string> put(const std::filesystem::path& bundle, const AddOnPlace& place);
    std::optional<std::string> start(const AddOnPlace& place,
                                     const std::vector<std::string>& arguments) const;

    void replaceRunning(const AddOnPlace& place, const std::string& version, std::string text);
    void startAndTell(const AddOnPlace& place, const std::vector<std::string>& arguments,
                      std::string text);
    std::string notes() const;
    void forgetRemoval();
    void recordRemoval();
    void uninstall(const AddOnPlace& place);
    void finishRemoval();
    void end(Outcome outcome);

    Services services_;
    AddOnControl control_;
    Done done_;
};

}  // namespace quorvane

#include "host/addon/AddOnCommands.hpp"

#include <utility>

#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "QuorvaneKit/records/LockScreenAddOnStatus.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {
namespace {

using State = AddOnInstallation::State;

constexpr char kNotInstalled[] = "the add-on is not installed (run: quorvane-host install)";

}  // namespace

AddOnCommands::AddOnCommands(Services services)
    : services_(std::move(services)), control_(services_.control) {}

std::optional<AddOnInstallation> AddOnCommands::begin(Done done) {
    done_ = std::move(done);
    if (!services_.applicationSupport) {
        fail("this user has no home folder to install into");
        return std::nullopt;
    }
    auto place = AddOnInstallation::inspect(*services_.applicationSupport, services_.bundleFiles);
    if (place.state != State::foreign) return place;
    fail(place.problem + "; left unchanged");
    return std::nullopt;
}

void AddOnCommands::install(const std::filesystem::path& bundle, Done done) {
    auto there = begin(std::move(done));
    if (!there) return;
    const auto version = addOnVersionOf(bundle, services_.bundleFiles);
    if (!version) return fail(bundle.string() + " is not the add-on");
    if (auto failure = put(bundle, *there)) return fail(*std::move(failure));
    std::string text = "Installed version " + *version + " as " + there->bundle.string() + ".\n";
    if (SharedDefaults{services_.sharedSuite}.setLockScreenEnabled(true))
        text += "The card is on; turn it off with: quorvane-host disable\n";
    there->version = *version;
    replaceRunning(*there, std::move(text));
}

void AddOnCommands::update(const std::filesystem::path& bundle, Done done) {
    auto there = begin(std::move(done));
    if (!there) return;
    if (there->state == State::empty) return fail(kNotInstalled);
    const auto version = addOnVersionOf(bundle, services_.bundleFiles);
    if (!version) return fail(bundle.string() + " is not the add-on");
    if (there->state == State::installed && !isOlderVersion(there->version, *version))
        return end("Version " + there->version + " is installed and is the newest.\n");
    if (auto failure = put(bundle, *there)) return fail(*std::move(failure));
    const std::string before =
        there->version.empty() ? "an incomplete installation" : there->version;
    there->version = *version;
    replaceRunning(*there, "Updated " + before + " to version " + *version + ".\n");
}

std::optional<std::string> AddOnCommands::put(const std::filesystem::path& bundle,
                                              const AddOnInstallation& place) {
    services_.bundleFiles.discardStaged(place.supportDirectory);
    const auto staged = services_.bundleFiles.stage(bundle, place.supportDirectory);
    if (!staged) return "nothing was installed: " + staged.error().description;
    forgetRemoval();
    if (const auto put = services_.bundleFiles.putInPlace(*staged, place.bundle); !put) {
        services_.bundleFiles.discardStaged(place.supportDirectory);
        return "nothing was installed: " + put.error().description;
    }
    return std::nullopt;
}

// Runs before the new bundle is in place. Otherwise the new bundle's next launch would continue an
// interrupted removal, and its hello would be answered with a requested one.
void AddOnCommands::forgetRemoval() {
    static_cast<void>(
        SharedDefaults{services_.sharedSuite}.setLockScreenPendingRemoval(std::nullopt));
    if (!services_.addOnDefaults || !services_.addOnDefaults->get(AddOnSignals::kRemovalPendingKey))
        return;
    services_.addOnDefaults->set(AddOnSignals::kRemovalPendingKey, std::nullopt);
    services_.addOnDefaults->set(AddOnSignals::kRemovalBundleIdentityKey, std::nullopt);
    static_cast<void>(services_.addOnDefaults->synchronize());
}

// Quits the old copy first, because it runs from the bundle that is discarded. If it does not quit,
// the new copy handles it.
void AddOnCommands::replaceRunning(const AddOnInstallation& place, std::string text) {
    const auto proceed = [this, place, text = std::move(text)](bool) {
        services_.bundleFiles.discardStaged(place.supportDirectory);
        startAndReport(place, {AddOnSignals::kInstalledArgument}, text);
    };
    if (!control_.isRunning()) return proceed(true);
    control_.quit(proceed);
}

std::optional<std::string> AddOnCommands::start(const AddOnInstallation& place,
                                                const std::vector<std::string>& arguments) const {
    const auto started =
        DetachedLaunch{.open = services_.openApplication}.launch(place.bundle, arguments);
    if (started) return std::nullopt;
    return started.error().description;
}

void AddOnCommands::startAndReport(const AddOnInstallation& place,
                                   const std::vector<std::string>& arguments, std::string text) {
    if (const auto failure = start(place, arguments))
        return fail(text + "It could not be started: " + *failure);
    const auto report = [this, text = std::move(text)](AddOnControl::Answer answer) {
        switch (answer) {
            case AddOnControl::Answer::runs:
                return end(text + "The add-on is running.\n" + sessionNotes());
            case AddOnControl::Answer::isSilent:
                return end(text + "The add-on was started" +
                           (services_.problems.bus ? "" : ", but has not answered yet") + ".\n" +
                           sessionNotes());
            case AddOnControl::Answer::ended:
                return fail((text.empty() ? "the" : text + "The") + " add-on cannot run here: " +
                            services_.problems.screen.value_or("it ended at once (see its log)") +
                            ". Start it later with: quorvane-host launch");
        }
    };
    control_.awaitVersion(place.version, report);
}

// The problems that keep the card from showing although the add-on runs.
std::string AddOnCommands::sessionNotes() const {
    std::string text;
    for (const std::string& problem : services_.problems.sentences())
        text += "Note: " + problem + ".\n";
    return text;
}

void AddOnCommands::launch(Done done) {
    const auto there = begin(std::move(done));
    if (!there) return;
    if (there->state != State::installed) return fail(kNotInstalled);
    if (control_.isRunning()) return end("The add-on is already running.\n" + sessionNotes());
    startAndReport(*there, {}, "");
}

void AddOnCommands::quit(Done done) {
    done_ = std::move(done);
    if (!control_.isRunning()) return fail("the add-on is not running");
    control_.quit([this](bool isGone) {
        if (isGone) return end("The add-on has quit. It starts again at the next login.\n");
        fail("the add-on did not quit (try again, or log out)");
    });
}

void AddOnCommands::remove(Done done) {
    const auto there = begin(std::move(done));
    if (!there) return;
    if (!services_.fileManager.fileExists(there->supportDirectory) && !control_.isRunning()) {
        finishRemoval();
        return end("The add-on is not installed.\n");
    }
    recordRemoval();
    if (!control_.isRunning()) return uninstall(*there);
    control_.quit([this, place = *there](bool) { uninstall(place); });
}

// Records the request, so that a copy's next hello receives the removal if quitting or removing
// fails.
void AddOnCommands::recordRemoval() {
    SharedDefaults shared{services_.sharedSuite};
    LockScreenPendingRemoval removal;
    if (const auto seen = shared.lockScreenAddOnLastSeen())
        removal.targetInstallID = seen->installID;
    if (services_.addOnDefaults)
        if (const auto own = services_.addOnDefaults->get("installID");
            own && own->as<std::string>())
            removal.targetInstallID = *own->as<std::string>();
    static_cast<void>(shared.setLockScreenPendingRemoval(removal));
    services_.darwinNotices.post(QuorvaneDarwinNotification::lockScreenConfigurationChanged);
}

// A partial bundle cannot remove itself.
void AddOnCommands::uninstall(const AddOnInstallation& place) {
    const auto isGone = [this, place] {
        return !services_.fileManager.fileExists(place.supportDirectory);
    };
    if (place.state != State::installed) {
        const auto removed = services_.fileManager.removeItem(place.supportDirectory);
        if (!removed && !isGone())
            return fail("some files could not be removed: " + removed.error().description);
        finishRemoval();
        return end("Removed the rest of an incomplete installation.\n");
    }
    if (const auto failure = start(place, {AddOnSignals::kUninstallArgument}))
        return fail("the add-on could not be started to remove itself: " + *failure);
    control_.awaitRemoval(isGone, [this, place](bool isRemoved) {
        if (!isRemoved)
            return fail(
                "the add-on has not removed itself (see its log); a running host tries again when "
                "the add-on next connects");
        finishRemoval();
        end("Removed the add-on, its login item and its settings.\n");
    });
}

// Clears the request, the last sighting of the add-on, and the card's switch.
void AddOnCommands::finishRemoval() {
    SharedDefaults shared{services_.sharedSuite};
    static_cast<void>(shared.setLockScreenPendingRemoval(std::nullopt));
    static_cast<void>(shared.setLockScreenAddOnLastSeen(std::nullopt));
    static_cast<void>(shared.setLockScreenEnabled(false));
    if (!services_.addOnDefaults) return;
    services_.addOnDefaults->removeDomain();
    static_cast<void>(services_.addOnDefaults->synchronize());
}

void AddOnCommands::setCardEnabled(bool isEnabled, Done done) {
    done_ = std::move(done);
    if (!services_.sharedSuite) return fail("the shared settings cannot be opened");
    SharedDefaults shared{services_.sharedSuite};
    const std::string already = shared.lockScreenEnabled() == isEnabled ? "already " : "";
    if (const auto written = shared.setLockScreenEnabled(isEnabled); !written)
        return fail("the shared settings cannot be written: " + written.error().description);
    services_.darwinNotices.post(QuorvaneDarwinNotification::lockScreenConfigurationChanged);
    std::string text = "The card is " + already + (isEnabled ? "on" : "off") + ".\n";
    if (!services_.connectPort(std::string{kMessagePortBaseName}))
        text += "No host is running: this takes effect with the next quorvane-host run.\n";
    end(std::move(text));
}

void AddOnCommands::end(Outcome outcome) {
    if (const auto done = std::exchange(done_, nullptr)) done(std::move(outcome));
}

}  // namespace quorvane

#include "Quorvane_Lock_Screen/AddOnApp.hpp"

#include <charconv>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "Quorvane_Lock_Screen/AddOnLaunch.hpp"
#include "platform/Seconds.hpp"

namespace quorvane {
namespace {

std::string joined(const InstanceHandover::PIDs& pids) {
    std::string text;
    for (const std::int32_t pid : pids) {
        if (!text.empty()) text += ", ";
        text += std::to_string(pid);
    }
    return text;
}

// "10.0 seconds", "0.25 seconds".
std::string durationText(Duration duration) {
    char digits[32];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), secondsOf(duration),
                                   std::chars_format::fixed)
                         .ptr;
    std::string text{std::begin(digits), end};
    if (text.find('.') == text.npos) text += ".0";
    return text + " seconds";
}

void registerLoginItem(const LoginItemClient& client, const Logger& log) {
    if (const auto result = client.registerItem(); !result)
        log.error("login item: register() failed: %{public}s", errorText(result.error()));
    else
        log.info("login item: registered (now %{public}s)", std::to_string(client.status()));
}

// Registers the add-on to start at login unless it is registered or the user has switched it off.
// An error never stops the launch.
void ensureLoginItemIsRegistered(const LoginItemClient& client, const Logger& log) {
    switch (const std::int64_t status = client.status()) {
        case LoginItemClient::kEnabled: return;
        case LoginItemClient::kNotRegistered:
        case LoginItemClient::kNotFound: return registerLoginItem(client, log);
        case LoginItemClient::kRequiresApproval:
            // Only the user can approve it; registering again would not help.
            return log.info("login item: awaiting approval in Login Items; leaving it alone");
        default:
            log.error("login item: unknown status %{public}s; leaving it alone",
                      std::to_string(status));
    }
}

}  // namespace

AddOnApp::AddOnApp(const LivePlatform& platform)
    : platform_(platform),
      log_(platform.services.log, kAddOnBundleIdentifier, "app"),
      coordinator_(AddOnCoordinator::make(platform)) {}

void AddOnApp::applicationDidFinishLaunching() {
    launchAddOn(platform_.services, [this] { run(); });
}

void AddOnApp::run() {
    ensureLoginItemIsRegistered(platform_.services.installation.loginItem, log_);
    handoverTask_ = platform_.services.clock.after(Duration{}, [this] { handOver(); });
}

void AddOnApp::handOver() {
    const RunningApplications& applications = platform_.services.installation.runningApplications;
    handover_.emplace(
        applications.current(),
        InstanceHandover::Operations{
            .running =
                [&applications] {
                    return applications.running(std::string{kAddOnBundleIdentifier});
                },
            .terminate = [this](const InstanceHandover::PIDs& pids) { askToQuit(pids); },
            .clock = platform_.services.clock},
        InstanceHandover::Timing{});
    handover_->resolve([this](const InstanceHandover::Outcome& outcome) { handedOver(outcome); });
}

// This copy starts in every case except where two copies would draw cards.
void AddOnApp::handedOver(const InstanceHandover::Outcome& outcome) {
    using Kind = InstanceHandover::Outcome::Kind;
    switch (outcome.kind) {
        case Kind::alone: break;
        case Kind::oldestCopy:
            log_.standard(
                "launch: a newer copy (pid %{public}s) is running; starting anyway, it hands over "
                "to this one",
                joined(outcome.copies));
            break;
        case Kind::othersExited:
            log_.standard("launch: waited %{public}s for the previous copy to quit",
                          durationText(outcome.waited));
            break;
        case Kind::terminated:
            log_.standard("launch: the previous copy (pid %{public}s) quit when asked",
                          joined(outcome.copies));
            break;
        case Kind::timedOut:
        case Kind::stillRunningAfterTermination:
            log_.fault(
                "launch: an older copy (pid %{public}s) won't quit; quitting this one so only one "
                "draws cards",
                joined(outcome.copies));
            return platform_.services.application.terminate();
    }
    platform_.confine();
    coordinator_->start();
}

void AddOnApp::askToQuit(const InstanceHandover::PIDs& pids) const {
    log_.error(
        "launch: an older copy (pid %{public}s) is still running after %{public}s; asking it to "
        "quit",
        joined(pids), durationText(InstanceHandover::kWait));
    for (const std::int32_t pid : pids)
        platform_.services.installation.runningApplications.terminate(pid);
}

void AddOnApp::applicationWillTerminate() {
    handoverTask_.reset();
    handover_.reset();
    coordinator_->willTerminate();
}

}  // namespace quorvane

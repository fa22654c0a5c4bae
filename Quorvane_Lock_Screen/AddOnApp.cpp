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

// The continuation after the handover. This copy starts in every case except where two copies would
// draw cards.
struct AddOnApp::AfterHandover {
    const AddOnApp& app;

    void operator()(const InstanceHandover::Alone&) const { start(); }
    void operator()(const InstanceHandover::OldestCopy& oldest) const {
        app.log_.standard(
            "launch: a newer copy (pid %{public}s) is running; starting anyway, it hands over to "
            "this one",
            joined(oldest.newer));
        start();
    }
    void operator()(const InstanceHandover::OthersExited& exited) const {
        app.log_.standard("launch: waited %{public}s for the previous copy to quit",
                          durationText(exited.after));
        start();
    }
    void operator()(const InstanceHandover::Terminated& terminated) const {
        app.log_.standard("launch: the previous copy (pid %{public}s) quit when asked",
                          joined(terminated.asked));
        start();
    }
    void operator()(const InstanceHandover::TimedOut& left) const { giveWay(left.stillRunning); }
    void operator()(const InstanceHandover::StillRunningAfterTermination& left) const {
        giveWay(left.stillRunning);
    }

    void start() const {
        app.platform_.confine();
        app.coordinator_->start();
    }
    void giveWay(const InstanceHandover::PIDs& pids) const {
        app.log_.fault(
            "launch: an older copy (pid %{public}s) won't quit; quitting this one so only one "
            "draws cards",
            joined(pids));
        app.platform_.services.application.terminate();
    }
};

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
    handover_->resolve([this](const InstanceHandover::Outcome& outcome) {
        std::visit(AfterHandover{*this}, outcome);
    });
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

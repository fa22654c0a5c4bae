#include "host/addon/HostStatus.hpp"

#include <algorithm>
#include <cstdint>

#include "QuorvaneKit/json/ISO8601Date.hpp"
#include "QuorvaneKit/records/LockScreenAddOnStatus.hpp"
#include "platform/Character.hpp"

namespace quorvane {

namespace {

std::string minutes(double seconds) {
    // The answer is untrusted; larger doubles do not represent whole seconds anyway.
    const auto whole = static_cast<std::int64_t>(std::clamp(seconds, 0.0, 9e15));
    const std::string rest = std::to_string(whole % 60);
    return std::to_string(whole / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

std::string playing(const QuorvanePlayerState& state, WallTime now) {
    if (!state.track) return "nothing playing";
    const bool isPlaying = state.playerState == XPCPlayerState::playing;
    const double position =
        state.playerPosition + (isPlaying ? secondsBetween(state.timestamp, now) : 0);
    std::string text = isPlaying ? "playing" : "paused";
    if (state.playerState == XPCPlayerState::stopped) text = "stopped";
    if (!state.track->title.empty()) text += " \"" + printable(state.track->title) + "\"";
    if (!state.track->artist.empty()) text += " by " + printable(state.track->artist);
    text += " (" + minutes(position);
    if (state.track->duration) text += " of " + minutes(*state.track->duration);
    return text + ")";
}

std::string hostText(const HostStatus& status, WallTime now) {
    if (status.state) return "running, " + playing(*status.state, now);
    switch (status.state.error()) {
        case HostStatus::Failure::notReachable:
            return "Quorvane is not reachable; start it with: quorvane-host run";
        case HostStatus::Failure::late:
            return "Quorvane did not answer in time; if this repeats, stop the host and start it "
                   "again";
        case HostStatus::Failure::noAnswer: break;
    }
    return "Quorvane did not answer the request; stop the host and start it again";
}

std::string cardText(const HostStatus& status) {
    if (!status.hasSharedDefaults) return "unknown: the shared settings cannot be opened";
    if (status.pendingRemoval) return "off; the add-on has been asked to remove itself";
    if (!status.isEnabled) {
        const bool isThere =
            status.place.state != AddOnInstallation::State::empty || status.isAddOnRunning;
        return isThere ? "off (turn on with: quorvane-host enable)" : "off";
    }
    if (status.lastLockHadNoRoom)
        return "on, but the last lock screen had no room for it (make it smaller with a lower "
               "QUORVANE_SCALE)";
    return "on";
}

std::string installedText(const AddOnInstallation& place) {
    switch (place.state) {
        case AddOnInstallation::State::installed:
            return "version " + printable(place.version) + " as " +
                   printable(place.bundle.string());
        case AddOnInstallation::State::damaged:
            return "damaged (repair with: quorvane-host install; or run: quorvane-host remove)";
        case AddOnInstallation::State::foreign: return "no; " + printable(place.problem);
        case AddOnInstallation::State::empty: break;
    }
    return "not installed (run: quorvane-host install)";
}

std::string addOnText(const HostStatus& status, WallTime now) {
    const auto known = lockScreenAddOnStatus(status.lastSeen, now);
    const auto* waiting = std::get_if<LockScreenAddOnWaitingForUpdate>(&known);
    std::string text = status.isAddOnRunning ? "running, but not answering" : "not running";
    if (status.addOn)
        text = "running, version " + printable(status.addOn->version) + ", " +
               (status.addOn->isConnected ? "connected" : "not connected");
    else if (!status.lastSeen)
        text += "; never seen";
    else if (!waiting)
        text += "; version " + printable(status.lastSeen->addOnVersion) + " was last seen " +
                iso8601Text(status.lastSeen->date);
    if (waiting)
        text += "; needs an update that supports system " + printable(waiting->macOSVersion);
    return text;
}

}  // namespace

std::string HostStatus::text(WallTime now) const {
    std::string lines = "Host:    " + hostText(*this, now) + "\nCard:    " + cardText(*this) +
                        "\nInstall: " + installedText(place) +
                        "\nAdd-on:  " + addOnText(*this, now) + "\n";
    for (const std::string& player : silentPlayers)
        lines += "Player:  " + player + " does not answer and is not followed\n";
    for (const std::string& problem : problems) lines += "Session: " + problem + "\n";
    return lines;
}

}  // namespace quorvane

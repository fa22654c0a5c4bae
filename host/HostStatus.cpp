#include "host/HostStatus.hpp"

#include <algorithm>
#include <cstdint>

#include "QuorvaneKit/ISO8601Date.hpp"
#include "QuorvaneKit/LockScreenAddOnStatus.hpp"

namespace quorvane {

namespace {

// Titles come from anywhere and go to a terminal, which takes control characters for commands.
std::string printable(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0u;
        if (byte < 0x20 || byte == 0x7F) {
            result += '?';
        } else if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) {  // U+0080 to U+009F
            result += '?';
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::string minutes(double seconds) {
    // Whoever answers may say anything; beyond this a double has no whole seconds anyway.
    const auto whole = static_cast<std::int64_t>(std::clamp(seconds, 0.0, 9e15));
    const std::string rest = std::to_string(whole % 60);
    return std::to_string(whole / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

std::string playing(const QuorvanePlayerState& state, WallTime now) {
    if (!state.track) return "nothing to play";
    const bool isPlaying = state.playerState == XPCPlayerState::playing;
    const double position =
        state.playerPosition + (isPlaying ? secondsBetween(state.timestamp, now) : 0);
    std::string text = isPlaying ? "playing" : "paused";
    if (state.playerState == XPCPlayerState::stopped) text = "stopped";
    text += " \"" + printable(state.track->title) + "\"";
    if (!state.track->artist.empty()) text += " by " + printable(state.track->artist);
    text += " (" + minutes(position);
    if (state.track->duration) text += " of " + minutes(*state.track->duration);
    return text + ")";
}

std::string hostText(const HostStatus& status, WallTime now) {
    if (!status.isServed) return "not running; start it with: quorvane-host run";
    if (!status.state) return "its ports are taken, but nobody answers there";
    return "running, " + playing(*status.state, now);
}

std::string cardText(const HostStatus& status) {
    if (!status.hasSharedDefaults) return "unknown: the shared settings cannot be opened";
    if (status.pendingRemoval) return "off; the add-on has been asked to remove itself";
    if (!status.isEnabled) return "off; turn it on with: quorvane-host enable";
    if (status.lastLockHadNoRoom)
        return "on, but the last lock screen left no room for it; a lower QUORVANE_SCALE makes it "
               "smaller";
    return "on";
}

std::string installedText(const AddOnPlace& place) {
    switch (place.state) {
        case AddOnPlace::State::installed:
            return "version " + printable(place.version) + " as " +
                   printable(place.bundle.string());
        case AddOnPlace::State::damaged:
            return "damaged; mend it with: quorvane-host install, or use: quorvane-host remove";
        case AddOnPlace::State::foreign: return "no; " + printable(place.trouble);
        case AddOnPlace::State::empty: break;
    }
    return "no; do so with: quorvane-host install";
}

struct LastSeenText {
    std::string operator()(const LockScreenAddOnNotInstalled&) const {
        return "not running, and never seen";
    }
    std::string operator()(const LockScreenAddOnWaitingForUpdate& waiting) const {
        return "not running; waits for an update that draws on system " +
               printable(waiting.macOSVersion);
    }
    std::string operator()(const LockScreenAddOnNotConnected& known) const {
        return "not running; version " + printable(known.version) + " was last seen " +
               iso8601Text(known.lastSeen);
    }
    std::string operator()(const LockScreenAddOnConnected& known) const {
        return "does not answer; version " + printable(known.version) + " said hello just now";
    }
};

std::string addOnText(const HostStatus& status, WallTime now) {
    const auto known = lockScreenAddOnStatus(status.lastSeen, now);
    if (!status.addOn) return std::visit(LastSeenText{}, known);
    std::string text = "running, version " + printable(status.addOn->version) + ", " +
                       (status.addOn->isConnected ? "connected" : "not connected");
    if (const auto* waiting = std::get_if<LockScreenAddOnWaitingForUpdate>(&known))
        text += "; waits for an update that draws on system " + printable(waiting->macOSVersion);
    return text;
}

}  // namespace

std::string HostStatus::text(WallTime now) const {
    return "Host:    " + hostText(*this, now) + "\nCard:    " + cardText(*this) +
           "\nInstall: " + installedText(place) + "\nAdd-on:  " + addOnText(*this, now) + "\n";
}

}  // namespace quorvane

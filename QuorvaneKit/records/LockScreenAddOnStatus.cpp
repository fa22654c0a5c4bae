#include "QuorvaneKit/records/LockScreenAddOnStatus.hpp"

#include <charconv>
#include <cstdint>

#include "QuorvaneKit/records/LockScreenConfigurationBuilder.hpp"

namespace quorvane {
namespace {

// Removes the number before the next dot from the text and returns it.
std::uint64_t takeNumber(std::string_view& text) {
    const std::string_view part = text.substr(0, text.find('.'));
    text.remove_prefix(part.size() < text.size() ? part.size() + 1 : part.size());
    std::uint64_t number = 0;
    const auto [rest, error] = std::from_chars(part.data(), part.data() + part.size(), number);
    return error == std::errc::result_out_of_range ? UINT64_MAX : number;
}

}  // namespace

bool isOlderVersion(std::string_view version, std::string_view other) {
    while (!version.empty() || !other.empty()) {
        const std::uint64_t left = takeNumber(version);
        const std::uint64_t right = takeNumber(other);
        if (left != right) return left < right;
    }
    return false;
}

LockScreenAddOnStatus lockScreenAddOnStatus(const std::optional<LockScreenAddOnSighting>& sighting,
                                            WallTime now) {
    if (!sighting) return LockScreenAddOnNotInstalled{};
    if (!sighting->supportsThisMacOS ||
        isOlderVersion(sighting->addOnVersion, kMinimumAddOnVersion))
        return LockScreenAddOnWaitingForUpdate{sighting->macOSVersion};
    // A date far in the future is from before the clock was set back, so it does not show that the
    // add-on is connected.
    const bool isRecent = sighting->date <= now + kLockScreenSightingLifetime &&
                          sighting->date >= now - kLockScreenSightingLifetime;
    if (isRecent) return LockScreenAddOnConnected{sighting->addOnVersion};
    return LockScreenAddOnNotConnected{sighting->addOnVersion, sighting->date};
}

}  // namespace quorvane

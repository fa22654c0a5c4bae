#include "Quorvane_Lock_Screen/SkyLight.hpp"

#include <charconv>
#include <string>

#include "QuorvaneKit/link/Identifiers.hpp"

namespace quorvane {
namespace {

constexpr char kLibrary[] = "/System/Library/PrivateFrameworks/SkyLight.framework/SkyLight";
constexpr std::int32_t kSpaceType = 1;
constexpr std::int32_t kSpaceLevel = 400;  // above the lock screen, which is at 300
constexpr std::int32_t kAddOptions = 7;    // into the space and out of all others

std::string hexadecimal(std::uint64_t value) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
    return {digits, end};
}

}  // namespace

SkyLight::SkyLight(DynamicLoader loader, const LogSink& log)
    : loader_(std::move(loader)), log_(log, kAddOnBundleIdentifier, "presenter") {}

template <typename Function>
void SkyLight::look(void* library, const char* name, Function& entry) {
    entry = reinterpret_cast<Function>(loader_.symbol(library, name));
    if (entry == nullptr) log_.error("dlsym %{public}s: missing", name);
}

bool SkyLight::load() {
    if (loadAttempted_) return loaded_;
    loadAttempted_ = true;
    void* library = loader_.open(kLibrary);
    if (library == nullptr) {
        log_.error("dlopen SkyLight failed: %{public}s", loader_.lastError().value_or("unknown"));
        return false;
    }
    look(library, "SLSMainConnectionID", mainConnectionID_);
    look(library, "SLSSpaceCreate", spaceCreate_);
    look(library, "SLSSpaceSetAbsoluteLevel", setLevel_);
    look(library, "SLSShowSpaces", showSpaces_);
    look(library, "SLSSpaceAddWindowsAndRemoveFromSpaces", addWindows_);
    loaded_ = mainConnectionID_ && spaceCreate_ && setLevel_ && showSpaces_ && addWindows_;
    log_.info("SkyLight symbols %{public}s", loaded_ ? "loaded" : "incomplete");
    return loaded_;
}

bool SkyLight::ensureSpace() {
    if (!load()) return false;
    if (space_ != 0) return true;
    connection_ = mainConnectionID_();
    log_.info("SLSMainConnectionID -> %d", connection_);
    const std::uint64_t raw = spaceCreate_(connection_, kSpaceType, nullptr);
    // Some declarations of this call return 32 bits, so only that half is certain to be the id.
    space_ = raw & 0xffff'ffffU;
    log_.info("SLSSpaceCreate(cid, 1, NULL) -> raw 0x%{public}s, using space %llu",
              hexadecimal(raw), space_);
    const std::int32_t levelStatus = setLevel_(connection_, space_, kSpaceLevel);
    log_.info("SLSSpaceSetAbsoluteLevel(space %llu, %d) -> %d", space_, kSpaceLevel, levelStatus);
    const std::int32_t showStatus = showSpaces_(connection_, loader_.arrayOfNumber(space_).get());
    log_.info("SLSShowSpaces([%llu]) -> %d", space_, showStatus);
    return space_ != 0;
}

void SkyLight::put(const CardSystemWindow& window) {
    const long number = window.number();
    if (!ensureSpace()) {
        log_.error("put window %ld: SkyLight unavailable", number);
        return;
    }
    const auto windows = loader_.arrayOfNumber(static_cast<std::uint64_t>(number));
    const std::int32_t status = addWindows_(connection_, space_, windows.get(), kAddOptions);
    log_.info(
        "SLSSpaceAddWindowsAndRemoveFromSpaces(space %llu, [%ld], 7) -> %d; visible %{bool}d, "
        "occlusion %lu",
        space_, number, status, window.isVisible(), window.occlusionState());
}

}  // namespace quorvane

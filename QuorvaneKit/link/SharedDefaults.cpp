#include "QuorvaneKit/link/SharedDefaults.hpp"

#include "QuorvaneKit/link/SharedDefaultsKey.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"

namespace quorvane {
namespace {

using Key = SharedDefaultsKey;

bool isTrue(const bool* flag) { return flag != nullptr && *flag; }

}  // namespace

bool SharedDefaults::lockScreenEnabled() const {
    const std::lock_guard guard{mutex_};
    const auto value = read(Key::lockScreenEnabled);
    return value && isTrue(value->as<bool>());
}

Result<void> SharedDefaults::setLockScreenEnabled(bool isEnabled) {
    const std::lock_guard guard{mutex_};
    if (!suite_) return {};
    suite_->set(Key::lockScreenEnabled, PropertyValue{isEnabled});
    return suite_->synchronize();
}

std::optional<LockScreenPendingRemoval> SharedDefaults::lockScreenPendingRemoval() const {
    const std::lock_guard guard{mutex_};
    if (!suite_) return std::nullopt;
    const PropertyDictionary values = suite_->getTogether(
        {Key::lockScreenRemovalRequested, Key::lockScreenRemovalTargetInstallID});
    if (!isTrue(find<bool>(values, Key::lockScreenRemovalRequested))) return std::nullopt;
    const auto* const text = find<std::string>(values, Key::lockScreenRemovalTargetInstallID);
    return LockScreenPendingRemoval{text == nullptr ? std::nullopt : std::optional{*text}};
}

Result<void> SharedDefaults::setLockScreenPendingRemoval(
    const std::optional<LockScreenPendingRemoval>& removal) {
    const std::lock_guard guard{mutex_};
    if (!suite_) return {};
    // Each write reaches other processes separately. The flag is set only while its target is, so
    // that no process sees, even after a crash, a removal that applies to any add-on.
    if (!removal) suite_->set(Key::lockScreenRemovalRequested, std::nullopt);
    const auto target = removal ? removal->targetInstallID : std::nullopt;
    suite_->set(Key::lockScreenRemovalTargetInstallID,
                target ? std::optional{PropertyValue{*target}} : std::nullopt);
    if (removal) suite_->set(Key::lockScreenRemovalRequested, PropertyValue{true});
    return suite_->synchronize();
}

std::optional<LockScreenAddOnSighting> SharedDefaults::lockScreenAddOnLastSeen() const {
    const std::lock_guard guard{mutex_};
    const auto value = read(Key::lockScreenAddOnLastSeen);
    const Bytes* const text = value ? value->as<Bytes>() : nullptr;
    if (text == nullptr) return std::nullopt;
    auto sighting = XPCCodableHelpers::decode<LockScreenAddOnSighting>(*text);
    return sighting ? std::optional{*std::move(sighting)} : std::nullopt;
}

Result<void> SharedDefaults::setLockScreenAddOnLastSeen(
    const std::optional<LockScreenAddOnSighting>& sighting) {
    const std::lock_guard guard{mutex_};
    if (!suite_) return {};
    std::optional<PropertyValue> value;
    if (sighting) {
        auto text = XPCCodableHelpers::encode(*sighting);
        if (!text) return {};
        value = PropertyValue{*std::move(text)};
    }
    suite_->set(Key::lockScreenAddOnLastSeen, std::move(value));
    return suite_->synchronize();
}

std::optional<PropertyValue> SharedDefaults::read(const char* key) const {
    return suite_ ? suite_->get(key) : std::nullopt;
}

}  // namespace quorvane

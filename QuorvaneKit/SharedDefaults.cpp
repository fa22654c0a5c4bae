#include "QuorvaneKit/SharedDefaults.hpp"

#include "QuorvaneKit/XPCCodableHelpers.hpp"

namespace quorvane {
namespace {

using Key = SharedDefaultsKey;

bool isTrue(const std::optional<PropertyValue>& value) {
    const bool* const flag = value ? value->as<bool>() : nullptr;
    return flag != nullptr && *flag;
}

}  // namespace

bool SharedDefaults::lockScreenEnabled() const {
    const std::lock_guard guard{mutex_};
    return isTrue(read(Key::lockScreenEnabled));
}

Result<void> SharedDefaults::setLockScreenEnabled(bool isEnabled) {
    const std::lock_guard guard{mutex_};
    if (!suite_) return {};
    write(Key::lockScreenEnabled, PropertyValue{isEnabled});
    return suite_->synchronize();
}

std::optional<LockScreenPendingRemoval> SharedDefaults::lockScreenPendingRemoval() const {
    const std::lock_guard guard{mutex_};
    if (!isTrue(read(Key::lockScreenRemovalRequested))) return std::nullopt;
    const auto target = read(Key::lockScreenRemovalTargetInstallID);
    const auto* const text = target ? target->as<std::string>() : nullptr;
    return LockScreenPendingRemoval{text == nullptr ? std::nullopt : std::optional{*text}};
}

Result<void> SharedDefaults::setLockScreenPendingRemoval(
    const std::optional<LockScreenPendingRemoval>& removal) {
    const std::lock_guard guard{mutex_};
    if (!suite_) return {};
    // The flag stands only while its target does: a process that ends in between leaves no removal
    // that is meant for just anyone.
    if (!removal) write(Key::lockScreenRemovalRequested, std::nullopt);
    const auto target = removal ? removal->targetInstallID : std::nullopt;
    write(Key::lockScreenRemovalTargetInstallID,
          target ? std::optional{PropertyValue{*target}} : std::nullopt);
    if (removal) write(Key::lockScreenRemovalRequested, PropertyValue{true});
    return suite_->synchronize();
}

std::optional<LockScreenAddOnSighting> SharedDefaults::lockScreenAddOnLastSeen() const {
    const std::lock_guard guard{mutex_};
    const auto value = read(Key::lockScreenAddOnLastSeen);
    const Bytes* const text = value ? value->as<Bytes>() : nullptr;
    if (text == nullptr) return std::nullopt;
    auto sighting = XPCCodableHelpers::decode<LockScreenAddOnSighting>(copyOf(*text));
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
    write(Key::lockScreenAddOnLastSeen, std::move(value));
    return suite_->synchronize();
}

std::optional<PropertyValue> SharedDefaults::read(Key key) const {
    return suite_ ? suite_->get(std::string{rawValue(key)}) : std::nullopt;
}

void SharedDefaults::write(Key key, std::optional<PropertyValue> value) {
    suite_->set(std::string{rawValue(key)}, std::move(value));
}

}  // namespace quorvane

#include "QuorvaneKit/link/SharedDefaults.hpp"

#include "QuorvaneKit/records/XPCCodableHelpers.hpp"

namespace quorvane {
namespace {

using Key = SharedDefaultsKey;

std::string nameOf(Key key) { return std::string{rawValue(key)}; }

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
    write(Key::lockScreenEnabled, PropertyValue{isEnabled});
    return suite_->synchronize();
}

std::optional<LockScreenPendingRemoval> SharedDefaults::lockScreenPendingRemoval() const {
    const std::lock_guard guard{mutex_};
    if (!suite_) return std::nullopt;
    const std::string requested = nameOf(Key::lockScreenRemovalRequested);
    const std::string target = nameOf(Key::lockScreenRemovalTargetInstallID);
    const PropertyDictionary values = suite_->getTogether({requested, target});
    if (!isTrue(find<bool>(values, requested))) return std::nullopt;
    const auto* const text = find<std::string>(values, target);
    return LockScreenPendingRemoval{text == nullptr ? std::nullopt : std::optional{*text}};
}

Result<void> SharedDefaults::setLockScreenPendingRemoval(
    const std::optional<LockScreenPendingRemoval>& removal) {
    const std::lock_guard guard{mutex_};
    if (!suite_) return {};
    // Each write reaches other processes separately. The flag is set only while its target is, so
    // that no process sees, even after a crash, a removal that applies to any add-on.
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
    return suite_ ? suite_->get(nameOf(key)) : std::nullopt;
}

void SharedDefaults::write(Key key, std::optional<PropertyValue> value) {
    suite_->set(nameOf(key), std::move(value));
}

}  // namespace quorvane

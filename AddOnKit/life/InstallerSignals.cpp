#include "AddOnKit/life/InstallerSignals.hpp"

#include "QuorvaneKit/link/Identifiers.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {

InstallerSignals::InstallerSignals(std::string version, DistributedNotices center,
                                   std::function<void()> quit, const LogSink& log)
    : version_(std::move(version)),
      center_(std::move(center)),
      quit_(std::move(quit)),
      log_(log, kAddOnBundleIdentifier, "app") {}

void InstallerSignals::start() {
    if (!tokens_.empty()) return;
    tokens_.push_back(center_.observe(AddOnSignals::kStatusRequest,
                                      [this](const PropertyDictionary&) { statusRequested(); }));
    tokens_.push_back(center_.observe(AddOnSignals::kQuit,
                                      [this](const PropertyDictionary&) { quitRequested(); }));
}

void InstallerSignals::stop() { tokens_.clear(); }

void InstallerSignals::setConnected(bool isConnected) {
    if (isConnected == isConnected_) return;
    isConnected_ = isConnected;
    if (tokens_.empty()) return;  // no installer can have asked yet
    log_.info("installer: connected %{bool}d; posting the status", isConnected_);
    postStatus();
}

void InstallerSignals::statusRequested() {
    log_.info("installer: status requested; connected %{bool}d", isConnected_);
    postStatus();
}

void InstallerSignals::quitRequested() {
    log_.standard("installer: asked to quit");
    quit_();
}

void InstallerSignals::postStatus() const {
    center_.post(AddOnSignals::kStatus,
                 AddOnSignals::Status{.isConnected = isConnected_, .version = version_}.userInfo());
}

}  // namespace quorvane

#include "host/link/MainPortFirst.hpp"

#include "QuorvaneKit/link/PortNames.hpp"

namespace quorvane {

MainPortFirst::MainPortFirst(OpenPort openPort, std::function<void()> onMainPort)
    : openPort_(std::move(openPort)), onMainPort_(std::move(onMainPort)) {}

std::unique_ptr<LocalPort> MainPortFirst::open(const std::string& name, PortHandler handler) {
    const bool isMain = name == kMessagePortBaseName;
    if (!isMain && !isMainPortHeld(name)) return nullptr;
    auto port = openPort_(name, std::move(handler));
    if (!isMain) return port;
    if (port) onMainPort_();
    const std::lock_guard guard{mutex_};
    ++mainAttempts_;
    isHeld_ = port != nullptr;
    changed_.notify_all();
    return port;
}

bool MainPortFirst::isMainPortHeld(const std::string& queryPort) {
    std::unique_lock lock{mutex_};
    const int attempt = ++attempts_[queryPort];
    changed_.wait(lock, [&] { return isHeld_ || hasEnded_ || mainAttempts_ >= attempt; });
    return isHeld_;
}

void MainPortFirst::end() {
    const std::lock_guard guard{mutex_};
    hasEnded_ = true;
    changed_.notify_all();
}

}  // namespace quorvane

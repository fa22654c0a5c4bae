// Order of opening a host's ports: if two hosts start together, one of them gets all ports.
#pragma once

#include <condition_variable>
#include <map>
#include <mutex>

#include "platform/MessagePort.hpp"

namespace quorvane {

// The host that holds the main port is the one that serves. So a query port counts as taken until
// this process holds the main port. Any thread.
class MainPortFirst {
public:
    // `onMainPort` runs on the main port's thread before any port answers a request.
    MainPortFirst(OpenPort openPort, std::function<void()> onMainPort);

    // An attempt to open a query port waits until the main port has been tried as often, so that
    // all ports of a host that ends are taken over in one round.
    std::unique_ptr<LocalPort> open(const std::string& name, PortHandler handler);
    // Ends the current waits and prevents further ones.
    void end();

private:
    bool isMainPortHeld(const std::string& queryPort);

    const OpenPort openPort_;
    const std::function<void()> onMainPort_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isHeld_ = false;                  // under mutex_
    bool hasEnded_ = false;                // under mutex_
    int mainAttempts_ = 0;                 // under mutex_
    std::map<std::string, int> attempts_;  // by query port, under mutex_
};

}  // namespace quorvane

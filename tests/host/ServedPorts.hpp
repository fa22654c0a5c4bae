// Ports that a test serves and asks directly, without sockets.
#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "platform/MessagePort.hpp"

namespace quorvane {

class ServedPorts {
public:
    // A table whose names are taken until `release`.
    void take() { setTaken(true); }
    void release() { setTaken(false); }

    OpenPort openPort() {
        return [this](const std::string& name, PortHandler handler) -> std::unique_ptr<LocalPort> {
            const std::lock_guard guard{mutex_};
            if (isTaken_ || handlers_.contains(name)) return nullptr;
            handlers_[name] = std::move(handler);
            changed_.notify_all();
            return std::make_unique<Port>(*this, name);
        };
    }

    bool isServed(const std::string& name) const {
        const std::lock_guard guard{mutex_};
        return handlers_.contains(name);
    }
    void waitUntilServed(std::size_t count) {
        std::unique_lock lock{mutex_};
        changed_.wait(lock, [&] { return handlers_.size() == count; });
    }
    // As the port's own thread would.
    Bytes ask(const std::string& name, std::int32_t messageID, ByteView body) {
        PortHandler handler;
        {
            const std::lock_guard guard{mutex_};
            handler = handlers_.at(name);
        }
        return handler(messageID, body);
    }

private:
    struct Port : LocalPort {
        Port(ServedPorts& itsPorts, std::string itsName)
            : ports(itsPorts), name(std::move(itsName)) {}
        ~Port() override {
            const std::lock_guard guard{ports.mutex_};
            ports.handlers_.erase(name);
        }
        void run() override {
            std::unique_lock lock{ports.mutex_};
            ports.changed_.wait(lock, [&] { return isStopped; });
        }
        void stop() override {
            const std::lock_guard guard{ports.mutex_};
            isStopped = true;
            ports.changed_.notify_all();
        }
        ServedPorts& ports;
        const std::string name;
        bool isStopped = false;  // under the ports' mutex
    };

    void setTaken(bool isTaken) {
        const std::lock_guard guard{mutex_};
        isTaken_ = isTaken;
    }

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isTaken_ = false;                         // under mutex_
    std::map<std::string, PortHandler> handlers_;  // under mutex_
};

}  // namespace quorvane

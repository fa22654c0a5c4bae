// A main application that serves the real ports out of the test's own process and answers requests
// for the state with whatever the test says.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "platform/linux/ports/MessagePortsLinux.hpp"
#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {

class HostileHost {
public:
    explicit HostileHost(LockSession& session) : session_(session) {
        session.folder().write("data/" + std::string{kAppGroup} + "/ipc-secret",
                               std::string(32, 's'));
        const auto open = makeOpenPortLinux(session.folder() / "example.quillon.Quorvane");
        serve(open(std::string{kMessagePortBaseName},
                   [this](std::int32_t, ByteView) { return answerToState(); }));
        for (std::size_t index = 0; index < kQueryPortCount; ++index)
            serve(open(queryPortName(kMessagePortBaseName, index), [](std::int32_t, ByteView) {
                return XPCCodableHelpers::encode(LockScreenAddOnConfiguration{true, false, "1.0.0"})
                    .value_or(Bytes{});
            }));
    }
    HostileHost(const HostileHost&) = delete;
    HostileHost& operator=(const HostileHost&) = delete;
    ~HostileHost() {
        for (const auto& port : ports_) port->stop();
        for (std::thread& thread : threads_) thread.join();
    }

    bool isServing() const { return ports_.size() == 1 + kQueryPortCount; }

    // The answer from now on. Returns when the add-on is done with one such answer: it has asked
    // again since.
    bool answerWith(std::string reply) {
        {
            const std::lock_guard lock{mutex_};
            reply_ = std::move(reply);
            asked_ = 0;
        }
        return eventually([this] {
            notify();
            return timesAsked() >= 2;
        });
    }
    int timesAsked() const {
        const std::lock_guard lock{mutex_};
        return asked_;
    }

    // A state as a sound main application sends it.
    static std::string stateOf(const std::string& title, std::size_t artworkLength = 0) {
        QuorvanePlayerState state;
        state.track = XPCTrack{.title = title, .artist = "Nobody"};
        if (artworkLength > 0)
            state.track->artworkData = SharedBytes{Bytes(artworkLength, std::byte{7})};
        state.playerState = XPCPlayerState::playing;
        state.timestamp = std::chrono::floor<std::chrono::seconds>(WallTime::clock::now());
        const Bytes text = XPCCodableHelpers::encode(state).value_or(Bytes{});
        return {reinterpret_cast<const char*>(text.data()), text.size()};
    }

private:
    void serve(std::unique_ptr<LocalPort> port) {
        if (port == nullptr) return;
        threads_.emplace_back([served = port.get()] { served->run(); });
        ports_.push_back(std::move(port));
    }
    Bytes answerToState() {
        const std::lock_guard lock{mutex_};
        ++asked_;
        return copyOf(bytesOf(reply_));
    }
    // That the state has changed, as any program of the session could say it.
    void notify() {
        session_
            .start({"dbus-send", "--session", "--type=signal", "/example/quillon/Quorvane",
                    "example.quillon.Quorvane.Notices.DarwinNotice",
                    std::string{"string:"} + QuorvaneDarwinNotification::playerStateChanged})
            .process()
            .wait(std::chrono::seconds{10});
    }

    LockSession& session_;
    mutable std::mutex mutex_;
    std::string reply_;
    int asked_ = 0;
    std::vector<std::unique_ptr<LocalPort>> ports_;
    std::vector<std::thread> threads_;
};

}  // namespace quorvane

// A main application whose answers are huge, undecodable or both.

#include <mutex>
#include <thread>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "platform/linux/ports/MessagePortsLinux.hpp"
#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

// Serves the real ports from this process. Its answer to a request for the state is any bytes.
class HostileHost {
public:
    explicit HostileHost(LockSession& session) : session_(session) {
        session.folder().write("data/" + std::string{kAppGroup} + "/ipc-secret",
                               std::string(32, 's'));
        serve(std::string{kMessagePortBaseName}, [this] {
            const std::lock_guard lock{mutex_};
            ++asked_;
            return reply_;
        });
        for (std::size_t index = 0; index < kQueryPortCount; ++index)
            serve(queryPortName(kMessagePortBaseName, index), [] {
                return *XPCCodableHelpers::encode(
                    LockScreenAddOnConfiguration{true, false, "1.0.0"});
            });
    }
    ~HostileHost() {
        for (const auto& port : ports_) port->stop();
        for (std::thread& thread : threads_) thread.join();
    }

    // Sets the answer. Returns when the add-on has handled one such answer, because it has asked
    // again since.
    bool answerWith(Bytes reply) {
        {
            const std::lock_guard lock{mutex_};
            reply_ = std::move(reply);
            asked_ = 0;
        }
        return eventually([this] {
            session_
                .start({"dbus-send", "--session", "--type=signal", "/example/quillon/Quorvane",
                        "example.quillon.Quorvane.Notices.DarwinNotice",
                        "string:example.quillon.Quorvane.playerStateChanged"})
                .process()
                .wait(10s);
            const std::lock_guard lock{mutex_};
            return asked_ >= 2;
        });
    }

private:
    void serve(const std::string& name, std::function<Bytes()> answer) {
        auto port = open_(name, [answer](std::int32_t, ByteView) { return answer(); });
        ASSERT_TRUE(port) << name;
        threads_.emplace_back([served = port.get()] { served->run(); });
        ports_.push_back(std::move(port));
    }

    LockSession& session_;
    const OpenPort open_ = makeOpenPortLinux(session_.folder() / "example.quillon.Quorvane");
    std::mutex mutex_;
    Bytes reply_;    // under mutex_
    int asked_ = 0;  // under mutex_
    std::vector<std::unique_ptr<LocalPort>> ports_;
    std::vector<std::thread> threads_;
};

Bytes stateOf(const std::string& title, std::size_t artworkLength = 0) {
    QuorvanePlayerState state;
    state.track = XPCTrack{.title = title, .artist = "Nobody"};
    if (artworkLength > 0) state.track->artworkData.emplace(Bytes(artworkLength, std::byte{7}));
    state.playerState = XPCPlayerState::playing;
    state.timestamp = std::chrono::floor<std::chrono::seconds>(WallTime::clock::now());
    return *XPCCodableHelpers::encode(state);
}

TEST(HostileHostTest, TheAddOnLivesThroughHugeAnswers) {
    constexpr std::size_t kHuge = 2 << 20;  // a sanitized build is too slow for more
    LockSession session;
    HostileHost host{session};
    LoggedProcess addOn = session.startAddOn();
    ASSERT_TRUE(host.answerWith(stateOf("First"))) << addOn.log();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    // Artwork that is not a picture.
    ASSERT_TRUE(host.answerWith(stateOf("First", kHuge))) << addOn.log();
    const std::string halfAState = "{\"track\":{\"title\":\"" + std::string(kHuge, 'a');
    ASSERT_TRUE(host.answerWith(copyOf(bytesOf(halfAState)))) << addOn.log();
    EXPECT_EQ(addOn.count("B (undecodable)"), 1);
    EXPECT_EQ(addOn.count("exit: window"), 0) << "an undecodable answer keeps the last state";
    ASSERT_TRUE(host.answerWith(stateOf("Second")));
    EXPECT_TRUE(addOn.says("state: now 'Second'"));
}

}  // namespace
}  // namespace quorvane

// A main application whose answers are huge or undecodable.

#include <atomic>
#include <mutex>
#include <thread>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "platform/linux/ports/MessagePortsLinux.hpp"
#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

class HostileHost : public testing::Test {
protected:
    // Serves the real ports from this process. It answers a request for the state with any bytes.
    HostileHost() {
        session.folder().write("data/" + std::string{kAppGroup} + "/ipc-secret",
                               std::string(32, 's'));
        const auto hello =
            *XPCCodableHelpers::encode(LockScreenAddOnConfiguration{true, false, "1.0.0"});
        serve(std::string{kMessagePortBaseName}, [this](std::int32_t, ByteView) {
            const std::lock_guard lock{mutex};
            ++asked;
            return reply;
        });
        for (std::size_t index = 0; index < kQueryPortCount; ++index)
            serve(queryPortName(kMessagePortBaseName, index), [=](auto, auto) { return hello; });
    }
    ~HostileHost() override {
        for (const auto& port : ports) port->stop();
        for (std::thread& thread : threads) thread.join();
    }
    void serve(const std::string& name, PortHandler handler) {
        const auto open = makeOpenPortLinux(session.folder() / "example.quillon.Quorvane");
        ports.push_back(open(name, std::move(handler)));
        threads.emplace_back([served = ports.back().get()] { served->run(); });
    }
    // Sets the answer. Returns when the add-on has asked again, and so has handled one such answer.
    bool answerWith(Bytes bytes) {
        {
            const std::lock_guard lock{mutex};
            reply = std::move(bytes);
            asked = 0;
        }
        return eventually([this] {
            session
                .start({"dbus-send", "--session", "--type=signal", "/example/quillon/Quorvane",
                        "example.quillon.Quorvane.Notices.DarwinNotice",
                        "string:example.quillon.Quorvane.playerStateChanged"})
                .process()
                .wait(std::chrono::seconds{10});
            return asked >= 2;
        });
    }
    bool answerWithState(const std::string& title, std::size_t artworkLength = 0) {
        QuorvanePlayerState state{.track = XPCTrack{.title = title, .artist = "Nobody"}};
        if (artworkLength > 0) state.track->artworkData.emplace(Bytes(artworkLength, std::byte{7}));
        state.playerState = XPCPlayerState::playing;
        state.timestamp = std::chrono::floor<std::chrono::seconds>(WallTime::clock::now());
        return answerWith(*XPCCodableHelpers::encode(state));
    }

    LockSession session;
    std::mutex mutex;
    Bytes reply;  // under mutex
    std::atomic<int> asked = 0;
    std::vector<std::unique_ptr<LocalPort>> ports;
    std::vector<std::thread> threads;
};

TEST_F(HostileHost, TheAddOnLivesThroughHugeAnswersWithoutHoardingThem) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "most of a process's memory is the thread sanitizer's own";
#endif
    constexpr std::size_t kHuge = 2 << 20;  // a sanitized build is too slow for more
    // The address sanitizer must return freed memory, as the allocator does.
    setenv("ASAN_OPTIONS", "quarantine_size_mb=1:allocator_release_to_os_interval_ms=0", 1);
    LoggedProcess addOn = session.startAddOn();
    unsetenv("ASAN_OPTIONS");
    ASSERT_TRUE(answerWithState("First")) << addOn.log();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    const auto before = Holdings::of(addOn.process().pid()).ownKilobytes;
    const std::string halfAState = "{\"track\":{\"title\":\"" + std::string(kHuge, 'a');
    for (std::size_t round = 0; round < 9; ++round) {
        // Artwork that is not a picture, different each time.
        ASSERT_TRUE(answerWithState("First", kHuge / 4 * 3 + round)) << addOn.log();
        ASSERT_TRUE(answerWith(copyOf(bytesOf(halfAState)))) << addOn.log();
        // All replies together are twice as large.
        EXPECT_LT(Holdings::of(addOn.process().pid()).ownKilobytes, before + 8 * kHuge / 1024);
    }
    EXPECT_EQ(addOn.count("B (undecodable)"), 9);
    EXPECT_EQ(addOn.count("exit: window"), 0) << "an undecodable answer keeps the last state";
    ASSERT_TRUE(answerWithState("Second"));
    EXPECT_TRUE(addOn.says("state: now 'Second'"));
}

}  // namespace
}  // namespace quorvane

// A main application that answers badly, or one with another secret.

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

const std::string kSecretFile = "data/" + std::string{kAppGroup} + "/ipc-secret";

// A sanitized build needs longer for 16 megabytes than the add-on waits for them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kHuge = 2 << 20;
#else
constexpr std::size_t kHuge = 16 << 20;
#endif

// Serves the real ports from this process. Its answer to a request for the state is any bytes.
class HostileHost {
public:
    explicit HostileHost(LockSession& session) : session_(session) {
        session.folder().write(kSecretFile, std::string(32, 's'));
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
    HostileHost(const HostileHost&) = delete;
    HostileHost& operator=(const HostileHost&) = delete;
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

TEST(HostileHostTest, TheAddOnLivesThroughHugeAnswersWithoutHoardingThem) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "most of a process's memory is the thread sanitizer's own";
#endif
    // The address sanitizer must return freed memory, as the allocator does.
    setenv("ASAN_OPTIONS", "quarantine_size_mb=1:allocator_release_to_os_interval_ms=0", 1);
    LockSession session;
    HostileHost host{session};
    LoggedProcess addOn = session.startAddOn();
    unsetenv("ASAN_OPTIONS");
    ASSERT_TRUE(host.answerWith(stateOf("First"))) << addOn.log();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    const auto grown = [&, before = Holdings::of(addOn.process().pid()).ownKilobytes] {
        const std::size_t now = Holdings::of(addOn.process().pid()).ownKilobytes;
        return now > before ? (now - before) * 1024 : 0;
    };
    const Bytes halfAState = copyOf(bytesOf("{\"track\":{\"title\":\"" + std::string(kHuge, 'a')));
    std::size_t most = 0;
    for (std::size_t round = 0; round < 9; ++round) {
        // Artwork that is not a picture, different each time.
        ASSERT_TRUE(host.answerWith(stateOf("First", kHuge / 4 * 3 + round))) << addOn.log();
        ASSERT_TRUE(host.answerWith(halfAState)) << addOn.log();
        most = std::max(most, grown());
    }
    // At most these exist at a time: the reply that brought the artwork, the artwork, the reply
    // being read, and what the allocator has not returned. All replies together are 15 times as
    // large.
    EXPECT_LT(most, 8 * kHuge);
    EXPECT_EQ(addOn.count("B (undecodable)"), 9);
    EXPECT_EQ(addOn.count("exit: window"), 0) << "an undecodable answer keeps the last state";

    ASSERT_TRUE(host.answerWith(stateOf("Second")));
    EXPECT_TRUE(addOn.says("state: now 'Second'"));
    EXPECT_LT(grown(), 5 * kHuge);
}

TEST(HostileHostTest, OneWithAnotherSecretShowsNoCardUntilTheyAgree) {
    LockSession session;
    LoggedProcess host = session.startHost();
    const std::string secret = session.folder().read(kSecretFile);
    ASSERT_EQ(secret.size(), 32U);
    session.folder().write(kSecretFile, std::string(32, 'x'));
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("delay true")) << addOn.log();
    EXPECT_EQ(addOn.count("Connected to message port"), 1);
    EXPECT_EQ(addOn.count("State received"), 0);
    EXPECT_EQ(addOn.count("windows: building"), 0);

    session.folder().write(kSecretFile, secret);
    session.start({HOST_PROGRAM, "disable"}).process().wait(20s);
    session.start({HOST_PROGRAM, "enable"}).process().wait(20s);
    EXPECT_TRUE(addOn.says("entrance: window")) << addOn.log();
}

}  // namespace
}  // namespace quorvane

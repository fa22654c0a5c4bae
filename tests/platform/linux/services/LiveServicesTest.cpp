#include <gtest/gtest.h>

#include "platform/linux/services/HeadlessPlatform.hpp"
#include "tests/support/ForkedChild.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

// Every table is there and they work together as a program has them, from the entry to the end.
int runProgram(const ForkedChild::Say& say, const TemporaryFolder& folder) {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        setenv(name, folder.path().c_str(), 1);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    char name[] = "program", option[] = "--option";
    char* arguments[] = {name, option, nullptr};
    const auto made = makeLiveServices(2, arguments, "example.domain");
    if (!made) return 100;
    // A copy, as the parts of a program hold it.
    const LiveServices services = *made;
    say(services.process.arguments.back());
    services.standardDefaults.set("key", PropertyValue{true});
    services.openSuite("example.suite")->set("key", PropertyValue{false});
    if (services.openSuite("../escape")) return 101;
    services.darwinNotices.post("nobody hears this");
    services.distributedNotices.post("nor this", {});
    Timer timer;
    const auto queue = services.makeSerialQueue("queue");
    return services.application.run(
        [&] {
            timer = services.clock.after(std::chrono::milliseconds{1}, [&] {
                EXPECT_TRUE(queue->async([&] {
                    services.mainThread.post([&] { HeadlessPlatform::of(services).loop.quit(3); });
                }));
            });
        },
        [&] { say("will terminate"); });
}

TEST(LiveServicesTest, AProgramRunsOnThem) {
    const TemporaryFolder folder;
    ForkedChild child{[&](const ForkedChild::Say& say) { return runProgram(say, folder); }};
    EXPECT_EQ(child.line(), "--option");
    EXPECT_NE(child.line().find("bus error: bus: no session bus: "), std::string::npos);
    EXPECT_EQ(child.line(), "will terminate");
    EXPECT_EQ(WEXITSTATUS(child.wait()), 3);
    EXPECT_NE(folder.read("example.domain.plist").find("<true/>"), std::string::npos);
    EXPECT_NE(folder.read("example.suite.plist").find("<false/>"), std::string::npos);
}

}  // namespace
}  // namespace quorvane

#include "AddOnKit/life/InstallerSignals.hpp"

#include <gtest/gtest.h>

#include "shared/AddOnSignals.hpp"
#include "tests/support/FakeNotices.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

struct InstallerSignalsTest : testing::Test {
    std::vector<std::pair<std::string, PropertyDictionary>> status(bool isConnected) {
        return {{"example.quillon.Quorvane.LockScreenAddOn.status",
                 {{"connected", PropertyValue{isConnected}},
                  {"version", PropertyValue{std::string{"1.2.3"}}}}}};
    }

    RecordingLog log;
    FakeNotices notices;
    int quits = 0;
    InstallerSignals signals{"1.2.3", notices.distributed(), [this] { ++quits; }, log.sink()};
};

TEST_F(InstallerSignalsTest, AnswersEachRequestOnceAndPostsChangesOnlyAfterStart) {
    signals.setConnected(true);
    EXPECT_TRUE(notices.posted.empty());
    signals.start();
    signals.start();
    notices.deliver(AddOnSignals::kStatusRequest);
    EXPECT_EQ(notices.posted, status(true));
    notices.posted.clear();
    signals.setConnected(true);
    EXPECT_TRUE(notices.posted.empty());
    signals.setConnected(false);
    EXPECT_EQ(notices.posted, status(false));
    EXPECT_EQ(log.take(), (Lines{"installer: status requested; connected true",
                                 "installer: connected false; posting the status"}));
}

TEST_F(InstallerSignalsTest, ObeysQuitUntilStopped) {
    signals.start();
    notices.deliver(AddOnSignals::kQuit);
    EXPECT_EQ(quits, 1);
    EXPECT_EQ(log.lines().back().text, "installer: asked to quit");
    EXPECT_EQ(log.lines().back().level, LogLevel::standard);
    signals.stop();
    EXPECT_EQ(notices.observerCount(), 0u);
    notices.deliver(AddOnSignals::kQuit);
    notices.deliver(AddOnSignals::kStatusRequest);
    signals.setConnected(true);
    EXPECT_EQ(quits, 1);
    EXPECT_TRUE(notices.posted.empty());
}

}  // namespace
}  // namespace quorvane

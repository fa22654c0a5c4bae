#include <gtest/gtest.h>

#include <cstdio>

#include "platform/linux/loop/ApplicationLinux.hpp"
#include "platform/linux/processes/LogLinux.hpp"
#include "tests/support/ForkedChild.hpp"

namespace quorvane {
namespace {

using Say = ForkedChild::Say;

// Runs an application that reports its events. `launched` is called when it has launched.
int runApplication(const Say& say, const std::function<void(EventLoop&, Application&)>& launched) {
    EventLoop loop;
    ApplicationLinux owner{loop};
    Application application = owner.table();
    application.handleTerminationSignal([] {
        const Logger log{makeLogSink({.identifier = "test", .toStandardError = true}), "subsystem",
                         "app"};
        log.standard("received SIGTERM; quitting");
    });
    const int status = application.run(
        [&] {
            launched(loop, application);
            say("launched");
        },
        [&] { say("will terminate"); });
    say("returned");
    return status;
}

TEST(ApplicationTest, EndsInOrderForEveryReason) {
    const struct {
        std::function<void(EventLoop&, Application&)> launched;
        int signal;  // sent to the idle loop
        int status;
    } rows[] = {
        // Both signals precede the loop's next iteration: the application ends once.
        {[](auto&, auto&) { raise(SIGINT), raise(SIGINT); }, 0, 0},
        {[](auto&, auto&) {}, SIGINT, 0},
        {[](auto& loop, auto& application) { application.terminate(), loop.quit(9); }, 0, 0},
        {[](auto& loop, auto&) { loop.quit(9); }, 0, 9},
    };
    for (const auto& row : rows) {
        ForkedChild child{[&](const Say& say) { return runApplication(say, row.launched); }};
        EXPECT_EQ(child.line(), "launched");
        if (row.signal != 0) child.signal(row.signal);
        for (const char* line : {"will terminate", "returned", ""}) EXPECT_EQ(child.line(), line);
        EXPECT_EQ(child.wait(), W_EXITCODE(row.status, 0)) << "row " << &row - rows;
    }
}

TEST(ApplicationTest, TerminationSignalEndsABlockedProcessAfterOneLine) {
    ForkedChild child{[](const Say& say) {
        // A parent process may start the program with this mask.
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGTERM);
        sigprocmask(SIG_BLOCK, &blocked, nullptr);
        return runApplication(say, [&](EventLoop&, Application&) {
            say("busy");
            while (true) pause();
        });
    }};
    EXPECT_EQ(child.line(), "busy");
    child.signal(SIGTERM);
    EXPECT_TRUE(child.line().ends_with(" app default: received SIGTERM; quitting"));
    EXPECT_EQ(child.line(), "");
    const int status = child.wait();
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

// Programs that this one starts would inherit blocked and ignored signals.
TEST(ApplicationTest, BrokenPipesAreErrorsAndStartedProgramsGetTheirSignals) {
    const auto dispositions = [] {
        std::string text(200, '\0');
        FILE* output = popen("grep -E 'Sig(Blk|Ign)' /proc/self/status", "r");
        text.resize(fread(text.data(), 1, text.size(), output));
        pclose(output);
        return text;
    };
    ForkedChild child{[&](const Say& say) {
        const std::string before = dispositions();
        surviveBrokenPipes();
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0) return 1;
        close(ends[0]);
        if (write(ends[1], "x", 1) >= 0 || errno != EPIPE) return 1;
        return runApplication(say, [&](EventLoop&, Application& application) {
            say(before == dispositions() ? "same" : "changed");
            application.terminate();
        });
    }};
    EXPECT_EQ(child.line(), "same");
}

}  // namespace
}  // namespace quorvane

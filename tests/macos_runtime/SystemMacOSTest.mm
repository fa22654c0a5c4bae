// The application object, time, queues, the log, and the services of Foundation.
#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>

#include <sys/stat.h>

#include <csignal>

#include "platform/BundleFiles.hpp"
#include "platform/RegularFiles.hpp"
#include "platform/macos/card/CardMacOS.hpp"
#include "platform/macos/files/FilesMacOS.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/SystemFakes.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

using macrt::setAnswer;
using macrt::Texts;
using SystemMacOSTest = macrt::MacTest;

TEST_F(SystemMacOSTest, TheApplicationRunsWithoutADockIcon) {
    Texts told;
    macrt::whileRunning() = [&] {
        told.push_back("running");
        NSApplication* const application = NSApplication.sharedApplication;
        const id delegate = application.delegate;
        [delegate applicationDidFinishLaunching:nil];
        EXPECT_TRUE([delegate applicationSupportsSecureRestorableState:application]);
        macrt::raiseSignal(SIGINT);
        [delegate applicationWillTerminate:nil];
    };
    EXPECT_EQ(makeApplicationMacOS().run([&] { told.push_back("launched"); },
                                         [&] { told.push_back("ending"); }),
              0);
    EXPECT_EQ(told, (Texts{"running", "launched", "ending"}));
    makeApplicationMacOS().terminate();
    std::signal(SIGINT, SIG_DFL);
}

TEST_F(SystemMacOSTest, AToolReturnsItsStatusWhenItIsDone) {
    for (const bool isInterrupted : {false, true}) {
        const Application tool = makeToolMacOS();
        Texts told;
        const auto work = [&] {
            told.push_back("working");
            isInterrupted ? macrt::raiseSignal(SIGINT) : tool.terminate();
            macrt::drainMainQueue();  // as a port does that waits for its reply
            told.push_back("still there");
        };
        EXPECT_EQ(tool.run(work, [&] { told.push_back("ending"); }), 0);
        EXPECT_EQ(told, (Texts{"working", "still there", "ending"}));
    }
    std::signal(SIGINT, SIG_DFL);
}

TEST_F(SystemMacOSTest, ATerminationSignalEndsTheProcessByItself) {
    for (const bool isPending : {false, true})  // it may come in as soon as it is observed
        EXPECT_EXIT(
            {
                setAnswer("signal is pending", isPending);
                makeApplicationMacOS().handleTerminationSignal(
                    [] { std::fprintf(stderr, "told of the signal\n"); });
                std::raise(SIGTERM);  // ignored: the source alone hears of it
                macrt::raiseSignal(SIGTERM);
                std::_Exit(1);
            },
            testing::KilledBySignal(SIGTERM), "told of the signal");
}

TEST_F(SystemMacOSTest, TimersFireOnceAndNotAfterTheyAreDropped) {
    const Clock clock = makeClockMacOS();
    int fired = 0;
    @autoreleasepool {
        const Timer first = clock.after(std::chrono::milliseconds{50}, [&] { ++fired; });
        Timer dropped = clock.after(std::chrono::milliseconds{20}, [&] { fired += 100; });
        Timer past = clock.after(std::chrono::seconds{-1}, [&] { fired += 10; });
        Timer late =
            clock.afterAbout(std::chrono::seconds{2}, std::chrono::milliseconds{30}, [] {});
        dropped.reset();
        EXPECT_EQ(fired, 0);
        macrt::passTime(std::chrono::milliseconds{49});
        EXPECT_EQ(fired, 10);
        macrt::passTime(std::chrono::milliseconds{100});
        EXPECT_EQ(fired, 11);
    }
    EXPECT_EQ(macrt::activeSources(), 0u);
    // One may end itself, and its owner's last timer with it.
    Timer self;
    self = clock.after({}, [&] { self.reset(); });
    macrt::passTime({});
}

TEST_F(SystemMacOSTest, TimersCountTheTimeSlept) {
    Instant now{};
    const Clock clock = makeClockMacOS([&] { return now; });
    std::string fired;
    const Timer gone = clock.after({}, [&] { fired += "a"; });
    const Timer early = clock.after(std::chrono::seconds{30}, [&] { fired += "b"; });
    const Timer late =
        clock.afterAbout(std::chrono::seconds{60}, std::chrono::seconds{1}, [&] { fired += "c"; });
    macrt::passTime({});
    now += std::chrono::seconds{40};  // asleep: the dispatcher's time does not move
    step("awake");
    macrt::deliver(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceDidWakeNotification);
    macrt::passTime({});
    EXPECT_EQ(fired, "ab");
    macrt::passTime(std::chrono::seconds{19});
    EXPECT_EQ(fired, "ab");
    macrt::passTime(std::chrono::seconds{1});
    EXPECT_EQ(fired, "abc");
}

TEST_F(SystemMacOSTest, TheMainThreadRunsActionsLaterAndInOrder) {
    const MainThread mainThread = makeMainThreadMacOS();
    std::string order;
    mainThread.post([&] {
        order += "a";
        mainThread.post([&] { order += "c"; });
    });
    mainThread.post([&] { order += "b"; });
    EXPECT_EQ(order, "");
    macrt::drainMainQueue();
    EXPECT_EQ(order, "abc");
}

TEST_F(SystemMacOSTest, QueuesDropWhatWaitsWhenTheyEnd) {
    std::string order;
    auto queue = makeSerialQueuesMacOS()("kit.queries");
    EXPECT_TRUE(queue->async([&] { order += "a"; }));
    macrt::drainQueues();
    EXPECT_TRUE(queue->async([&] { order += "b"; }));
    queue = nullptr;
    EXPECT_EQ(order, "a");
    // It may end from inside its own action.
    queue = makeSerialQueuesMacOS()("kit.queries");
    EXPECT_TRUE(queue->async([&] { queue = nullptr; }));
    EXPECT_TRUE(queue->async([&] { order += "c"; }));
    macrt::drainQueues();
    EXPECT_EQ(order, "a");
}

TEST_F(SystemMacOSTest, LogLinesKeepTheirPlaceholdersAndPrivacy) {
    const Logger log{makeLogSinkMacOS(), "a.subsystem", "player"};
    log.info("track %{private}s of %{public}s, %{bool}d, %ld of %lu", "song", "artist", true, -3L,
             7UL);
    log.standard("%s %d %u %llu", "unmarked", -1, 4'000'000'000U, 18'000'000'000'000'000'000ULL);
    log.error("no arguments");
    log.fault("%f seconds", 0.5);
    log.debug("fine");
    setAnswer("debug log", false);
    log.debug("nobody listens");
}

TEST_F(SystemMacOSTest, TheProcessKnowsItselfAndItsBundle) {
    setAnswer("NSBundle.infoDictionary", @{@"CFBundleShortVersionString" : @"1.2"});
    setAnswer("NSBundle.bundleURL", urlFrom("/Applications/x.app"));
    setAnswer("NSBundle.bundleIdentifier", @"a.bundle");
    setAnswer("NSProcessInfo.processIdentifier", 4711);
    setAnswer("NSProcessInfo.operatingSystemVersion", NSOperatingSystemVersion{26, 1, 2});
    char name[] = "/a/b";
    char option[] = "--installed";
    char* arguments[] = {name, option};
    ProcessInfo process = makeProcessInfoMacOS(2, arguments);
    EXPECT_EQ(process.arguments, (std::vector<std::string>{"/a/b", "--installed"}));
    EXPECT_EQ(process.pid, 4711);
    EXPECT_EQ(process.systemVersion.major, 26);
    EXPECT_EQ(process.systemVersion.patch, 2);
    EXPECT_EQ(process.bundle, "/Applications/x.app");
    EXPECT_EQ(*find<std::string>(process.bundleProperties, "CFBundleShortVersionString"), "1.2");
    setAnswer("NSBundle.bundleIdentifier", nil);
    EXPECT_EQ(makeProcessInfoMacOS(2, arguments).bundle, "");
    setAnswer("NSBundle.localizedStringForKey:value:table:", @"Abspielen");
    EXPECT_EQ(localizedMacOS("Play"), "Abspielen");
    EXPECT_FALSE(isRightToLeftMacOS());
    setAnswer("NSApplication.userInterfaceLayoutDirection", 1);
    EXPECT_TRUE(isRightToLeftMacOS());
}

TEST_F(SystemMacOSTest, AnActivityLastsAsLongAsItsHandle) {
    setAnswer("NSProcessInfo.beginActivityWithOptions:reason:", [NSObject new]);
    {
        const Handle activity = makeBeginActivityMacOS()(0x00EF'FFFF, "Showing");
        step("begun");
    }
}

TEST_F(SystemMacOSTest, FilesAreReadAndWrittenWithTheirErrors) {
    const FileStore files = makeFileStoreMacOS();
    setAnswer("NSFileManager.containerURLForSecurityApplicationGroupIdentifier:",
              urlFrom("/Groups/group.a"));
    EXPECT_EQ(files.containerOfGroup("group.a"), "/Groups/group.a");
    EXPECT_TRUE(files.writeAtomically("/Groups/secret", bytesOf("32")));
    EXPECT_TRUE(files.createAtomically("/Groups/secret", bytesOf("late")));
    EXPECT_EQ(textOf(files.read("/Groups/secret").value()), "32");
    EXPECT_TRUE(files.createAtomically("/Groups/new", bytesOf("new")));
    EXPECT_EQ(textOf(files.read("/Groups/new").value()), "new");
    EXPECT_EQ(pathFrom(urlFrom("/Groups/\xFF")), "/Groups/\xFF");  // not UTF-8
    EXPECT_EQ(macrt::describe(stringFrom("\xFF")), "@\"\"");
    EXPECT_EQ(files.read("/none").error(),
              (PlatformError{PlatformError::Domain::cocoa, 260, "no such file"}));
    setAnswer("NSFileManager.error", macrt::makeError(NSPOSIXErrorDomain, 13, @"denied"));
    EXPECT_FALSE(files.containerOfGroup("group.a"));
    EXPECT_EQ(files.writeAtomically("/Groups/secret", {}).error(),
              (PlatformError{PlatformError::Domain::posix, 13, "denied"}));
    setAnswer("NSData.error", macrt::makeError(NSCocoaErrorDomain, 513, @"not allowed"));
    EXPECT_EQ(files.writeAtomically("/Groups/x", {}).error().code, 513);
    std::array<std::byte, 4> random{};
    EXPECT_TRUE(makeFillRandomMacOS()(random));
    EXPECT_EQ(random[3], std::byte{0xA5});
    setAnswer("SecRandomCopyBytes", -67'808);
    EXPECT_EQ(makeFillRandomMacOS()(random).error(), -67'808);
    setAnswer("NSUUID.UUIDString", @"0F0E0D0C-0B0A-4908-8706-050403020100");
    EXPECT_EQ(makeUUIDMacOS(), "0F0E0D0C-0B0A-4908-8706-050403020100");
}

TEST_F(SystemMacOSTest, DefaultsKeepTheTypesOfTheirValues) {
    const UserDefaults standard = makeStandardDefaultsMacOS("a.domain");
    EXPECT_FALSE(standard.get("removalPending"));
    for (const PropertyValue& value : std::vector<PropertyValue>{
             {true}, {std::int64_t{1}}, {1.0}, {std::string{"x"}}, {WallTime{Duration{5}}}}) {
        standard.set("removalPending", value);
        EXPECT_EQ(standard.get("removalPending"), value);
    }
    standard.set("removalPending", PropertyValue{PropertyArray{{std::int64_t{2}}, {false}}});
    EXPECT_EQ(standard.get("removalPending")->as<PropertyArray>()->size(), 2u);
    EXPECT_EQ(standard.getTogether({"removalPending", "absent"}).size(), 1u);
    standard.set("removalPending", std::nullopt);
    EXPECT_FALSE(standard.get("removalPending"));
    standard.removeDomain();
    EXPECT_FALSE(standard.synchronize());
    setAnswer("CFPreferencesAppSynchronize", true);
    EXPECT_TRUE(standard.synchronize());
    const auto suite = openSuiteMacOS("group.a");
    suite->set("key", PropertyValue{true});
    EXPECT_TRUE(macrt::defaults()["group.a"].contains("key"));
    EXPECT_FALSE(standard.get("key"));
    setAnswer("no suites", true);
    EXPECT_FALSE(openSuiteMacOS("group.a"));
}

TEST_F(SystemMacOSTest, TheLoginItemPassesStatusesAndErrorsOn) {
    const LoginItemClient item = makeInstallationMacOS().loginItem;
    setAnswer("SMAppService.status", 2);
    EXPECT_EQ(item.status(), 2);
    EXPECT_TRUE(item.registerItem());
    setAnswer("SMAppService.error", macrt::makeError(@"SMAppServiceError", 1, @"not permitted"));
    EXPECT_EQ(item.unregisterItem().error(),
              (PlatformError{PlatformError::Domain::service, 1, "not permitted"}));
}

TEST_F(SystemMacOSTest, CopiesAreListedAndAskedToQuit) {
    const RunningApplications running = makeInstallationMacOS().runningApplications;
    const auto copy = [](int pid, BOOL isTerminated) {
        NSRunningApplication* const application = [NSRunningApplication new];
        setAnswer(application, "processIdentifier", pid);
        setAnswer(application, "terminated", isTerminated);
        return application;
    };
    NSRunningApplication* const first = copy(10, NO);
    NSRunningApplication* const last = copy(12, NO);
    setAnswer(first, "launchDate", [NSDate dateWithTimeIntervalSince1970:1.5]);
    setAnswer("NSRunningApplication.currentApplication", first);
    setAnswer("NSRunningApplication.runningApplicationsWithBundleIdentifier:",
              @[ first, copy(11, YES), last ]);
    const auto copies = running.running("a.bundle");
    ASSERT_EQ(copies.size(), 2u);
    EXPECT_EQ(copies[0].launchDate, WallTime{std::chrono::milliseconds{1500}});
    EXPECT_EQ(copies[1].pid, 12);
    EXPECT_FALSE(copies[1].launchDate);
    EXPECT_EQ(running.current().pid, 10);
    setAnswer("NSRunningApplication.runningApplicationWithProcessIdentifier:", last);
    running.terminate(12);
    setAnswer("NSRunningApplication.runningApplicationWithProcessIdentifier:", nil);
    running.terminate(99);  // it has gone
}

TEST_F(SystemMacOSTest, FilesOfTheBundleAreManagedWithTheirErrors) {
    setAnswer("NSFileManager.URLsForDirectory:inDomains:", @[ urlFrom("/Library") ]);
    const Installation installation = makeInstallationMacOS();
    EXPECT_EQ(installation.applicationSupport, "/Library");
    const FileManagerClient& files = installation.fileManager;
    EXPECT_TRUE(files.removeItem("/a b"));
    setAnswer("NSFileManager.error", macrt::makeError(NSCocoaErrorDomain, 4, @"none there"));
    EXPECT_EQ(files.removeItem("/a").error().code, 4);
    EXPECT_FALSE(files.fileExists("/x.app/Contents/Info.plist"));
    EXPECT_FALSE(files.identity("/x.app"));
    macrt::files()["/x.app/Contents/Info.plist"] = "bytes";
    EXPECT_TRUE(files.fileExists("/x.app/Contents/Info.plist"));
    EXPECT_FALSE(files.identity("/x.app"));
    const char* const read =
        "NSPropertyListSerialization.propertyListWithData:options:format:error:";
    setAnswer(read, @{@"CFBundleIdentifier" : @"a.bundle"});
    EXPECT_EQ(files.identity("/x.app"), "a.bundle");
    setAnswer(
        read,
        @{@"CFBundleIdentifier" : @5LL});
    EXPECT_FALSE(files.identity("/x.app"));
    setAnswer(read, @[ @"a.bundle" ]);
    EXPECT_FALSE(files.identity("/x.app"));
}

TEST_F(SystemMacOSTest, BundlesAreStagedOutOfSight) {
    const BundleFiles files = makeLiveBundleFiles();
    setAnswer("NSUUID.UUIDString", @"0F0E");
    EXPECT_EQ(files.stage("/new/x.app", "/Apps"), "/Apps/.staged-0F0E/x.app");
    setAnswer("NSFileManager.copyItemAtURL:toURL:error:",
              macrt::makeError(NSCocoaErrorDomain, 640, @"full"));
    EXPECT_EQ(files.stage("/new/x.app", "/Apps").error().code, 640);
}

TEST_F(SystemMacOSTest, BundlesTakeTheirPlaceInOneStep) {
    const BundleFiles files = makeLiveBundleFiles();
    const TemporaryFolder folder;
    folder.write(".staged-1/x.app/version", "new");
    EXPECT_TRUE(files.putInPlace(folder / ".staged-1/x.app", folder / "x.app"));
    folder.write(".staged-1/x.app/version", "newer");
    EXPECT_TRUE(files.putInPlace(folder / ".staged-1/x.app", folder / "x.app"));
    EXPECT_TRUE(std::filesystem::exists(folder / ".staged-1/x.app/version"));  // the old one
    EXPECT_EQ(folder.read("x.app/version"), "newer");
    EXPECT_EQ(files.putInPlace(folder / "none.app", folder / "x.app").error().code, ENOENT);
    files.discardStaged(folder.path());
    EXPECT_EQ(macrt::takeTexts(), Texts{"-[NSFileManager#1 removeItemAtURL:file://" +
                                        (folder / ".staged-1").native() + " error:nil]"});
}

TEST_F(SystemMacOSTest, OpenIsReadToItsEndBeforeItIsWaitedFor) {
    const OpenApplication open = makeInstallationMacOS().openApplication;
    const std::string output = "cannot open\n\n";
    setAnswer("NSPipe.fileHandleForReading", [NSFileHandle new]);
    setAnswer("NSFileHandle.readDataToEndOfFileAndReturnError:",
              [NSData dataWithBytes:output.data() length:output.size()]);
    setAnswer("NSTask.terminationStatus", 1);
    const auto end = open("/x.app", {"--installed"});
    ASSERT_TRUE(end);
    EXPECT_EQ(end->status, 1);
    EXPECT_EQ(end->output, "cannot open");
    setAnswer("NSTask.error", macrt::makeError(NSCocoaErrorDomain, 4, @"no such file"));
    EXPECT_EQ(open("/x.app", {}).error().code, 4);
}

TEST_F(SystemMacOSTest, TheLoaderAnswersAndMakesArrays) {
    const DynamicLoader loader = makeDynamicLoaderMacOS();
    EXPECT_EQ(loader.open("/none.dylib"), nullptr);
    EXPECT_NE(loader.lastError().value_or("").find("/none.dylib"), std::string::npos);
    EXPECT_FALSE(loader.lastError());
    void* const program = loader.open(nullptr);
    EXPECT_EQ(loader.symbol(program, "no_such_symbol"), nullptr);
    std::shared_ptr<const void> array;
    @autoreleasepool {
        array = loader.arrayOfNumber(18'000'000'000'000'000'000ULL);
    }
    EXPECT_EQ(macrt::describe((__bridge id)array.get()), "[18000000000000000000]");
}

TEST_F(SystemMacOSTest, RegularFilesAreReadUpToTheirLimit) {
    const TemporaryFolder folder;
    folder.write("art", "12345");
    const RegularFiles files = makeLiveRegularFiles();
    const auto file = files.read(folder.path() / "art", 5);
    ASSERT_TRUE(file);
    EXPECT_EQ(textOf(file->contents), "12345");
    EXPECT_EQ(file->stamp, files.stamp(folder.path() / "art").value());
    struct stat status {};
    ASSERT_EQ(stat((folder / "art").c_str(), &status), 0);
    EXPECT_EQ(file->stamp.modifiedNanoseconds,
              status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec);
    EXPECT_FALSE(files.read(folder.path() / "art", 4));
    EXPECT_FALSE(files.stamp(folder.path()));
}

}  // namespace
}  // namespace quorvane

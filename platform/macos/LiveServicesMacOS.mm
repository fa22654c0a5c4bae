#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

// The tables of this edition that need no screen.
#include "platform/LivePlatform.hpp"
#include "platform/macos/ApplicationMacOS.hpp"
#include "platform/macos/ClockMacOS.hpp"
#include "platform/macos/DarwinNoticesMacOS.hpp"
#include "platform/macos/DistributedNoticesMacOS.hpp"
#include "platform/macos/FilesMacOS.hpp"
#include "platform/macos/InstallationMacOS.hpp"
#include "platform/macos/LogMacOS.hpp"
#include "platform/macos/MainThreadMacOS.hpp"
#include "platform/macos/MessagePortsMacOS.hpp"
#include "platform/macos/ProcessInfoMacOS.hpp"
#include "platform/macos/SerialQueueMacOS.hpp"
#include "platform/macos/UserDefaultsMacOS.hpp"

namespace quorvane {

Result<LiveServices> makeLiveServices(int argumentCount, char** arguments,
                                      const std::string& domain) {
    @autoreleasepool {
        ProcessInfo process = makeProcessInfoMacOS(argumentCount, arguments);
        return LiveServices{
            .application = process.bundle.empty() ? makeToolMacOS() : makeApplicationMacOS(),
            .process = std::move(process),
            .log = makeLogSinkMacOS(),
            .clock = makeClockMacOS(),
            .wallClock = [] { return WallTime{std::chrono::system_clock::now()}; },
            .mainThread = makeMainThreadMacOS(),
            .makeSerialQueue = makeSerialQueuesMacOS(),
            .connectPort = makeConnectPortMacOS(),
            .openPort = makeOpenPortMacOS(),
            .nameCurrentThread = nameCurrentThreadMacOS,
            .distributedNotices = makeDistributedNoticesMacOS(),
            .darwinNotices = makeDarwinNoticesMacOS(),
            .files = makeFileStoreMacOS(),
            .fillRandom = makeFillRandomMacOS(),
            .makeUUID = makeUUIDMacOS,
            .standardDefaults = makeStandardDefaultsMacOS(domain),
            .openSuite = openSuiteMacOS,
            .installation = makeInstallationMacOS(),
            .owner = nullptr,
        };
    }
}

}  // namespace quorvane

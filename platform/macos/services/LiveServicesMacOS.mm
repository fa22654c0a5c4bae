// The live tables that need no screen.
#include "platform/LivePlatform.hpp"
#include "platform/macos/files/FilesMacOS.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/ports/MessagePortsMacOS.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"

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

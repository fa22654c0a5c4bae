#include "platform/linux/services/HeadlessPlatform.hpp"

#include <unistd.h>

#include "platform/linux/bus/NoticesLinux.hpp"
#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/FileManagerLinux.hpp"
#include "platform/linux/files/FilesLinux.hpp"
#include "platform/linux/files/FoldersLinux.hpp"
#include "platform/linux/loop/SerialQueueLinux.hpp"
#include "platform/linux/ports/MessagePortsLinux.hpp"
#include "platform/linux/processes/Confinement.hpp"
#include "platform/linux/processes/DetachedProcess.hpp"
#include "platform/linux/processes/LogLinux.hpp"
#include "platform/linux/processes/LoginItemLinux.hpp"
#include "platform/linux/processes/RunningApplicationsLinux.hpp"

namespace quorvane {
namespace {

// The core uses the system's version, in the numbers of the other edition, to decide whether the
// lock screen can show the card. This edition reports the first version that supports it; the
// kernel's own version would disable the card.
constexpr SystemVersion kInterfaceVersion{26, 0, 0};

ProcessInfo makeProcessInfo(int argumentCount, char** arguments) {
    std::error_code none;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", none);
    ProcessInfo info{.arguments = {arguments, arguments + argumentCount},
                     .executable = executable,
                     .pid = getpid(),
                     .systemVersion = kInterfaceVersion,
                     .bundle = bundleOfExecutable(executable),
                     .bundleProperties = {}};
    info.bundleProperties = propertiesOfBundle(info.bundle);
    return info;
}

std::string programName(const ProcessInfo& process) {
    return process.arguments.empty()
               ? "quorvane"
               : std::filesystem::path{process.arguments.front()}.filename().string();
}

void fillFileTables(LiveServices& services) {
    const auto ports = portFolderOfUser();
    services.connectPort = makeConnectPortLinux(ports);
    services.openPort = makeOpenPortLinux(ports);
    services.files = makeFileStore();
    services.fillRandom = makeFillRandom();
    services.makeUUID = makeRandomUUID;
    auto autostart = configFolder();
    if (autostart) *autostart /= "autostart";
    services.installation = {.loginItem = makeLoginItem(autostart, services.process),
                             .fileManager = makeFileManager(),
                             .runningApplications = makeRunningApplications(),
                             .openApplication = openApplication,
                             .applicationSupport = dataFolder()};
}

}  // namespace

HeadlessPlatform::HeadlessPlatform(const LogSink& log)
    : sessionBus(loop, Logger{log, kPlatformSubsystem, "bus"}),
      systemBus(loop, Logger{log, kPlatformSubsystem, "bus"}),
      localNotices(loop.mainThread()),
      defaultsLog(log, kPlatformSubsystem, "defaults") {}

std::optional<UserDefaults> HeadlessPlatform::openDefaults(const std::string& domain) {
    const auto folder = configFolder();
    if (!folder || !isPlainFileName(domain)) return std::nullopt;
    auto& store = defaults[domain];
    if (!store) store = std::make_unique<DefaultsFile>(*folder / (domain + ".plist"), defaultsLog);
    return store->table();
}

Result<LiveServices> makeLiveServices(int argumentCount, char** arguments,
                                      const std::string& domain) {
    const auto failed = [](const char* sentence) {
        return std::unexpected{PlatformError{.description = sentence}};
    };
    surviveBrokenPipes();
    forbidCoreDumps();
    LiveServices services;
    services.process = makeProcessInfo(argumentCount, arguments);
    services.log = makeLogSink(LogOptions::fromEnvironment(programName(services.process)));
    const auto owner = std::make_shared<HeadlessPlatform>(services.log);
    if (!owner->loop.event()) return failed("The system gives no event loop.");
    const auto standardDefaults = owner->openDefaults(domain);
    if (!standardDefaults) return failed("This user has no home folder to keep settings in.");

    const Logger busLog{services.log, kPlatformSubsystem, "bus"};
    services.application = owner->application.table();
    services.clock = owner->loop.clock();
    services.wallClock = [] { return WallTime{std::chrono::system_clock::now()}; };
    services.mainThread = owner->loop.mainThread();
    services.makeSerialQueue = makeSerialQueuesLinux();
    services.nameCurrentThread = nameCurrentThread;
    services.distributedNotices =
        makeDistributedNotices(owner->sessionBus, owner->localNotices, busLog);
    services.darwinNotices = makeDarwinNotices(owner->sessionBus, busLog);
    services.standardDefaults = *standardDefaults;
    services.openSuite = [state = owner.get()](const std::string& suite) {
        return state->openDefaults(suite);
    };
    fillFileTables(services);
    services.owner = owner;
    return services;
}

}  // namespace quorvane

#include "platform/linux/services/ServicesLinux.hpp"

#include <map>
#include <memory>

#include "platform/linux/bus/NoticesLinux.hpp"
#include "platform/linux/files/DefaultsFile.hpp"
#include "platform/linux/files/FilesLinux.hpp"
#include "platform/linux/files/FoldersLinux.hpp"
#include "platform/linux/loop/ApplicationLinux.hpp"
#include "platform/linux/loop/SerialQueueLinux.hpp"
#include "platform/linux/loop/ThreadNameLinux.hpp"
#include "platform/linux/ports/MessagePortsLinux.hpp"
#include "platform/linux/processes/Confinement.hpp"
#include "platform/linux/processes/InstallationLinux.hpp"
#include "platform/linux/processes/LogLinux.hpp"
#include "platform/linux/processes/ProcessInfoLinux.hpp"

namespace quorvane {
namespace {

// The parts that only the tables use.
struct LiveServicesLinux : ServicesLinux {
    explicit LiveServicesLinux(const LogSink& log)
        : ServicesLinux(log), defaultsLog(log, kPlatformSubsystem, "defaults") {}

    // Keeps one store per domain across repeated opens, because a store holds the changes not yet
    // written.
    std::optional<UserDefaults> openDefaults(const std::string& domain) {
        const auto folder = configFolder();
        if (!folder || !isPlainFileName(domain)) return std::nullopt;
        auto& store = defaults[domain];
        if (!store)
            store = std::make_unique<DefaultsFile>(*folder / (domain + ".plist"), defaultsLog);
        return store->table();
    }

    ApplicationLinux application{loop};
    Logger defaultsLog;
    std::map<std::string, std::unique_ptr<DefaultsFile>> defaults;
};

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
    services.installation = makeInstallation(services.process);
}

}  // namespace

ServicesLinux::ServicesLinux(const LogSink& log)
    : sessionBus(loop, Logger{log, kPlatformSubsystem, "bus"}),
      systemBus(loop, Logger{log, kPlatformSubsystem, "bus"}),
      localNotices(loop.mainThread()),
      fail([this](int status) { loop.quit(status); }) {}

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
    const auto owner = std::make_shared<LiveServicesLinux>(services.log);
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
    // ServicesLinux::of casts this pointer to the base class.
    services.owner = std::shared_ptr<ServicesLinux>{owner};
    return services;
}

}  // namespace quorvane

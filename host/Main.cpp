// Entry of quorvane-host: makes the live tables and runs the command.

#include <cstdio>
#include <future>
#include <memory>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "host/addon/AddOnCommands.hpp"
#include "host/addon/DeliveredRemoval.hpp"
#include "host/addon/HostCommandLine.hpp"
#include "host/addon/HostStatusQuery.hpp"
#include "host/link/HostCoordinator.hpp"
#include "host/players/LockPauser.hpp"
#include "host/players/MprisPlayer.hpp"
#include "host/players/ScriptedPlayer.hpp"
#include "host/settings/StoredSettings.hpp"
#include "platform/LivePlatform.hpp"
#include "platform/LockerRun.hpp"
#include "platform/SessionProblems.hpp"

namespace quorvane {
namespace {

using Command = HostCommandLine::Command;

constexpr Duration kPlayersPatience = std::chrono::milliseconds{500};

void print(const std::string& text) { std::fputs(text.c_str(), stdout); }

void say(const std::string& sentence) {
    std::fprintf(stderr, "quorvane-host: %s\n", sentence.c_str());
}

int fail(const std::string& reason) {
    say(reason);
    return kHostFailed;
}

std::optional<UserDefaults> sharedSuite(const LiveServices& services) {
    return services.openSuite(std::string{kAppGroup});
}

// The same relative path in the build folder and in an installed package.
std::filesystem::path fetchProgram(const LiveServices& services) {
    const auto folder = services.process.executable.parent_path().parent_path();
    return folder / "lib" / "quorvane" / "quorvane-fetch-artwork";
}

std::expected<std::unique_ptr<PlayerSource>, std::string> makePlayer(const HostCommandLine& line,
                                                                     const LiveServices& services,
                                                                     StoredSettings& settings,
                                                                     MediaPlayers players) {
    if (line.script) {
        auto script = readScript(*line.script, makeLiveRegularFiles());
        if (!script) return std::unexpected{script.error()};
        return std::make_unique<ScriptedPlayer>(*std::move(script), services.clock);
    }
    return std::make_unique<MprisPlayer>(
        MprisPlayer::Services{
            .players = std::move(players),
            .soundServer = makeLiveSoundServer(services),
            .files = makeLiveRegularFiles(),
            .fetchPicture = makeLiveFetchPicture(services, fetchProgram(services)),
            .clock = services.clock,
            .mainThread = services.mainThread,
            .makeSerialQueue = services.makeSerialQueue,
            .log = services.log},
        settings.current(), line.onlyPlayer);
}

HostCoordinator::Services coordinatorServices(const LiveServices& services) {
    return {.log = services.log,
            .openPort = services.openPort,
            .portsProblem = findPortsProblem,
            .nameCurrentThread = services.nameCurrentThread,
            .files = services.files,
            .fillRandom = services.fillRandom,
            .mainThread = services.mainThread,
            .makeSerialQueue = services.makeSerialQueue,
            .clock = services.clock,
            .wallClock = services.wallClock,
            .darwinNotices = services.darwinNotices,
            .distributedNotices = services.distributedNotices,
            .sharedSuite = sharedSuite(services)};
}

// Runs on the signal's thread, before the signal ends the process. The main thread posts the notice
// of the end, unless it is blocked. The notice has reached the bus when its echo comes back.
void announceEnd(HostCoordinator& host, const LiveServices& services) {
    struct Announcement {
        std::promise<void> isMade;
        Handle echo;
    };
    const auto announcement = std::make_shared<Announcement>();
    services.mainThread.post([&host, announcement, notices = services.darwinNotices] {
        if (!host.isServing()) return announcement->isMade.set_value();
        announcement->echo =
            notices.observe(QuorvaneDarwinNotification::mainAppWillTerminate, [announcement] {
                announcement->echo.reset();
                announcement->isMade.set_value();
            });
        host.stop();
    });
    announcement->isMade.get_future().wait_for(std::chrono::seconds{1});
}

AddOnCommands::Services addOnServices(const LiveServices& services) {
    SessionProblems problems = findSessionProblems(services);
    return {.applicationSupport = services.installation.applicationSupport,
            .bundleFiles = makeLiveBundleFiles(),
            .fileManager = services.installation.fileManager,
            .openApplication = services.installation.openApplication,
            .control = {.applications = services.installation.runningApplications,
                        .notices = services.distributedNotices,
                        .clock = services.clock,
                        .receivesNotices = !problems.bus},
            .connectPort = services.connectPort,
            .darwinNotices = services.darwinNotices,
            .sharedSuite = sharedSuite(services),
            .addOnDefaults = services.openSuite(std::string{kAddOnBundleIdentifier}),
            .problems = std::move(problems)};
}

int run(const HostCommandLine& line, const LiveServices& services) {
    StoredSettings settings{services.standardDefaults, services.darwinNotices};
    const auto players = line.script ? MediaPlayers{} : makeLiveMediaPlayers(services);
    auto player = makePlayer(line, services, settings, players);
    if (!player) return fail(player.error());
    const AddOnCommands::Services addOn = addOnServices(services);
    if (addOn.problems.ports) return fail(*addOn.problems.ports);
    if (addOn.problems.bus) say(*addOn.problems.bus);
    HostCoordinator host{coordinatorServices(services), *std::move(player)};
    DeliveredRemoval removal{addOn, {services.log, kIdentifierPrefix, "host"}};
    host.onRemovalDelivered = [&removal] { removal.delivered(); };
    std::optional<LockPauser> pauser;
    host.onServing = [&] {
        if (!line.script)
            pauser.emplace(
                LockPauser::Services{
                    .players = players,
                    .notices = services.distributedNotices,
                    .makeLockSources = [&services] { return makeLiveLockSources(services); },
                    .log = services.log},
                settings.current(), line.onlyPlayer);
        say("serving; press Ctrl-C to stop");
        if (!host.hasSecret()) say("without a connection secret no add-on can connect");
    };
    bool hasStarted = false;
    services.application.handleTerminationSignal(
        [&host, &services] { announceEnd(host, services); });
    const int status = services.application.run(
        [&] {
            if (services.connectPort(std::string{kMessagePortBaseName}))
                say("another quorvane-host is serving this login; waiting for it to end");
            else if (!SharedDefaults{sharedSuite(services)}.lockScreenEnabled())
                say("the card is off (turn on with: quorvane-host enable)");
            hasStarted = host.start();
            if (!hasStarted) services.application.terminate();
        },
        [&] { host.stop(); });
    return hasStarted
               ? status
               : fail("the system refused to start a thread; end other programs and try again");
}

using End = std::function<void(int status)>;

// Runs the main loop until the command calls `end` with its exit status.
int runUntilEnd(const LiveServices& services, const std::function<void(const End& end)>& command) {
    int status = kHostFailed;
    const auto end = [&](int result) {
        status = result;
        services.application.terminate();
    };
    const int ended = services.application.run([&] { command(end); }, [] {});
    return ended == 0 ? status : kHostFailed;
}

int showStatus(const LiveServices& services) {
    HostStatusQuery query{addOnServices(services), services.files};
    return runUntilEnd(services, [&](const End& end) {
        query.start([&services, end](const HostStatus& status) {
            print(status.text(services.wallClock()));
            end(status.state ? kHostDone : kHostFailed);
        });
    });
}

std::optional<std::filesystem::path> bundleOf(const HostCommandLine& line,
                                              const LiveServices& services) {
    if (line.bundle) return std::filesystem::absolute(*line.bundle);
    return bundleToInstall(services.process.executable, makeLiveBundleFiles());
}

int controlAddOn(const HostCommandLine& line, const LiveServices& services) {
    AddOnCommands commands{addOnServices(services)};
    const bool installs = line.command == Command::install || line.command == Command::update;
    const auto bundle = bundleOf(line, services);
    if (installs && !bundle)
        return fail("this program comes without an add-on; give one with --from");
    return runUntilEnd(services, [&](const End& end) {
        const auto done = [&, end](const AddOnCommands::Outcome& outcome) {
            if (outcome) print(*outcome);
            if (outcome && line.command == Command::install &&
                !services.connectPort(std::string{kMessagePortBaseName}))
                say("no host is running; the card needs one: quorvane-host run");
            end(outcome ? kHostDone : fail(outcome.error()));
        };
        switch (line.command) {
            case Command::install: return commands.install(*bundle, done);
            case Command::update: return commands.update(*bundle, done);
            case Command::launch: return commands.launch(done);
            case Command::quit: return commands.quit(done);
            case Command::enable: return commands.setCardEnabled(true, done);
            case Command::disable: return commands.setCardEnabled(false, done);
            case Command::remove: return commands.remove(done);
            default: return done(std::unexpected{"not a command of the add-on"});
        }
    });
}

// Asks a serving host, because its choice depends on earlier events. Otherwise this process chooses
// as a host that starts now would.
int listPlayers(const LiveServices& services) {
    StoredSettings settings{services.standardDefaults, services.darwinNotices};
    std::unique_ptr<PlayerSource> here;
    Handle answer;
    Timer patience;
    return runUntilEnd(services, [&](const End& end) {
        const auto show = [end](const PlayerList& list) {
            print(list.text());
            end(kHostDone);
        };
        if (services.connectPort(std::string{kMessagePortBaseName})) {
            answer = services.distributedNotices.observe(
                PlayerList::kAnswer,
                [show](const PropertyDictionary& userInfo) { show(PlayerList::of(userInfo)); });
            services.darwinNotices.post(PlayerList::kRequest);
        } else {
            here = *makePlayer({}, services, settings, makeLiveMediaPlayers(services));
            say("no host is running; one that starts now chooses so:");
        }
        patience = services.clock.after(kPlayersPatience, [&here, show, end] {
            if (here) return show(here->players());
            end(fail("the host did not answer; stop it and start it again"));
        });
    });
}

int setSettings(const HostCommandLine& line, const LiveServices& services) {
    StoredSettings settings{services.standardDefaults, services.darwinNotices};
    const auto outcome =
        line.command == Command::unset ? settings.unset(line.words) : settings.set(line.words);
    if (!outcome) return fail(outcome.error());
    return print(*outcome), kHostDone;
}

int lock(const HostCommandLine& line, const LiveServices& services) {
    Result<Handle> locker;
    return runUntilEnd(services, [&](const End& end) {
        locker = runLocker(services, line.locker, end);
        if (!locker) end(fail(locker.error().description));
    });
}

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> words(arguments + 1, arguments + argumentCount);
    const auto line = HostCommandLine::parse(words);
    if (!line) {
        say(line.error() + "\nTry: quorvane-host --help");
        return kHostMisused;
    }
    if (line->command == Command::help) return print(HostCommandLine::help()), kHostDone;
    if (line->command == Command::version)
        return print("quorvane-host " QUORVANE_VERSION "\n"), kHostDone;

    const auto services =
        makeLiveServices(argumentCount, arguments, std::string{kIdentifierPrefix});
    if (!services) return fail(services.error().description);
    switch (line->command) {
        case Command::status: return showStatus(*services);
        case Command::run: return run(*line, *services);
        case Command::players: return listPlayers(*services);
        case Command::set:
        case Command::unset: return setSettings(*line, *services);
        case Command::lock: return lock(*line, *services);
        default: return controlAddOn(*line, *services);
    }
}

}  // namespace
}  // namespace quorvane

int main(int argumentCount, char** arguments) { return quorvane::main(argumentCount, arguments); }

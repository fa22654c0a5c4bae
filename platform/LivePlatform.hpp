// The live tables of one edition, created once in the entry point. The build selects the platform
// that defines the functions. No other header of platform/ includes drawing/.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "drawing/CardWindows.hpp"
#include "drawing/Image.hpp"
#include "drawing/Screens.hpp"
#include "platform/Clock.hpp"
#include "platform/DarwinNotices.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/DynamicLoader.hpp"
#include "platform/FileManagerClient.hpp"
#include "platform/FileStore.hpp"
#include "platform/LockSources.hpp"
#include "platform/Log.hpp"
#include "platform/LoginItemClient.hpp"
#include "platform/MainThread.hpp"
#include "platform/MessagePort.hpp"
#include "platform/OpenApplication.hpp"
#include "platform/ProcessInfo.hpp"
#include "platform/RunningApplications.hpp"
#include "platform/SerialQueue.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// The application object. Main thread only, `terminate` included.
struct Application {
    // Runs the main loop. Calls `didFinishLaunching` on its first turn, and `willTerminate` once on
    // an orderly end, which `terminate` or an interrupt from the terminal requests. Returns the
    // process's exit status: 0 unless the system itself went away.
    std::function<int(std::function<void()> didFinishLaunching,
                      std::function<void()> willTerminate)>
        run;
    std::function<void()> terminate;
    // From now on SIGTERM calls the action on another thread and then ends the process with the
    // signal's default action.
    std::function<void(std::function<void()> action)> handleTerminationSignal;
};

// Tables that an installed application uses from launch to removal.
struct Installation {
    LoginItemClient loginItem;
    FileManagerClient fileManager;
    RunningApplications runningApplications;
    OpenApplication openApplication;
    // The user's folder for application files; nullopt when the user has no home folder.
    std::optional<std::filesystem::path> applicationSupport;
};

// Services that need no screen; both the add-on and its host use them.
struct LiveServices {
    Application application;
    ProcessInfo process;
    LogSink log;
    Clock clock;
    WallClock wallClock;
    MainThread mainThread;
    MakeSerialQueue makeSerialQueue;
    ConnectPort connectPort;
    OpenPort openPort;
    // Sets the calling thread's name, which debuggers show.
    std::function<void(const std::string& name)> nameCurrentThread{};
    DistributedNotices distributedNotices;
    DarwinNotices darwinNotices;
    FileStore files;
    FillRandom fillRandom;
    std::function<std::string()> makeUUID;  // random, upper-case hexadecimal with hyphens
    UserDefaults standardDefaults;
    // The suite of an App Group; nullopt when it cannot be opened.
    std::function<std::optional<UserDefaults>(const std::string& suite)> openSuite;
    Installation installation{};
    // Owns what the tables refer to; destroyed last.
    std::shared_ptr<void> owner;
};

// Services that only the card needs, together with those that need no screen.
struct LivePlatform {
    LiveServices services;
    LockSources lockSources;
    Screens screens;
    CardWindows cardWindows;
    DecodeImage decodeImage;
    // The loader of the private window-server interface on systems that have one. On other systems
    // new windows are above the lock screen.
    std::optional<DynamicLoader> windowServerLoader;
    BeginActivity beginActivity;
    // The text for a key in the user's language; the key itself when it has no translation.
    std::function<std::string(const std::string& key)> localized;
    std::function<bool()> isRightToLeft;
    // Permanently gives up access to the system that a card process does not need. Main thread;
    // called once, before the coordinator starts.
    std::function<void()> confine = [] {};
    std::shared_ptr<void> owner;
};

// `domain` is the preferences domain of the standard defaults. Fails with a plain sentence when the
// system lacks something that every table needs.
Result<LiveServices> makeLiveServices(int argumentCount, char** arguments,
                                      const std::string& domain);
Result<LivePlatform> makeLivePlatform(LiveServices services);

}  // namespace quorvane

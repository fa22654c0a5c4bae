// Every live table of one edition, made once at the entry. The build picks the platform that
// defines the functions. This is the only header of the seam that looks up into drawing/.
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
#include "platform/OpenCommand.hpp"
#include "platform/ProcessInfo.hpp"
#include "platform/RunningApplications.hpp"
#include "platform/SerialQueue.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// The application object. Main thread only, `terminate` included.
struct Application {
    // Runs the main loop. `didFinishLaunching` is called on its first turn, `willTerminate` once
    // when it is asked to end in order (by `terminate` or by an interrupt from the terminal).
    // Returns the process's exit status: 0 unless the system went away under it.
    std::function<int(std::function<void()> didFinishLaunching,
                      std::function<void()> willTerminate)>
        run;
    std::function<void()> terminate;
    // From now on SIGTERM calls the action on another thread and then ends the process by the
    // signal's default.
    std::function<void(std::function<void()> action)> handleTerminationSignal;
};

// What the life of an installed application takes, from its launch to its removal.
struct Installation {
    LoginItemClient loginItem;
    FileManagerClient fileManager;
    RunningApplications runningApplications;
    RunOpenCommand runOpenCommand;
    // The user's folder for the files of applications; nothing when the user has no home folder.
    std::optional<std::filesystem::path> applicationSupport;
};

// What needs no screen: both the add-on and its host run on these.
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
    // Names the calling thread as debuggers show it.
    std::function<void(const std::string& name)> nameCurrentThread{};
    DistributedNotices distributedNotices;
    DarwinNotices darwinNotices;
    FileStore files;
    FillRandom fillRandom;
    std::function<std::string()> makeUUID;  // random, upper-case hexadecimal with hyphens
    UserDefaults standardDefaults;
    // The suite of an App Group; nothing when it cannot be opened.
    std::function<std::optional<UserDefaults>(const std::string& suite)> openSuite;
    Installation installation{};
    // Owns what the tables refer to; dropped last.
    std::shared_ptr<void> owner;
};

// What the card needs besides.
struct LivePlatform {
    LiveServices services;
    LockSources lockSources;
    Screens screens;
    CardWindows cardWindows;
    DecodeImage decodeImage;
    // The loader of the private window-server interface, on systems that have one; without it
    // cardWindows.liftAboveLock does the same work.
    std::optional<DynamicLoader> windowServerLoader;
    BeginActivity beginActivity;
    // The text for a key in the user's language; the key itself when there is none.
    std::function<std::string(const std::string& key)> localized;
    std::function<bool()> isRightToLeft;
    // Gives up for good what a copy that shows cards does not need of the system. Main thread;
    // called once, before the coordinator starts.
    std::function<void()> confine = [] {};
    std::shared_ptr<void> owner;
};

// `domain` names the preferences domain of the standard defaults. Fails with a plain sentence when
// the system lacks something that no table can do without.
Result<LiveServices> makeLiveServices(int argumentCount, char** arguments,
                                      const std::string& domain);
Result<LivePlatform> makeLivePlatform(LiveServices services);

}  // namespace quorvane

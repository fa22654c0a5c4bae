// The tables that need no screen.
#pragma once

#include "platform/LivePlatform.hpp"
#include "platform/LockSources.hpp"

namespace quorvane {

// An application without Dock icon and menu. `run` does not return after an orderly end: the system
// ends the process with status 0.
Application makeApplicationMacOS();
// For programs without a bundle, which need an exit status: `run` returns.
Application makeToolMacOS();

// Timers run on the main queue. Time that the machine slept counts: `now` must count it too.
Clock makeClockMacOS(std::function<Instant()> now = std::chrono::steady_clock::now);
MainThread makeMainThreadMacOS();
MakeSerialQueue makeSerialQueuesMacOS();

// The log receives format strings unchanged, so that it can store them by address and redact
// private values.
LogSink makeLogSinkMacOS();

ProcessInfo makeProcessInfoMacOS(int argumentCount, char** arguments);
BeginActivity makeBeginActivityMacOS();
// Sets the calling thread's name. The system keeps 63 bytes.
void nameCurrentThreadMacOS(const std::string& name);

// Both ends request immediate delivery, because the centre holds notices back from a program that
// is never active.
DistributedNotices makeDistributedNoticesMacOS();
// Other logins share the system's Darwin notification centre.
DarwinNotices makeDarwinNoticesMacOS();
LockSources makeLockSourcesMacOS();

// Information about running copies changes only when the main loop runs. The launcher's output
// includes its standard error, which holds its error messages; the main loop may run before that
// call returns.
Installation makeInstallationMacOS();

}  // namespace quorvane

// What tests may do to the system around the adapters. Nothing runs, comes in or is answered, and
// no time passes, until a test says so.
#pragma once

#import <AppKit/AppKit.h>

#include <chrono>
#include <map>
#include <optional>

#include "tests/macos_runtime/fakes/Answers.hpp"

namespace macrt {

// Runs what was added to the main queue, and what that adds, until nothing is left. Whether there
// was anything.
bool drainMainQueue();
// The same for every other queue, each action as on its own queue.
void drainQueues();
// Moves the time that timers go by, firing what falls due on the way.
void passTime(std::chrono::nanoseconds time);
// What the handlers of this signal's sources would do when it comes in.
void raiseSignal(int signal);
// Sources that are neither cancelled nor gone.
std::size_t activeSources();
// What happens while the application runs.
std::function<void()>& whileRunning();

// What is posted by the code under test is only noted.
void deliver(NSNotificationCenter* center, NSString* name, NSDictionary* userInfo = nil);
void deliverDistributed(NSString* name, NSDictionary* userInfo = nil);
void deliverDarwin(std::string_view name);

struct PortMessage {
    std::int32_t identifier = 0;
    std::string body;
    double sendTimeout = 0;
    double receiveTimeout = 0;
    bool awaitsReply = false;
};
struct PortAnswer {
    std::int32_t status = 0;
    std::optional<std::string> body{};
};
using ServePort = std::function<PortAnswer(const PortMessage&)>;
// What another process would answer under this name, from now on; nothing: nobody serves it.
void servePort(const std::string& name, ServePort answer);
void stopServing(const std::string& name);
// What the data of the last request holds by now.
std::string lastRequest();
// What a client of a port gets that the code under test serves; nothing while no run loop has it.
std::optional<std::string> callPort(const std::string& name, std::int32_t identifier,
                                    const std::string& body);

// By path: what reading finds and writing leaves.
std::map<std::string, std::string>& files();
// What user defaults hold, by domain ("" for the standard one) and key.
std::map<std::string, std::map<std::string, id>>& defaults();
NSError* makeError(NSString* domain, NSInteger code, NSString* description);

}  // namespace macrt

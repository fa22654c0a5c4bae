// What tests and fakes see of the Objective-C runtime under tests/macos_runtime: what was called,
// what is still alive, and what went wrong. All of it is for one thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace macrt {

// A message to a method of a class that conforms to <Recorded>, getters of properties left out, or
// what a fake noted.
struct Call {
    const void* receiver = nullptr;  // null for notes
    std::string text;                // "-[NSPanel#1 setLevel:1000]"; classes have no number
};

// The calls since they were last taken, oldest first.
std::vector<Call> takeCalls();
std::vector<std::string> takeTexts();
// For fakes of C functions: one order for everything.
void note(std::string text);

// A value of an encoded type, "{CGPoint=dd}", as arguments are shown: "{1, 2.5}".
std::string valueText(std::string_view types, const void* value);

// What is alive of counted objects, heap blocks and pool entries, "1 NSPanel, 2 block"; empty when
// there is nothing.
std::string livingObjects();
// Forgets what is alive and gives back what is dead: the next test begins with nothing, its
// objects numbered from 1.
void beginAnew();

// Told of unknown selectors, of messages to the dead and of releases too many. Without a listener
// the program stops.
void setFaultListener(std::function<void(const std::string&)> listener);
// For fakes: reports a fault of the code under test.
void fault(const std::string& what);

}  // namespace macrt

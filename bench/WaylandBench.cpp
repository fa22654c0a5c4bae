// Measures the add-on above KDE Plasma's lock screen and, at the same time on another X server,
// above i3lock.

#include <thread>

#include "bench/BenchSession.hpp"
#include "bench/CardScrolling.hpp"
#include "bench/ProcessFigures.hpp"
#include "bench/Report.hpp"

namespace quorvane {
namespace {

using std::chrono::seconds;

constexpr auto kSettling = seconds{10};
constexpr auto kLook = seconds{40};  // several rounds of a title

// A card, and the figures of its processes so far.
class Card {
public:
    Card(const std::string& title, bool isPlaying, bool isOnWayland)
        : session_(title, isPlaying, isOnWayland),
          addOn_(session_.startAddOn()),
          locker_(session_.lock()) {
        BenchSession::require(addOn_, "entrance: window");
    }

    double processorTime() { return sumOf(processorTimeOf); }
    double wakeUps() { return sumOf(wakeUpsOf); }
    double ownMemory() {
        return sumOf([](pid_t process) { return memoryOf(process).anonymous; });
    }

private:
    double sumOf(const auto& figure) {
        double sum = 0;
        for (const pid_t process : familyOf(addOn_.process().pid()))
            sum += static_cast<double>(figure(process));
        return sum;
    }

    BenchSession session_;
    LoggedProcess addOn_;
    LoggedProcess locker_;
};

void compare(const char* title, bool isPlaying, const auto& tell) {
    Card wayland{title, isPlaying, true};
    Card x11{title, isPlaying, false};
    std::this_thread::sleep_for(kSettling);
    tell(wayland, x11);
}

// The growth of a figure per second, for both cards in the same time.
std::pair<double, double> ratesOf(double (Card::*figure)(), Card& wayland, Card& x11) {
    const double before = (wayland.*figure)();
    const double other = (x11.*figure)();
    std::this_thread::sleep_for(kLook);
    return {((wayland.*figure)() - before) / kLook.count(),
            ((x11.*figure)() - other) / kLook.count()};
}

void scrolling(Card& wayland, Card& x11) {
    const auto [own, other] = ratesOf(&Card::processorTime, wayland, x11);
    report({.what = "marquee scrolling: processor time of add-on and surface process",
            .ratio = own / other,
            .against = "the add-on on X11",
            .figure = numberText(own * 100, " %") + " to " + numberText(other * 100, " %"),
            .goal = "≤ 1 ×",
            .isMet = own <= other,
            .reason = "it also reads the compositor's answer to each frame"});
    const double memory = wayland.ownMemory();
    report({.what = "their own (anonymous) memory",
            .ratio = memory / x11.ownMemory(),
            .against = "the add-on on X11",
            .figure = sizeText(memory) + " to " + sizeText(x11.ownMemory()),
            .goal = "≤ 1 ×",
            .isMet = memory <= x11.ownMemory(),
            .reason = "a fault"});
}

void resting(Card& wayland, Card& x11, const char* what) {
    const auto [own, other] = ratesOf(&Card::wakeUps, wayland, x11);
    report(
        {.what = what, .figure = numberText(own, " a second") + ", on X11 " + numberText(other)});
}

}  // namespace
}  // namespace quorvane

int main() {
    using namespace quorvane;
    beginReport("The add-on above KDE Plasma's lock screen on Wayland");
    compare(kLongTitle, true, scrolling);
    compare("Tideline", true, [](Card& wayland, Card& x11) {
        resting(wayland, x11, "still text, playing: wake-ups");
    });
    compare("Tideline", false, [](Card& wayland, Card& x11) {
        resting(wayland, x11, "still text, paused: wake-ups");
    });
}

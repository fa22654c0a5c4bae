// Measures the add-on as a process beside a real X server, bus, host and locker: its start, its
// rest, and the card's punctuality, memory and processor time.

#include <thread>

#include "bench/BenchSession.hpp"
#include "bench/CardScrolling.hpp"
#include "bench/Measuring.hpp"
#include "bench/ProcessFigures.hpp"
#include "bench/Report.hpp"
#include "platform/Clock.hpp"

namespace quorvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using TimePoint = std::chrono::steady_clock::time_point;

constexpr char kShortTitle[] = "Tideline";
constexpr int kStarts = 15;
constexpr int kLocks = 5;
constexpr Duration kFrameTime = std::chrono::nanoseconds{1'000'000'000 / 60};
constexpr auto kEntrance = milliseconds{1500};  // longer than an entrance

TimePoint now() { return std::chrono::steady_clock::now(); }
void rest(Duration time) { std::this_thread::sleep_for(time); }
double millisecondsOf(Duration time) {
    return std::chrono::duration<double, std::milli>{time}.count();
}

// The activity of processes in a span of time.
struct Span {
    double seconds;
    double wakeUps;        // of the first
    double processorTime;  // of all, seconds
};

Span observe(const std::vector<pid_t>& processes, Duration time) {
    const auto timeOfAll = [&] {
        double sum = 0;
        for (const pid_t process : processes) sum += processorTimeOf(process);
        return sum;
    };
    const TimePoint begin = now();
    const auto wakeUps = wakeUpsOf(processes.front());
    const double before = timeOfAll();
    rest(time);
    return {std::chrono::duration<double>{now() - begin}.count(),
            static_cast<double>(wakeUpsOf(processes.front()) - wakeUps), timeOfAll() - before};
}

void starting(const BenchSession& session) {
    Times addOn;
    Times bare;
    const auto time = [&](const char* program, const char* ready, Times& times) {
        const TimePoint begin = now();
        LoggedProcess process = session.start({program});
        BenchSession::require(process, ready);
        times.add(microsecondsSince(begin));
        process.process().end(SIGTERM);
    };
    for (int i = 0; i < kStarts; ++i) {
        time(ADDON_PROGRAM, BenchSession::kReady, addOn);
        time(BARE_PROGRAM, "ready", bare);
    }
    const double ratio = addOn.over(bare);
    report({.what = "start to ready",
            .ratio = ratio,
            .against = "a bare program that opens the same libraries",
            .figure = timeText(addOn.median()) + " to " + timeText(bare.median()),
            .goal = "≤ 1.5 ×",
            .isMet = ratio <= 1.5,
            .reason = "it also looks for another copy of itself among all processes, connects to X "
                      "server and bus, and reads settings and the host's state"});
}

bool drawsWith(const std::set<std::string>& libraries) {
    for (const std::string& library : libraries)
        for (const char* name : {"cairo", "pango", "harfbuzz", "gdk_pixbuf", "fontconfig"})
            if (library.find(name) != std::string::npos) return true;
    return false;
}

// The activity of `playerctl --follow` in the same time, where it is installed.
void tellRival(const LoggedProcess& process, const Span& span, const ProcessMemory& own) {
    const pid_t rival = const_cast<LoggedProcess&>(process).process().pid();
    const ProcessMemory memory = memoryOf(rival);
    if (memory.anonymous == 0) return;
    report({.what = "its own memory",
            .ratio = own.anonymous / memory.anonymous,
            .against = "the memory of `playerctl --follow`",
            .figure = sizeText(own.anonymous) + " to " + sizeText(memory.anonymous)});
    report({.what = "wake-ups of `playerctl --follow` in the same time",
            .figure = numberText(span.wakeUps / span.seconds * 60, " a minute")});
}

void idling(const BenchSession& session) {
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess rival = session.start({"playerctl", "--follow", "status"});
    rest(seconds{4});
    const pid_t own = addOn.process().pid();
    // Shorter than the interval between two hellos.
    const auto before = wakeUpsOf(rival.process().pid());
    const Span span = observe({own}, seconds{45});
    const Span rivals{span.seconds, static_cast<double>(wakeUpsOf(rival.process().pid()) - before),
                      0};
    const ProcessMemory memory = memoryOf(own);
    const auto libraries = librariesOf(own);
    report({.what = "unlocked and idle: wake-ups between two hellos",
            .figure = numberText(span.wakeUps, " in 45 s"),
            .goal = "0",
            .isMet = span.wakeUps == 0,
            .reason = "a fault"});
    report({.what = "its own (anonymous) memory",
            .figure = sizeText(memory.anonymous),
            .goal = "≤ 5 MB",
            .isMet = memory.anonymous <= 5e6,
            .reason = "it keeps the last reply's artwork"});
    tellRival(rival, rivals, memory);
    report({.what = "libraries opened before the first lock",
            .figure = std::to_string(libraries.size()) +
                      (drawsWith(libraries) ? ", some to draw with" : ", none to draw with"),
            .goal = "none to draw with",
            .isMet = !drawsWith(libraries),
            .reason = "a fault"});
}

struct Entrance {
    double firstFrame = 0;     // milliseconds after the notice of the lock
    double worstLateness = 0;  // milliseconds
    int frames = 0;
};

// The entrance redraws the whole card. The server reports a round card as several rectangles; a
// marquee's frames are a line high.
Entrance enter(const BenchSession& session, LoggedProcess& addOn) {
    FrameWatch watch{session.display()};
    LoggedProcess locker = session.lock();
    BenchSession::require(addOn, "lockui: shown");
    const TimePoint shown = now();
    watch.watch(shown + milliseconds{400});  // the locker's own drawing
    std::vector<Frame> frames = watch.watch(shown + milliseconds{800} + kEntrance);
    std::erase_if(frames, [](const Frame& frame) { return frame.height < 200; });
    Entrance entrance{.frames = static_cast<int>(frames.size())};
    if (frames.size() < 2) die("an entrance without frames");
    entrance.firstFrame = millisecondsOf(frames.front().time - shown);
    for (std::size_t i = 1; i < frames.size(); ++i)
        entrance.worstLateness =
            std::max(entrance.worstLateness,
                     millisecondsOf(frames[i].time - frames[i - 1].time - kFrameTime));
    locker.process().end(SIGKILL);
    BenchSession::require(addOn, "windows: closing");
    rest(seconds{1});
    return entrance;
}

void entering(const BenchSession& session) {
    LoggedProcess addOn = session.startAddOn();
    std::vector<double> first;
    std::vector<double> late;
    std::vector<double> frames;
    for (int i = 0; i < kLocks; ++i) {
        const Entrance entrance = enter(session, addOn);
        first.push_back(entrance.firstFrame);
        late.push_back(entrance.worstLateness);
        frames.push_back(entrance.frames);
    }
    const double limit = 800 + millisecondsOf(kFrameTime);
    report(
        {.what = "from the lock screen's notice to the first frame",
         .figure = timeText(median(first) * 1000) + ", worst of " + std::to_string(kLocks) + ": " +
                   timeText(*std::ranges::max_element(first) * 1000),
         .goal = "≤ 0.8 s and a frame",
         .isMet = median(first) <= limit,
         .reason = "the backdrop is read only then, and glass, shadow and content drawn for it"});
    report({.what = "entrance: the latest of about " + numberText(median(frames)) + " frames",
            .figure = timeText(median(late) * 1000) + " late, worst of " + std::to_string(kLocks) +
                      ": " + timeText(*std::ranges::max_element(late) * 1000),
            .goal = "≤ a quarter of a frame",
            .isMet = median(late) <= millisecondsOf(kFrameTime) / 4,
            .reason = "no processor was free in time"});
    const Span after = observe({addOn.process().pid()}, seconds{10});
    report({.what = "unlocked again: wake-ups",
            .figure = numberText(after.wakeUps, " in 10 s"),
            .goal = "0",
            .isMet = after.wakeUps == 0,
            .reason = "a fault"});
}

// The mean interval of ten polls, in seconds.
double pollPeriodOf(LoggedProcess& addOn) {
    constexpr int kPolls = 10;
    constexpr char kPoll[] = "State received";
    addOn.says("\n", {});  // skips the log so far: no line contains a line break
    BenchSession::require(addOn, kPoll);
    const TimePoint begin = now();
    for (int i = 0; i < kPolls; ++i) BenchSession::require(addOn, kPoll);
    return std::chrono::duration<double>{now() - begin}.count() / kPolls;
}

// The memory of a program that uses each of the card's libraries once.
ProcessMemory leastMemory(const BenchSession& session) {
    LoggedProcess bare = session.start({BARE_CARD, DEMO_FOLDER "/tideline.jpg"});
    BenchSession::require(bare, "ready");
    return memoryOf(bare.process().pid());
}

void tellMemory(const ProcessMemory& memory, const ProcessMemory& least) {
    const auto tell = [&](const char* kind, double ProcessMemory::*bytes, double limit) {
        const double ratio = memory.*bytes / least.*bytes;
        report({.what = std::string{"card up: "} + kind + " memory",
                .ratio = ratio,
                .against = "a bare program that opens the same libraries, writes and decodes",
                .figure = sizeText(memory.*bytes) + " to " + sizeText(least.*bytes),
                .goal = "≤ " + numberText(limit, " ×"),
                .isMet = ratio <= limit,
                .reason =
                    "pictures of card and shadow, of 2.6 MB each, come on top of the libraries"});
    };
    tell("resident", &ProcessMemory::resident, 1.5);
    tell("proportional", &ProcessMemory::proportional, 1.4);
}

void playing() {
    BenchSession session{kShortTitle, true};
    Span span{};
    double pollPeriod = 0;
    ProcessMemory memory;
    {
        LoggedProcess addOn = session.startAddOn();
        LoggedProcess locker = session.lock();
        BenchSession::require(addOn, "entrance: window");
        rest(seconds{6});
        span = observe({addOn.process().pid(), session.xServer()}, seconds{20});
        pollPeriod = pollPeriodOf(addOn);
        memory = memoryOf(addOn.process().pid());
    }
    const double rate = span.wakeUps / span.seconds;
    report({.what = "card up, still text, playing: wake-ups",
            .figure = numberText(rate, " a second"),
            .goal = "≤ 1.5 a second",
            .isMet = rate <= 1.5,
            .reason = "the times need one a second, which each poll shares, and each reply one"});
    report({.what = "card up, playing: from one poll to the next",
            .figure = numberText(pollPeriod, " s"),
            .goal = "2.0 s ± 5 %",
            .isMet = std::abs(pollPeriod - 2) <= 0.1,
            .reason = "a fault"});
    tellMemory(memory, leastMemory(session));
}

void pausing() {
    BenchSession session{kShortTitle, false};
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.lock();
    BenchSession::require(addOn, "entrance: window");
    rest(seconds{6});
    const auto frames = FrameWatch{session.display()}.watch(now() + seconds{10}).size();
    report({.what = "card up, still text, paused: frames drawn",
            .figure = std::to_string(frames) + " in 10 s",
            .goal = "0",
            .isMet = frames == 0,
            .reason = "a fault"});
}

void scrolling() {
    BenchSession session{kLongTitle, true};
    std::optional<ScrollingCard> card;
    {
        LoggedProcess addOn = session.startAddOn();
        LoggedProcess locker = session.lock();
        BenchSession::require(addOn, "entrance: window");
        card = observeScrolling(session, addOn.process().pid());
        if (!card) die("a title that does not move");
    }
    report({.what = "marquee scrolling, " + numberText(card->frames) +
                    " frames a second: add-on and X server",
            .figure = numberText(card->share, " % of a processor")});
    tellCardRivals(session, *card);
}

int runBench() {
    beginReport("The add-on's process");
    {
        BenchSession session{kShortTitle, true};
        starting(session);
        idling(session);
    }
    {
        BenchSession session{kShortTitle, true};
        entering(session);
    }
    playing();
    pausing();
    scrolling();
    return 0;
}

}  // namespace
}  // namespace quorvane

int main() { return quorvane::runBench(); }

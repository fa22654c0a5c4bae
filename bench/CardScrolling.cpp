#include "bench/CardScrolling.hpp"

#include <algorithm>
#include <thread>

#include "bench/Measuring.hpp"
#include "bench/ProcessFigures.hpp"
#include "bench/Report.hpp"

namespace quorvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using SteadyClock = std::chrono::steady_clock;

// Together shorter than the title's motion. Frames are counted separately, because reporting them
// costs the server time.
constexpr auto kLook = seconds{10};
constexpr auto kCount = seconds{3};

std::size_t framesIn(const BenchSession& session, milliseconds time) {
    return FrameWatch{session.display()}.watch(SteadyClock::now() + time).size();
}

// The times draw a frame or two in this span, a moving title at least six.
bool becomes(const BenchSession& session, bool isMoving) {
    const auto deadline = SteadyClock::now() + seconds{40};
    while (SteadyClock::now() < deadline)
        if ((framesIn(session, milliseconds{200}) > 5) == isMoving) return true;
    return false;
}

struct Rival {
    std::string name;
    std::string program;
    std::vector<std::string> arguments;
    std::vector<std::string> settings;
};

std::vector<Rival> rivals(const TemporaryFolder& profile) {
    const std::string artwork = std::string{DEMO_FOLDER} + "/tideline.jpg";
    std::string title = kLongTitle;
    std::ranges::replace(title, ' ', '+');
    return {
        {"a Qt 6 widget", QT_CARD, {kLongTitle, artwork}, {}},
        // The other renderers need a graphics processor.
        {"GTK 4 widgets", GTK_CARD, {kLongTitle, artwork}, {"GDK_SCALE=2", "GSK_RENDERER=cairo"}},
        {"a page in Chromium",
         "chromium",
         {std::string{"--app=file://"} + CARD_PAGE + "?title=" + title + "&artwork=" + artwork,
          "--user-data-dir=" + profile.path().string(), "--window-position=0,0",
          "--window-size=400,222", "--force-device-scale-factor=2", "--no-sandbox",
          "--test-type",  // no warning about the flag before it
          "--disable-gpu", "--no-first-run",
          // No network access.
          "--host-resolver-rules=MAP * ~NOTFOUND", "--disable-quic",
          "--disable-background-networking", "--disable-component-update", "--disable-sync"},
         {}}};
}

bool isInstalled(const BenchSession& session, const std::string& program) {
    LoggedProcess search = session.start({"sh", "-c", "command -v \"$0\" >/dev/null", program});
    return search.process().wait(seconds{20}) == 0;
}

std::optional<ScrollingCard> observe(BenchSession& session, const Rival& rival) {
    std::vector<std::string> command{"env"};
    for (const auto* part : {&rival.settings, &rival.arguments}) {
        if (part == &rival.arguments) command.push_back(rival.program);
        command.insert(command.end(), part->begin(), part->end());
    }
    LoggedProcess process = session.start(command);
    const auto card = observeScrolling(session, process.process().pid());
    const std::vector<pid_t> family = familyOf(process.process().pid());
    process.process().end(SIGTERM);
    // Its children end a moment later.
    for (int tries = 0; tries < 50; ++tries) {
        if (std::ranges::none_of(family, [](pid_t one) { return kill(one, 0) == 0; })) break;
        std::this_thread::sleep_for(milliseconds{100});
    }
    return card;
}

}  // namespace

std::optional<ScrollingCard> observeScrolling(BenchSession& session, pid_t program) {
    for (const bool isMoving : {true, false, true})
        if (!becomes(session, isMoving)) return std::nullopt;
    const std::vector<pid_t> family = familyOf(program);
    const auto processorTime = [&] {
        double sum = processorTimeOf(session.xServer());
        for (const pid_t process : family) sum += processorTimeOf(process);
        return sum;
    };
    ScrollingCard card;
    const auto begin = SteadyClock::now();
    const double before = processorTime();
    std::this_thread::sleep_for(kLook);
    card.share = (processorTime() - before) / (microsecondsSince(begin) / 1e6) * 100;
    card.frames = static_cast<double>(framesIn(session, kCount)) / kCount.count();
    for (const pid_t process : family) card.memory += memoryOf(process).proportional;
    return card;
}

void tellCardRivals(BenchSession& session, const ScrollingCard& own) {
    const TemporaryFolder profile;
    std::vector<ReportRow> shares;
    std::vector<ReportRow> memories;
    for (const Rival& rival : rivals(profile)) {
        ReportRow share{.what = "", .against = "the same card as " + rival.name};
        if (!isInstalled(session, rival.program)) {
            share.figure = "not installed";
            shares.push_back(share);
            continue;
        }
        const auto card = observe(session, rival);
        ReportRow memory = share;
        memory.what = memories.empty() ? "its proportional memory then" : "";
        share.figure = memory.figure = "its title never moved";
        if (card) {
            const double ratio = own.share / card->share;
            share.ratio = ratio;
            share.goal = "≤ 0.5 ×";
            share.isMet = ratio <= 0.5;
            share.reason = "most of a frame's time is waking and copying in the X server";
            share.against += ", " + numberText(card->frames) + " frames a second";
            share.figure = numberText(card->share, " %");
            memory.ratio = own.memory / card->memory;
            memory.figure = sizeText(own.memory) + " to " + sizeText(card->memory);
        }
        shares.push_back(share);
        memories.push_back(memory);
    }
    for (const auto* rows : {&shares, &memories})
        for (const ReportRow& row : *rows) report(row);
}

}  // namespace quorvane

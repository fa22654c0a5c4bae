#include "Quorvane_Lock_Screen/CardWindowController.hpp"

#include <algorithm>
#include <utility>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "Quorvane_Lock_Screen/CardPlacement.hpp"

namespace quorvane {
namespace {

using CardAppearance = CardWindowSync::CardAppearance;

// User-initiated work that lets the system sleep when idle.
constexpr std::uint64_t kActivityOptions = 0x00EF'FFFF;

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};

}  // namespace

CardWindowController::CardWindowController(MakeContent makeContent, Services services,
                                           const std::optional<DynamicLoader>& windowServerLoader)
    : makeContent_(std::move(makeContent)),
      services_(std::move(services)),
      log_(services_.log, kAddOnBundleIdentifier, "presenter"),
      screenObserver_(services_.screens.observeChanges([this] { screensChanged(); })),
      keepClearObserver_(services_.screens.observeKeepClear([this] { keepClearChanged(); })),
      unseenObserver_(services_.screens.observeUnseen(
          [this](Unseen reason, bool holds) { unseenChanged(reason, holds); })) {
    if (windowServerLoader) skyLight_.emplace(*windowServerLoader, services_.log);
}

void CardWindowController::present(const PresentationState& state) {
    const PresentationState previous = std::exchange(state_, state);
    apply(CardWindowSync::steps(previous, state, existing()), "state");
    if (state.cardExpected() && !previous.cardExpected()) rehearseSoon();
}

// Builds an invisible card while the lock screen is still appearing. It loads what the first
// visible card would otherwise wait for: the drawing code, the fonts, the texts' widths.
void CardWindowController::rehearseSoon() {
    services_.mainThread.post([this, life = life_.watch()] {
        if (life.isOver() || !state_.cardExpected()) return;
        const std::vector<Screen> screens = services_.screens.list();
        if (screens.empty()) return;
        makeContent_(screens.front(), services_.windows.makeStage(GlassCardView::style()))
            ->setShown(true);
    });
}

CardWindowSync::Existing CardWindowController::existing() const {
    return {.windowCount = entries_.size(),
            .isActivityActive = static_cast<bool>(activity_),
            .screenCount = services_.screens.list().size()};
}

void CardWindowController::apply(const std::vector<CardWindowSync::Step>& steps,
                                 std::string_view reason) {
    // Closing a window ends a drag, whose last volume may block in its send. A call during that
    // wait makes its own plan from the current windows. The rest of this plan would then act on a
    // newer state.
    const std::uint64_t plan = ++planCount_;
    for (const CardWindowSync::Step& step : steps) {
        if (plan != planCount_) return;
        std::visit(
            Overloaded{[&](CardWindowSync::Build build) { this->build(build.appearance, reason); },
                       [&](CardWindowSync::SetCardVisible set) { setCardVisible(set.isVisible); },
                       [&](CardWindowSync::CloseAll) { closeAll(reason); },
                       [&](CardWindowSync::BeginActivity) { beginActivity(); },
                       [&](CardWindowSync::EndActivity) { activity_.reset(); }},
            step);
    }
}

void CardWindowController::build(CardAppearance appearance, std::string_view reason) {
    const std::vector<Screen> screens = services_.screens.list();
    ++buildCount_;
    log_.info("windows: building %ld (%{public}s), card %{bool}d",
              static_cast<long>(screens.size()), reason, state_.cardShown());
    long index = 0;
    bool hasRoom = false;
    for (const Screen& screen : screens) hasRoom |= buildWindow(screen, ++index, appearance);
    services_.noteRoom(hasRoom);
    if (appearance != CardAppearance::hidden) scheduleShow(appearance);
}

bool CardWindowController::buildWindow(const Screen& screen, long index,
                                       CardAppearance appearance) {
    const auto place = CardPlacement::place(screen.frame, screen.keepClear);
    if (!place) {
        log_.info("screen %ld %{public}s: no room beside what the lock screen needs", index,
                  describe(screen.frame));
        return false;
    }
    Screen drawn = screen;
    drawn.scale *= place->scale;
    const auto stage = services_.windows.makeStage(GlassCardView::style());
    auto content = makeContent_(drawn, stage);
    auto window = services_.windows.makeWindow(*place, screen);
    if (window == nullptr) return true;  // the platform has logged the reason
    window->setMouseDownObserver([log = log_, number = window->number()](Point location) {
        log.debug("window %ld mouse down at %{public}s", number, describe(location));
    });
    window->setContent(stage);
    auto card = std::make_unique<GlassCardView>(stage, std::move(content), *window, unseen_,
                                                services_.windows.reducesMotion, services_.log);
    window->setIgnoresMouseEvents(appearance == CardAppearance::hidden);
    window->orderFrontRegardless();
    log_.info("window %ld on screen %ld %{public}s at %{public}s", window->number(), index,
              describe(screen.frame), describe(place->frame));
    if (skyLight_) skyLight_->put(*window);
    entries_.push_back({screen, place->scale, std::move(window), std::move(card)});
    return true;
}

// Runs after the current pass of the main loop, so that the windows are on screen before their
// cards enter.
void CardWindowController::scheduleShow(CardAppearance appearance) {
    services_.mainThread.post([this, life = life_.watch(), build = buildCount_, appearance] {
        if (life.isOver() || build != buildCount_ || !state_.cardShown()) return;
        for (const Entry& entry : entries_) {
            if (appearance == CardAppearance::entrance)
                entry.card->runEntrance();
            else
                entry.card->showImmediately();
        }
    });
}

void CardWindowController::setCardVisible(bool visible) {
    log_.info("card: %{public}s on %ld window(s)", visible ? "fading in" : "fading out",
              static_cast<long>(entries_.size()));
    for (const Entry& entry : entries_) {
        // A hidden card passes clicks through to the lock screen.
        entry.window->setIgnoresMouseEvents(!visible);
        if (visible && !entry.card->isShown()) entry.card->runEntrance();
        if (!visible && entry.card->isShown()) entry.card->runExit();
    }
}

void CardWindowController::closeAll(std::string_view reason) {
    log_.info("windows: closing %ld (%{public}s)", static_cast<long>(entries_.size()), reason);
    // Closing may re-enter; entries_ is already empty then.
    const std::vector<Entry> closing = std::exchange(entries_, {});
    for (const Entry& entry : closing) {
        entry.window->orderOut();
        entry.window->setContent(nullptr);
        entry.window->close();
    }
}

void CardWindowController::beginActivity() {
    if (entries_.empty() || activity_) return;
    activity_ =
        services_.beginActivity(kActivityOptions, "Showing the Quorvane player on the lock screen");
}

void CardWindowController::screensChanged() {
    log_.info("screens changed: %ld screen(s), %ld window(s), windows wanted %{bool}d",
              static_cast<long>(services_.screens.list().size()),
              static_cast<long>(entries_.size()), state_.windowsWanted());
    if (stillFits()) return;
    apply(CardWindowSync::rebuildSteps(state_, existing()), "screens changed");
}

// One reconfiguration causes a burst of notices. A rebuild for each would end a press or a drag.
bool CardWindowController::stillFits() const {
    return !entries_.empty() && std::ranges::equal(entries_, services_.screens.list(),
                                                   [](const Entry& entry, const Screen& screen) {
                                                       return entry.screen.frame == screen.frame &&
                                                              entry.screen.scale == screen.scale;
                                                   });
}

void CardWindowController::unseenChanged(Unseen reason, bool holds) {
    if (holds)
        unseen_.insert(reason);
    else
        unseen_.erase(reason);
    for (const Entry& entry : entries_) entry.card->setUnseen(reason, holds);
}

// Moves the windows out of the way of a prompt, and back. If a card gains or loses its only place,
// or changes its size, all windows are rebuilt.
void CardWindowController::keepClearChanged() {
    if (!state_.windowsWanted()) return;
    std::vector<std::pair<Screen, CardPlace>> placed;
    for (const Screen& screen : services_.screens.list())
        if (const auto place = CardPlacement::place(screen.frame, screen.keepClear))
            placed.emplace_back(screen, *place);
    const bool canMove =
        std::ranges::equal(entries_, placed, [](const Entry& entry, const auto& now) {
            return entry.screen.frame == now.first.frame && entry.scale == now.second.scale;
        });
    if (!canMove) {
        apply(CardWindowSync::rebuildSteps(state_, existing()), "keep clear");
        return;
    }
    for (std::size_t i = 0; i < placed.size(); ++i) {
        const auto& [screen, place] = placed[i];
        entries_[i].screen = screen;
        entries_[i].window->setFrame(place.frame, screen);
    }
}

}  // namespace quorvane

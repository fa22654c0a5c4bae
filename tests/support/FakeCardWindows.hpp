// Windows and stages that keep their state for tests to read.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "drawing/CardWindows.hpp"

namespace quorvane {

class FakeStage : public CardStage {
public:
    bool isHidden = true;
    int springs = 0;
    Transform lastStart;
    std::vector<Scene> scenes;
    StageEvents events;

    void setHidden(bool hidden) override { isHidden = hidden; }
    void removeAnimations() override {}
    void springFrom(const Transform& start, const Spring&) override {
        lastStart = start;
        ++springs;
    }
    void setScene(const Scene& scene) override { scenes.push_back(scene); }
    void setEvents(StageEvents newEvents) override { events = std::move(newEvents); }
};

// The state of one window; it stays readable after the window is gone.
struct FakeWindowState {
    long number = 0;
    double scale = 1;
    Rect frame;
    Screen screen;
    bool isOnScreen = false;
    bool isClosed = false;
    bool ignoresMouseEvents = true;
    double alpha = 0;
    std::vector<double> fades;
    std::function<void()> fadeCompletion;
    std::weak_ptr<CardStage> content;
    std::function<void(bool)> covered;
};

class FakeWindow : public CardSystemWindow {
public:
    explicit FakeWindow(std::shared_ptr<FakeWindowState> state) : state_(std::move(state)) {}

    long number() const override { return state_->number; }
    bool isVisible() const override { return state_->isOnScreen; }
    unsigned long occlusionState() const override { return state_->isOnScreen ? 2 : 0; }
    void setIgnoresMouseEvents(bool ignores) override { state_->ignoresMouseEvents = ignores; }
    void setContent(std::shared_ptr<CardStage> stage) override { state_->content = stage; }
    void setFrame(const Rect& frame, const Screen& screen) override {
        state_->frame = frame;
        state_->screen = screen;
    }
    void orderFrontRegardless() override { state_->isOnScreen = true; }
    void orderOut() override { state_->isOnScreen = false; }
    void close() override { state_->isClosed = true; }
    void setAlpha(double alpha) override {
        finishFade();
        state_->alpha = alpha;
    }
    void animateAlpha(double alpha, Duration, std::function<void()> completion) override {
        finishFade();
        state_->fades.push_back(alpha);
        state_->fadeCompletion = [state = state_.get(), alpha, completion] {
            state->alpha = alpha;
            if (completion) completion();
        };
    }
    void setMouseDownObserver(std::function<void(Point)>) override {}
    void setCoverObserver(std::function<void(bool)> observer) override {
        state_->covered = std::move(observer);
    }

private:
    // A later fade ends the running one, whose completion is still called.
    void finishFade() {
        if (auto completion = std::exchange(state_->fadeCompletion, nullptr)) completion();
    }

    std::shared_ptr<FakeWindowState> state_;
};

// One table of card windows, and every window that it has made.
struct FakeCardWindows {
    std::vector<std::shared_ptr<FakeWindowState>> windows;
    std::vector<std::shared_ptr<FakeStage>> stages;
    bool reducesMotion = false;

    CardWindows table() {
        return {.makeWindow = [this](const CardPlace& place,
                                     const Screen& screen) -> std::unique_ptr<CardSystemWindow> {
                    auto state = std::make_shared<FakeWindowState>();
                    state->number = 101 + static_cast<long>(windows.size());
                    state->scale = place.scale;
                    state->frame = place.frame;
                    state->screen = screen;
                    windows.push_back(state);
                    return std::make_unique<FakeWindow>(state);
                },
                .makeStage =
                    [this](const CardStyle&) {
                        stages.push_back(std::make_shared<FakeStage>());
                        return stages.back();
                    },
                .reducesMotion = [this] { return reducesMotion; },
                .measureText =
                    [](const std::string& text, const FontStyle& font) {
                        return 0.5 * font.size * static_cast<double>(text.size());
                    }};
    }

    std::vector<std::shared_ptr<FakeWindowState>> open() const {
        std::vector<std::shared_ptr<FakeWindowState>> standing;
        std::ranges::copy_if(windows, std::back_inserter(standing), [](const auto& window) {
            return window->isOnScreen && !window->isClosed;
        });
        return standing;
    }
};

// Screens that a test sets and changes.
struct FakeScreens {
    std::vector<Screen> list;
    std::function<void()> changed;
    std::function<void()> keepClearChanged;
    std::function<void(Unseen, bool)> unseen;

    Screens table() {
        return {.list = [this] { return list; },
                .observeChanges =
                    [this](std::function<void()> handler) {
                        changed = std::move(handler);
                        return Handle{[this] { changed = nullptr; }};
                    },
                .observeKeepClear =
                    [this](std::function<void()> handler) {
                        keepClearChanged = std::move(handler);
                        return Handle{[this] { keepClearChanged = nullptr; }};
                    },
                .observeUnseen =
                    [this](std::function<void(Unseen, bool)> handler) {
                        unseen = std::move(handler);
                        return Handle{[this] { unseen = nullptr; }};
                    }};
    }
};

}  // namespace quorvane

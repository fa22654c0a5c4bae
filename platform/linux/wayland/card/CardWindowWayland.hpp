// A card window on Wayland: visibility, fades, drawing at the compositor's pace, and the delivery
// of presses.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/card/CardPainter.hpp"
#include "platform/linux/card/CardWindowLinux.hpp"
#include "platform/linux/card/PressTracker.hpp"
#include "platform/linux/wayland/WaylandSession.hpp"
#include "platform/linux/wayland/card/SharedPictures.hpp"

namespace quorvane {

// Main thread only. Its surface exists only while part of the card is visible. The shadow has real
// alpha and takes no pointer, so it may reach into an area to keep clear.
class CardWindowWayland final : public CardWindowLinux {
public:
    CardWindowWayland(WaylandSession& session, std::shared_ptr<CardResources> resources,
                      const CardPlace& place, const Screen& screen, long number);
    ~CardWindowWayland() override;

    long number() const override { return number_; }
    unsigned long occlusionState() const override { return shown_ ? kOcclusionVisible : 0; }
    void setIgnoresMouseEvents(bool ignores) override;
    void setFrame(const Rect& frame, const Screen& screen) override;

private:
    static constexpr Duration kFrameTimeout = std::chrono::seconds{2};
    static constexpr Duration kLongestFrameTimeout = std::chrono::minutes{1};
    static constexpr Duration kProbeInterval = std::chrono::seconds{3};

    // State that exists only while the card is visible.
    struct Shown {
        CardPainter painter;
        std::unique_ptr<SharedPictures> pictures;
        std::unique_ptr<WaylandSurface> surface;
        bool awaitsFrame = false;  // a frame callback is pending
        Instant lastFrame{};
        bool isStale = true;        // everything must be drawn
        std::vector<Rect> areas{};  // that must be drawn, in card coordinates
    };

    Rect inkOf(const TextNode& text) override {
        return shown_ ? shown_->painter.inkOf(text) : text.frame;
    }
    void sceneChanged(const std::vector<Rect>& areas) override;
    void updateSoon() override;
    void update() override;
    void hide() override;
    void endFade() override;
    Point origin() const override;

    bool show();
    bool needsNewSurface(Instant now);
    void probeSoon();
    SurfaceEvents surfaceEvents();
    void drawIfPaced(Instant now);
    void drawChanges(Instant now);
    void present(std::uint32_t picture, const std::vector<PixelRect>& parts, Instant now);
    void syncInput();
    void pressed(const SurfacePress& press);
    void report(const std::optional<PointerEvent>& event);

    WaylandSession& session_;
    Rect frame_;
    long number_;
    Timer fadeEnd_;
    Timer nextProbe_;
    std::optional<Shown> shown_;
    Duration frameTimeout_ = kFrameTimeout;  // with a compositor that shows nothing
    PressTracker press_;
};

}  // namespace quorvane

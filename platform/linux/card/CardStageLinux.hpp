// The stage of a card: its scene and its movement. Its window draws it.
#pragma once

#include <optional>
#include <vector>

#include "drawing/CardWindows.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// The callbacks of a stage to its window.
class StageHost {
public:
    virtual ~StageHost() = default;
    // The part of a text's frame that its letters may cover.
    virtual Rect inkOf(const TextNode& text) = 0;
    // These parts of the scene look different now; card coordinates.
    virtual void sceneChanged(const std::vector<Rect>& areas) = 0;
    virtual void controlsChanged() = 0;
    // Its visibility or its movement has changed.
    virtual void stageChanged() = 0;
};

// Main thread only.
class CardStageLinux final : public CardStage {
public:
    explicit CardStageLinux(const CardStyle& style) : style_(style) {}

    void setHidden(bool hidden) override;
    void removeAnimations() override;
    void springFrom(const Transform& start, const Spring& spring) override;
    void setScene(const Scene& scene) override;
    void setEvents(StageEvents events) override { events_ = std::move(events); }

    // For the window. The host resets this to null before it ends.
    void setHost(StageHost* host) { host_ = host; }
    const CardStyle& style() const { return style_; }
    const Scene& scene() const { return scene_; }
    bool isHidden() const { return isHidden_; }
    // A movement begins with the first frame that shows it, however long that frame took to draw.
    void beginMovement(Instant now);
    bool isMoving(Instant now) const;
    Transform transformAt(Instant now) const;
    // Copy a callback before calling it, because the content may replace its events inside the
    // call.
    const StageEvents& events() const { return events_; }

private:
    struct Movement {
        Transform start;
        Spring spring;
        std::optional<Instant> begin;
    };

    CardStyle style_;
    Scene scene_;
    StageEvents events_;
    bool isHidden_ = true;
    std::optional<Movement> movement_;
    StageHost* host_ = nullptr;
};

}  // namespace quorvane

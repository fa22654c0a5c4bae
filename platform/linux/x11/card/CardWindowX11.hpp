// A card window on X11.
#pragma once

#include <memory>
#include <optional>

#include "platform/linux/card/CardWindowLinux.hpp"
#include "platform/linux/x11/X11Session.hpp"
#include "platform/linux/x11/card/CardDisplay.hpp"
#include "platform/linux/x11/card/CardPointer.hpp"
#include "platform/linux/x11/card/CardXWindow.hpp"

namespace quorvane {

// Main thread only. The X window is mapped only while part of the card is visible: at alpha 0 the
// lock screen looks as if there were no card. When the locker's window is destroyed the server
// destroys this one too; afterwards this object shows nothing.
class CardWindowX11 final : public CardWindowLinux {
public:
    // Returns null when no locker's window can hold it; the reason is logged.
    static std::unique_ptr<CardWindowX11> make(X11Session& x11,
                                               std::shared_ptr<CardResources> resources,
                                               const CardPlace& place, const Screen& screen);
    ~CardWindowX11() override;

    long number() const override { return static_cast<long>(child_->window()); }
    unsigned long occlusionState() const override;
    void setIgnoresMouseEvents(bool ignores) override;
    void setFrame(const Rect& frame, const Screen& screen) override;
    void close() override;

private:
    CardWindowX11(X11Session& x11, std::shared_ptr<CardResources> resources, const CardPlace& place,
                  const Screen& screen);
    Rect inkOf(const TextNode& text) override {
        return display_ ? display_->inkOf(text) : text.frame;
    }
    void sceneChanged(const std::vector<Rect>& areas) override;
    void update() override;
    void hide() override;
    bool canAppear() const override { return child_->exists(); }
    Point origin() const override { return child_->origin(); }

    void updateAfter(Duration delay);
    bool show(Instant now);
    void conceal();
    StageLook look(Instant now) const;
    void syncPointer();
    void moveArrow(std::optional<Point> place);

    X11Session& x11_;
    Instant readableAt_{};  // when the locker's picture can be read
    std::optional<Point> arrow_;
    Timer nextFrame_;
    // Each refers to the one above.
    std::unique_ptr<CardXWindow> child_;
    std::unique_ptr<CardDisplay> display_;
    std::unique_ptr<CardPointer> pointer_;
};

}  // namespace quorvane

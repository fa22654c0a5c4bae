// Owner of the card windows, one for each screen: carries out the plans of CardWindowSync, and
// plans again when the screens change.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "AddOnKit/presentation/CardWindowSync.hpp"
#include "AddOnKit/presentation/PresentationState.hpp"
#include "Quorvane_Lock_Screen/GlassCardView.hpp"
#include "Quorvane_Lock_Screen/SkyLight.hpp"
#include "drawing/Screens.hpp"
#include "platform/DynamicLoader.hpp"
#include "platform/LifeToken.hpp"
#include "platform/MainThread.hpp"
#include "platform/ProcessInfo.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator.
class CardWindowController {
public:
    struct Services {
        LogSink log;
        CardWindows windows;
        Screens screens;
        MainThread mainThread;
        BeginActivity beginActivity;
        // Called at each build: whether any screen had room for a card.
        std::function<void(bool hasRoom)> noteRoom = [](bool) {};
    };
    using MakeContent =
        std::function<std::unique_ptr<CardContent>(const Screen&, std::shared_ptr<CardStage>)>;

    // With a loader, the window server's private interface moves the windows above the lock screen.
    // Without one, the platform makes them above it.
    CardWindowController(MakeContent makeContent, Services services,
                         const std::optional<DynamicLoader>& windowServerLoader = std::nullopt);

    // Plans the steps from the last state to this one and carries them out.
    void present(const PresentationState& state);

private:
    struct Entry {
        Screen screen;
        double scale;  // of the card
        std::unique_ptr<CardSystemWindow> window;
        std::unique_ptr<GlassCardView> card;
    };

    void rehearseSoon();
    CardWindowSync::Existing existing() const;
    void apply(const std::vector<CardWindowSync::Step>& steps, std::string_view reason);
    void build(CardWindowSync::CardAppearance appearance, std::string_view reason);
    // Returns whether the screen has room for the card.
    bool buildWindow(const Screen& screen, long index, CardWindowSync::CardAppearance appearance);
    void scheduleShow(CardWindowSync::CardAppearance appearance);
    void setCardVisible(bool visible);
    void closeAll(std::string_view reason);
    void beginActivity();
    void screensChanged();
    // Whether each screen has a window that was built for its frame and scale.
    bool stillFits() const;
    void keepClearChanged();
    void unseenChanged(Unseen reason, bool holds);

    MakeContent makeContent_;
    Services services_;
    Logger log_;
    std::optional<SkyLight> skyLight_;
    std::vector<Entry> entries_;  // in screen order
    PresentationState state_;
    std::set<Unseen> unseen_;  // of all cards
    std::uint64_t planCount_ = 0;
    std::uint64_t buildCount_ = 0;
    Handle activity_;
    Handle screenObserver_;
    Handle keepClearObserver_;
    Handle unseenObserver_;
    LifeToken life_;
};

}  // namespace quorvane

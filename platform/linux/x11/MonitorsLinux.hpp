// The monitors and their current arrangement on the X server.
#pragma once

#include <functional>

#include "lockers/ScreenLayout.hpp"
#include "platform/Clock.hpp"
#include "platform/Listeners.hpp"
#include "platform/linux/x11/X11Connection.hpp"

namespace quorvane {

// Main thread only. Servers without RandR have one monitor, the whole root window.
class MonitorsLinux {
public:
    MonitorsLinux(X11Connection& x11, const Clock& clock);

    const ScreenLayout& layout() const { return layout_; }
    // The user's setting, else the screen's own value, as is usual on X11.
    double dotsPerInch() const { return dotsPerInch_; }
    // Reads everything again at once. Needed because the server sends no event when the user's dots
    // per inch change.
    void refresh();
    // Reports the screens soon, even if their layout stays the same.
    void reportSoon();
    // Reports a changed layout. The layout is read and reported once, after the server has been
    // quiet for a moment, so that lockers can follow the monitors first.
    Handle observe(std::function<void()> handler) { return listeners_.add(std::move(handler)); }
    // Reports when the server blanks all monitors, as when they sleep, and when it ends that.
    Handle observeBlanking(std::function<void(bool isBlank)> handler) {
        return blankingListeners_.add(std::move(handler));
    }

private:
    void observeServer();
    void observeScreenSaver();
    void settle();
    void readLayout();
    std::vector<Rect> readMonitors();

    X11Connection& x11_;
    Clock clock_;
    bool mustReport_ = false;
    Timer settled_;
    ScreenLayout layout_;
    double screenDotsPerInch_;
    double dotsPerInch_ = 0;
    Listeners<> listeners_;
    Listeners<bool> blankingListeners_;
    std::vector<Handle> observations_;
};

}  // namespace quorvane

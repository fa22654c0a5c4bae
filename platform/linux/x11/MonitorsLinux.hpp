// The monitors as the X server arranges them now.
#pragma once

#include <functional>

#include "lockers/ScreenLayout.hpp"
#include "platform/Clock.hpp"
#include "platform/linux/loop/Listeners.hpp"
#include "platform/linux/x11/X11Connection.hpp"

namespace quorvane {

// Main thread only. Servers without RandR have one monitor, the whole root window.
class MonitorsLinux {
public:
    MonitorsLinux(X11Connection& x11, const Clock& clock);

    const ScreenLayout& layout() const { return layout_; }
    // The user's, else the screen's own, as programs on X11 take them.
    double dotsPerInch() const { return dotsPerInch_; }
    // Reads everything again at once; the user's dots per inch change without a notice.
    void refresh();
    // The screens are to be reported although their layout is the same.
    void reportSoon();
    // Reports a layout that differs from the one before. The layout is read, and reported once,
    // when the server has been quiet for a moment: lockers follow the monitors in that time.
    Handle observe(std::function<void()> handler) { return listeners_.add(std::move(handler)); }

private:
    void observeServer();
    void settle();
    void readLayout();
    std::vector<Rect> readMonitors();

    X11Connection& x11_;
    bool hasRandR_ = false;
    Clock clock_;
    bool mustReport_ = false;
    Timer settled_;
    ScreenLayout layout_;
    double screenDotsPerInch_;
    double dotsPerInch_ = 0;
    Listeners<> listeners_;
    std::vector<Handle> observations_;
};

}  // namespace quorvane

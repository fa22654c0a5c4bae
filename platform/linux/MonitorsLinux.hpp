// The monitors as the X server arranges them now.
#pragma once

#include <functional>

#include "platform/linux/Listeners.hpp"
#include "platform/linux/ScreenLayout.hpp"
#include "platform/linux/X11Connection.hpp"

namespace quorvane {

// Main thread only. Servers without RandR have one monitor, the whole root window.
class MonitorsLinux {
public:
    explicit MonitorsLinux(X11Connection& x11);

    const ScreenLayout& layout() const { return layout_; }
    // The user's, else the screen's own, as programs on X11 take them.
    double dotsPerInch() const { return dotsPerInch_; }
    // Reads everything again; the user's dots per inch change without a notice.
    void refresh();
    // Reports a layout that differs from the one before.
    Handle observe(std::function<void()> handler) { return listeners_.add(std::move(handler)); }

private:
    void observeServer();
    void readLayout();
    std::vector<Rect> readMonitors();

    X11Connection& x11_;
    bool hasRandR_ = false;
    bool isStale_ = false;
    ScreenLayout layout_;
    double screenDotsPerInch_;
    double dotsPerInch_ = 0;
    Listeners<> listeners_;
    std::vector<Handle> observations_;
};

}  // namespace quorvane

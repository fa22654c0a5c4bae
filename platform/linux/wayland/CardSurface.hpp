// One card's layer surface, with its pictures in memory that the card's window draws into.
#pragma once

#include <array>
#include <functional>

#include "platform/linux/wayland/WaylandHandles.hpp"
#include "platform/linux/wayland/WaylandSession.hpp"

namespace quorvane {

// The compositor's objects that surfaces are made with.
struct SurfaceGlobals {
    Wayland<wl_compositor> compositor;
    Wayland<wl_shm> shm;
    Wayland<zwlr_layer_shell_v1> layerShell;
    Wayland<wp_viewporter> viewporter;
    Wayland<kde_lockscreen_overlay_v1> kdeOverlay;
};

// Layer overlay, no keyboard. Visible from its first picture on.
class CardSurface final : public WaylandSurface {
public:
    CardSurface(const SurfaceGlobals& globals, wl_output* output, const char* layerNamespace,
                const SurfaceRequest& request, SurfaceEvents events,
                std::function<void(CardSurface&)> gone);
    ~CardSurface() override { gone_(*this); }
    CardSurface(const CardSurface&) = delete;
    CardSurface& operator=(const CardSurface&) = delete;

    void setInput(std::span<const PixelRect> parts) override;
    void show(std::uint32_t picture, std::span<const PixelRect> parts) override;

    wl_surface* surface() const { return surface_.get(); }
    void pressed(const SurfacePress& press) const { call(events_.press, press); }
    // Releases everything that belongs to the connection, and notifies the window.
    void end();

private:
    void makePictures(wl_shm* shm, const SurfaceRequest& request);
    void configured(std::uint32_t serial);
    // A copy of the handler runs, because it may destroy this object.
    static void call(auto handler, auto... arguments) { handler(arguments...); }

    wl_compositor* compositor_;
    SurfaceEvents events_;
    std::function<void(CardSurface&)> gone_;
    bool isConfigured_ = false;
    bool isWaiting_ = false;  // with a picture for the compositor's first configuration
    // The surface outlives its roles.
    std::array<Wayland<wl_buffer>, kPictures> pictures_;
    Wayland<wl_surface> surface_;
    Wayland<wp_viewport> viewport_;
    Wayland<zwlr_layer_surface_v1> layer_;
    Wayland<wl_callback> frame_;
};

}  // namespace quorvane

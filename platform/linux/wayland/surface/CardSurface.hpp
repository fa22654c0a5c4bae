// One card's layer surface, with its pictures in memory that the add-on draws into.
#pragma once

#include <array>
#include <functional>
#include <optional>

#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/wayland/messages/SurfaceMessages.hpp"
#include "platform/linux/wayland/surface/WaylandHandles.hpp"

namespace quorvane {

// The compositor's objects that surfaces are made with.
struct SurfaceGlobals {
    Wayland<wl_compositor> compositor;
    Wayland<wl_shm> shm;
    Wayland<zwlr_layer_shell_v1> layerShell;
    Wayland<wp_viewporter> viewporter;
    Wayland<kde_lockscreen_overlay_v1> kdeOverlay;
};

// Layer overlay, no keyboard, no input until told where. It is seen from its first picture on.
class CardSurface {
public:
    using Report = std::function<void(FromSurface)>;

    CardSurface(const SurfaceGlobals& globals, wl_output* output, const ToSurface& request,
                FileDescriptor memory, Report report);
    CardSurface(const CardSurface&) = delete;
    CardSurface& operator=(const CardSurface&) = delete;

    std::uint32_t number() const { return number_; }
    wl_surface* surface() const { return surface_.get(); }
    void setInput(const PixelRects& parts);
    // Waits for the compositor's first configuration if need be.
    void show(const ToSurface& request);

private:
    void makePictures(wl_shm* shm, const ToSurface& request, const FileDescriptor& memory);
    void configured(std::uint32_t serial);
    void commit(const ToSurface& request);
    void report(FromSurface::Kind kind, std::uint32_t picture = 0);

    static void onConfigure(void* self, zwlr_layer_surface_v1*, std::uint32_t serial,
                            std::uint32_t width, std::uint32_t height);
    static void onClosed(void* self, zwlr_layer_surface_v1*);
    static void onFrame(void* self, wl_callback*, std::uint32_t time);
    static void onRelease(void* self, wl_buffer* buffer);

    wl_compositor* compositor_;
    std::uint32_t number_;
    Report report_;
    bool isConfigured_ = false;
    std::optional<ToSurface> waiting_;
    // The surface outlives its roles.
    std::array<Wayland<wl_buffer>, kPictures> pictures_;
    Wayland<wl_surface> surface_;
    Wayland<wp_viewport> viewport_;
    Wayland<zwlr_layer_surface_v1> layer_;
    Wayland<wl_callback> frame_;
};

}  // namespace quorvane

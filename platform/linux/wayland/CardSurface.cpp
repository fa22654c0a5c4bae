#include "platform/linux/wayland/CardSurface.hpp"

#include <algorithm>
#include <utility>

namespace quorvane {
namespace {

constexpr std::int32_t kBesidePanels = -1;  // panels and docks do not move the surface
constexpr std::uint32_t kNoKeyboard = 0;

}  // namespace

CardSurface::CardSurface(const SurfaceGlobals& globals, wl_output* output,
                         const char* layerNamespace, const SurfaceRequest& request,
                         SurfaceEvents events, std::function<void(CardSurface&)> gone)
    : compositor_(globals.compositor.get()),
      events_(std::move(events)),
      gone_(std::move(gone)),
      surface_(wl_compositor_create_surface(compositor_)) {
    static constexpr zwlr_layer_surface_v1_listener kListener{
        .configure = [](void* self, zwlr_layer_surface_v1*, std::uint32_t serial, std::uint32_t,
                        std::uint32_t) { static_cast<CardSurface*>(self)->configured(serial); },
        .closed = [](void* self,
                     zwlr_layer_surface_v1*) { static_cast<CardSurface*>(self)->end(); }};
    makePictures(globals.shm.get(), request);
    layer_.reset(zwlr_layer_shell_v1_get_layer_surface(globals.layerShell.get(), surface(), output,
                                                       ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
                                                       layerNamespace));
    zwlr_layer_surface_v1_add_listener(layer_.get(), &kListener, this);
    const PixelRect& place = request.place;
    const int width = std::max(1, place.width);
    const int height = std::max(1, place.height);
    zwlr_layer_surface_v1_set_size(layer_.get(), static_cast<std::uint32_t>(width),
                                   static_cast<std::uint32_t>(height));
    zwlr_layer_surface_v1_set_anchor(
        layer_.get(), ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    zwlr_layer_surface_v1_set_margin(layer_.get(), place.y, 0, 0, place.x);
    zwlr_layer_surface_v1_set_exclusive_zone(layer_.get(), kBesidePanels);
    zwlr_layer_surface_v1_set_keyboard_interactivity(layer_.get(), kNoKeyboard);
    if (globals.kdeOverlay) kde_lockscreen_overlay_v1_allow(globals.kdeOverlay.get(), surface());
    if (globals.viewporter) {
        viewport_.reset(wp_viewporter_get_viewport(globals.viewporter.get(), surface()));
        wp_viewport_set_destination(viewport_.get(), width, height);
    } else {
        wl_surface_set_buffer_scale(surface(), std::max(1, request.width / width));
    }
    setInput({});
    wl_surface_commit(surface());
}

void CardSurface::makePictures(wl_shm* shm, const SurfaceRequest& request) {
    static constexpr wl_buffer_listener kListener{[](void* self, wl_buffer* buffer) {
        auto& card = *static_cast<CardSurface*>(self);
        const auto found = std::ranges::find(card.pictures_, buffer, &Wayland<wl_buffer>::get);
        call(card.events_.released, static_cast<std::uint32_t>(found - card.pictures_.begin()));
    }};
    const int stride = request.width * kBytesPerPixel;
    const int size = stride * request.height;
    const Wayland<wl_shm_pool> pool{
        wl_shm_create_pool(shm, request.memory, size * static_cast<int>(kPictures))};
    int offset = 0;
    for (auto& picture : pictures_) {
        picture.reset(wl_shm_pool_create_buffer(pool.get(), offset, request.width, request.height,
                                                stride, WL_SHM_FORMAT_ARGB8888));
        wl_buffer_add_listener(picture.get(), &kListener, this);
        offset += size;
    }
}

void CardSurface::setInput(std::span<const PixelRect> parts) {
    if (!surface_) return;
    const Wayland<wl_region> region{wl_compositor_create_region(compositor_)};
    for (const PixelRect& part : parts)
        wl_region_add(region.get(), part.x, part.y, part.width, part.height);
    wl_surface_set_input_region(surface(), region.get());
    if (isConfigured_) wl_surface_commit(surface());
}

void CardSurface::show(std::uint32_t picture, std::span<const PixelRect> parts) {
    static constexpr wl_callback_listener kListener{[](void* self, wl_callback*, std::uint32_t) {
        auto& card = *static_cast<CardSurface*>(self);
        card.frame_.reset();
        call(card.events_.frame);
    }};
    if (!surface_) return;
    wl_surface_attach(surface(), pictures_[picture].get(), 0, 0);
    for (const PixelRect& part : parts)
        wl_surface_damage_buffer(surface(), part.x, part.y, part.width, part.height);
    frame_.reset(wl_surface_frame(surface()));
    wl_callback_add_listener(frame_.get(), &kListener, this);
    if (isConfigured_)
        wl_surface_commit(surface());
    else
        isWaiting_ = true;
}

void CardSurface::configured(std::uint32_t serial) {
    zwlr_layer_surface_v1_ack_configure(layer_.get(), serial);
    isConfigured_ = true;
    if (std::exchange(isWaiting_, false)) wl_surface_commit(surface());
}

void CardSurface::end() {
    frame_.reset();
    layer_.reset();
    viewport_.reset();
    surface_.reset();
    pictures_ = {};
    call(events_.closed);
}

}  // namespace quorvane

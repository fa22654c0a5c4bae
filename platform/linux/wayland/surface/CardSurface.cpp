#include "platform/linux/wayland/surface/CardSurface.hpp"

#include <cmath>
#include <utility>

namespace quorvane {
namespace {

constexpr std::int32_t kBesidePanels = -1;  // panels and docks do not move the surface
constexpr std::uint32_t kNoKeyboard = 0;
constexpr char kNamespace[] = "quorvane-card";

std::uint32_t lengthOf(int length) { return static_cast<std::uint32_t>(std::max(1, length)); }

void addTo(wl_region* region, const PixelRects& parts) {
    for (const PixelRect& part : parts.list())
        wl_region_add(region, part.x, part.y, part.width, part.height);
}

}  // namespace

CardSurface::CardSurface(const SurfaceGlobals& globals, wl_output* output, const ToSurface& request,
                         FileDescriptor memory, Report report)
    : compositor_(globals.compositor.get()),
      number_(request.surface),
      report_(std::move(report)),
      surface_(wl_compositor_create_surface(compositor_)) {
    static constexpr zwlr_layer_surface_v1_listener kListener{onConfigure, onClosed};
    makePictures(globals.shm.get(), request, memory);
    layer_.reset(zwlr_layer_shell_v1_get_layer_surface(globals.layerShell.get(), surface_.get(),
                                                       output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
                                                       kNamespace));
    zwlr_layer_surface_v1_add_listener(layer_.get(), &kListener, this);
    const PixelRect& place = request.place;
    zwlr_layer_surface_v1_set_size(layer_.get(), lengthOf(place.width), lengthOf(place.height));
    zwlr_layer_surface_v1_set_anchor(
        layer_.get(), ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    zwlr_layer_surface_v1_set_margin(layer_.get(), place.y, 0, 0, place.x);
    zwlr_layer_surface_v1_set_exclusive_zone(layer_.get(), kBesidePanels);
    zwlr_layer_surface_v1_set_keyboard_interactivity(layer_.get(), kNoKeyboard);
    if (globals.kdeOverlay) kde_lockscreen_overlay_v1_allow(globals.kdeOverlay.get(), surface());
    if (globals.viewporter) {
        viewport_.reset(wp_viewporter_get_viewport(globals.viewporter.get(), surface()));
        wp_viewport_set_destination(viewport_.get(), std::max(1, place.width),
                                    std::max(1, place.height));
    } else {
        wl_surface_set_buffer_scale(surface(),
                                    std::max(1, request.width / std::max(1, place.width)));
    }
    setInput({});
    wl_surface_commit(surface());
}

void CardSurface::makePictures(wl_shm* shm, const ToSurface& request,
                               const FileDescriptor& memory) {
    static constexpr wl_buffer_listener kListener{onRelease};
    const int stride = request.width * kBytesAPixel;
    const int size = stride * request.height;
    const Wayland<wl_shm_pool> pool{
        wl_shm_create_pool(shm, memory.get(), size * static_cast<int>(kPictures))};
    int offset = 0;
    for (auto& picture : pictures_) {
        picture.reset(wl_shm_pool_create_buffer(pool.get(), offset, request.width, request.height,
                                                stride, WL_SHM_FORMAT_ARGB8888));
        wl_buffer_add_listener(picture.get(), &kListener, this);
        offset += size;
    }
}

void CardSurface::setInput(const PixelRects& parts) {
    const Wayland<wl_region> region{wl_compositor_create_region(compositor_)};
    addTo(region.get(), parts);
    wl_surface_set_input_region(surface(), region.get());
    if (isConfigured_) wl_surface_commit(surface());
}

void CardSurface::show(const ToSurface& request) {
    if (isConfigured_)
        commit(request);
    else
        waiting_ = request;
}

void CardSurface::commit(const ToSurface& request) {
    static constexpr wl_callback_listener kListener{onFrame};
    wl_surface_attach(surface(), pictures_[request.picture % kPictures].get(), 0, 0);
    for (const PixelRect& part : request.parts.list())
        wl_surface_damage_buffer(surface(), part.x, part.y, part.width, part.height);
    frame_.reset(wl_surface_frame(surface()));
    wl_callback_add_listener(frame_.get(), &kListener, this);
    wl_surface_commit(surface());
}

void CardSurface::configured(std::uint32_t serial) {
    zwlr_layer_surface_v1_ack_configure(layer_.get(), serial);
    isConfigured_ = true;
    if (const auto first = std::exchange(waiting_, std::nullopt)) commit(*first);
}

void CardSurface::report(FromSurface::Kind kind, std::uint32_t picture) {
    report_({.kind = kind, .surface = number_, .picture = picture});
}

void CardSurface::onConfigure(void* self, zwlr_layer_surface_v1*, std::uint32_t serial,
                              std::uint32_t, std::uint32_t) {
    static_cast<CardSurface*>(self)->configured(serial);
}

void CardSurface::onClosed(void* self, zwlr_layer_surface_v1*) {
    static_cast<CardSurface*>(self)->report(FromSurface::Kind::closed);
}

void CardSurface::onFrame(void* self, wl_callback*, std::uint32_t) {
    static_cast<CardSurface*>(self)->frame_.reset();
    static_cast<CardSurface*>(self)->report(FromSurface::Kind::frame);
}

void CardSurface::onRelease(void* self, wl_buffer* buffer) {
    auto& card = *static_cast<CardSurface*>(self);
    for (std::uint32_t i = 0; i < kPictures; ++i)
        if (card.pictures_[i].get() == buffer) card.report(FromSurface::Kind::released, i);
}

}  // namespace quorvane

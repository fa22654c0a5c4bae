// A small Wayland compositor on the test's own loop: the interfaces that the card uses, and a
// record of every request.
#pragma once

#include <wayland-server.h>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

class TestCompositor {
public:
    struct Output {
        int width = 0;  // pixels
        int height = 0;
        int transform = 0;
        int wholeScale = 1;
        PixelRect logical{};
        wl_global* global = nullptr;
    };
    struct Surface {
        wl_resource* resource = nullptr;
        wl_resource* layer = nullptr;
        wl_resource* buffer = nullptr;   // attached
        wl_resource* reading = nullptr;  // committed, not yet released
        std::vector<wl_resource*> frames{};
        std::vector<PixelRect> input{};
        std::vector<PixelRect> damage{};
        PixelRect destination{};
        Pixels shown{};
        int commits = 0;
        bool isCovered = false;  // keeps its pictures
    };

    // Listens at "wayland-test" in XDG_RUNTIME_DIR.
    explicit TestCompositor(EventLoop& loop, bool hasKdeOverlay = true);
    ~TestCompositor() { end(); }
    TestCompositor(const TestCompositor&) = delete;
    TestCompositor& operator=(const TestCompositor&) = delete;

    void offerKdeOverlay();
    Output& addOutput(Output output);
    void remove(Output& output);
    // Acts as a repaint: requests the next pictures and releases the previous ones.
    void repaint();
    void closeLayers();
    // A press at a place of the newest surface, moved and lifted there.
    void enter(Point place);
    void button(std::uint32_t button, bool isDown);
    void move(Point place);
    void touchDown(Point place);
    void touchUp();
    // Sends Hyprland's notice.
    void tellLocked(bool isLocked);
    // Ends the compositor.
    void end();

    // Every request so far, as "interface.request(numbers and texts)".
    std::vector<std::string> requests{};
    bool heard(const std::string& beginning) const;
    std::list<Surface> surfaces{};
    Surface& surface() { return surfaces.back(); }
    int clientCount() const;
    pid_t clientProcess() const;  // of the only client

private:
    struct Offer {
        TestCompositor* self;
        const wl_interface* interface;
        Output* output;
    };

    wl_resource* make(wl_client* client, const wl_interface& interface, int version,
                      std::uint32_t id, void* data = nullptr,
                      wl_resource_destroy_func_t gone = nullptr);
    void handle(wl_resource* of, const std::string& request, const wl_argument* arguments);
    void commit(Surface& surface);
    wl_global* offer(const wl_interface& interface, int version, Output* output = nullptr);
    void flush();

    wl_display* display_;
    Handle watch_;
    Handle beforeSleep_;
    wl_protocol_logger* logger_ = nullptr;
    std::list<Output> outputs_;
    std::list<Offer> offers_;
    wl_resource* pointer_ = nullptr;
    wl_resource* touch_ = nullptr;
    wl_resource* lockNotification_ = nullptr;
};

}  // namespace quorvane

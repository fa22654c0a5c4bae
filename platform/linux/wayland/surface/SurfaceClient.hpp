// The Wayland client of the surface process: carries out the add-on's messages and reports what the
// compositor says.
#pragma once

#include <list>
#include <memory>
#include <utility>

#include "platform/linux/wayland/messages/MessageSocket.hpp"
#include "platform/linux/wayland/surface/CardSurface.hpp"
#include "platform/linux/wayland/surface/OutputInfo.hpp"
#include "platform/linux/wayland/surface/SeatInput.hpp"

namespace quorvane {

class SurfaceClient {
public:
    explicit SurfaceClient(MessageSocket socket) : socket_(std::move(socket)) {}

    // Returns when one of the two connections has ended. The compositor then removes the surfaces.
    void run();

private:
    bool connect();
    // Both return false at the end of their connection.
    bool handleMessages();
    bool handleEvents(short ready);
    void perform(const ToSurface& request, FileDescriptor file);
    void open(const ToSurface& request, FileDescriptor memory);
    void armLimit() const;

    void appeared(std::uint32_t name, const char* interface, std::uint32_t version);
    void vanished(std::uint32_t name);
    void addSeat(std::uint32_t name);
    void addOutput(std::uint32_t name, std::uint32_t version);
    void describe(OutputInfo& output);
    void report(const OutputInfo& output) const;
    void askToStart(void (SurfaceClient::*step)());
    void globalsKnown();
    void outputsKnown();
    void send(const FromSurface& message) const { socket_.send(message); }
    void fail(const char* reason) const;
    CardSurface* surfaceOf(std::uint32_t number);

    static const wl_registry_listener kRegistryListener;

    MessageSocket socket_;
    // The display ends last.
    Wayland<wl_display> display_;
    Wayland<wl_registry> registry_;
    Wayland<wl_callback> start_;
    void (SurfaceClient::*nextStep_)() = nullptr;
    SurfaceGlobals globals_;
    Wayland<zxdg_output_manager_v1> outputManager_;
    std::list<OutputInfo> outputs_;
    std::list<SeatInput> seats_;
    std::list<CardSurface> surfaces_;
    bool isStarted_ = false;
};

}  // namespace quorvane

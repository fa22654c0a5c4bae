// Entry of the process that owns the card's Wayland surfaces. It is separate so that the surfaces
// end with it: compositors leave them on the desktop after the unlock. The add-on starts it at a
// lock, kills it at the unlock, and draws; this process loads no drawing library.

#include "platform/linux/wayland/surface/SurfaceClient.hpp"

int main() {
    quorvane::MessageSocket socket{quorvane::FileDescriptor{quorvane::kSurfaceSocket}};
    quorvane::SurfaceClient{std::move(socket)}.run();
    return 1;
}

// Entry of the process that owns the card's Wayland surfaces. It is separate so that the surfaces
// end with it: compositors leave them on the desktop after the unlock. The add-on starts it at a
// lock, kills it at the unlock, and draws; this process loads no drawing library.

#include <cstdio>

#include "platform/linux/wayland/surface/SurfaceClient.hpp"

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fputs("quorvane-card-surface is started by Quorvane Lock Screen\n", stderr);
        return 2;
    }
    quorvane::MessageSocket socket{quorvane::FileDescriptor{quorvane::kSurfaceSocket}};
    quorvane::SurfaceClient{std::move(socket), arguments[1]}.run();
    return 1;
}

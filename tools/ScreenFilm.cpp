// screen-film: films a part of the X server's screen until SIGTERM or SIGINT.

#include <time.h>
#include <xcb/xcb.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>

#include "tools/AnimatedPNG.hpp"
#include "tools/Files.hpp"

namespace quorvane {
namespace {

constexpr char kHelp[] = R"(Usage: screen-film X,Y,WIDTHxHEIGHT OUTPUT.png

Records this part of the display's screen, in pixels, until SIGINT or SIGTERM, and then writes it
as an animated PNG of 20 frames a second. SIGUSR1 makes the current frame the still image that
viewers without animation show.

Exit status: 0 when the film was written, 1 when it could not be, 2 for a wrong command line.
)";

constexpr double kFramesPerSecond = 20;
constexpr long kFrameNanoseconds = 50'000'000;

volatile std::sig_atomic_t isOver = 0;
void endFilmSigHandler(int) { isOver = 1; }
volatile std::sig_atomic_t isStillWanted = 0;
void keepStillSigHandler(int) { isStillWanted = 1; }

struct Area {
    int x = 0, y = 0, width = 0, height = 0;
};

using Display = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;

// Null when the server is gone or the area is outside its screen.
CairoSurface grab(xcb_connection_t* display, const Area& area) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply{
        xcb_get_image_reply(
            display,
            xcb_get_image(display, XCB_IMAGE_FORMAT_Z_PIXMAP, root,
                          static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                          static_cast<std::uint16_t>(area.width),
                          static_cast<std::uint16_t>(area.height), ~0U),
            nullptr),
        &std::free};
    const std::size_t rowLength = static_cast<std::size_t>(area.width) * 4;
    if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) <
                      rowLength * static_cast<std::size_t>(area.height))
        return nullptr;
    CairoSurface frame{cairo_image_surface_create(CAIRO_FORMAT_RGB24, area.width, area.height)};
    const unsigned char* from = xcb_get_image_data(reply.get());
    unsigned char* to = cairo_image_surface_get_data(frame.get());
    for (int y = 0; y < area.height; ++y, from += rowLength) {
        std::memcpy(to, from, rowLength);
        to += cairo_image_surface_get_stride(frame.get());
    }
    cairo_surface_mark_dirty(frame.get());
    return frame;
}

timespec later(timespec time) {
    time.tv_nsec += kFrameNanoseconds;
    if (time.tv_nsec >= 1'000'000'000) {
        time.tv_nsec -= 1'000'000'000;
        ++time.tv_sec;
    }
    return time;
}

bool isPast(const timespec& time) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec > time.tv_sec || (now.tv_sec == time.tv_sec && now.tv_nsec >= time.tv_nsec);
}

std::expected<void, std::string> film(const Area& area, const std::string& file) {
    const Display display{xcb_connect(nullptr, nullptr), &xcb_disconnect};
    if (xcb_connection_has_error(display.get())) return std::unexpected{"there is no X server"};
    AnimatedPNG animation{kFramesPerSecond};
    timespec next{};
    clock_gettime(CLOCK_MONOTONIC, &next);
    while (!isOver) {
        CairoSurface frame = grab(display.get(), area);
        if (!frame) return std::unexpected{"the screen has no such area"};
        // A late picture lasts for the missed ones too, so that the film keeps real time.
        do {
            animation.add(CairoSurface{cairo_surface_reference(frame.get())});
            next = later(next);
        } while (isPast(next));
        if (isStillWanted) {
            isStillWanted = 0;
            animation.keepLastAsStill();
        }
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
    }
    return writeFile(file, animation.finish());
}

int run(int count, char** words) {
    if (count == 2 && (std::strcmp(words[1], "--help") == 0 || std::strcmp(words[1], "-h") == 0)) {
        std::cout << kHelp;
        return 0;
    }
    Area area;
    char rest = 0;
    if (count != 3 ||
        std::sscanf(words[1], "%d,%d,%dx%d%c", &area.x, &area.y, &area.width, &area.height,
                    &rest) != 4 ||
        area.width < 1 || area.height < 1 || area.width > 8192 || area.height > 8192) {
        std::cerr << kHelp;
        return 2;
    }
    std::signal(SIGINT, endFilmSigHandler);
    std::signal(SIGTERM, endFilmSigHandler);
    std::signal(SIGUSR1, keepStillSigHandler);
    if (const auto done = film(area, words[2]); !done) {
        std::cerr << "screen-film: " << done.error() << ".\n";
        return 1;
    }
    return 0;
}

}  // namespace
}  // namespace quorvane

int main(int count, char** words) { return quorvane::run(count, words); }

// One connection to the sound server, with its current levels.
#pragma once

#include <pulse/pulseaudio.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/SoundServer.hpp"

namespace quorvane {

// Client library of the PulseAudio protocol, which PipeWire also serves. It is loaded when the
// first player needs it, because linking it would cost every host 2 MB and 20 libraries. Its
// functions are used under their own names.
// clang-format off
#define QUORVANE_PULSE_FUNCTIONS(use) \
    use(pa_context_connect) use(pa_context_disconnect) use(pa_context_get_server_info) \
    use(pa_context_get_sink_info_by_name) use(pa_context_get_sink_input_info_list) \
    use(pa_context_get_state) use(pa_context_new) use(pa_context_set_sink_input_mute) \
    use(pa_context_set_sink_input_volume) use(pa_context_set_sink_mute_by_name) \
    use(pa_context_set_sink_volume_by_name) use(pa_context_set_state_callback) \
    use(pa_context_set_subscribe_callback) use(pa_context_subscribe) use(pa_context_unref) \
    use(pa_cvolume_max) use(pa_cvolume_scale) use(pa_operation_unref) use(pa_proplist_gets) \
    use(pa_threaded_mainloop_free) use(pa_threaded_mainloop_get_api) \
    use(pa_threaded_mainloop_lock) use(pa_threaded_mainloop_new) use(pa_threaded_mainloop_start) \
    use(pa_threaded_mainloop_stop) use(pa_threaded_mainloop_unlock)
// clang-format on

struct PulseLibrary {
#define QUORVANE_PULSE_MEMBER(name) decltype(&::name) name = nullptr;
    QUORVANE_PULSE_FUNCTIONS(QUORVANE_PULSE_MEMBER)
#undef QUORVANE_PULSE_MEMBER

    // Loads the library on the first call and keeps it loaded; null when the system lacks it.
    static const PulseLibrary* get();
};

// Created, used and destroyed on the main thread. The library runs a thread for the connection. Its
// callbacks run there under the loop's lock, which the main thread takes for its calls.
class PulseConnection {
public:
    // Calls `onLevels` on the library's thread; with empty levels when the connection fails.
    PulseConnection(const PulseLibrary& library, std::function<void(SoundLevels)> onLevels);
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    void setVolume(std::optional<std::uint32_t> stream, double volume);

private:
    class Lock;

    bool connect();
    static void onState(pa_context* context, void* self);
    static void onServer(pa_context* context, const pa_server_info* server, void* self);
    static void onSink(pa_context* context, const pa_sink_info* sink, int isLast, void* self);
    static void onStream(pa_context* context, const pa_sink_input_info* stream, int isLast,
                         void* self);
    void read();
    void finishReading();
    double levelOf(const pa_cvolume& volume, int isMuted) const;
    pa_cvolume scaled(pa_cvolume channels, double level) const;
    void forget(pa_operation* operation) const;

    const PulseLibrary& library_;
    const std::function<void(SoundLevels)> onLevels_;
    pa_threaded_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
    // Guarded by the loop's lock.
    struct Reading {
        std::string sink;  // the default output
        pa_cvolume sinkChannels{};
        std::map<std::uint32_t, pa_cvolume> streamChannels;  // by stream number
        SoundLevels levels;
    };
    Reading known_;
    Reading next_;  // the part read so far
    bool isReading_ = false;
    bool isOutdated_ = false;  // changed during the read: read again
};

}  // namespace quorvane

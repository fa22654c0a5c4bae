// Client library of the PulseAudio protocol, which PipeWire also serves. It is loaded when the
// first player needs it, because linking it would cost every host 2 MB and 20 libraries.
#pragma once

#include <pulse/pulseaudio.h>

namespace quorvane {

// The functions used from the library, each under its own name.
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

}  // namespace quorvane

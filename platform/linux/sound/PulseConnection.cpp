#include "platform/linux/sound/PulseConnection.hpp"

#include <dlfcn.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace quorvane {
namespace {

std::optional<PulseLibrary> load() {
    void* const handle = dlopen("libpulse.so.0", RTLD_NOW | RTLD_LOCAL);
    if (!handle) return std::nullopt;
    PulseLibrary library;
#define QUORVANE_PULSE_LOAD(name)                                                  \
    library.name = reinterpret_cast<decltype(library.name)>(dlsym(handle, #name)); \
    if (!library.name) return std::nullopt;
    QUORVANE_PULSE_FUNCTIONS(QUORVANE_PULSE_LOAD)
#undef QUORVANE_PULSE_LOAD
    return library;
}

}  // namespace

const PulseLibrary* PulseLibrary::get() {
    static const std::optional<PulseLibrary> library = load();
    return library ? &*library : nullptr;
}

class PulseConnection::Lock {
public:
    explicit Lock(PulseConnection& owner) : owner_(owner) {
        owner_.library_.pa_threaded_mainloop_lock(owner_.loop_);
    }
    ~Lock() { owner_.library_.pa_threaded_mainloop_unlock(owner_.loop_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    PulseConnection& owner_;
};

PulseConnection::PulseConnection(const PulseLibrary& library,
                                 std::function<void(SoundLevels)> onLevels)
    : library_(library), onLevels_(std::move(onLevels)), loop_(library.pa_threaded_mainloop_new()) {
    if (!loop_ || library_.pa_threaded_mainloop_start(loop_) < 0 || !connect()) onLevels_({});
}

bool PulseConnection::connect() {
    const Lock lock{*this};
    context_ =
        library_.pa_context_new(library_.pa_threaded_mainloop_get_api(loop_), "quorvane-host");
    if (!context_) return false;
    library_.pa_context_set_state_callback(context_, onState, this);
    // Does not start a server that is not running.
    return library_.pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0;
}

PulseConnection::~PulseConnection() {
    if (!loop_) return;
    if (context_) {
        const Lock lock{*this};
        library_.pa_context_set_state_callback(context_, nullptr, nullptr);
        library_.pa_context_set_subscribe_callback(context_, nullptr, nullptr);
        library_.pa_context_disconnect(context_);
        library_.pa_context_unref(context_);
    }
    library_.pa_threaded_mainloop_stop(loop_);
    library_.pa_threaded_mainloop_free(loop_);
}

void PulseConnection::forget(pa_operation* operation) const {
    if (operation) library_.pa_operation_unref(operation);
}

double PulseConnection::levelOf(const pa_cvolume& volume, int isMuted) const {
    if (isMuted) return 0;
    return std::min(1.0, static_cast<double>(library_.pa_cvolume_max(&volume)) / PA_VOLUME_NORM);
}

// Keeps the balance of the channels.
pa_cvolume PulseConnection::scaled(pa_cvolume channels, double level) const {
    const double clamped = std::clamp(level, 0.0, 1.0);
    library_.pa_cvolume_scale(&channels,
                              static_cast<pa_volume_t>(std::lround(clamped * PA_VOLUME_NORM)));
    return channels;
}

void PulseConnection::onState(pa_context* context, void* self) {
    auto& connection = *static_cast<PulseConnection*>(self);
    const PulseLibrary& library = connection.library_;
    switch (library.pa_context_get_state(context)) {
        case PA_CONTEXT_READY: break;
        case PA_CONTEXT_FAILED:
        case PA_CONTEXT_TERMINATED: return connection.onLevels_({});
        default: return;
    }
    const auto onEvent = [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* it) {
        static_cast<PulseConnection*>(it)->read();
    };
    library.pa_context_set_subscribe_callback(context, onEvent, self);
    constexpr auto events = static_cast<pa_subscription_mask_t>(
        PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SINK_INPUT | PA_SUBSCRIPTION_MASK_SERVER);
    connection.forget(library.pa_context_subscribe(context, events, nullptr, nullptr));
    connection.read();
}

// Reads the server, its output and its streams, in this order.
void PulseConnection::read() {
    isOutdated_ = isReading_;
    if (std::exchange(isReading_, true)) return;
    next_ = {};
    forget(library_.pa_context_get_server_info(context_, onServer, this));
}

void PulseConnection::onServer(pa_context* context, const pa_server_info* server, void* self) {
    auto& connection = *static_cast<PulseConnection*>(self);
    connection.next_.sink = server && server->default_sink_name ? server->default_sink_name : "";
    pa_operation* const question = connection.library_.pa_context_get_sink_info_by_name(
        context, connection.next_.sink.c_str(), onSink, self);
    if (!question) return onSink(context, nullptr, 1, self);  // there is no output
    connection.forget(question);
}

void PulseConnection::onSink(pa_context* context, const pa_sink_info* sink, int isLast,
                             void* self) {
    auto& connection = *static_cast<PulseConnection*>(self);
    if (!isLast && sink) {
        connection.next_.sinkChannels = sink->volume;
        connection.next_.levels.system = connection.levelOf(sink->volume, sink->mute);
    } else {
        connection.forget(
            connection.library_.pa_context_get_sink_input_info_list(context, onStream, self));
    }
}

void PulseConnection::onStream(pa_context*, const pa_sink_input_info* stream, int isLast,
                               void* self) {
    auto& connection = *static_cast<PulseConnection*>(self);
    if (isLast || !stream) return connection.finishReading();
    if (!stream->has_volume || !stream->volume_writable) return;
    connection.next_.streamChannels[stream->index] = stream->volume;
    const auto property = [&](const char* key) -> std::string_view {
        const char* const text = connection.library_.pa_proplist_gets(stream->proplist, key);
        return text ? text : "";
    };
    const std::string_view digits = property(PA_PROP_APPLICATION_PROCESS_ID);
    std::int64_t processID = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), processID);
    connection.next_.levels.streams.push_back(
        {.number = stream->index,
         .processID = processID,
         .application = std::string{property(PA_PROP_APPLICATION_NAME)},
         .isPlaying = !stream->corked,
         .volume = connection.levelOf(stream->volume, stream->mute)});
}

void PulseConnection::finishReading() {
    isReading_ = false;
    known_ = std::move(next_);
    onLevels_(known_.levels);
    if (std::exchange(isOutdated_, false)) read();
}

void PulseConnection::setVolume(std::optional<std::uint32_t> stream, double volume) {
    if (!context_) return;
    const Lock lock{*this};
    if (library_.pa_context_get_state(context_) != PA_CONTEXT_READY) return;
    if (!stream) {
        if (!known_.levels.system) return;
        const pa_cvolume channels = scaled(known_.sinkChannels, volume);
        const char* const sink = known_.sink.c_str();
        forget(library_.pa_context_set_sink_volume_by_name(context_, sink, &channels, nullptr,
                                                           nullptr));
        forget(library_.pa_context_set_sink_mute_by_name(context_, sink, 0, nullptr, nullptr));
    } else if (const auto found = known_.streamChannels.find(*stream);
               found != known_.streamChannels.end()) {
        const pa_cvolume channels = scaled(found->second, volume);
        forget(library_.pa_context_set_sink_input_volume(context_, *stream, &channels, nullptr,
                                                         nullptr));
        forget(library_.pa_context_set_sink_input_mute(context_, *stream, 0, nullptr, nullptr));
    }
}

}  // namespace quorvane

// One connection to the sound server, and the levels there.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/SoundServer.hpp"
#include "platform/linux/sound/PulseLibrary.hpp"

namespace quorvane {

// Made, used and destroyed on the main thread. The library runs a thread for the connection; its
// callbacks run there, with the loop's lock held, which the main thread takes for its calls.
class PulseConnection {
public:
    // `onLevels` is called on the library's thread, with no levels when the connection fails.
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
    // Under the loop's lock.
    struct Reading {
        std::string sink;  // the output that new streams use
        pa_cvolume sinkChannels{};
        std::map<std::uint32_t, pa_cvolume> streamChannels;  // by the stream's number
        SoundLevels levels;
    };
    Reading known_;
    Reading next_;  // what has been read of it
    bool isReading_ = false;
    bool isOutdated_ = false;  // a change came while reading: read again
};

}  // namespace quorvane

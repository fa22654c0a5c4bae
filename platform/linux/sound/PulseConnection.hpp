// One connection to the sound server, with its current levels.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/SoundServer.hpp"
#include "platform/linux/sound/PulseLibrary.hpp"

namespace quorvane {

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

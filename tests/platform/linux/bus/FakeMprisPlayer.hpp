// A player on a bus of the test's, made of what a test wants it to be.
#pragma once

#include <systemd/sd-bus.h>

#include <string>
#include <vector>

namespace quorvane {

// Attached to a loop it answers; without one it hangs, though its name is on the bus. Its owner
// changes its values and then says so.
class FakeMprisPlayer {
public:
    std::string status = "Playing";
    std::string title = "Title";
    std::vector<const char*> artists{"One", "Two"};
    double volume = 0.5;
    std::int64_t position = 7'000'000;
    std::vector<std::string> heard;  // methods called and properties set

    FakeMprisPlayer(const char* name, sd_event* loop) {
        sd_bus_open_user(&bus_);
        sd_bus_add_object_vtable(bus_, nullptr, kPath, "org.mpris.MediaPlayer2", rootTable(), this);
        sd_bus_add_object_vtable(bus_, nullptr, kPath, kPlayer, playerTable(), this);
        sd_bus_request_name(bus_, (std::string{"org.mpris.MediaPlayer2."} + name).c_str(), 0);
        if (loop) attach(loop);
    }
    FakeMprisPlayer(const FakeMprisPlayer&) = delete;
    FakeMprisPlayer& operator=(const FakeMprisPlayer&) = delete;
    ~FakeMprisPlayer() { sd_bus_flush_close_unref(bus_); }

    void attach(sd_event* loop) { sd_bus_attach_event(bus_, loop, 0); }
    void detach() { sd_bus_detach_event(bus_); }
    sd_bus* bus() { return bus_; }

    // With their values, but for Metadata, which is only said to have changed.
    void sayChanged(const char* property) {
        sd_bus_emit_properties_changed(bus_, kPath, kPlayer, property, nullptr);
    }
    void saySeeked() { sd_bus_emit_signal(bus_, kPath, kPlayer, "Seeked", "x", position); }

    static constexpr char kPath[] = "/org/mpris/MediaPlayer2";
    static constexpr char kPlayer[] = "org.mpris.MediaPlayer2.Player";

private:
    static int get(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply,
                   void* self, sd_bus_error*) {
        auto& player = *static_cast<FakeMprisPlayer*>(self);
        const std::string_view name = property;
        if (name == "Identity") return sd_bus_message_append(reply, "s", "Fake");
        if (name == "PlaybackStatus")
            return sd_bus_message_append(reply, "s", player.status.c_str());
        if (name == "Volume") return sd_bus_message_append(reply, "d", player.volume);
        if (name == "Position") return sd_bus_message_append(reply, "x", player.position);
        return player.appendMetadata(reply);
    }

    int appendMetadata(sd_bus_message* reply) {
        sd_bus_message_open_container(reply, 'a', "{sv}");
        sd_bus_message_append(reply, "{sv}", "mpris:trackid", "o", "/track/1");
        sd_bus_message_append(reply, "{sv}", "mpris:length", "t", std::uint64_t{90'000'000});
        sd_bus_message_append(reply, "{sv}", "xesam:title", "s", title.c_str());
        sd_bus_message_append(reply, "{sv}", "xesam:trackNumber", "i", 3);
        sd_bus_message_append(reply, "{sv}", "odd:pair", "(si)", "x", 1);
        sd_bus_message_open_container(reply, 'e', "sv");
        sd_bus_message_append(reply, "s", "xesam:artist");
        sd_bus_message_open_container(reply, 'v', "as");
        sd_bus_message_open_container(reply, 'a', "s");
        for (const char* artist : artists) sd_bus_message_append(reply, "s", artist);
        for (int depth = 0; depth < 3; ++depth) sd_bus_message_close_container(reply);
        return sd_bus_message_close_container(reply);
    }

    static int set(sd_bus*, const char*, const char*, const char*, sd_bus_message* value,
                   void* self, sd_bus_error*) {
        auto& player = *static_cast<FakeMprisPlayer*>(self);
        player.heard.push_back("Volume");
        return sd_bus_message_read(value, "d", &player.volume);
    }

    static int call(sd_bus_message* message, void* self, sd_bus_error*) {
        static_cast<FakeMprisPlayer*>(self)->heard.push_back(sd_bus_message_get_member(message));
        return sd_bus_reply_method_return(message, "");
    }

    static const sd_bus_vtable* rootTable() {
        static const sd_bus_vtable table[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("Raise", "", "", call, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_PROPERTY("Identity", "s", get, 0, SD_BUS_VTABLE_PROPERTY_CONST),
            SD_BUS_VTABLE_END};
        return table;
    }
    static const sd_bus_vtable* playerTable() {
        static const sd_bus_vtable table[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("Next", "", "", call, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_SIGNAL("Seeked", "x", 0),
            SD_BUS_PROPERTY("PlaybackStatus", "s", get, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
            SD_BUS_PROPERTY("Metadata", "a{sv}", get, 0, SD_BUS_VTABLE_PROPERTY_EMITS_INVALIDATION),
            SD_BUS_PROPERTY("Position", "x", get, 0, 0),
            SD_BUS_WRITABLE_PROPERTY(
                "Volume", "d", get, set, 0,
                SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE | SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END};
        return table;
    }

    sd_bus* bus_ = nullptr;
};

}  // namespace quorvane

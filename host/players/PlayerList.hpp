// The host's report on all players of the session, and the notices that carry it to its commands.
#pragma once

#include <string>
#include <vector>

#include "platform/PropertyValue.hpp"

namespace quorvane {

struct PlayerRow {
    std::string name;         // on the bus, without the common prefix
    std::string state;        // "playing", "paused", "stopped" or "silent"
    std::string explanation;  // that it is followed, or why not
    bool operator==(const PlayerRow&) const = default;
};

struct PlayerList {
    // The serving host answers the first, a Darwin notice, with the second, a distributed one. A
    // request has no data, which any process could make large.
    static constexpr char kRequest[] = "example.quillon.Quorvane.Host.playersRequest";
    static constexpr char kAnswer[] = "example.quillon.Quorvane.Host.players";
    static constexpr char kSilent[] = "silent";

    std::vector<PlayerRow> rows{};

    PropertyDictionary userInfo() const;
    // Any process may have sent it, so invalid entries and control characters are omitted.
    static PlayerList of(const PropertyDictionary& userInfo);
    // A table for the user.
    std::string text() const;
};

}  // namespace quorvane

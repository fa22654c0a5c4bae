#include "host/players/PlayerChoice.hpp"

#include <tuple>

namespace quorvane {

namespace {

int rank(XPCPlayerState state) {
    switch (state) {
        case XPCPlayerState::playing: return 2;
        case XPCPlayerState::paused: return 1;
        case XPCPlayerState::stopped:
        case XPCPlayerState::unknown: return 0;
    }
    return 0;
}

bool plays(const PlayerCandidate& player) { return player.state == XPCPlayerState::playing; }

bool canBeFollowed(const PlayerChoice::Known& known) { return known.player.obstacle.empty(); }

std::optional<std::string> best(const PlayerChoice& choice) {
    const auto order = [&](const auto& entry) {
        const auto& [name, known] = entry;
        return std::tuple{rank(known.player.state), -static_cast<int>(known.player.preference),
                          choice.current == name, known.beganToPlay};
    };
    auto found = choice.known.end();
    for (auto entry = choice.known.begin(); entry != choice.known.end(); ++entry)
        if (canBeFollowed(entry->second) &&
            (found == choice.known.end() || order(*entry) > order(*found)))
            found = entry;
    if (found == choice.known.end()) return std::nullopt;
    return found->first;
}

}  // namespace

PlayerChoice PlayerChoice::applying(std::span<const PlayerCandidate> candidates, Instant now,
                                    Duration idleTime) const {
    PlayerChoice next = *this;
    next.known.clear();
    ++next.count;
    for (const PlayerCandidate& candidate : candidates) {
        const auto before = known.find(candidate.name);
        Known player{.player = candidate, .quietSince = now};
        if (before != known.end()) {
            const PlayerCandidate& old = before->second.player;
            player.beganToPlay = before->second.beganToPlay;
            if (old.state == candidate.state && old.track == candidate.track)
                player.quietSince = before->second.quietSince;
        }
        if (plays(candidate)) {
            if (before == known.end() || !plays(before->second.player))
                player.beganToPlay = next.count;
        } else if (candidate.obstacle.empty()) {
            if (candidate.isNameless && player.beganToPlay == 0)
                player.player.obstacle = "has not played yet";
            else if (idleTime > Duration{} && now - player.quietSince >= idleTime)
                player.player.obstacle = "idle for too long (see the setting idle-minutes)";
        }
        next.known.emplace(candidate.name, std::move(player));
    }
    if (next.byHand && !next.known.contains(*next.byHand)) next.byHand.reset();
    const bool holds = next.byHand && canBeFollowed(next.known.at(*next.byHand));
    next.current = holds ? next.byHand : best(next);
    return next;
}

PlayerChoice PlayerChoice::switching(Instant now) const {
    PlayerChoice next = *this;
    auto entry = current ? next.known.upper_bound(*current) : next.known.begin();
    for (std::size_t tries = known.size(); tries > 0; --tries, ++entry) {
        if (entry == next.known.end()) entry = next.known.begin();
        auto& [name, chosen] = *entry;
        if (!canBeFollowed(chosen) || !chosen.player.canBeControlled) continue;
        next.byHand = next.current = name;
        chosen.quietSince = now;
        break;
    }
    return next;
}

std::optional<Instant> PlayerChoice::idleAt(Duration idleTime) const {
    if (!current || idleTime <= Duration{}) return std::nullopt;
    const Known& followed = known.at(*current);
    if (plays(followed.player)) return std::nullopt;
    return followed.quietSince + idleTime;
}

std::string_view PlayerChoice::explanationOf(const std::string& name) const {
    const Known& player = known.at(name);
    if (!canBeFollowed(player)) return player.player.obstacle;
    if (current == name)
        return byHand == name         ? "followed: chosen by hand"
               : plays(player.player) ? "followed: it plays"
                                      : "followed: no other one plays";
    if (byHand == current) return "another one was chosen by hand";
    const PlayerCandidate& followed = known.at(*current).player;
    if (rank(followed.state) > rank(player.player.state))
        return plays(followed) ? "another one plays" : "another one is paused";
    if (followed.preference < player.player.preference) return "another one is preferred";
    return "another one is followed already";
}

}  // namespace quorvane

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

bool plays(const PlayerChoice::Known& player) { return player.state == XPCPlayerState::playing; }

std::optional<std::string> best(const PlayerChoice& choice) {
    const auto order = [&](const auto& entry) {
        return std::tuple{rank(entry.second.state), choice.current == entry.first,
                          entry.second.beganToPlay};
    };
    auto found = choice.known.end();
    for (auto entry = choice.known.begin(); entry != choice.known.end(); ++entry)
        if (found == choice.known.end() || order(*entry) > order(*found)) found = entry;
    if (found == choice.known.end()) return std::nullopt;
    return found->first;
}

}  // namespace

PlayerChoice PlayerChoice::applying(std::span<const PlayerCandidate> candidates) const {
    PlayerChoice next = *this;
    next.known.clear();
    bool anotherBegan = false;
    ++next.count;
    for (const PlayerCandidate& candidate : candidates) {
        const auto before = known.find(candidate.name);
        Known player = before == known.end() ? Known{} : before->second;
        if (candidate.isNameless && candidate.state != XPCPlayerState::playing &&
            player.beganToPlay == 0)
            continue;
        const bool played = plays(player);
        player.state = candidate.state;
        if (plays(player) && !played) {
            player.beganToPlay = next.count;
            anotherBegan |= byHand != candidate.name;
        }
        next.known.emplace(candidate.name, player);
    }
    if (next.byHand) {
        const auto chosen = next.known.find(*next.byHand);
        if (chosen == next.known.end() || (anotherBegan && !plays(chosen->second)))
            next.byHand.reset();
    }
    next.current = next.byHand ? next.byHand : best(next);
    return next;
}

PlayerChoice PlayerChoice::switching() const {
    if (known.empty()) return *this;
    PlayerChoice next = *this;
    auto after = current ? known.upper_bound(*current) : known.begin();
    if (after == known.end()) after = known.begin();
    next.byHand = next.current = after->first;
    return next;
}

}  // namespace quorvane

#include "platform/linux/accessibility/AtspiTree.hpp"

#include <algorithm>

namespace quorvane {

std::vector<AtspiNode>::const_iterator AtspiTree::entry(const AccessibleCard& card) const {
    return std::ranges::find(cards_, &card, &AtspiNode::card);
}

AtspiNode AtspiTree::add(AccessibleCard& card) {
    return cards_.emplace_back(AtspiNode{.number = ++cardsMade_, .card = &card});
}

AtspiNode AtspiTree::node(const AccessibleCard& card) const { return *entry(card); }

std::string AtspiTree::path(const AtspiNode& node) {
    if (!node.card) return kRootPath;
    if (node.control) return path(node, node.control->id);
    return std::string{kPrefix} + "/card" + std::to_string(node.number);
}

std::string AtspiTree::path(const AtspiNode& card, SceneControl::ID control) {
    return path({.number = card.number, .card = card.card}) + "/" +
           std::to_string(static_cast<int>(control));
}

// A linear search, because there are never more than a few dozen objects.
std::optional<AtspiNode> AtspiTree::find(std::string_view wanted) const {
    if (wanted == kRootPath) return AtspiNode{};
    for (const AtspiNode& card : cards_) {
        if (path(card) == wanted) return card;
        for (const AtspiNode& control : children(card))
            if (path(control) == wanted) return control;
    }
    return std::nullopt;
}

std::optional<AtspiNode> AtspiTree::parent(const AtspiNode& node) {
    if (node.control) return AtspiNode{.number = node.number, .card = node.card};
    if (node.card) return AtspiNode{};
    return std::nullopt;
}

std::vector<AtspiNode> AtspiTree::children(const AtspiNode& node) const {
    if (node.control) return {};
    if (!node.card) return cards_;
    std::vector<AtspiNode> controls;
    for (const SceneControl& control : node.card->accessibleScene().controls)
        controls.push_back({node.number, node.card, &control});
    return controls;
}

int AtspiTree::indexInParent(const AtspiNode& node) const {
    const auto above = parent(node);
    if (!above) return -1;
    const std::vector<AtspiNode> siblings = children(*above);
    const auto found = std::ranges::find_if(siblings, [&](const AtspiNode& sibling) {
        return sibling.card == node.card && sibling.control == node.control;
    });
    return static_cast<int>(found - siblings.begin());
}

}  // namespace quorvane

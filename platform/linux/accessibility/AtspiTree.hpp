// Tree of accessible objects: the application, its visible cards, each card's controls.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/accessibility/AccessibleCard.hpp"

namespace quorvane {

// One object. The application has neither card nor control; a card has no control.
struct AtspiNode {
    int number = 0;  // of the card; never reused
    AccessibleCard* card = nullptr;
    const SceneControl* control = nullptr;  // valid until the card's next scene
};

// Main thread only. Contains a card from `add` to `remove`.
class AtspiTree {
public:
    static constexpr char kPrefix[] = "/org/a11y/atspi/accessible";
    static constexpr char kRootPath[] = "/org/a11y/atspi/accessible/root";

    AtspiNode add(AccessibleCard& card);
    void remove(const AccessibleCard& card) { cards_.erase(entry(card)); }
    AtspiNode node(const AccessibleCard& card) const;

    // Returns nullopt when no object currently has this path.
    std::optional<AtspiNode> find(std::string_view path) const;
    static std::string path(const AtspiNode& node);
    static std::string path(const AtspiNode& card, SceneControl::ID control);
    static std::optional<AtspiNode> parent(const AtspiNode& node);
    std::vector<AtspiNode> children(const AtspiNode& node) const;
    int indexInParent(const AtspiNode& node) const;

private:
    std::vector<AtspiNode>::const_iterator entry(const AccessibleCard& card) const;

    std::vector<AtspiNode> cards_;
    int cardsMade_ = 0;
};

}  // namespace quorvane

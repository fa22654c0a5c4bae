// The objects that assistive technology finds: the application, in it the cards that are to be
// seen, in each card its controls.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/accessibility/AccessibleCard.hpp"

namespace quorvane {

// The application has neither card nor control, a card itself has no control.
struct AtspiNode {
    int number = 0;  // of the card; no two cards ever have the same
    AccessibleCard* card = nullptr;
    const SceneControl* control = nullptr;  // until the card's next scene
};

// Main thread only. Knows cards between `add` and `remove`.
class AtspiTree {
public:
    static constexpr char kPrefix[] = "/org/a11y/atspi/accessible";
    static constexpr char kRootPath[] = "/org/a11y/atspi/accessible/root";

    AtspiNode add(AccessibleCard& card);
    void remove(const AccessibleCard& card) { cards_.erase(entry(card)); }
    AtspiNode node(const AccessibleCard& card) const;

    // Nothing when no object has this path now.
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

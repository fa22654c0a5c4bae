// A small client of assistive technology, over the library that screen readers use. Prints to
// standard error.
//   screen-reader tree               the card's objects, a line each
//   screen-reader do NAME ACTION     performs an action of the object
//   screen-reader set NAME NUMBER    sets the object's value
//   screen-reader listen             events of the application until it is killed
#include <atspi/atspi.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

namespace {

constexpr char kApplication[] = "Quorvane Lock Screen";

std::string taken(char* text) {
    std::string copy = text ? text : "";
    g_free(text);
    return copy;
}

std::string nameOf(AtspiAccessible* object) {
    return taken(atspi_accessible_get_name(object, nullptr));
}

AtspiAccessible* application() {
    AtspiAccessible* const desktop = atspi_get_desktop(0);
    const int count = atspi_accessible_get_child_count(desktop, nullptr);
    for (int i = 0; i < count; ++i)
        if (AtspiAccessible* const child = atspi_accessible_get_child_at_index(desktop, i, nullptr))
            if (nameOf(child) == kApplication) return child;
    return nullptr;
}

void walk(AtspiAccessible* object, int depth,
          const std::function<void(AtspiAccessible*, int)>& visit) {
    visit(object, depth);
    const int count = atspi_accessible_get_child_count(object, nullptr);
    for (int i = 0; i < count; ++i)
        if (AtspiAccessible* const child = atspi_accessible_get_child_at_index(object, i, nullptr))
            walk(child, depth + 1, visit);
}

AtspiAccessible* named(const char* name) {
    AtspiAccessible* found = nullptr;
    if (AtspiAccessible* const root = application())
        walk(root, 0, [&](AtspiAccessible* object, int) {
            if (nameOf(object) == name) found = object;
        });
    return found;
}

void describe(AtspiAccessible* object, int depth) {
    std::string line(static_cast<std::size_t>(depth) * 2, ' ');
    line += taken(atspi_accessible_get_role_name(object, nullptr)) + " '" + nameOf(object) + "'";
    if (AtspiAction* const action = atspi_accessible_get_action_iface(object))
        for (int i = 0; i < atspi_action_get_n_actions(action, nullptr); ++i)
            line += " " + taken(atspi_action_get_action_name(action, i, nullptr));
    char numbers[200];
    if (AtspiValue* const value = atspi_accessible_get_value_iface(object)) {
        std::snprintf(numbers, sizeof numbers, " %g of %g..%g by %g",
                      atspi_value_get_current_value(value, nullptr),
                      atspi_value_get_minimum_value(value, nullptr),
                      atspi_value_get_maximum_value(value, nullptr),
                      atspi_value_get_minimum_increment(value, nullptr));
        line += numbers;
    }
    if (AtspiComponent* const component = atspi_accessible_get_component_iface(object)) {
        AtspiRect* const area =
            atspi_component_get_extents(component, ATSPI_COORD_TYPE_SCREEN, nullptr);
        AtspiAccessible* const top = atspi_component_get_accessible_at_point(
            component, area->x + area->width / 2, area->y + area->height / 2,
            ATSPI_COORD_TYPE_SCREEN, nullptr);
        std::snprintf(numbers, sizeof numbers, " at %d,%d %dx%d%s", area->x, area->y, area->width,
                      area->height, top == object ? " itself" : "");
        line += numbers;
    }
    AtspiAccessible* const parent = atspi_accessible_get_parent(object, nullptr);
    const int index = atspi_accessible_get_index_in_parent(object, nullptr);
    if (depth > 0 && atspi_accessible_get_child_at_index(parent, index, nullptr) != object)
        line += " (is not its parent's child)";
    AtspiStateSet* const states = atspi_accessible_get_state_set(object);
    if (!atspi_state_set_contains(states, ATSPI_STATE_SHOWING)) line += " (hidden)";
    std::fprintf(stderr, "%s\n", line.c_str());
}

int tree() {
    AtspiAccessible* const root = application();
    if (root) walk(root, 0, describe);
    std::fprintf(stderr, "end of the tree\n");
    return root ? 0 : 1;
}

int perform(const char* name, const char* wanted) {
    AtspiAccessible* const object = named(name);
    AtspiAction* const action = object ? atspi_accessible_get_action_iface(object) : nullptr;
    for (int i = 0; action && i < atspi_action_get_n_actions(action, nullptr); ++i)
        if (taken(atspi_action_get_action_name(action, i, nullptr)) == wanted)
            return atspi_action_do_action(action, i, nullptr) ? 0 : 1;
    return 1;
}

int set(const char* name, double number) {
    AtspiAccessible* const object = named(name);
    AtspiValue* const value = object ? atspi_accessible_get_value_iface(object) : nullptr;
    return value && atspi_value_set_current_value(value, number, nullptr) ? 0 : 1;
}

void heard(AtspiEvent* event, void*) {
    AtspiAccessible* const from = atspi_accessible_get_application(event->source, nullptr);
    if (!from || nameOf(from) != kApplication) return;
    std::fprintf(stderr, "%s of %s '%s'\n", event->type,
                 taken(atspi_accessible_get_role_name(event->source, nullptr)).c_str(),
                 nameOf(event->source).c_str());
}

int listen() {
    AtspiEventListener* const listener = atspi_event_listener_new(heard, nullptr, nullptr);
    for (const char* kind : {"object:property-change", "object:children-changed"})
        atspi_event_listener_register(listener, kind, nullptr);
    std::fprintf(stderr, "listening\n");
    atspi_event_main();
    return 0;
}

int run(int count, char** words) {
    const auto is = [&](const char* word, int wanted) {
        return count == wanted && std::strcmp(words[1], word) == 0;
    };
    if (atspi_init() > 1) return 1;
    if (is("tree", 2)) return tree();
    if (is("do", 4)) return perform(words[2], words[3]);
    if (is("set", 4)) return set(words[2], std::atof(words[3]));
    return is("listen", 2) ? listen() : 2;
}

}  // namespace

// Exits without clean-up, because the library keeps objects that would count as leaks.
int main(int count, char** words) { std::_Exit(run(count, words)); }

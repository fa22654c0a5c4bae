"""A small client of assistive technology, over the library that screen readers use.

Prints to standard error.
  tree               the card's objects, a line each
  do NAME ACTION     performs an action of the object
  set NAME NUMBER    sets the object's value
  listen             changed properties in the application until it is killed
"""

import os
import sys
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi

# The successors of some calls are newer than the oldest supported library.
warnings.simplefilter("ignore", DeprecationWarning)

APPLICATION = "Quorvane Lock Screen"


def say(line):
    print(line, file=sys.stderr, flush=True)


def children(thing):
    found = [thing.get_child_at_index(index) for index in range(thing.get_child_count())]
    return [child for child in found if child]


def walk(thing, depth=0):
    yield thing, depth
    for child in children(thing):
        yield from walk(child, depth + 1)


def objects():
    for application in children(Atspi.get_desktop(0)):
        if application.get_name() == APPLICATION:
            return list(walk(application))
    return []


def described(thing):
    line = f"{thing.get_role_name()} '{thing.get_name()}'"
    line += "".join(" " + action for action in actions(thing))
    if value := thing.get_value_iface():
        line += f" {value.get_current_value():g} of {value.get_minimum_value():g}"
        line += f"..{value.get_maximum_value():g} by {value.get_minimum_increment():g}"
    if component := thing.get_component_iface():
        screen = Atspi.CoordType.SCREEN
        area = component.get_extents(screen)
        middle = area.x + area.width // 2, area.y + area.height // 2
        line += f" at {area.x},{area.y} {area.width}x{area.height}"
        if component.get_accessible_at_point(*middle, screen) == thing:
            line += " itself"
    if thing.get_role() != Atspi.Role.APPLICATION:
        if thing.get_parent().get_child_at_index(thing.get_index_in_parent()) != thing:
            line += " (is not its parent's child)"
    if not thing.get_state_set().contains(Atspi.StateType.SHOWING):
        line += " (hidden)"
    return line


def actions(thing):
    action = thing.get_action_iface()
    return [action.get_action_name(i) for i in range(action.get_n_actions())] if action else []


def heard(event):
    source = event.source
    if source.get_application().get_name() == APPLICATION:
        say(f"{event.type} of {source.get_role_name()} '{source.get_name()}'")


def run(command, name=None, argument=None):
    named = [thing for thing, _ in objects() if thing.get_name() == name]
    if command == "tree":
        lines = ["  " * depth + described(thing) for thing, depth in objects()]
        say("\n".join(lines + ["end of the tree"]))
        return len(lines) > 0
    if command == "listen":
        Atspi.EventListener.new(heard).register("object:property-change")
        say("listening")
        Atspi.event_main()
    if command == "do" and named and argument in actions(named[-1]):
        return named[-1].get_action_iface().do_action(actions(named[-1]).index(argument))
    return command == "set" and named and named[-1].get_value_iface().set_current_value(float(argument))


Atspi.init()
# Exits without clean-up, because the library would wait for the application.
os._exit(0 if run(*sys.argv[1:]) else 1)

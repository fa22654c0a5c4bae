"""AppKit, Quartz and the window server for the emulated add-on: one user's session. A scenario moves the pointer and draws."""

import struct

from foundation import BUNDLE, Foundation
from library import SECOND, Ended
from objects import shown
from program import Fault

DATA = ("_OBJC_CLASS", "_OBJC_METACLASS", "_OBJC_EHTYPE", "__NSConcrete", "___CFConstantString", "__objc_empty_cache", "___std",
        "__dispatch_main_q", "__dispatch_source_type_", "__DefaultRuneLocale", "___objc_personality")  # fmt: skip
WEIGHTS = {"NSFontWeightRegular": 0.0, "NSFontWeightMedium": 0.23, "NSFontWeightSemibold": 0.3, "NSFontWeightBold": 0.4}
IDENTITY = (1.0, *(0.0,) * 4) * 3 + (1.0,)
DOWN, UP, DRAGGED, CANCELLED = 1, 2, 6, 40  # types of events
MOUSE = {DOWN: "mouseDown:", UP: "mouseUp:", DRAGGED: "mouseDragged:", CANCELLED: "mouseCancelled:"}
# The window server's functions: how many arguments, what they return.
WINDOW_SERVER = {"SLSMainConnectionID": (0, 77), "SLSSpaceCreate": (3, 0x500000009), "SLSSpaceSetAbsoluteLevel": (3, 1001),
                 "SLSShowSpaces": (2, 1002), "SLSSpaceAddWindowsAndRemoveFromSpaces": (4, 1003)}  # fmt: skip


def doubles(*values):
    return struct.pack(f"<{len(values)}d", *values)


class System(Foundation):
    def __init__(self, bundle, options, documented, secret, answers, effects, program=""):
        self.options, self.displays, self.picture = options, [(0.0, 0.0, 1920.0, 1080.0)], (600, 600)
        self.windows, self.pressed, self.pointer, self.context = [], None, (0.0, 0.0), None
        super().__init__(bundle, EFFECTS | effects, documented, secret, answers, program)
        self.shared("NSApplication").fields["userInterfaceLayoutDirection"] = 0
        self.shared("NSWorkspace").fields["accessibilityDisplayShouldReduceMotion"] = False

    def start(self, scenario):
        """Runs the process from its start to its end; the scenario runs inside the application's loop."""
        self.scenario = scenario
        words = [f"{BUNDLE}/Contents/MacOS/Quorvane Lock Screen", *self.options]
        places = [self.place(word.encode() + b"\0") for word in words]
        with self.pool():
            status = self.call(self.entry(), len(words), self.place(struct.pack(f"<{len(words) + 1}Q", *places, 0)), 0, 0)
        self.note(f"returned {status}")

    def imported_data(self, name):
        short = name[1:]
        if name.startswith(DATA):
            return bytes(0x1000 if "Rune" in name else 16)
        if short not in self.declared.constants:
            return None
        if short in WEIGHTS or short == "CATransform3DIdentity":
            return doubles(*([WEIGHTS[short]] if short in WEIGHTS else IDENTITY))
        return struct.pack("<Q", 0 if short == "kSecRandomDefault" else self.new("NSString", short, is_immortal=True).address)

    def run_application(self, application):
        self.ask(application.fields["delegate"], "applicationSupportsSecureRestorableState:", 0)
        self.send(application.fields["delegate"], "applicationDidFinishLaunching:", 0)
        self.settle()
        self.scenario(self)
        self.send(application.fields["delegate"], "applicationWillTerminate:", 0)
        self.settle()

    def end_application(self, application, sender):
        self.send(application.fields["delegate"], "applicationWillTerminate:", 0)
        raise Ended

    # Windows and views

    def views(self, window):
        def below(view):
            yield view
            for child in view.fields["subviews"]:
                yield from below(child)

        content = window.fields.get("contentView")
        return list(below(content)) if content else []

    def view(self, window, class_name):
        return next(view for view in self.views(window) if view.cls.name == class_name)

    def frame_in_window(self, view):
        x, y, width, height = view.fields["frame"]
        while view := view.fields["above"]:
            x, y = x + view.fields["frame"][0], y + view.fields["frame"][1]
        return x, y, width, height

    def point_in(self, view, point):
        left, bottom, _, height = self.frame_in_window(view)
        is_flipped = self.implements(view, "isFlipped") and self.send(view, "isFlipped") & 1
        return point[0] - left, height - (point[1] - bottom) if is_flipped else point[1] - bottom

    def mouse(self, window, kind, x, y):
        """A window that ignores the mouse receives no press. It receives the events that follow its own press."""
        self.pointer = (window.fields["frame"][0] + x, window.fields["frame"][1] + y)
        if kind == DOWN:
            self.gets_mouse = not window.fields["ignoresMouseEvents"]
        if self.gets_mouse and kind == DOWN:
            self.send(window.fields["contentView"], "mouseMoved:", 0)
        if self.gets_mouse:
            self.send(window, "sendEvent:", self.new("NSEvent", is_immortal=True, type=kind, locationInWindow=(x, y)))
        self.settle()

    def make_window(self, window, frame, style, backing, is_deferred):
        self.windows.append(window)
        window.fields.update(frame=frame, windowNumber=40 + self.numbers[window.cls.name], ignoresMouseEvents=False, backingScaleFactor=2.0)
        return window

    def order_front(self, window):
        window.fields.update(visible=True, occlusionState=2)
        for view in self.views(window):
            if self.implements(view, "layout"):
                self.send(view, "layout")

    def close_window(self, window):
        window.fields["visible"] = False
        if window.fields.get("releasedWhenClosed", True):
            self.release(window)

    def animator(self, window):
        self.note(f"-[{window.name.strip('<>')} animator]")
        return window

    def send_event(self, window, event):
        """The topmost view under the pointer that takes the first click receives the press and the events that follow it."""
        if event.fields["type"] == DOWN:
            x, y = event.fields["locationInWindow"]
            self.pressed = None
            for view in self.views(window):
                left, bottom, width, height = self.frame_in_window(view)
                if self.implements(view, "mouseDown:") and left <= x < left + width and bottom <= y < bottom + height:
                    self.pressed = view if self._sent(view, "acceptsFirstMouse:", event) & 1 else None
        view = self.pressed
        if view:
            self._sent(view, MOUSE[event.fields["type"]], event)
        for each in (window, view):  # the system still uses both
            if each and each.address not in self.things:
                raise Fault(f"{each.name} is deallocated while it handles an event")

    def animate(self, cls, changes, completion):
        context = self.retain(self.new("NSAnimationContext"))
        self.run_block(changes, context.address)
        if completion:
            self.fades.append((self.now + round(context.fields["duration"] * SECOND), self.retain(self.copied(completion))))
        self.release(context)

    def make_view(self, view, frame):
        view.fields.update(frame=frame, bounds=(0.0, 0.0, *frame[2:]), subviews=[], above=None)
        return view

    def frame_on_screen(self, view, frame):
        """The place on the screen of a part of a flipped view."""
        left, bottom, _, height = self.frame_in_window(view)
        at = next(window for window in self.windows if view in self.views(window)).fields["frame"]
        return at[0] + left + frame[0], at[1] + bottom + height - frame[1] - frame[3], frame[2], frame[3]

    def add_subview(self, view, child):
        view.fields["subviews"].append(child)
        view.parts.append(self.retain(child))
        child.fields["above"] = view

    def remove_view(self, view):
        above = view.fields["above"]
        above.fields["subviews"].remove(view)
        above.parts.remove(view)
        self.release(view)

    def layer_of(self, view):
        if view.fields.get("wantsLayer") and "layer" not in view.fields:
            self.set_field(view, "layer", self.new("CALayer"))
        return view.fields.get("layer")

    def set_glass_content(self, glass, view):
        self.set_field(glass, "contentView", view)
        self.add_subview(glass, view)

    def screens(self, cls):
        return [self.new("NSScreen", frame=frame, backingScaleFactor=2.0) for frame in self.displays]

    def looked_up(self, library, name):
        name = self.text_at(name)
        if name not in self.imports:
            self.imports[name] = self.add_exit(name, lambda: self.window_server(name))
        return self.imports[name]

    def window_server(self, name):
        count, result = WINDOW_SERVER[name]
        words = [self.word(index) for index in range(count)]
        self.note(f"{name}({', '.join(shown(self.thing(word)) if word >= 2**32 else str(word) for word in words)})")
        self.set_word(0, result)

    # Drawing

    def draw(self, view):
        self.context = self.new("NSGraphicsContext", is_immortal=True, CGContext=self.new("CGContext", name="context", is_immortal=True))
        self.send(view, "drawRect:", *view.fields["bounds"])
        self.context = None

    def make_attributed(self, thing, text, attributes):
        font, has_context_color = (attributes.value[f"kCT{key}AttributeName"][1] for key in ("Font", "ForegroundColorFromContext"))
        if not has_context_color.value:
            raise Fault("a text that does not have the context's colour")
        self.set_field(thing, "font", font)
        thing.fields["text"], thing.name = text.value, f"{shown(text)} in {font.name}"
        return thing

    def make_font(self, cls, size, weight):
        return self.new("NSFont", size, f"{size:g} points, weight {weight:g}", ascender=0.95 * size, descender=-0.25 * size)

    def line_width(self, line, *_):
        """A letter is half as wide as the font is high."""
        text = line.parts[0]
        return 0.5 * text.fields["font"].value * len(text.fields["text"]) if "text" in text.fields else 100.0

    def picture_properties(self, source, index, options):
        self.note(f"properties of picture {index}: {shown(options)}")
        return self.picture and dict(zip(("kCGImagePropertyPixelWidth", "kCGImagePropertyPixelHeight"), self.picture))

    def joined_transforms(self, rows, columns):
        return doubles(*(sum(rows[4 * i + k] * columns[4 * k + j] for k in range(4)) for i in range(4) for j in range(4)))

    def gradient(self, space, components, places, count):
        stops = (self.read(place, 8 * size) for place, size in ((components, 4 * count), (places, count)))
        colors, positions = (struct.unpack(f"<{len(data) // 8}d", data) for data in stops)
        return self.new("CGGradient", name=f"gradient of {shown(positions)[1:-1]}: {', '.join(map(shown, colors))}")


EFFECTS = {
    "NSValue valueWithCATransform3D:": lambda s, cls, parts: s.new("NSValue", name=shown(parts)),
    "NSAttributedString initWithString:attributes:": System.make_attributed,
    "dlopen": lambda s, path, mode: s.note(f"dlopen({s.text_at(path)}, {mode})") or 1,
    "dlerror": lambda s: s.place(b"no such library\0"),
    "dlsym": System.looked_up,
    "NSApplication setActivationPolicy:": lambda s, application, policy: True,
    "NSApplication run": System.run_application,
    "NSApplication terminate:": System.end_application,
    "NSColor clearColor": lambda s, cls: s.shared("NSColor", "NSColor.clearColor"),
    "NSWorkspace notificationCenter": lambda s, workspace: s.shared("NSNotificationCenter", "<workspace's center>"),
    "NSScreen screens": System.screens,
    "NSEvent mouseLocation": lambda s, cls: s.pointer,
    "NSWindow initWithContentRect:styleMask:backing:defer:": System.make_window,
    "NSWindow orderFrontRegardless": System.order_front,
    "NSWindow orderOut:": lambda s, window, sender: window.fields.update(visible=False),
    "NSWindow close": System.close_window,
    "NSWindow dealloc": lambda s, window: s.windows.remove(window),
    "NSWindow animator": System.animator,
    "NSWindow sendEvent:": System.send_event,
    "NSAnimationContext runAnimationGroup:completionHandler:": System.animate,
    "NSAppearance appearanceNamed:": lambda s, cls, name: s.new("NSAppearance", name=name.value),
    "NSView initWithFrame:": System.make_view,
    "NSView addSubview:": System.add_subview,
    "NSView removeFromSuperview": System.remove_view,
    "NSView layer": System.layer_of,
    "NSView convertPoint:fromView:": lambda s, view, point, other: s.point_in(view, point),
    "NSView window": lambda s, view: next((each for each in s.windows if view in s.views(each)), None),
    "NSWindow convertPointFromScreen:": lambda s, window, point: tuple(each - at for each, at in zip(point, window.fields["frame"])),
    "NSMutableArray arrayWithCapacity:": lambda s, cls, capacity: s.new("NSMutableArray", []),
    "NSMutableArray addObject:": lambda s, array, item: array.value.append(s.retain(item)),
    "NSGlassEffectView setContentView:": System.set_glass_content,
    "NSTrackingArea initWithRect:options:owner:userInfo:": lambda s, area, *_: area,
    "NSLayoutAnchor constraintEqualToAnchor:": lambda s, one, other: s.new("NSLayoutConstraint", name=f"{one.name} = {other.name}"),
    "CALayer layer": lambda s, cls: s.new(cls.name),
    "CASpringAnimation initWithPerceptualDuration:bounce:": lambda s, animation, *_: animation,
    "CASpringAnimation settlingDuration": lambda s, animation: 1.5,
    "CATransform3DMakeTranslation": lambda s, x, y, z: doubles(*IDENTITY[:12], x, y, z, 1),
    "CATransform3DMakeScale": lambda s, x, y, z: doubles(x, *IDENTITY[1:5], y, *IDENTITY[1:5], z, *IDENTITY[11:]),
    "CATransform3DConcat": System.joined_transforms,
    "NSGraphicsContext currentContext": lambda s, cls: s.context,
    "NSFont systemFontOfSize:weight:": System.make_font,
    "NSFont monospacedDigitSystemFontOfSize:weight:": System.make_font,
    "NSColor colorWithSRGBRed:green:blue:alpha:": lambda s, cls, *parts: s.new("NSColor", name=f"colour {shown(list(parts))}"),
    "NSImageSymbolConfiguration configurationWithPointSize:weight:": (
        lambda s, cls, size, weight: s.new("NSImageSymbolConfiguration", name=f"{size:g} points, weight {weight:g}")
    ),
    "NSImageSymbolConfiguration configurationWithPaletteColors:": (
        lambda s, cls, colors: s.new("NSImageSymbolConfiguration", name=shown(colors))
    ),
    "NSImageSymbolConfiguration configurationByApplyingConfiguration:": (
        lambda s, one, other: s.new("NSImageSymbolConfiguration", name=f"{one.name}, {other.name}")
    ),
    "NSImage imageWithSystemSymbolName:accessibilityDescription:": lambda s, cls, name, _: s.new("NSImage", name=name.value),
    "NSImage imageWithSymbolConfiguration:": lambda s, image, look: s.new("NSImage", name=f"{image.name} ({look.name})"),
    "NSAccessibilityFrameInView": System.frame_on_screen,
    "NSImage size": lambda s, image: (20.0, 16.0),
    "CTLineGetTypographicBounds": System.line_width,
    "CGGradientCreateWithColorComponents": System.gradient,
    "CGImageSourceCopyPropertiesAtIndex": System.picture_properties,
    "CGImageGetWidth": lambda s, image: s.picture[0],
    "CGImageGetHeight": lambda s, image: s.picture[1],
    "CGAffineTransformMakeScale": lambda s, x, y: doubles(x, 0, 0, y, 0, 0),
}
# Calls that only add a note, calls that return an object's value, and calls that make an object of
# a value.
NOTED = [
    "NSProcessInfo endActivity:", "NSDistributedNotificationCenter postNotificationName:object:userInfo:deliverImmediately:",
    "NSView layout", "NSView viewDidChangeBackingProperties", "NSView addTrackingArea:", "NSView setNeedsDisplayInRect:",
    "NSLayoutConstraint activateConstraints:", "NSAccessibilityPostNotification", "CALayer addSublayer:",
    "CALayer addAnimation:forKey:", "CALayer removeAllAnimations", "CATransaction begin", "CATransaction commit",
    "CATransaction setDisableActions:", "NSImage drawInRect:fromRect:operation:fraction:respectFlipped:hints:",
    *(f"CGContext{what}" for what in """SaveGState RestoreGState TranslateCTM ScaleCTM AddPath EOFillPath Clip ClipToRect
    SetFillColorWithColor SetAlpha SetBlendMode SetInterpolationQuality BeginTransparencyLayer EndTransparencyLayer SetTextMatrix
    SetTextPosition DrawImage DrawLinearGradient""".split()), "CTLineDraw", "CGPathAddRect", "CGPathAddRoundedRect",
]  # fmt: skip
VALUES = ["NSNumber doubleValue", "NSNumber longLongValue", "NSNumber boolValue", "NSDate timeIntervalSince1970", "NSURL path",
          "NSUUID UUIDString"]  # fmt: skip
BOXED = [f"NSNumber numberWith{kind}:" for kind in ("Int", "LongLong", "UnsignedLongLong", "Double", "Bool")]
EFFECTS |= dict.fromkeys(NOTED, lambda s, *_: None)
EFFECTS |= dict.fromkeys(VALUES, lambda s, thing: thing.value)
EFFECTS |= dict.fromkeys(BOXED, lambda s, cls, value: value)

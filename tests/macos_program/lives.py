"""The lives of the add-on and of quorvane-host: the events while each runs, and the expected state afterwards."""

import re
from pathlib import Path

from appkit import CANCELLED, DOWN, DRAGGED, UP
from foundation import BUNDLE, CONTAINERS, PORT, SUPPORT
from program import Fault

ROOT = Path(__file__).resolve().parents[2]
SECRET = bytes(range(100, 132))
SECRET_FILE = f"{CONTAINERS}/group.example.quillon.Quorvane/ipc-secret"
NEXT = 324.0, 128.0  # the next track's symbol in its window
NEW = "/Volumes/New/Quorvane Lock Screen.app"
RANGE = ("Value", "MinValue", "MaxValue", "ValueDescription")
ELEMENTS = {"CardControlElement": ("Value",), "CardButtonElement": (), "CardProgressElement": RANGE, "CardSliderElement": RANGE}
# Objects alive when `main` has returned: the handlers of SIGTERM and SIGINT, and the log that the
# first one needs.
KEPT = {"OS_dispatch_source": 2, "Block": 2, "OS_os_log": 4}


def sample(name, start):
    """A text from the records' tests, which compare it with the project's encoder."""
    text = (ROOT / "tests/QuorvaneKit/records" / name).read_text(encoding="utf-8")
    at = text.index(start)
    return "".join(re.findall(r'R"\((.*?)\)"', text[at : text.index(";\n", at)])).encode()


STATE = sample("SampleRecords.hpp", "kSampleText =").replace("Ø & 夜".encode(), b"A name that is far too long for its line on the card")
SILENCE = sample("SampleRecords.hpp", "kSmallestText =")
CONFIGURATION = sample("RecordCodingTest.cpp", "LockScreenAddOnConfiguration{")
SIGHTING = sample("RecordCodingTest.cpp", "LockScreenAddOnSighting{")
HELLO = sample("RecordCodingTest.cpp", "LockScreenAddOnHello{")


def expect(condition, what):
    if not condition:
        raise Fault(what)


def launch(mac):
    """An older copy is asked to quit. The main application restarts. The add-on answers and obeys the installer."""
    mac.add_copy(3000, 20.0, is_terminated=True)
    older = mac.add_copy(4000, 50.0)
    mac.pass_time(9.9)
    mac.note("-- the older copy does not quit by itself")
    mac.pass_time(0.3)
    mac.copies.remove(older)
    mac.pass_time(0.3)
    mac.note("-- the main application ends; a lock")
    mac.post("example.quillon.Quorvane.mainAppWillTerminate")
    mac.end_main_application()
    mac.post("com.apple.screenIsLocked")
    mac.post("com.apple.screenLockUIIsShown")
    mac.pass_time(1)
    expect(all(window.fields["alphaValue"] == 0 for window in mac.windows), "a card shows without a main application")
    mac.note("-- it is there again")
    mac.has_main_application = True
    mac.post("example.quillon.Quorvane.lockScreenConfigurationChanged")
    mac.post("example.quillon.Quorvane.playerStateChanged")
    mac.pass_time(0.1)
    expect([window.fields["alphaValue"] for window in mac.windows] == [1], "no card shows when the main application is there again")
    mac.note("-- the installer asks for the status, and to quit")
    mac.post("example.quillon.Quorvane.LockScreenAddOn.statusRequest")
    mac.post("example.quillon.Quorvane.LockScreenAddOn.quit")


def lock(mac):
    """Compares all calls of one lock. Of two more locks, the second must leave no additional objects."""
    mac.pass_time(0)
    one_lock(mac, show)
    mac.note("-- the machine wakes, locked")
    mac.session["CGSSessionScreenIsLocked"] = True
    mac.post("NSWorkspaceDidWakeNotification")
    mac.transcript, transcript = [], mac.transcript
    mac.pass_time(200)  # four hellos, after which there is a port for each
    one_lock(mac, lambda mac: mac.pass_time(3))
    before = mac.living(), len(mac.blocks)
    one_lock(mac, lambda mac: mac.pass_time(3))
    expect((mac.living(), len(mac.blocks)) == before, f"a lock leaves {mac.living() - before[0]} behind, or memory")
    mac.transcript = transcript
    mac.note("-- the next track's picture is too large to decode, and its volume is low")
    mac.answers[1] = STATE.replace(b'"title":"', b'"title":"Another ').replace(b"//4g", b"//5g").replace(b'"volume":64', b'"volume":1')
    mac.picture = 100_000, 100_000
    mac.post("example.quillon.Quorvane.playerStateChanged")
    mac.note("-- from right to left, without motion")
    mac.shared("NSApplication").fields["userInterfaceLayoutDirection"] = 1
    mac.shared("NSWorkspace").fields["accessibilityDisplayShouldReduceMotion"] = True
    one_lock(mac, add_display)


def click(mac, window):
    for kind in (DOWN, UP):
        mac.mouse(window, kind, *NEXT)


def press(mac, window):
    """Uses the card as an assistive technology does."""
    elements = [each for each in mac.things.values() if each.cls.name == "CardButtonElement"]
    button = next(each for each in elements if each.fields["accessibilityLabel"].value == "Next Track")
    mac.send(button, "accessibilityPerformPress")


def unlock_in(mac, click):
    """A click reconnects to the main application. While the request waits, the screen is unlocked and the window closed."""
    window = mac.windows[0]
    mac.pass_time(0.5)
    mac.end_main_application()
    click(mac, window)
    mac.has_main_application = True

    def unlock():
        mac.while_waiting = lambda: None
        mac.post("com.apple.screenLockUIIsHidden")
        mac.post("com.apple.screenIsUnlocked")

    mac.while_waiting = unlock
    mac.note("-- clicked; unlocked meanwhile")
    click(mac, window)
    expect(not mac.windows, "the window stays")


def add_display(mac):
    mac.draw(mac.view(mac.windows[0], "FirstMouseHostingView"))
    mac.note("-- a display is added")
    mac.displays.append((1920.0, 0.0, 800.0, 600.0))
    mac.post("NSApplicationDidChangeScreenParametersNotification")
    expect(len(mac.windows) == 2, "there is no window for the second display")
    mac.pass_time(1)
    mac.note("-- the music ends")
    mac.answers[1] = SILENCE
    mac.post("example.quillon.Quorvane.playerStateChanged")
    mac.pass_time(1)
    expect(all(window.fields["alphaValue"] == 0 for window in mac.windows), "a card shows without music")


def one_lock(mac, during):
    mac.note("-- locked; 0.799 s")
    mac.post("com.apple.screenIsLocked")
    mac.post("com.apple.screenLockUIIsShown")
    mac.pass_time(0.799)
    expect(not mac.windows, "there is a window before its time")
    mac.note("-- 0.8 s")
    mac.pass_time(0.001)
    expect(len(mac.windows) == 1, "there is no window after 0.8 s")
    during(mac)
    mac.note("-- unlocked")
    mac.post("com.apple.screenLockUIIsHidden")
    mac.post("com.apple.screenIsUnlocked")
    mac.pass_time(1)
    expect(not mac.windows, "a window outlives its lock")


def show(mac):
    window = mac.windows[0]
    card = mac.view(window, "FirstMouseHostingView")
    shadow = mac.view(window, "CardShadowView")
    for thing, questions in ((window, ("canBecomeKeyWindow", "canBecomeMainWindow")), (card, ("mouseDownCanMoveWindow", "isFlipped"))):
        for question in questions:
            mac.ask(thing, question)
    mac.ask(shadow, "hitTest:", 252.0, 163.0)
    mac.note("-- the display's scale changes")
    window.fields["backingScaleFactor"] = 1.0
    mac.send(shadow, "viewDidChangeBackingProperties")
    mac.send(shadow, "layout")
    mac.note("-- the entrance; a frame is drawn")
    mac.pass_time(0.4)
    mac.draw(card)
    mac.draw(mac.view(window, "MovedTextView"))
    x, y, width, height = (float(each) for each in re.findall(r"-\[forward.*drawInRect:\D*(\d+), (\d+)\D*(\d+), (\d+)", mac.text())[0])
    expect(NEXT == (52 + x + width / 2, 52 + 222 - y - height / 2), "the next track's symbol is elsewhere")
    mac.note("-- the pointer is on the shadow, and comes back")
    for how in ("Moved", "Entered", "Exited"):
        mac.pointer = (728.0, 502.0)
        mac.send(window.fields["contentView"], f"mouse{how}:", 0)
        mac.pass_time(0.05)
        mac.pointer = (768.0, 542.0)
        mac.pass_time(0.05)
    mac.note("-- the next track's symbol is pressed, drawn and released; a press is cancelled by the system")
    mac.mouse(window, DOWN, *NEXT)
    mac.pass_time(0.1)
    mac.draw(card)
    for kind in (UP, DOWN, CANCELLED):
        mac.mouse(window, kind, *NEXT)
    mac.pass_time(0.1)
    mac.note("-- the volume is dragged, to outside of the card")
    for kind, at in ((DOWN, (152.0, 80.0)), (DRAGGED, (252.0, 80.0)), (DRAGGED, (352.0, 10.0)), (UP, (352.0, 10.0))):
        mac.mouse(window, kind, *at)
    mac.note("-- an assistive technology asks, and presses")
    for question in ("isAccessibilityElement", "accessibilityRole", "accessibilityChildren"):
        mac.ask(card, question)
    for place in (NEXT, (60.0, 60.0)):
        mac.ask(card, "accessibilityHitTest:", *(at + origin for at, origin in zip(place, window.fields["frame"])))
    for element in [each for each in mac.things.values() if each.cls.name in ELEMENTS]:
        actions = {"CardButtonElement": ("PerformPress",), "CardSliderElement": ("PerformIncrement", "PerformDecrement")}
        for question in ("Frame", *ELEMENTS[element.cls.name], *actions.get(element.cls.name, ())):
            mac.ask(element, f"accessibility{question}")
    mac.send(element, "setAccessibilityValue:", mac.box(30))  # the last is the volume
    commands = [int(each) for each in re.findall(r"request 2 to : b'.x0(.)'", mac.text())]
    expect(commands == [1, 2, 0, 1], f"the commands are {commands}")
    mac.transcript, transcript = [], mac.transcript
    mac.pass_time(6)
    mac.transcript = transcript
    mac.note("-- the displays sleep")
    mac.post("NSWorkspaceScreensDidSleepNotification")
    mac.transcript, transcript = [], mac.transcript
    mac.pass_time(3)
    expect("setNeedsDisplayInRect:" not in mac.text(), "a card that nobody sees is drawn")
    mac.transcript = transcript
    mac.note("-- three seconds later they wake")
    mac.post("NSWorkspaceScreensDidWakeNotification")


def uninstall(mac):
    raise Fault("the removal did not quit")


def interrupted(mac):
    mac.pass_time(0)
    one_lock(mac, lambda mac: mac.transcript.clear() or mac.raise_signal(2))


def frame(mac):
    mac.pass_time(0)
    mac.transcript.clear()
    one_lock(mac, lambda mac: mac.pass_time(0.4) or mac.draw(mac.view(mac.windows[0], "FirstMouseHostingView")))


def pictures(mac):
    """Draws pictures of valid and invalid sizes."""
    mac.pass_time(0)

    def draw(mac):
        for number, size in enumerate(((3000, 1000), (1, 4), (0, 4), (-1, 4), ("wide", 4), (16385, 4), (2**40, 4), None, (2.5, 4))):
            mac.note(f"-- {size}")
            mac.picture, mac.answers[1] = size, STATE.replace(b"//4g", b"//%dg" % number)
            mac.post("example.quillon.Quorvane.playerStateChanged")
            mac.pass_time(0.4)
            mac.draw(mac.view(mac.windows[0], "FirstMouseHostingView"))

    one_lock(mac, draw)
    wanted = re.compile("--|.*TranslateCTM|.*ScaleCTM|.*DrawImage|.*music.note|properties")
    mac.transcript = [line for line in mac.transcript if wanted.match(line)]


def terminated(mac):
    mac.pass_time(0)
    mac.raise_signal(15)


def removed(mac):
    expect(not any(path.startswith(SUPPORT) for path in mac.files), "files are left")
    expect(not any(mac.domains.values()), "preferences are left")


LIVES = {  # name: options, the events while it runs, the expected state afterwards; the long ones last
    "SIGTERM": ([], terminated, None),
    "frame": ([], frame, None),
    "uninstall": (["--uninstall"], uninstall, removed),
    "launch": (["--installed"], launch, None),
    "click": ([], lambda mac: mac.pass_time(0) or one_lock(mac, lambda mac: unlock_in(mac, click)), None),
    "press": ([], lambda mac: mac.pass_time(0) or one_lock(mac, lambda mac: unlock_in(mac, press)), None),
    "SIGINT": ([], interrupted, None),
    "lock": ([], lock, lambda mac: expect(mac.living() == KEPT, f"alive at the end: {mac.living()}")),
    "pictures": ([], pictures, None),
}


def serve(mac):
    """The host makes the secret. Its ports answer only requests with it."""
    mac.pass_time(1)
    for port, number, body in (("", 1, SECRET), ("", 1, SECRET[::-1]), (".query.2", 14, SECRET + HELLO), (".query.0", 1, SECRET)):
        mac.note(f"request {number} to {port}: {mac.ask_port(PORT + port, number, body)}")
    mac.raise_signal(2)


def install(mac):
    """Installs over an older bundle and the remains of an earlier attempt. The started add-on reports its status."""
    mac.pass_time(0.5)
    status = "example.quillon.Quorvane.LockScreenAddOn.status"
    if any(name == status for _, name, *_ in mac.observers):
        mac.post(status, {"connected": True, "version": "1.0.0"})
    mac.pass_time(5)


def served(mac):
    expect(mac.files[SECRET_FILE] == SECRET, "there is no secret")
    expect(mac.living() == {"OS_dispatch_source": 1, "Block": 1}, f"alive at the end: {mac.living()}")


def installed(mac):
    expect(f"{BUNDLE}/Contents/Info.plist" in mac.files, "the bundle is not there")
    expect(not any(".staged" in path for path in mac.files), "staged files are left")
    expect(not mac.living(), f"alive at the end: {mac.living()}")


HOST_LIVES = {
    "host run": (["run"], serve, served),
    "host install": (["install", "--from", NEW], install, installed),
    "host first install": (["install", "--from", NEW], install, installed),
    "host interrupted": (["run"], lambda mac: mac.raise_signal(2), None),
    "host launch": (["launch"], install, None),
    "host status": (["status"], install, None),
}

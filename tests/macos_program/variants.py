"""Lives in which some of the system's calls fail or return unusual values."""


def refuse(code):
    return lambda mac, *arguments: mac.failed(arguments[-1], "NSCocoaErrorDomain", code, "It is refused.") or None


def answer(value):
    return lambda *_: value


def reply(body):
    """The main application's answer to a request for the state."""

    def send(mac, *arguments):
        mac.answers[1] = body
        return mac.send_request(*arguments)

    return {"CFMessagePortSendRequest": send}


def others_port(mac, *arguments):
    mac.write(arguments[-1], b"\1")
    return mac.make_local_port(*arguments)


def late(mac):
    """The loop of a thread that runs after the main thread has stopped its port."""
    for _ in range(20):
        mac.switch()
    return mac.loop()


def stored(**values):
    return {"NSUserDefaults objectForKey:": lambda mac, defaults, key: values.get(key.value)}


FOLDER = "NSFileManager createDirectoryAtURL:withIntermediateDirectories:attributes:error:"
PLIST = "NSPropertyListSerialization propertyListWithData:options:format:error:"
REMOVE = "NSFileManager removeItemAtURL:error:"
VARIANTS = {  # name: the life that it varies, the effects that differ
    "no container": ("SIGTERM", {FOLDER: refuse(513)}),
    "nothing to read": ("SIGTERM", {"NSData dataWithContentsOfURL:options:error:": refuse(260)}),
    "no suite": ("launch", {"NSUserDefaults initWithSuiteName:": lambda mac, defaults, name: mac.release(defaults)}),
    "not synchronised": ("launch", {"CFPreferencesAppSynchronize": answer(False)}),
    "still a login item": ("uninstall", {"SMAppService unregisterAndReturnError:": refuse(1)}),
    "nothing to remove": ("uninstall", {REMOVE: refuse(4)}),
    "nothing removed": ("uninstall", {REMOVE: refuse(513)}),
    "no support folder": ("uninstall", {"NSFileManager URLsForDirectory:inDomains:": answer([])}),
    "no window server": ("frame", {"dlopen": answer(0)}),
    "an empty reply": ("SIGTERM", reply(b"")),
    "no reply": ("SIGTERM", {"CFMessagePortSendRequest": answer(-2)}),
    "removal pending": ("SIGTERM", stored(removalPending=True, removalBundleIdentity="example.quillon.Quorvane.LockScreenAddOn")),
    "removal of another": ("SIGTERM", stored(removalPending=True, removalBundleIdentity="another")),
    "removal of type number": ("SIGTERM", stored(removalPending=1, installID="an earlier one")),
    "no symbols": ("frame", {"dlsym": answer(0)}),
    "narrow text": ("frame", {
        "NSWorkspace accessibilityDisplayShouldReduceMotion": answer(True),
        "CTLineCreateTruncatedLine": answer(None),
    }),
    "no context": ("frame", {"NSGraphicsContext currentContext": answer(None)}),
    "no properties": ("uninstall", {PLIST: answer(None)}),
    "properties in a list": ("uninstall", {PLIST: answer(["CFBundleIdentifier"])}),
    "a number as identifier": ("uninstall", {PLIST: answer({"CFBundleIdentifier": 5})}),
    "no picture": ("frame", {"CGImageSourceCreateThumbnailAtIndex": answer(None)}),
    "host without random bytes": ("host run", {"SecRandomCopyBytes": answer(-5)}),
    "host without a file": ("host run", {"NSData writeToURL:options:error:": refuse(640)}),
    "host without attributes": ("host run", {"NSFileManager setAttributes:ofItemAtPath:error:": refuse(513)}),
    "host without a link": ("host run", {"NSFileManager linkItemAtURL:toURL:error:": refuse(640)}),
    "host without a port": ("host run", {"CFMessagePortCreateLocal": answer(None)}),
    "host beside another": ("host run", {"CFMessagePortCreateLocal": others_port}),
    "host with a new secret": ("host run", {"NSFileManager linkItemAtURL:toURL:error:": refuse(516)}),
    "host interrupted early": ("host interrupted", {"CFRunLoopGetCurrent": late}),
    "host without a folder": ("host install", {FOLDER: refuse(513)}),
    "host without a copy": ("host install", {"NSFileManager copyItemAtURL:toURL:error:": refuse(640)}),
    "host without a place": ("host install", {"renamex_np": lambda mac, *_: mac.set_errno(13)}),
    "host with a failed launch": ("host install", {
        "NSTask terminationStatus": answer(1),
        "NSFileHandle readDataToEndOfFileAndReturnError:": answer(b"cannot open\n\n"),
    }),
    "host without a launcher": ("host install", {"NSTask launchAndReturnError:": refuse(4)}),
}

"""The system functions that only quorvane-host uses: threads, run loops, served ports, files to write, the launcher.

One thread runs at a time. A wait lets the others run.
"""

import struct
import threading

from appkit import System
from objects import shown
from program import SIZES, STACK, Fault
from unicorn.arm64_const import UC_ARM64_REG_SP

THREAD_STACK = 0x80000
RENAME_SWAP, RENAME_EXCL, ENOENT, EEXIST = 2, 4, 2, 17


class Thread:
    def __init__(self):
        self.turn, self.has_ended, self.pools, self.loop = threading.Semaphore(0), False, [[]], None


class Host(System):
    def __init__(self, program, bundle, options, documented, secret, effects):
        self.threads, self.fault, self.listings = [Thread()], None, []
        self.thread = self.threads[0]
        super().__init__(bundle, options, documented, secret, {}, EFFECTS | effects, program)
        self.has_main_application = False
        self.copies.clear()

    # Threads

    def switch(self):
        """Lets the next thread run. This one continues when each has run until it waits."""
        here = self.thread
        at = self.threads.index(here)
        following = next((each for each in self.threads[at + 1 :] + self.threads[:at] if not each.has_ended), None)
        if following is None:
            return
        registers, here.pools = self.unicorn.context_save(), self.pools
        self.thread, self.pools = following, following.pools
        following.turn.release()
        here.turn.acquire()
        self.unicorn.context_restore(registers)
        if self.fault and here is self.threads[0]:
            raise self.fault

    def make_thread(self, place, attributes, function, argument):
        made = Thread()
        self.threads.append(made)
        stack = STACK + SIZES[STACK] - 0x1000 - THREAD_STACK * (len(self.threads) - 1)
        self.write_words(place, len(self.threads) - 1)

        def body():
            made.turn.acquire()
            self.unicorn.reg_write(UC_ARM64_REG_SP, stack)
            try:
                self.call(function, argument)
                self.pop_pools(0)
            except Exception as fault:
                self.fault = fault
            made.has_ended = True
            self.thread, self.pools = self.threads[0], self.threads[0].pools
            self.thread.turn.release()

        threading.Thread(target=body, daemon=True).start()
        return 0

    def join_thread(self, number):
        while not self.threads[number].has_ended:
            self.switch()
        return 0

    def wait(self):
        self.switch()
        self.now += 10**7
        return 0

    def settle(self):
        super().settle()
        if self.thread is self.threads[0]:
            self.switch()
            super().settle()

    # Run loops and ports

    def loop(self):
        if self.thread.loop is None:
            self.thread.loop = self.new("CFRunLoop", [], is_immortal=True, is_stopped=False)
        return self.thread.loop

    def run_loop(self):
        loop = self.loop()
        loop.fields["is_stopped"] = False
        while not loop.fields["is_stopped"]:
            self.turn(loop)

    def run_once(self, mode, seconds, is_one_source):
        if not is_one_source or seconds < 10**9:
            raise Fault("the loop does not return after a source, and only then")
        self.turn(self.loop())
        return 4  # kCFRunLoopRunHandledSource

    def turn(self, loop):
        """Runs what is due; on the main thread, the scenario first."""
        if self.thread is self.threads[0]:
            self.settle()
            scenario, self.scenario = self.scenario, lambda mac: mac.pass_time(0.05)
            return scenario(self)
        self.switch()
        if "asked" in loop.fields:
            loop.fields["answer"] = self.answer(*loop.fields.pop("asked"))
        while loop.value:
            self.run_block(loop.value[0])
            self.release(loop.value.pop(0))

    def make_local_port(self, allocator, name, callout, context, is_others):
        port = self.ports[name.value] = self.new("CFMessagePort", name=name.value, callout=callout, info=self.read_word(context + 8))
        return port

    def ask_port(self, name, number, body):
        """Sends to a served port, whose thread answers; None when there is no such port."""
        if name not in self.ports:
            return None
        loop = self.ports[name].fields["loop"]
        loop.fields.update(asked=(self.ports[name], number, body), answer=None)
        while loop.fields["answer"] is None:
            self.pass_time(0.001)
        return loop.fields["answer"]

    def answer(self, port, number, body):
        data = self.retain(self.box(body))
        answer = self.thing(self.call(port.fields["callout"], port.address, number, data.address, port.fields["info"]))
        self.release(data)
        content = bytes(answer.value) if answer else "nothing"
        self.release(answer)
        return content

    # Files

    def set_errno(self, code):
        self.write_words(self.errno_place(), code)
        return -1

    def status_of(self, path, place):
        path = self.text_at(path)
        if not self.exists(path):
            return self.set_errno(ENOENT)
        self.write(place, struct.pack("<iH", 0, 0o100644 if path in self.files else 0o40755))
        return 0

    def open_folder(self, path):
        """Returns the number of a list of the entries still to be read."""
        path = self.text_at(path) + "/"
        names = {each[len(path) :].split("/")[0] for each in self.files if each.startswith(path)}
        if not names:
            self.set_errno(ENOENT)
            return 0
        self.listings.append(sorted(names))
        return len(self.listings)

    def read_folder(self, folder):
        if not self.listings[folder - 1]:
            return 0
        name = self.listings[folder - 1].pop(0).encode()
        return self.place(struct.pack("<QQHHB", 1, 0, 1048, len(name), 0) + name + b"\0")

    def link_item(self, manager, source, to, error):
        if to.value in self.files:
            return self.failed(error, "NSCocoaErrorDomain", 516, "The file is there.")
        self.files[to.value] = self.files[source.value]
        return True

    def move(self, source, to):
        for path in [path for path in self.files if path.startswith(source + "/")]:
            self.files[to + path[len(source) :]] = self.files.pop(path)

    def rename(self, source, to, how):
        source, to = self.text_at(source), self.text_at(to)
        self.note(f"renamex_np({source}, {to}, {how})")
        if self.exists(to) != (how == RENAME_SWAP):
            return self.set_errno(ENOENT if how == RENAME_SWAP else EEXIST)
        self.move(to, "/swapped")
        self.move(source, to)
        self.move("/swapped", source)
        return 0

    def copy_item(self, manager, source, to, error):
        for path in [path for path in self.files if path.startswith(source.value + "/")]:
            self.files[to.value + path[len(source.value) :]] = self.files[path]
        return True

    def launch_task(self, task, error):
        arguments = [each.value for each in task.fields["arguments"].value]
        self.note(f"{task.fields['executableURL'].value} {arguments}")
        self.add_copy(5000, 200.0)
        return True


EFFECTS = {
    "pthread_create": Host.make_thread,
    "pthread_join": Host.join_thread,
    "pthread_cond_wait": Host.wait,
    "pthread_cond_timedwait": Host.wait,
    "pthread_cond_destroy": lambda s: 0,
    "CFRunLoopGetCurrent": Host.loop,
    "CFRunLoopRun": Host.run_loop,
    "CFRunLoopRunInMode": Host.run_once,
    "CFRunLoopStop": lambda s, loop: loop.fields.update(is_stopped=True),
    "CFRunLoopPerformBlock": lambda s, loop, mode, block: loop.value.append(s.retain(s.copied(block))),
    "CFMessagePortCreateLocal": Host.make_local_port,
    "CFNotificationCenterPostNotification": lambda s, *_: None,
    "CFRunLoopWakeUp": lambda s, *_: None,
    "CFRunLoopAddSource": lambda s, loop, source, mode: source.parts[0].fields.update(loop=loop),
    "CFRunLoopRemoveSource": lambda s, *_: None,
    "NSBundle bundleIdentifier": lambda s, bundle: None,
    "NSBundle infoDictionary": lambda s, bundle: {},
    "pthread_key_create": lambda s, place: s.write_words(place, 1) or 0,
    "pthread_setspecific": lambda s, key, value: 0,
    "pthread_setname_np": lambda s, name: s.note(f"thread {s.text_at(name)}") or 0,
    "lstat": Host.status_of,
    "renamex_np": Host.rename,
    "opendir": Host.open_folder,
    "readdir": Host.read_folder,
    "closedir": lambda s, folder: 0,
    "NSFileManager linkItemAtURL:toURL:error:": Host.link_item,
    "NSFileManager setAttributes:ofItemAtPath:error:": (
        lambda s, manager, attributes, *_: s.note(f"attributes {shown(attributes)}") or True
    ),
    "NSData writeToURL:options:error:": lambda s, data, url, *_: s.files.update({url.value: bytes(data.value)}) or True,
    "NSFileManager copyItemAtURL:toURL:error:": Host.copy_item,
    "NSTask launchAndReturnError:": Host.launch_task,
    "NSTask waitUntilExit": lambda s, task: None,
    "NSTask terminationStatus": lambda s, task: 0,
    "NSPipe pipe": lambda s, cls: s.new("NSPipe"),
    "NSFileHandle readDataToEndOfFileAndReturnError:": lambda s, handle, error: b"",
    "fputs": lambda s, text, stream: s.note(f"prints {s.text_at(text).splitlines()}") or 0,
    "fprintf": lambda s, stream, text: s.note(f"prints {s.formatted(text).splitlines()}") or 0,
    "SecRandomCopyBytes": lambda s, source, count, place: s.write(place, s.secret[:count]),
}

"""Reads our own declarations of the platform's interfaces (platform/macos/sdk/).

They are written in a form that this can read: files are named after the system's own headers, a declaration is one
statement.
"""

import re
from dataclasses import dataclass
from pathlib import Path

SDK = Path(__file__).resolve().parents[2] / "platform" / "macos" / "sdk"


@dataclass(frozen=True)
class Declaration:
    framework: str  # or "" for the C library
    header: str  # of the system: "AppKit/NSWindow.h"
    kind: str  # class, protocol, method, property, enum, enumerator, type, constant, function
    owner: str  # class or protocol of a method or property, enum of an enumerator
    name: str
    text: str  # as it is declared
    selectors: tuple = ()


def _statements(text):
    current = ""
    for line in text.splitlines():
        line = re.sub(r"//.*", "", line).strip()
        if not line or line.startswith("#") or line in ('extern "C" {', "}"):
            continue
        current = f"{current} {line}".strip()
        depth = current.count("{") - current.count("}")
        complete = depth == 0 and (
            current.endswith(";")
            or current in ("@end", "@optional", "@required")
            or re.match(r"(__attribute__\(\(.*\)\) )?@(interface|protocol) [^;]*$", current)
        )
        if complete:
            yield current
            current = ""
    if current:
        raise SystemExit(f"unreadable declaration: {current}")


def selector_of(method):
    rest = re.sub(r"__attribute__\(\(.*?\)\)", "", method[1:].strip().rstrip(";"))
    rest = re.sub(r"\([^()]*(\([^()]*(\([^()]*\)[^()]*)*\)[^()]*)*\)", " ", rest)  # types
    parts = re.findall(r"(\w*):", rest)
    return "".join(f"{part}:" for part in parts) if parts else rest.split()[0]


def properties_of(statement):
    attributes = re.match(r"@property\s*(?:\(([^)]*)\))?", statement).group(1) or ""
    names = re.search(r"([\w\s,*]+);$", re.sub(r"\s*__attribute__\(\(.*?\)\)", "", statement)).group(1)
    found = []
    for name in (re.findall(r"(\w+)\s*$", part)[0] for part in names.split(",")):
        getter = re.search(r"getter\s*=\s*(\w+)", attributes)
        selectors = [getter.group(1) if getter else name]
        if "readonly" not in attributes:
            selectors.append(f"set{name[0].upper()}{name[1:]}:")
        found.append((name, tuple(selectors)))
    return found


def plain_text(found):
    return re.sub(r"\s*__attribute__\(\(.*?\)\)", "", found.text).rstrip("; ")


def types_of(method):
    """The result's type and those of the arguments."""
    return re.findall(r"(?:^[+-] |: ?)\(((?:[^()]|\((?:[^()]|\([^()]*\))*\))*)\)", plain_text(method))


def type_of(found):
    """A property's type."""
    return re.match(r"@property\s*(?:\([^)]*\))?\s*(.*?)\s*\w+$", plain_text(found)).group(1)


def messages_of(found):
    """Selector, with "+" before it where it is the class's, and types of each message of a method or property."""
    if found.kind == "method":
        yield ("+" if found.text[0] == "+" else "") + found.selectors[0], types_of(found)
        return
    sign = "+" if re.match(r"@property\s*\([^)]*\bclass\b", found.text) else ""
    yield sign + found.selectors[0], [type_of(found)]
    for setter in found.selectors[1:]:
        yield sign + setter, ["void", type_of(found)]


def _enumerators(statement):
    body = statement[statement.index("{") + 1 : statement.rindex("}")]
    return [re.match(r"\s*(\w+)", part).group(1) for part in body.split(",") if part.strip()]


def _plain(statement):
    """Kind and name of a declaration outside classes."""
    if match := re.match(r"typedef\s.*?\(\s*[*^]\s*(\w+)\s*\)\s*\(", statement):
        return "type", match.group(1)
    if match := re.match(r"typedef\s.*?(\w+);$", statement):
        return "type", match.group(1)
    if match := re.match(r"(?:struct|enum)\s+(\w+)\s*[{:]", statement):
        return "type", match.group(1)
    if match := re.match(r"extern\s+[^()]*?(\w+);$", statement):
        return "constant", match.group(1)
    if match := re.match(r"(?:extern\s+)?[\w\s*<>]+?[\s*](\w+)\s*\(", statement):
        return "function", match.group(1)
    raise SystemExit(f"unreadable declaration: {statement}")


def _read(path, framework):
    owner = ""
    header = path.relative_to(SDK).as_posix()
    for statement in _statements(path.read_text(encoding="utf-8")):

        def made(kind, name, selectors=(), of=None):
            return Declaration(framework, header, kind, owner if of is None else of, name, statement, selectors)

        if statement == "@end":
            owner = ""
        elif statement.startswith("@class") or re.match(r"@protocol [\w, ]+;$", statement):
            continue
        elif match := re.match(r"(?:__attribute__\(\(.*\)\) )?@(interface|protocol)\s+(\w+)", statement):
            owner = match.group(2)
            if not re.search(r"@interface\s+\w+\s*(<[^>]*>)?\s*\(", statement):
                yield made("class" if match.group(1) == "interface" else "protocol", owner, of="")
        elif statement.startswith("@property"):
            for name, selectors in properties_of(statement):
                yield made("property", name, selectors)
        elif statement[0] in "+-":
            selector = selector_of(statement)
            yield made("method", statement[0] + selector, (selector,))
        elif match := re.match(r"(?:typedef\s+)?enum\s*(\w*)\s*(?::[^{]*)?\{", statement):
            if match.group(1):
                yield made("enum", match.group(1))
            for name in _enumerators(statement):
                yield made("enumerator", name, of=match.group(1))
        elif statement not in ("@optional", "@required"):
            kind, name = _plain(statement)
            yield made(kind, name)


def read_all():
    found = []
    for path in sorted(SDK.rglob("*.h")):
        folder = path.relative_to(SDK).parent.as_posix()
        found += _read(path, folder if folder[0].isupper() else "")
    return found

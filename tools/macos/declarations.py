"""Reads our own declarations of the platform's interfaces (platform/macos/sdk/).

They are written in a form that this can read: files are named after the system's own headers, a declaration is one
statement, and "// from memory" ends the last line of one that no documentation or SDK was compared with.
"""

import re
from dataclasses import dataclass
from pathlib import Path

SDK = Path(__file__).resolve().parents[2] / "platform" / "macos" / "sdk"
MEMORY = "// from memory"


@dataclass(frozen=True)
class Declaration:
    framework: str  # or "" for what is in the C library
    header: str  # of the system: "NSWindow.h"
    kind: str  # class, protocol, method, property, enum, enumerator, type, constant, function
    owner: str  # class or protocol of a method or property, enum of an enumerator
    name: str
    text: str  # as it is declared
    verified: bool
    selectors: tuple = ()


def _statements(text):
    """Pairs of a statement and whether it is verified."""
    current, from_memory = "", False
    for line in text.splitlines():
        if line.rstrip().endswith(MEMORY):
            from_memory = True
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
            yield current, not from_memory
            current, from_memory = "", False
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


def _enumerators(statement):
    body = statement[statement.index("{") + 1 : statement.rindex("}")]
    return [re.match(r"\s*(\w+)", part).group(1) for part in body.split(",") if part.strip()]


def _plain(statement):
    """Kind and name of what stands outside classes."""
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
    for statement, verified in _statements(path.read_text(encoding="utf-8")):

        def made(kind, name, selectors=(), of=None):
            return Declaration(framework, path.name, kind, owner if of is None else of, name, statement, verified, selectors)

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

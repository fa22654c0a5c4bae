"""The system's classes and functions as platform/macos/sdk/ declares them: how arguments and results are passed."""

import re
from collections import namedtuple

import program  # noqa: F401, because it finds the next
import declarations

KINDS = {"CGPoint": "dd", "CGSize": "dd", "CGRect": "dddd", "CGAffineTransform": "M6", "CATransform3D": "M16",
         "NSOperatingSystemVersion": "M3"}  # fmt: skip
KINDS |= {"void": "", "SEL": "s", "float": "f", "CGFloat": "d", "double": "d", "uint8_t": "C", "uint32_t": "I"}
KINDS |= dict.fromkeys(("BOOL", "bool", "Boolean"), "B") | dict.fromkeys(("int", "SInt32", "pid_t", "int32_t"), "i")
KINDS |= dict.fromkeys(("long", "long long", "NSInteger"), "q") | dict.fromkeys(("id", "instancetype", "ObjectType", "KeyType"), "@")
KINDS |= dict.fromkeys(("NSUInteger", "unsigned long", "unsigned long long", "size_t", "uint64_t"), "Q")
ROOT = {"init": "@", "class": "@", "isKindOfClass:": "B@"}  # what NSObject itself has; see Declared.kind


# A declared method, property's accessor or function: the kinds of its result and arguments, whether the caller owns the result,
# the class of the result, the property, whether the object holds the property's value, and whether the property is read-only.
Member = namedtuple("Member", "name result arguments is_owned made property is_held is_fixed", defaults=(False, "", "", False, False))


class Declared:
    def __init__(self):
        everything = declarations.read_all()
        self.types = {found.name: found.text for found in everything if found.kind in ("type", "enum")}
        self.classes = {found.name: found.text for found in everything if found.kind in ("class", "protocol")}
        self.constants = {found.name for found in everything if found.kind == "constant"}
        self.functions = {found.name: self._function(found) for found in everything if found.kind == "function"}
        self.members = {}  # owner, whether of the class, selector -> member
        for found in everything:
            if found.kind == "method":
                self.members[found.owner, found.name[0] == "+", found.selectors[0]] = self._method(found)
            elif found.kind == "property":
                self._add_property(found)

    def kind(self, text):
        """A letter for a type: "@" object, "p" pointer, "s" C string, "M" words in memory, a "d" for each real, else as in struct."""
        text = re.sub(r"<[^()]*>|\b(const|extern|struct|__unsafe_unretained)\b|__attribute__\(\(.*?\)\)", " ", text)
        text = " ".join(text.replace("*", " * ").split())
        if "(^" in text or text.endswith("Ref"):
            return "@"
        if text.endswith("]") or "(*" in text:
            return "p"
        if text.endswith("*"):
            base = text[:-1].strip()
            return "s" if base == "char" else "@" if base in self.classes or base == "NSObject" else "p"
        if text in KINDS:
            return KINDS[text]
        return self.kind(re.search(rf"^enum {text} : (\w+)|^typedef (.*?)\b{text}\b", self.types[text]).expand(r"\1\2"))

    def _function(self, found):
        text = re.sub(r"\s*__attribute__\(\(.*?\)\)", "", found.text)
        result, parameters = re.match(r"(?:extern )?(.*?)\b\w+\s*\((.*)\);$", text).groups()
        parts = re.split(r",\s*(?![^()]*\))", parameters) if parameters not in ("void", "") else []
        kinds = [self.kind(part if "(^" in part else re.sub(r"\b\w+(\[\])?$", r"\1", part)) for part in parts]
        is_owned = self.kind(result) == "@" and bool(re.search("Create|Copy|create", found.name))
        return Member(found.name, self.kind(result), kinds, is_owned, result.removesuffix("Ref ").strip())

    def _method(self, found):
        types = re.findall(r"[-+:]\s*\(((?:[^()]|\([^()]*(?:\([^()]*\)[^()]*)*\))*)\)", found.text)
        is_owned = bool(re.match(r"(alloc|new|copy|mutableCopy|init)(?![a-z])", found.selectors[0]))
        return Member(found.selectors[0], self.kind(types[0]), [self.kind(each) for each in types[1:]], is_owned)

    def _add_property(self, found):
        listed, type_text = re.match(r"@property\s*(?:\(([^)]*)\))?\s*(.*?)\s*\w+\s*(?:__attribute__.*)?;$", found.text).groups()
        attributes, kind = set(re.findall(r"\w+", listed or "")), self.kind(type_text)
        is_held = kind == "@" and not attributes & {"weak", "unsafe_unretained"}
        for selector in found.selectors:
            kinds = ("", [kind]) if selector.endswith(":") else (kind, [])
            made = re.sub(r"<.*>|[*\s]", "", type_text)
            member = Member(selector, *kinds, False, made, found.name, is_held, "readonly" in attributes)
            self.members[found.owner, "class" in attributes, selector] = member

    def member(self, owner, is_class, selector):
        """A member of the class, or of a protocol that it adopts."""
        adopted = re.search(r"<([\w, ]+)>$", self.classes.get(owner, ""))
        for each in (owner, *(re.findall(r"\w+", adopted.group(1)) if adopted else ())):
            if found := self.members.get((each, is_class, selector)):
                return found
        return Member(selector, ROOT[selector][0], list(ROOT[selector][1:])) if owner == "NSObject" and selector in ROOT else None

    def superclass(self, name):
        match = re.search(rf"@interface {name}\s*(?:<[\w, ]+>)? : (\w+)", self.classes.get(name, ""))
        return match.group(1) if match else None if name == "NSObject" else "NSObject"

"""How the cross build compiles the adapters of platform/macos/. Needs the folder of tools/macos/cross-build."""

import json
import shlex
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
# The headers that most adapters include.
COMMON = '#import <AppKit/AppKit.h>\n#include "platform/LivePlatform.hpp"\n'


def compile_commands(build, folder):
    """A command for each file. They use a precompiled header, which is made in the folder."""
    entries = json.loads((build / "compile_commands.json").read_text())
    commands = {Path(each["file"]): shlex.split(each["command"]) for each in entries if each["file"].startswith(f"{ROOT}/platform/macos/")}
    header, made = Path(folder) / "common.hpp", Path(folder) / "common.pch"
    header.write_text(COMMON)
    path, command = next(each for each in commands.items() if each[0].suffix == ".mm")
    command = [str(header) if Path(word).name == path.name else word.replace("objective-c++", "objective-c++-header") for word in command]
    command[command.index("-o") + 1] = str(made)
    subprocess.run(command, cwd=build, check=True)
    return {path: command + ["-include-pch", str(made)] * (path.suffix == ".mm") for path, command in commands.items()}

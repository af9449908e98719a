#!/usr/bin/env python3
"""Holds the picture of the house against the files: who may include whom, and what may stand where.

  tools/check-layers.py           checks the whole tree, prints FILE:LINE: message for each breach and exits 1

Warnings (a file that has grown large) are printed and do not fail the check.
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# A room may include itself and these. The seam's own headers are the room "platform"; its implementations are rooms
# of their own.
ROOMS = {
    "intf": set(),
    "platform": set(),
    "support": {"platform"},
    "registry": {"support", "platform"},
    "services": {"registry", "support", "platform", "intf"},
    "products": {"services", "registry", "support", "platform", "intf"},
    "locations": {"products", "services", "registry", "support", "platform", "intf"},
    "library": {"locations", "products", "services", "registry", "support", "platform", "intf"},
    "siblings": {"support", "platform", "intf"},
    "host": {"intf"},
    "platform/windows": {"platform", "support", "intf"},
    "platform/simulated": {"platform", "support"},
    "platform/decorators": {"platform"},
}
# The composition roots choose what stands behind the seam: each on its own target only.
ROOT_EXTRAS = {
    ("library", ".windows.cpp"): {"platform/windows"},
    ("library", ".native.cpp"): {"platform/simulated", "siblings"},
    ("library", "NativeRoot.h"): {"platform/simulated"},
    ("siblings", ".windows.cpp"): {"platform/windows"},
}
# Single headers that a room may use although their room is closed to it: the base types of the boundary.
HEADER_EXTRAS = {
    "support": {"intf/intf_Base.h"},
    "registry": {"intf/intf_Base.h"},
    "platform/simulated": {"intf/intf_Base.h"},
}
# What may be included in angle brackets beside the C++ standard library, by room.
THIRD_PARTY = {
    "platform/windows": re.compile(r".*"),
    "platform/simulated": re.compile(r"nlohmann/json(_fwd)?\.hpp|pugixml\.hpp|stb/.*"),
    "host": re.compile(r"nlohmann/json(_fwd)?\.hpp|CLI/CLI\.hpp|stb/.*|sys/ioctl\.h|unistd\.h|dlfcn\.h|signal\.h"),
}
WINDOWS_HEADER = re.compile(r"(windows|winsock2?|ws2tcpip|win(base|def|error|nt|reg|svc|user|ver|trust)|shl\w+|shell\w+|"
                            r"obj(base|idl)|ole\w*|comm(ctrl|dlg)\w*|commoncontrols|psapi|tlhelp32|wtsapi32|msi\w*|"
                            r"msxml\w*|sddl|aclapi|userenv|combaseapi|oaidl|wtypes)\.h", re.IGNORECASE)
# Conditional compilation belongs to the seam, and to the base types that have to name the calling convention.
CONDITIONAL = re.compile(r"\s*#\s*(if|ifdef|ifndef|elif)\b")
INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^>"]+)[>"]')

# What has no place in the project: folders of somebody's machine, references to documents that do not ship with it,
# and hosts of package archives.
UNWANTED = [
    (re.compile(r"/(?:work|farm)/|/home/\w|/Users/\w"), "names a folder of one particular machine"),
    (re.compile(r"\bs(?:pec|pecification)\b(?!\.)(?!=)|\bspec\.md\b|\bspecified (?:by|in) the\b", re.IGNORECASE),
     "refers to a document that is not here"),
    (re.compile(r"\bPart [1-9]\.[0-9]"), "refers to a document that is not here"),
    (re.compile(r"https?://[\w.-]*\b(?:debian|ubuntu|npmjs|pypi|crates|conan)\b", re.IGNORECASE),
     "names the host of a package archive"),
]
TEXT_SUFFIXES = {".h", ".cpp", ".py", ".sh", ".md", ".cmake", ".txt", ".json", ".nsi", ".wxs", ".rc", ".def", ""}
LONGEST_LINE = 120
LONGEST = {".h": 250, ".cpp": 600}

breaches = []
warnings = []


def breach(path, line, message):
    breaches.append(f"{path}:{line}: {message}")


def room_of(path):
    """The room of a path below src: two folders deep for the implementations of the seam."""
    parts = pathlib.PurePosixPath(path).parts
    if len(parts) > 2 and parts[0] == "platform":
        return "/".join(parts[:2])
    return parts[0] if len(parts) > 1 else ""


def allowed_rooms(room, name):
    rooms = ROOMS[room] | {room}
    for (owner, suffix), extra in ROOT_EXTRAS.items():
        if owner == room and name.endswith(suffix):
            rooms |= extra
    return rooms


def check_quoted(path, line, room, header):
    """A quoted include inside src: it is rooted at src, exists, and lies in a room that this one may see."""
    if not (ROOT / "src" / header).is_file():
        breach(path, line, f'"{header}" is not the path of a header below src')
        return
    target = room_of(header)
    if target not in allowed_rooms(room, path.name) and header not in HEADER_EXTRAS.get(room, ()):
        breach(path, line, f"{room} may not include {target} ({header})")


def check_angled(path, line, room, header):
    if room != "platform/windows" and WINDOWS_HEADER.fullmatch(header):
        breach(path, line, f"<{header}> may be included in src/platform/windows only")
    elif re.search(r"[./]", header) and not THIRD_PARTY.get(room, re.compile("(?!)")).fullmatch(header):
        breach(path, line, f"{room} depends on the C++ standard library only, not on <{header}>")


def check_source(path, lines):
    """One file of src."""
    inner = path.relative_to("src")
    room = room_of(inner.as_posix())
    if room not in ROOMS:
        breach(path, 1, f'"{inner.parent}" is not a room of this house: give it its place in {pathlib.Path(__file__).name}')
        return
    if path.suffix == ".h" and not any(text.strip() == "#pragma once" for text in lines):
        breach(path, 1, "a header begins with #pragma once")
    free = path.parts[1] == "platform" or inner.as_posix() == "intf/intf_Base.h"
    for number, text in enumerate(lines, 1):
        if not free and CONDITIONAL.match(text):
            breach(path, number, "conditional compilation outside src/platform")
        found = INCLUDE.match(text)
        if found and found[1] == '"':
            check_quoted(path, number, room, found[2])
        elif found:
            check_angled(path, number, room, found[2])


def check_outside(path, lines):
    """One C++ file outside src: tests and benchmarks see every room, the boundary's hosts only the boundary."""
    is_foreign_program = path.parts[:2] == ("tests", "programs")  # what tests start: nothing of the project is in it
    host = path.parts[:2] == ("tests", "boundary") or path.parts[0] == "examples"
    for number, text in enumerate(lines, 1):
        found = INCLUDE.match(text)
        if not found:
            continue
        if WINDOWS_HEADER.fullmatch(found[2]) and not is_foreign_program:
            breach(path, number, f"<{found[2]}> may be included in src/platform/windows only")
        if host and found[1] == '"' and (ROOT / "src" / found[2]).is_file() and not found[2].startswith("intf/"):
            breach(path, number, f"a host knows src/intf only, not {found[2]}")


def check_text(path, lines):
    for number, text in enumerate(lines, 1):
        for pattern, message in UNWANTED:
            found = pattern.search(text)
            if found:
                breach(path, number, f"'{found[0]}' {message}")
        if path.suffix in LONGEST and len(text) > LONGEST_LINE:
            breach(path, number, f"the line is longer than {LONGEST_LINE} columns")
    limit = LONGEST.get(path.suffix)
    if limit and len(lines) > limit and path.parts[0] == "src":
        warnings.append(f"{path}: warning: {len(lines)} lines, more than {limit}: split it by meaning")


def project_files():
    """Everything that is or would be committed."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                            capture_output=True, check=True).stdout.decode()
    return sorted(pathlib.Path(name) for name in set(listed.split("\0")) if name and (ROOT / name).is_file())


def main():
    for path in project_files():
        if path.suffix not in TEXT_SUFFIXES or {"drives", "corpus"} & set(path.parts):
            continue
        try:
            lines = (ROOT / path).read_text(encoding="utf-8").splitlines()
        except UnicodeDecodeError:
            breach(path, 1, "is not UTF-8")
            continue
        check_text(path, lines)
        if path.suffix in LONGEST:
            check_source(path, lines) if path.parts[0] == "src" else check_outside(path, lines)
    for text in warnings + breaches:
        print(text, file=sys.stderr)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())

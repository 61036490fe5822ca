#!/usr/bin/env python3
"""Checks what the compiler does not: who includes whom, where system headers and platform tests may stand, how long
sources are, and that everything is formatted.

Usage: check_sources.py ROOT [--clang-format PROGRAM]. Prints one line a finding; exits 1 when there is any.
"""
import argparse
import pathlib
import re
import subprocess
import sys

# A folder may include its own level and lower ones. The OS seam and the messages stand at the bottom, beside each other.
LEVELS = {
    "platform/os": 0,
    "message": 0,
    "platform": 1,
    "trace": 2,
    "config": 3,
    "transport": 4,
    "host": 5,
    "api": 6,
}
BACKENDS = (
    "src/platform/win32/", "src/platform/posix/", "runtimes/python/libpython_posix.cpp", "programs/kovadx/kill_shim.cpp",
    "packages/r/kovastatistics/src/console.c", "packages/r/kovastatistics/src/session.c")
MAY_TEST_PLATFORM = BACKENDS + ("src/export.h", "src/api/kovadx.h", "src/api/kovadx_runtime.h", "tests/kit/")
SYSTEM_HEADER = re.compile(
    r"^\s*#\s*include\s*<((?:[a-z0-9_]+/)*(?:windows|winsock2?|ws2tcpip|io|process|direct|share|unistd|dlfcn|fcntl|poll|"
    r"pthread|sched|signal|spawn|pwd)\.h|sys/[^>]*|linux/[^>]*|netinet/[^>]*|arpa/[^>]*)>"
)
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')
PLATFORM_TEST = re.compile(r"\b(_WIN32|_WIN64|__linux__|__unix__|__APPLE__)\b")
MAX_LINES = 600
# The one C header, most of it comment: who calls the library from another language has one file to read.
MAY_BE_LONG = ("src/api/kovadx.h",)


def folder_of(path):
    """The level folder of a path below src/, or None."""
    if path.startswith("platform/os/"):
        return "platform/os"
    head = path.split("/")[0]
    return head if head in LEVELS else None


def check_includes(name, lines):
    inside = name.removeprefix("src/")
    folder = folder_of(inside)
    if folder is None:
        return
    is_test = name.endswith("_test.cpp")
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        target = folder_of(match.group(1))
        if target is None:
            if match.group(1) not in ("export.h", "kovadx.h") and not (is_test and match.group(1).startswith("tests/")):
                yield f"{name}:{number}: includes {match.group(1)}, which is no header of the library by its full path"
        elif is_test:
            continue
        elif LEVELS[target] > LEVELS[folder] or (LEVELS[target] == LEVELS[folder] and target != folder):
            yield f"{name}:{number}: {folder} (level {LEVELS[folder]}) may not include {match.group(1)} (level {LEVELS[target]})"


def check_platform(name, lines):
    for number, line in enumerate(lines, 1):
        if not name.startswith(BACKENDS) and not name.startswith("tests/kit/") and SYSTEM_HEADER.match(line):
            yield f"{name}:{number}: a system header outside the backends: {line.strip()}"
        if not name.startswith(MAY_TEST_PLATFORM) and PLATFORM_TEST.search(line):
            yield f"{name}:{number}: a platform test outside the backends: {line.strip()}"


def check_file(root, name):
    lines = (root / name).read_text(encoding="utf-8").splitlines()
    if name.startswith("src/"):
        yield from check_includes(name, lines)
    yield from check_platform(name, lines)
    if len(lines) > MAX_LINES and name not in MAY_BE_LONG:
        yield f"{name}: {len(lines)} lines; split it, at most {MAX_LINES}"


def check_format(root, names, program):
    result = subprocess.run([program, "--dry-run", "-Werror", *names], cwd=root, capture_output=True, text=True)
    for line in result.stderr.splitlines():
        if "error:" in line or "warning:" in line:
            yield line


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--clang-format", default="clang-format")
    arguments = parser.parse_args()
    folders = ("src", "engine", "programs", "runtimes", "packages", "examples", "tests", "bench")
    names = sorted(
        str(path.relative_to(arguments.root))
        for folder in folders
        for ending in ("*.h", "*.cpp", "*.c")
        for path in (arguments.root / folder).rglob(ending)
    )
    findings = [finding for name in names for finding in check_file(arguments.root, name)]
    findings += check_format(arguments.root, names, arguments.clang_format)
    print("\n".join(findings) or f"{len(names)} sources, nothing found")
    return 1 if findings or not names else 0


if __name__ == "__main__":
    sys.exit(main())

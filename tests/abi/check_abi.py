#!/usr/bin/env python3
"""Compares what the built library exports with what it should: the functions of the two C headers, and the classes and
functions of classes.txt. Prints one line a finding; exits 1 when there is any.
"""
import argparse
import pathlib
import re
import subprocess
import sys

DECLARATION = re.compile(r"^KOVADX_API [^;(]*?(\w+)\(", re.MULTILINE)
# What a compiler makes for a class beside its members.
OF_A_CLASS = re.compile(r"^(?:vtable|VTT|typeinfo|typeinfo name) for ([\w:]+)$")
THUNK = re.compile(r"^(?:(?:non-)?virtual thunk to|guard variable for) ")
# The text type as its users write it, whatever the compiler calls it.
TEXT_TYPE = "std::basic_string<char, std::char_traits<char>, std::allocator<char> >"
# One row of a DLL's table of names: its place, the hint, the name.
DLL_EXPORT = re.compile(r"^\s+\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+[0-9a-f]+\s+)?(\S+)$", re.MULTILINE)


def run(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout


def names_of_shared_object(nm, library):
    lines = run(nm, "--dynamic", "--defined-only", "--format=posix", library).splitlines()
    # An absolute symbol ("A") is the name of a version.
    return {line.split()[0].split("@")[0] for line in lines if line.split()[1] != "A"}


def names_of_dll(objdump, library):
    table = run(objdump, "--private-headers", library)
    start = table.index("[Ordinal/Name Pointer] Table")
    return set(DLL_EXPORT.findall(table[start : table.index("\n\n", start)]))


def demangled(names, cxxfilt):
    ordered = sorted(names)
    texts = run(cxxfilt, text="\n".join(ordered)).replace("[abi:cxx11]", "").replace("std::__cxx11::", "std::")
    return texts.replace(TEXT_TYPE, "std::string").splitlines()


def read_list(path):
    lines = (line.split("#")[0].strip() for line in path.read_text(encoding="utf-8").splitlines())
    entries = [line for line in lines if line]
    classes = {entry.removeprefix("class ") for entry in entries if entry.startswith("class ")}
    return classes, {entry for entry in entries if not entry.startswith("class ")}


def class_of(name, classes):
    """The listed class that an exported name belongs to, or None."""
    match = OF_A_CLASS.match(name)
    name = match.group(1) + "::" if match else THUNK.sub("", name)
    return next((owner for owner in classes if name.startswith(owner + "::")), None)


def find(names, functions, classes):
    """What is wrong, in sentences."""
    seen = set()
    for name in names:
        plain = re.sub(r"\(.*", "", name)
        owner = class_of(name, classes)
        if owner:
            seen.add(owner)
        elif name in functions or plain in functions:
            seen.add(name if name in functions else plain)
        else:
            yield f"exported, but in no list: {name}"
    for missing in sorted((functions | classes) - seen):
        yield f"listed, but not exported: {missing}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--library", required=True)
    parser.add_argument("--nm", help="reads a shared object")
    parser.add_argument("--objdump", help="reads a DLL")
    parser.add_argument("--cxxfilt", default="c++filt")
    parser.add_argument("--list", type=pathlib.Path, required=True)
    parser.add_argument("headers", type=pathlib.Path, nargs="+")
    arguments = parser.parse_args()

    classes, functions = read_list(arguments.list)
    for header in arguments.headers:
        found = DECLARATION.findall(header.read_text(encoding="utf-8"))
        if not found:
            sys.exit(f"{header}: no function found")
        functions.update(found)
    if arguments.objdump:
        raw = names_of_dll(arguments.objdump, arguments.library)
    else:
        raw = names_of_shared_object(arguments.nm, arguments.library)
    findings = list(find(demangled(raw, arguments.cxxfilt), functions, classes))
    print("\n".join(findings) or f"{len(raw)} exports, {len(functions)} functions and {len(classes)} classes: as listed")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())

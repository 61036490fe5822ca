#!/usr/bin/env python3
"""Reads the C headers the way a generator of language bindings does: preprocessed, by a parser that knows nothing but
C99, and checks that it finds every function. Prints one line a header; exits 1 when one is wrong.
"""
import argparse
import pathlib
import re
import subprocess
import sys

from pycparser import c_ast, c_parser

DECLARATION = re.compile(r"^KOVADX_API [^;(]*?(\w+)\(", re.MULTILINE)


def preprocessed(compiler, header):
    """The header's own lines and those that it includes, without the export mark, which is the compiler's own."""
    command = [compiler, "-x", "c", "-std=c99", "-E", "-P", "-DKOVADX_API=", str(header)]
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def functions_of(tree):
    """The declared functions: name, and whether every parameter has a name."""
    for node in tree.ext:
        if isinstance(node, c_ast.Decl) and isinstance(node.type, c_ast.FuncDecl):
            parameters = node.type.args.params if node.type.args else []
            yield node.name, all(getattr(each, "name", None) or is_void(each) for each in parameters)


def is_void(parameter):
    return isinstance(parameter, c_ast.Typename) and parameter.type.type.names == ["void"]


def find(header, tree):
    found = dict(functions_of(tree))
    for name in DECLARATION.findall(header.read_text(encoding="utf-8")):
        if name not in found:
            yield f"{header.name}: {name} is not found"
        elif not found[name]:
            yield f"{header.name}: {name} has a parameter without a name"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--compiler", default="cc")
    parser.add_argument("headers", type=pathlib.Path, nargs="+")
    arguments = parser.parse_args()
    failed = False
    for header in arguments.headers:
        tree = c_parser.CParser().parse(preprocessed(arguments.compiler, header), header.name)
        findings = list(find(header, tree))
        failed = failed or bool(findings)
        print("\n".join(findings) or f"{header.name}: {len(dict(functions_of(tree)))} functions read")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

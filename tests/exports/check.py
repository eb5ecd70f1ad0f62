#!/usr/bin/env python3
"""Usage: tests/exports/check.py LIBRARY FOLDER [CLANG-ARGUMENT...]

Compares what a shared library (.so or .dll) exports with what the headers in FOLDER mark with VANSYS_API, by mangled
names, and prints the number of exported entry points. Fails when the library does not export something that is
marked and not defined in a header, or exports what is neither marked nor part of a marked class.

CLANG, NM and OBJDUMP name the programs: clang++ says what the headers mean, the others read the library.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

CONTEXTS = {"TranslationUnitDecl", "NamespaceDecl", "LinkageSpecDecl", "CXXRecordDecl",
            "ClassTemplateSpecializationDecl"}
FUNCTIONS = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl", "CXXConversionDecl"}
MARKS = {"VisibilityAttr", "DLLImportAttr", "DLLExportAttr"}


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def syntax_tree(folder, arguments):
    """What clang makes of all headers of the folder. The standard headers, which are many times as long, go into a
    precompiled header before: what nobody asks for is then left out."""
    headers = sorted(folder.rglob("*.h"))
    standard = {line for header in headers for line in re.findall(r"^#include <\w+>", header.read_text(), re.M)}
    with tempfile.TemporaryDirectory() as work:
        clang = [os.environ["CLANG"], "-std=c++20", *arguments, f"-I{folder.parent}"]
        all_standard, precompiled = f"{work}/standard.h", f"{work}/standard.pch"
        all_ours = f"{work}/all.cpp"
        pathlib.Path(all_standard).write_text("\n".join(sorted(standard)) + "\n")
        pathlib.Path(all_ours).write_text("".join(f'#include "{header}"\n' for header in headers))
        subprocess.run([*clang, "-x", "c++-header", all_standard, "-o", precompiled], check=True)
        return json.loads(output_of(*clang, "-include-pch", precompiled, "-fsyntax-only", "-Xclang",
                                    "-ast-dump=json", all_ours))


class Headers:
    """The mangled names that the headers speak of."""

    def __init__(self, tree):
        self.required = set()  # marked, and not known to be defined in a header
        self.allowed = set()   # marked, or members of marked classes
        self.classes = set()   # marked classes, as they are mangled within other names
        self.defined = set()   # defined in a header
        self.scopes = {}
        self.visit(tree, scope="", marked=False)
        self.required -= self.defined

    def visit(self, node, scope, marked):
        for child in node.get("inner", []):
            kind = child.get("kind")
            if kind == "FriendDecl":
                self.visit({"inner": child.get("inner", [])}, scope, False)
            elif kind in CONTEXTS and child.get("name") not in ("std", "__gnu_cxx"):
                self.enter(child, scope)
            elif kind in FUNCTIONS or kind == "VarDecl":
                self.declare(child, marked)

    @staticmethod
    def is_marked(node):
        return any(inner.get("kind") in MARKS for inner in node.get("inner", []))

    def enter(self, node, scope):
        name = node.get("name", "")
        scope = self.scopes.get(node.get("parentDeclContextId"), scope) # of one that is defined outside its class
        scope += f"{len(name)}{name}" if name else ""
        self.scopes[node["id"]] = scope
        marked = node["kind"].startswith("C") and self.is_marked(node)
        if marked and node["kind"] == "CXXRecordDecl" and "definitionData" in node:
            mangled = scope if scope == f"{len(name)}{name}" else f"N{scope}E"
            self.classes.add(scope)
            self.allowed.update(f"_ZT{part}{mangled}" for part in "VIST")
            if node["definitionData"].get("isPolymorphic"):
                self.required.update(f"_ZT{part}{mangled}" for part in "VI")
        self.visit(node, scope, marked)

    def declare(self, node, marked):
        # A leading underscore more is the object format's.
        name = re.sub("^__Z", "_Z", node.get("mangledName", ""))
        is_variable = node["kind"] == "VarDecl"
        if node.get("inline") or node.get("constexpr") or node.get("pure") or node.get("explicitlyDeleted") or \
                node.get("explicitlyDefaulted") or node.get("isImplicit") or \
                is_variable and "init" in node or \
                any(inner.get("kind") == "CompoundStmt" for inner in node.get("inner", [])):
            self.defined.add(name)
        if marked and (not is_variable or node.get("storageClass") == "static") or self.is_marked(node):
            self.allowed.add(name)
            self.required.add(name)

    def allows(self, symbol):
        # A constructor or destructor has symbols for whole objects (1), for bases (2) and for deletion (0).
        name = re.sub(r"([CD])[02](E\w*)$", r"\g<1>1\2", symbol)
        # An override that is reached through a base is called after its adjustment; statics of a function.
        name = re.sub(r"^_ZTh?n?\d+_|^_ZTv0_n\d+_", "_Z", name)
        if name in self.allowed or re.sub(r"^_ZG[VR]|^_ZZ(.*)E\w+$", r"_Z\1", name) in self.allowed:
            return True
        # What the compiler adds to a class: constructors without arguments or from another object, assignment.
        member = re.fullmatch(r"_ZN(.*?)(C1E(v|RKS\d*_|OS\d*_)|D1Ev|aSE(RKS\d*_|OS\d*_))", name)
        return bool(member) and member[1] in self.classes


def exported_symbols(library):
    if library.endswith(".dll"):
        table = output_of(os.environ["OBJDUMP"], "-p", library).split("[Ordinal/Name Pointer] Table")[1]
        return re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+\w+\s+)?(\S+)$", table.split("\n\n")[0], re.M)
    lines = output_of(os.environ["NM"], "-D", "--defined-only", "--format=posix", library).splitlines()
    return [re.sub("@.*", "", line.split()[0]) for line in lines]


def main():
    if sys.argv[1:] in ([], ["--help"], ["-h"]):
        sys.exit(__doc__ if len(sys.argv) == 1 else print(__doc__))
    library, folder, *arguments = sys.argv[1:]
    headers = Headers(syntax_tree(pathlib.Path(folder).resolve(), arguments))
    exported = exported_symbols(library)
    faults = [f"missing: {name}" for name in sorted(headers.required.difference(exported))]
    faults += [f"leaked: {name}" for name in exported if not headers.allows(name)]
    if not headers.required:
        faults.append("the headers mark nothing")
    print("\n".join(faults + [f"{os.path.basename(library)}: {len(exported)} exported entry points; "
                              f"{len(headers.required)} required by the headers"]))
    sys.exit(bool(faults))


main()

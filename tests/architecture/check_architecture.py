#!/usr/bin/env python3
"""Checks a tree of LineWatch against the rules that no compiler keeps; prints each fault as file:line: what.

 - Includes in src/ point along the arrows only: no folder includes one to its left or one of its own column, and within
   app/ and desktop/ no part of them does. The system knows the standard library and libbz2, the simulation a JSON reader
   besides.
 - A folder may be compiled as one unit: a function of an unnamed namespace shares its name with no other of its folder,
   for the compiler would choose between them in silence.
 - Comments and texts explain themselves: none leans on a document outside the tree.

usage: check_architecture.py ROOT
"""

import os
import re
import subprocess
import sys

# Columns from left to right. A folder may include itself and what stands in the columns to its right.
FOLDERS = [["app"], ["desktop", "simulation"], ["widget"], ["presentation"], ["list"],
           ["activity", "analytics", "incidents"], ["platform"], ["shared"]]
# The same for the parts of a folder: "" is what lies in the folder itself. A folder that is not named is one part.
PARTS = {
    "app": [["screen"], [""]],
    "desktop": [["window"], ["companion", "drawing", "network", "zip"], [""], ["feeds", "roles", "storage", "text"],
                ["base"]],
}

STANDARD_HEADER = re.compile(r"[a-z_0-9]+")
THREADS = {"thread", "future", "condition_variable", "semaphore", "stop_token", "latch", "barrier"}
# What a folder may use beyond the standard library; a folder that is not named: nothing. None: anything.
LIBRARIES = {
    "app": None,
    "desktop": None,
    "simulation": re.compile(r"nlohmann/.*"),
    "platform": re.compile(r"bzlib\.h|cxxabi\.h"),  # the second is the compilers' own, for the names of classes
}

INCLUDE = re.compile(r'\s*#\s*include\s*(["<])([^">]+)[">]')
# As clang-format leaves them: a definition at the start of a line, a namespace and its end too.
FUNCTION = re.compile(r"(?!return\b|using\b|namespace\b|static_assert\b|TEST|INSTANTIATE)[A-Za-z_][\w:<>,*& ]*[ *&]([A-Za-z_]\w*)\(")
# Put together from pieces, so that this file passes its own check.
OUTSIDE_DOCUMENT = re.compile(r"\bspec" + r"ifications?\b|\bthe s" + r"pec\b|\bParts? +[0-9]+\.[0-9]+", re.IGNORECASE)


def tracked_files(root):
    """The files under version control, as paths from the root; without git, all but build output."""
    listing = subprocess.run(["git", "-c", "safe.directory=*", "-C", root, "ls-files", "-z"], capture_output=True,
                             check=False) if os.path.exists(os.path.join(root, ".git")) else None
    if listing and listing.returncode == 0:
        names = listing.stdout.decode().split("\0")
        return sorted(name for name in names if os.path.isfile(os.path.join(root, name)))
    found = []
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if name not in ("build", ".git", ".cache")]
        found += [os.path.relpath(os.path.join(folder, name), root) for name in names]
    return sorted(found)


def column_of(name, columns):
    """Counted from the left; None for a name that stands in no column."""
    return next((number for number, column in enumerate(columns) if name in column), None)


def folder_and_part(path):
    """Of a path from src/ on: its first folder, and what lies between that and the file."""
    folder, *part = os.path.dirname(path).split("/")
    return folder, "/".join(part)


def has_place(path):
    folder, part = folder_and_part(path)
    known = column_of(folder, FOLDERS) is not None
    return known and (folder not in PARTS or column_of(part, PARTS[folder]) is not None)


def arrow_fault(name, target, columns):
    """What is wrong with an include of `target` in `name`; None when it points along the arrows."""
    if name == target or column_of(target, columns) > column_of(name, columns):
        return None
    stranger = column_of(target, columns) == column_of(name, columns)
    return ": the two never know each other" if stranger else ", which stands to its left"


def quoted_include_fault(root, path, included):
    if not has_place(included) or not os.path.isfile(os.path.join(root, "src", included)):
        return f'"{included}" is no file of src/: includes start at its folders'
    (folder, part), (target, target_part) = folder_and_part(path), folder_and_part(included)
    if folder != target:
        fault = arrow_fault(folder, target, FOLDERS)
    else:
        fault = arrow_fault(part, target_part, PARTS[folder]) if folder in PARTS else None
    return f'{os.path.dirname(path)} includes "{included}"{fault}' if fault else None


def system_include_fault(folder, included):
    allowed = LIBRARIES.get(folder, re.compile(r"(?!)"))
    if allowed is None or allowed.fullmatch(included):
        return None
    if not STANDARD_HEADER.fullmatch(included):
        return f"{folder} includes <{included}>, which is not the standard library"
    if included in THREADS:
        return f"{folder} includes <{included}>, but has no threads of its own"
    return None


def include_faults(root, path, lines):
    """`path` counts from src/."""
    if not has_place(path):
        yield 1, f"src/{os.path.dirname(path)} has no place among the folders"
        return
    folder, _ = folder_and_part(path)
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        quoted = match[1] == '"'
        fault = quoted_include_fault(root, path, match[2]) if quoted else system_include_fault(folder, match[2])
        if fault:
            yield number, fault


def free_functions(lines):
    """The functions that a file has at the start of a line: (number of the line, name, whether in an unnamed
    namespace)."""
    unnamed = False
    for number, line in enumerate(lines, 1):
        if line.startswith("namespace {"):
            unnamed = True
        elif line == "}  // namespace":
            unnamed = False
        elif match := FUNCTION.match(line):
            yield number, match[1], unnamed


def name_faults(files):
    """Of the files of one folder, their lines by path."""
    homes = {}
    for path, lines in files.items():
        for number, name, unnamed in free_functions(lines):
            homes.setdefault(name, {}).setdefault(path, []).append((number, unnamed))
    for name, places in homes.items():
        for path, found in places.items():
            others = [other for other in places if other != path]
            if others and all(unnamed for _, unnamed in found):
                yield path, found[0][0], f"{name} is a function of {os.path.basename(others[0])} too"


def wording_faults(lines):
    for number, line in enumerate(lines, 1):
        match = OUTSIDE_DOCUMENT.search(line)
        if match:
            yield number, f'"{match[0]}" leans on a document that the reader does not have'


def read_lines(root, path):
    """The lines of a text file; none of a binary one."""
    with open(os.path.join(root, path), "rb") as file:
        content = file.read()
    return [] if b"\0" in content else content.decode("utf-8", "replace").splitlines()


def faults(root):
    folders = {}
    for path in tracked_files(root):
        lines = read_lines(root, path)
        if path.startswith(("src/", "tests/")) and path.endswith((".h", ".cpp")):
            folders.setdefault(os.path.dirname(path), {})[path] = lines
        if path.startswith("src/") and path.endswith((".h", ".cpp")):
            yield from ((path, number, what) for number, what in include_faults(root, path.removeprefix("src/"), lines))
        yield from ((path, number, what) for number, what in wording_faults(lines))
    for files in folders.values():
        yield from name_faults(files)


def main():
    if len(sys.argv) != 2 or not os.path.isdir(os.path.join(sys.argv[1], "src")):
        sys.exit("usage: check_architecture.py ROOT, a folder with src/ in it")
    found = list(faults(sys.argv[1]))
    for path, number, what in found:
        print(f"{path}:{number}: {what}")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()

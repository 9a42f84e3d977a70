#!/usr/bin/env python3
"""Checks a tree of LineWatch against the rules that no compiler keeps; prints each fault as file:line: what.

 - Includes in src/ point along the arrows only: no folder includes one to its left, the two platforms never include
   each other, and the system knows the standard library and libbz2, the simulation a JSON reader besides.
 - A folder may be compiled as one unit: a function of an unnamed namespace shares its name with no other of its folder,
   for the compiler would choose between them in silence.
 - Comments and texts explain themselves: none leans on a document outside the tree.

usage: check_architecture.py ROOT
"""

import os
import re
import subprocess
import sys

# Left to right. A folder may include itself and what stands to its right.
FOLDERS = ["app", "desktop", "simulation", "widget", "presentation", "list", "incidents", "activity", "analytics",
           "platform", "shared"]
STRANGERS = [{"desktop", "simulation"}]

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


def quoted_include_fault(root, folder, included):
    target = included.split("/")[0]
    if target not in FOLDERS or not os.path.isfile(os.path.join(root, "src", included)):
        return f'"{included}" is no file of src/: includes start at its folders'
    if FOLDERS.index(target) < FOLDERS.index(folder):
        return f'{folder} includes "{included}", which stands to its left'
    if target != folder and {target, folder} in STRANGERS:
        return f'{folder} includes "{included}": the two never know each other'
    return None


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
    folder = path.split("/")[1]
    if folder not in FOLDERS:
        yield 1, f"src/{folder} has no place among the folders {' > '.join(FOLDERS)}"
        return
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        quoted = match[1] == '"'
        fault = quoted_include_fault(root, folder, match[2]) if quoted else system_include_fault(folder, match[2])
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
            yield from ((path, number, what) for number, what in include_faults(root, path, lines))
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

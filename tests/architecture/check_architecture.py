#!/usr/bin/env python3
"""Checks a tree of LineWatch against the rules that no compiler keeps; prints each fault as file:line: what.

 - Includes in src/ point along the arrows between its folders only, and each folder uses its own libraries only. From
   shared to widget that is the standard library, libbz2 and header-only ones; only desktop and app use Qt.
 - A folder may be compiled as one unit: a function of an unnamed namespace shares its name with no other of its folder,
   for the compiler would choose between them in silence.
 - Comments and texts explain themselves: none leans on a document outside the tree.
 - CHANGELOG.md, CMake and the Debian changelog have the same newest version.

usage: check_architecture.py ROOT
"""

import os
import re
import subprocess
import sys

# The arrows: a folder may include itself, the folders named here, and all that those may include.
ARROWS = {
    "app/screen": ["app", "desktop/presence", "desktop/setup", "simulation/recording"],
    "app": ["app/link", "desktop", "simulation/scenario"],
    "app/link": ["shared"],
    "app/sdbus": ["app/link"],
    "desktop/presence": ["desktop/window"],
    "desktop/setup": ["desktop/window"],
    "desktop/window": ["desktop/drawing", "widget"],
    "desktop/drawing": ["desktop"],
    "desktop": ["companion", "desktop/loop", "feeds/catalogue", "localization", "settings", "status", "wire/archive", "ui"],
    "desktop/loop": ["machine"],
    "desktop/network": ["shared"],
    "companion": ["activity"],
    "localization": ["platform"],
    "status": ["localization"],
    "machine": ["platform"],
    "settings": ["localization", "notices", "ui"],
    "simulation/recording": ["simulation/scenario"],
    "simulation/scenario": ["simulation", "widget"],
    "simulation": ["simulation/roles"],
    "simulation/roles": ["simulation/world", "wire/archive"],
    "simulation/world": ["ui"],
    "feeds/catalogue": ["feeds"],
    "feeds": ["feeds/alerts", "feeds/http", "feeds/zip", "storage"],
    "feeds/alerts": ["feeds/gtfs"],
    "feeds/gtfs": ["feeds/text", "platform"],
    "feeds/zip": ["feeds/gtfs"],
    "feeds/libzip": ["feeds/zip"],
    "feeds/http": ["feeds/text"],
    "feeds/libcurl": ["feeds/http"],
    "feeds/text": ["shared"],
    "storage": ["notices", "platform", "wire/archive"],
    "widget": ["presentation"],
    "presentation": ["list"],
    "list": ["activity", "analytics", "incidents"],
    "activity": ["ui"],
    "analytics": ["ui"],
    "incidents": ["platform"],
    "ui": ["ui/layout"],
    "ui/layout": ["platform"],
    "notices": ["shared"],
    "platform": ["wire"],
    "wire/archive": ["wire"],
    "wire": ["shared"],
    "shared": [],
}

STANDARD_HEADER = re.compile(r"[a-z_0-9]+")
THREADS = {"thread", "future", "condition_variable", "semaphore", "latch", "barrier"}
# POSIX, for files and the processes of this program.
POSIX = r"dlfcn\.h|fcntl\.h|poll\.h|spawn\.h|unistd\.h|sys/.*"
# What a folder may use beyond the standard library; a folder that is not named: nothing. None: anything.
LIBRARIES = {folder: pattern and re.compile(pattern) for folder, pattern in {
    "app": None,
    "app/sdbus": r"systemd/sd-bus\.h",
    "app/screen": None,
    **{folder: None for folder in ARROWS if folder.startswith("desktop")},
    "companion": r"bzlib\.h",
    "localization": r"unicode/.*",
    "machine": POSIX,
    "settings": r"toml\+\+/toml\.h",
    "feeds/alerts": r"protozero/.*|unicode/.*",
    "feeds/catalogue": r"unicode/.*",
    "feeds/gtfs": r"unicode/.*|" + POSIX,
    "feeds/text": r"unicode/.*",
    "feeds/http": r"zlib\.h",
    "feeds/libcurl": r"curl/curl\.h",
    "feeds/libzip": r"zip\.h",
    "storage": r"sqlite3\.h|" + POSIX,
    "simulation/scenario": r"nlohmann/.*",
    "wire/archive": r"nlohmann/.*",
    "wire": r"bzlib\.h",
    "list": r"tsl/.*",
    "analytics": r"tsl/.*",
    "shared": r"cxxabi\.h|link\.h|" + POSIX,  # the names of classes, and of shared libraries
}.items()}
# Folders that have threads of their own or guard what theirs share.
THREADED = re.compile(r"(app|desktop|feeds|storage)\b.*")

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


def reachable(folder, seen=None):
    """The folders that `folder` may include, itself too."""
    seen = set() if seen is None else seen
    if folder not in seen:
        seen.add(folder)
        for target in ARROWS[folder]:
            reachable(target, seen)
    return seen


def circles():
    """The folders that reach themselves along the arrows."""
    return [folder for folder, targets in ARROWS.items() if any(folder in reachable(target) for target in targets)]


def quoted_include_fault(root, folder, included):
    target = os.path.dirname(included)
    if target not in ARROWS or not os.path.isfile(os.path.join(root, "src", included)):
        return f'"{included}" is no file of src/: includes start at its folders'
    if target not in reachable(folder):
        return f'{folder} includes "{included}", but no arrow leads from {folder} to {target}'
    return None


def system_include_fault(folder, included):
    allowed = LIBRARIES.get(folder, re.compile(r"(?!)"))
    if allowed is None or allowed.fullmatch(included):
        return None
    if not STANDARD_HEADER.fullmatch(included):
        return f"{folder} includes <{included}>, which is not one of its libraries"
    if included in THREADS and not THREADED.fullmatch(folder):
        return f"{folder} includes <{included}>, but has no threads of its own"
    return None


def include_faults(root, path, lines):
    """`path` counts from src/."""
    folder = os.path.dirname(path)
    if folder not in ARROWS:
        yield 1, f"src/{folder} has no place among the folders"
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


def version_faults(root):
    """Compares the versions of those of the three files that there are."""
    def found(path, pattern):
        lines = read_lines(root, path) if os.path.isfile(os.path.join(root, path)) else []
        return next(((path, number, match[1]) for number, line in enumerate(lines, 1) if (match := re.match(pattern, line))),
                    None)
    project = found("CMakeLists.txt", r"project\(\w+ VERSION (\S+)")
    if not project:
        return
    changes = found("CHANGELOG.md", r"## (\d\S*?),? ")
    if changes and changes[2] != project[2]:
        yield changes[0], changes[1], f"the newest version is {changes[2]}, but CMake's is {project[2]}"
    package = found("resources/desktop/changelog.Debian.in", r"linewatch \((.*)-\d+\)")
    if package and package[2] not in (project[2], "@PROJECT_VERSION@"):
        yield package[0], package[1], f"the newest version is {package[2]}, but CMake's is {project[2]}"


def read_lines(root, path):
    """The lines of a text file; none of a binary one."""
    with open(os.path.join(root, path), "rb") as file:
        content = file.read()
    return [] if b"\0" in content else content.decode("utf-8", "replace").splitlines()


def faults(root):
    yield from ((path, 1, "the arrows lead back to it") for path in circles())
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
    yield from version_faults(root)


def main():
    if len(sys.argv) != 2 or not os.path.isdir(os.path.join(sys.argv[1], "src")):
        sys.exit("usage: check_architecture.py ROOT, a folder with src/ in it")
    found = list(faults(sys.argv[1]))
    for path, number, what in found:
        print(f"{path}:{number}: {what}")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()

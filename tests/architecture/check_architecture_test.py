#!/usr/bin/env python3
"""The check itself: small trees with one fault each, and the same trees without it."""

import os
import tempfile
import unittest

import check_architecture

ONE = "namespace {\n\nint one(int a) {\n  return a;\n}\n\n}  // namespace\n"
HEADERS = ["list/a.h", "ui/view.h", "shared/a.h", "widget/a.h", "desktop/a.h", "machine/a.h", "localization/a.h",
           "feeds/gtfs/a.h", "feeds/text/a.h", "simulation/a.h"]

# file, its content, a piece of the fault that must be found; None: none may be.
ROWS = [
    ("src/list/b.cpp", '#include "ui/view.h"\n#include <vector>\n#include <mutex>\n', None),
    ("src/list/b.cpp", '#include "widget/a.h"\n', "no arrow leads from list to widget"),
    ("src/platform/b.h", '\n  #  include "ui/view.h"\n', "no arrow leads from platform to ui"),
    ("src/desktop/b.cpp", '#include "simulation/a.h"\n', "no arrow leads from desktop to simulation"),
    ("src/simulation/b.cpp", '#include "desktop/a.h"\n', "no arrow leads from simulation to desktop"),
    ("src/desktop/window/b.cpp", '#include "desktop/a.h"\n#include "localization/a.h"\n', None),
    ("src/desktop/loop/b.h", '#include "machine/a.h"\n#include "desktop/loop/b.h"\n', None),
    ("src/localization/b.h", '#include "desktop/a.h"\n', "no arrow leads from localization to desktop"),
    ("src/feeds/alerts/b.h", '#include "feeds/gtfs/a.h"\n#include "feeds/text/a.h"\n', None),
    ("src/feeds/text/b.h", '#include "feeds/gtfs/a.h"\n', "no arrow leads from feeds/text to feeds/gtfs"),
    ("src/feeds/b.h", '#include "desktop/a.h"\n', "no arrow leads from feeds to desktop"),
    ("src/feeds/b.cpp", "#include <QString>\n", "not one of its libraries"),
    ("src/feeds/b.cpp", "#include <thread>\n", None),
    ("src/desktop/sound/b.h", "", "has no place among the folders"),
    ("src/app/b.cpp", '#include "simulation/a.h"\n#include "desktop/a.h"\n#include <QString>\n', None),
    ("src/list/b.cpp", '#include "a.h"\n', "is no file of src/"),
    ("src/list/b.cpp", "#include <QString>\n", "not one of its libraries"),
    ("src/simulation/b.cpp", "#include <unicode/ucnv.h>\n", "not one of its libraries"),
    ("src/simulation/scenario/b.cpp", "#include <nlohmann/json.hpp>\n", None),
    ("src/wire/b.cpp", "#include <bzlib.h>\n", None),
    ("src/widget/b.cpp", "#include <thread>\n", "no threads of its own"),
    ("src/misc/b.h", "", "has no place among the folders"),
    ("src/list/b.cpp", "std::string two();\n" + ONE.replace("one", "three"), None),
    ("src/list/b.cpp", "std::string one();\n" + ONE.replace("one", "three"), "a.cpp:3: one is a function of b.cpp too"),
    ("docs/b.md", "fine\nas the sp" + "ec says", '2: "the sp' + 'ec" leans on'),
    ("tests/b.cpp", "// see Part" + " 4.2", "leans on a document"),
    ("resources/b.bin", "\0Part" + " 4.2", None),
    ("CHANGELOG.md", "# Changelog\n\n## 1.2.3, not released\n\n## 1.2.2\n", None),
    ("CHANGELOG.md", "## 1.3.0, not released\n", "1: the newest version is 1.3.0, but CMake's is 1.2.3"),
    ("resources/desktop/changelog.Debian.in", "linewatch (1.2.2-1) unstable\n", "the newest version is 1.2.2"),
]


class CheckArchitecture(unittest.TestCase):
    def test_arrows_make_no_circle(self):
        self.assertEqual(check_architecture.circles(), [])

    def test_rows(self):
        for path, content, expected in ROWS:
            with self.subTest(path=path, content=content), tempfile.TemporaryDirectory() as root:
                with open(os.path.join(root, "CMakeLists.txt"), "w", encoding="utf-8") as file:
                    file.write("project(LineWatch VERSION 1.2.3 LANGUAGES CXX)\n")
                for name in ["src/" + header for header in HEADERS] + ["src/list/a.cpp", path]:
                    os.makedirs(os.path.dirname(os.path.join(root, name)), exist_ok=True)
                    with open(os.path.join(root, name), "w", encoding="utf-8") as file:
                        file.write(content if name == path else ONE if name.endswith(".cpp") else "")
                found = [f"{name}:{number}: {what}" for name, number, what in check_architecture.faults(root)]
                self.assertEqual(len(found), 0 if expected is None else 1, found)
                if expected is not None:
                    self.assertIn(expected, found[0])


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/env python3
"""Proves the include rules of doc/design.md for the tree it stands in, and that nothing goes past the files port.

    check_layers.py [ROOT]             checks a source tree
    check_layers.py --program FILE...  checks that programs are linked with no Qt and no network library
    check_layers.py --self-test        checks that the checks find what they are for
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

CORE = {
    "base": set(),
    "crypto": {"base"},
    "carrier": {"base", "crypto"},
    "hiding": {"base", "crypto", "carrier"},
    "retrieval": {"base", "crypto", "carrier"},
    "search": {"base", "crypto", "carrier"},
    "shellint": {"base"},
}
CORE["app"] = set(CORE)
CORE["cli"] = set(CORE) - {"shellint"}

# Windows may use every layer without windows but the command line. A folder of windows uses no other one; only
# the directory tree serves several, and the main window opens them all.
FORMS = {f"{layer}/forms": set(CORE) - {"cli"} | {"formkit", "shellint/forms"} for layer in CORE if layer != "cli"}
FORMS["app/forms"] |= set(FORMS)
FORMS["formkit"] = set(CORE) - {"cli"}
LAYERS = CORE | FORMS

# System headers of outside libraries, and who may include them.
OUTSIDE = [
    (re.compile(r"Q[A-Z]\w*(/\w+)?|Qt\w*/.*|q[a-z]+\.h"), "Qt",
     lambda path, layer: layer in FORMS or path.startswith("tests/forms/") or path.startswith("bench/forms/")),
    (re.compile(r"botan/.*"), "Botan", lambda path, layer: layer == "crypto" and is_inner_crypto(path) or
     path.startswith(("tests/crypto/", "bench/crypto/"))),
    (re.compile(r"zlib\.h"), "zlib", lambda path, layer: layer == "crypto" and is_inner_crypto(path) or
     path.startswith(("tests/crypto/", "bench/crypto/"))),
    (re.compile(r"libdeflate\.h"), "libdeflate", lambda path, layer: layer == "crypto" and is_inner_crypto(path)),
    (re.compile(r"zxcvbn\.h"), "zxcvbn", lambda path, layer: path == "src/crypto/phrase_strength.cpp"),
    (re.compile(r"nlohmann/.*"), "nlohmann-json", lambda path, layer: layer == "cli" or path.startswith("tests/cli/")),
    (re.compile(r"(gtest|gmock)/.*"), "GoogleTest", lambda path, layer: path.startswith("tests/")),
    (re.compile(r"benchmark/.*"), "Google Benchmark", lambda path, layer: path.startswith("bench/")),
]

# What reaches a disk without the files port. Working with paths is free, and so is a program of the build.
PAST_THE_PORT = re.compile(r"std::filesystem::(?!path\b|absolute\b)\w+|\bstd::[io]?fstream\b")
AT_THE_DISK = re.compile(r"src/base/posix_\w+\.cpp|src/cli/make_shared_files\.cpp")

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)


def is_inner_crypto(path):
    """Sources, and headers that no other layer includes."""
    return path.endswith(".cpp") or path.endswith("_impl.h")


def layer_of(path):
    """The layer of a path below src/, or None for tests and benches."""
    parts = Path(path).parts
    if parts[0] != "src":
        return None
    return f"{parts[1]}/forms" if parts[2:3] == ("forms",) else parts[1]


def tested_layer(path):
    """For tests/carrier/x.cpp and bench/carrier/x.cpp: carrier. None where any layer may be used."""
    parts = Path(path).parts
    return parts[1] if parts[0] in ("tests", "bench") and parts[1] in CORE else None


class Tree:
    def __init__(self, root):
        self.root = root
        self.faults = []
        self.includes = {}  # path -> project files that it includes

    def check(self):
        for folder in ("src", "tests", "bench"):
            for path in sorted((self.root / folder).rglob("*")):
                if path.suffix in (".h", ".cpp"):
                    self.check_file(path.relative_to(self.root).as_posix())
        self.check_cycles()
        if not self.includes:
            self.fault(self.root, "has no sources")
        return self.faults

    def fault(self, path, text):
        self.faults.append(f"{path}: {text}")

    def check_file(self, path):
        text = (self.root / path).read_text(encoding="utf-8")
        layer = layer_of(path)
        self.includes[path] = []
        if layer is not None and layer not in LAYERS:
            self.fault(path, f"{layer} is no known layer")
            return
        if path.endswith(".h") and "#pragma once" not in text:
            self.fault(path, "has no #pragma once")
        if layer is not None and not AT_THE_DISK.fullmatch(path):
            for call in PAST_THE_PORT.findall(text):
                self.fault(path, f"goes past the files port ({call})")
        for bracket, name in INCLUDE.findall(text):
            if bracket == "<":
                self.check_outside(path, layer, name)
            else:
                self.check_inside(path, layer, name)

    def check_outside(self, path, layer, name):
        for pattern, library, allowed in OUTSIDE:
            if pattern.fullmatch(name) and not allowed(path, layer):
                self.fault(path, f"includes {library} (<{name}>)")

    def check_inside(self, path, layer, name):
        target = self.find(name)
        if target is None:
            self.fault(path, f'"{name}" is no path from src/ or from the root')
            return
        self.includes[path].append(target)
        if not target.endswith(".h"):
            self.fault(path, f'"{name}" is no header')
        other = layer_of(target)
        if layer is not None and other is None:
            self.fault(path, f'code includes a test ("{name}")')
        elif layer is not None and other != layer and other not in LAYERS[layer]:
            self.fault(path, f'{layer} may not know {other} ("{name}")')
        elif layer is None:
            self.check_test(path, name, other or tested_layer(target))

    def check_test(self, path, name, other):
        layer = tested_layer(path)
        if layer is not None and other is not None and other != layer and other not in LAYERS[layer]:
            self.fault(path, f'a test of {layer} may not know {other} ("{name}")')

    def find(self, name):
        if "/" not in name or ".." in Path(name).parts:
            return None
        for candidate in (f"src/{name}", name):
            if (self.root / candidate).is_file():
                return candidate
        return None

    def check_cycles(self):
        done = set()
        for start in self.includes:
            self.walk(start, [], done)

    def walk(self, path, trail, done):
        if path in trail:
            self.fault(path, "includes itself: " + " -> ".join(trail[trail.index(path):] + [path]))
            return
        if path in done:
            return
        for target in self.includes.get(path, []):
            self.walk(target, trail + [path], done)
        done.add(path)


FORBIDDEN_LIBRARY = re.compile(r"lib(Qt\d?\w*|curl|ssl|soup)\b.*")


def forbidden_libraries(needed):
    return [name for name in needed if FORBIDDEN_LIBRARY.match(name)]


def check_program(program):
    dynamic = subprocess.run(["readelf", "-d", program], check=True, capture_output=True, text=True).stdout
    needed = re.findall(r"\(NEEDED\).*\[(.+)\]", dynamic)
    return [f"{program}: is linked with {name}" for name in forbidden_libraries(needed)]


H = "#pragma once\n"
SELF_TEST = [  # files of a small tree, and a part of the one fault that it has; None for none
    ({"src/base/a.h": H, "src/crypto/b.h": H + '#include "base/a.h"\n', "src/crypto/b.cpp": "#include <botan/hex.h>\n"},
     None),
    ({"src/base/a.h": H + '#include "crypto/b.h"\n', "src/crypto/b.h": H}, "base may not know crypto"),
    ({"src/hiding/a.h": H, "src/retrieval/b.cpp": '#include "hiding/a.h"\n'}, "retrieval may not know hiding"),
    ({"src/search/a.h": H, "src/hiding/b.cpp": '  #  include "search/a.h"\n'}, "hiding may not know search"),
    ({"src/shellint/a.h": H, "src/cli/b.cpp": '#include "shellint/a.h"\n'}, "cli may not know shellint"),
    ({"src/app/a.cpp": "#include <QWidget>\n"}, "includes Qt"),
    ({"src/app/a.cpp": "#include <QtCore/qstring.h>\n"}, "includes Qt"),
    ({"src/app/forms/a.cpp": "#include <QWidget>\n"}, None),
    ({"src/formkit/a.h": H + "#include <QWidget>\n", "src/app/b.cpp": '#include "formkit/a.h"\n'},
     "app may not know formkit"),
    ({"src/hiding/forms/a.h": H, "src/search/forms/b.cpp": '#include "hiding/forms/a.h"\n'},
     "search/forms may not know hiding/forms"),
    ({"src/hiding/forms/a.h": H, "src/app/forms/b.cpp": '#include "hiding/forms/a.h"\n'}, None),
    ({"src/carrier/a.cpp": "#include <botan/hex.h>\n"}, "includes Botan"),
    ({"src/crypto/a.h": H + "#include <botan/hex.h>\n"}, "includes Botan"),
    ({"src/crypto/a_impl.h": H + "#include <botan/hex.h>\n"}, None),
    ({"src/hiding/a.cpp": "#include <zlib.h>\n"}, "includes zlib"),
    ({"src/crypto/a.cpp": "#include <zxcvbn.h>\n"}, "includes zxcvbn"),
    ({"src/base/a.cpp": "#include <gtest/gtest.h>\n"}, "includes GoogleTest"),
    ({"src/base/a.h": H, "src/base/a.cpp": '#include "a.h"\n'}, "is no path from src/"),
    ({"src/base/a.h": H, "src/crypto/b.cpp": '#include "../base/a.h"\n'}, "is no path from src/"),
    ({"src/base/a.cpp": '#include "base/gone.h"\n'}, "is no path from src/"),
    ({"src/base/a.h": "", "src/base/b.cpp": ""}, "has no #pragma once"),
    ({"src/base/a.cpp": "", "src/base/b.cpp": '#include "base/a.cpp"\n'}, "is no header"),
    ({"src/base/a.h": H + '#include "base/b.h"\n', "src/base/b.h": H + '#include "base/a.h"\n'}, "includes itself"),
    ({"src/misc/a.cpp": ""}, "no known layer"),
    ({"src/hiding/a.cpp": "std::filesystem::exists(path);\n"}, "past the files port (std::filesystem::exists)"),
    ({"src/base/posix_files.cpp": "std::filesystem::canonical(path);\n", "tests/base/a.cpp": "std::ofstream(path);\n",
      "src/base/a.h": H + "using Path = std::filesystem::path;\n"}, None),
    ({"README.md": ""}, "has no sources"),
    ({"tests/base/a.h": H, "src/base/b.cpp": '#include "tests/base/a.h"\n'}, "code includes a test"),
    ({"src/hiding/a.h": H, "tests/carrier/b.cpp": '#include "hiding/a.h"\n'}, "a test of carrier may not know hiding"),
    ({"tests/carrier/a.h": H, "tests/hiding/b.cpp": '#include "tests/carrier/a.h"\n'}, None),
    ({"tests/hiding/a.h": H, "tests/carrier/b.cpp": '#include "tests/hiding/a.h"\n'},
     "a test of carrier may not know hiding"),
]


def self_test():
    faults = []
    for files, expected in SELF_TEST:
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = Path(folder) / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            found = Tree(Path(folder)).check()
        if len(found) != (expected is not None) or (expected is not None and expected not in found[0]):
            faults.append(f"self-test: {files} gave {found} instead of {expected!r}")
    libraries = ["libQt6Core.so.6", "libcurl.so.4", "libz.so.1", "libbotan-2.so.19"]
    if forbidden_libraries(libraries) != libraries[:2]:
        faults.append("self-test: forbidden libraries are not told from others")
    return faults


def main(arguments):
    if arguments[:1] == ["--self-test"]:
        faults = self_test()
    elif arguments[:1] == ["--program"]:
        faults = [fault for program in arguments[1:] for fault in check_program(program)]
    else:
        faults = Tree(Path(arguments[0]) if arguments else Path(__file__).resolve().parent.parent).check()
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

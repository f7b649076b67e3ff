#!/usr/bin/env python3
"""Checks every #include of the source tree against the layering of the code.

Usage: check_includes.py SOURCE_DIR [--qt-include DIR]
       check_includes.py --self-test

Prints one line per broken rule ("path:line: what is wrong") and exits with 1 when
there is any. The rules:

  - Folders form layers, listed below from the bottom up; a folder includes only its own
    files and those of folders below it. tools/ sees everything but ui/; tests/ and
    bench/ see everything.
  - Inside jet/, each layer folder includes only the layers below it. A public header
    (jet/include/jet/X.h) belongs to the layer that holds X.cpp, or to base/ when no
    layer does, and the public headers include only public headers.
  - Outside jet/ (tests and benchmarks aside) the engine is seen only through
    jet/include/jet/.
  - jet/ includes no Qt at all; the layers below ui/ and tools/ include Qt Core only.
  - Every source file lies in one of the folders below, so a new folder has to be placed
    in the order before it can be used.
"""

import os
import re
import sys
import tempfile

# Bottom up. Folders of equal rank may not include each other.
JET_LAYERS = ["base", "os", "pager", "format", "index", "table", "sql", "ado", "check"]
FOLDERS = ["rt", "host", "lang", "engine", "engine/formats", "app",
           "ui", "ui/dialogs", "ui/digitizer", "ui/main", "tools"]
ANYTHING = ["tests", "bench"]
NO_UI = {"tools"}
QT_CORE_ONLY = {"rt", "host", "lang", "engine", "engine/formats", "app", "tools"}
SOURCE_SUFFIXES = (".h", ".hpp", ".cpp", ".cc")
SKIPPED_DIRS = {".git", "node_modules"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def folder_of(rel):
    """The folder a path (relative to the source root) belongs to, or None."""
    parts = rel.split("/")
    if parts[0] == "jet":
        if len(parts) >= 3 and parts[1] == "include":
            return "jet/include"
        if len(parts) >= 3 and parts[1] in JET_LAYERS:
            return "jet/" + parts[1]
        return None
    for folder in sorted(FOLDERS + ANYTHING, key=len, reverse=True):
        if rel.startswith(folder + "/"):
            return folder
    return None


class Checker:
    def __init__(self, root, qt_include=None):
        self.root = root
        self.qt_include = qt_include
        self.problems = []
        self.files = 0
        self.includes = 0

    def exists(self, rel):
        return os.path.isfile(os.path.join(self.root, rel))

    def public_layer(self, rel):
        """The jet layer a public header belongs to."""
        stem = os.path.splitext(os.path.basename(rel))[0]
        for layer in JET_LAYERS:
            if self.exists("jet/%s/%s.cpp" % (layer, stem)):
                return layer
        return "base"

    def jet_rank(self, rel, folder):
        layer = self.public_layer(rel) if folder == "jet/include" else folder[len("jet/"):]
        return JET_LAYERS.index(layer)

    def resolve(self, rel, name):
        """Where a quoted include lands, as the compiler's search path would find it."""
        here = os.path.dirname(rel)
        search = [here]
        if rel.startswith("jet/"):
            search += ["jet", "jet/include"]
        else:
            search += ["", "jet/include"]
        for base in search:
            target = os.path.normpath(os.path.join(base, name))
            if not target.startswith("..") and self.exists(target):
                return target
        return None

    def qt_module(self, name):
        if not self.qt_include:
            return None
        if "/" in name:
            return name.split("/")[0]
        for module in sorted(os.listdir(self.qt_include)):
            if os.path.isfile(os.path.join(self.qt_include, module, name)):
                return module
        return None

    def report(self, rel, line, text):
        self.problems.append("%s:%d: %s" % (rel, line, text))

    def check_system(self, rel, line, folder, name):
        if not name.startswith("Q"):
            return
        module = self.qt_module(name)
        if folder.startswith("jet/"):
            self.report(rel, line, "<%s>: the engine includes no Qt" % name)
        elif folder in QT_CORE_ONLY and module not in (None, "QtCore"):
            self.report(rel, line, "<%s> is %s: %s/ takes Qt Core only" % (name, module, folder))

    def check_quoted(self, rel, line, folder, name):
        target = self.resolve(rel, name)
        if target is None:
            return  # generated (moc) or not ours; the compiler has the last word
        to = folder_of(target)
        if to is None or folder in ANYTHING or (to == folder and folder != "jet/include"):
            return
        shown = '"%s" (%s)' % (name, target)
        if folder.startswith("jet/"):
            if not to.startswith("jet/"):
                self.report(rel, line, "%s: the engine includes nothing outside jet/" % shown)
            elif folder == "jet/include" and to != "jet/include":
                self.report(rel, line, "%s: a public header includes only public headers" % shown)
            elif self.jet_rank(target, to) > self.jet_rank(rel, folder):
                self.report(rel, line, "%s: the layer %s lies above %s" % (shown, self.layer_name(target, to),
                                                                             self.layer_name(rel, folder)))
            return
        if to.startswith("jet/") and to != "jet/include":
            self.report(rel, line, "%s: outside jet/ the engine is seen only through jet/include/jet/" % shown)
        elif to in ANYTHING:
            self.report(rel, line, "%s: %s/ is for tests and benchmarks only" % (shown, to))
        elif to == "jet/include":
            return
        elif folder in NO_UI and to.startswith("ui"):
            self.report(rel, line, "%s: %s/ never includes ui/" % (shown, folder))
        elif FOLDERS.index(to) > FOLDERS.index(folder):
            self.report(rel, line, "%s: %s/ lies above %s/" % (shown, to, folder))

    def layer_name(self, rel, folder):
        return "jet/" + JET_LAYERS[self.jet_rank(rel, folder)]

    def check_file(self, rel):
        folder = folder_of(rel)
        if folder is None:
            self.report(rel, 1, "not in a folder of the layer order (tests/layout/check_includes.py)")
            return
        self.files += 1
        with open(os.path.join(self.root, rel), encoding="utf-8", errors="replace") as source:
            for number, text in enumerate(source, 1):
                match = INCLUDE.match(text)
                if not match:
                    continue
                kind, name = match.groups()
                self.includes += 1
                if kind == "<":
                    self.check_system(rel, number, folder, name)
                else:
                    self.check_quoted(rel, number, folder, name)

    def run(self):
        for dirpath, dirnames, filenames in os.walk(self.root):
            rel_dir = os.path.relpath(dirpath, self.root)
            dirnames[:] = sorted(d for d in dirnames if d not in SKIPPED_DIRS and
                                 not (rel_dir == "." and (d.startswith("build") or d.startswith("."))))
            for name in sorted(filenames):
                if name.endswith(SOURCE_SUFFIXES):
                    rel = os.path.normpath(os.path.join(rel_dir, name))
                    self.check_file(rel)
        return self.problems


def self_test():
    """Plants one include of each forbidden kind in a small tree and expects each caught."""
    files = {
        "jet/include/jet/Variant.h": '#include "jet/Locale.h"\n',
        "jet/include/jet/Locale.h": '#include "jet/Recordset.h"\n',             # bad: above
        "jet/include/jet/Recordset.h": '#include "ado/Source.h"\n',              # bad: internal
        "jet/ado/Recordset.cpp": '#include "jet/Recordset.h"\n#include "pager/Pager.h"\n',
        "jet/ado/Source.h": "",
        "jet/pager/Pager.h": '#include "table/Table.h"\n#include "jet/Recordset.h"\n',  # bad twice
        "jet/pager/Pager.cpp": '#include <QString>\n',                             # bad: Qt
        "jet/table/Table.h": '#include "jet/Variant.h"\n',
        "rt/Run.h": '#include "jet/Recordset.h"\n#include "host/Registry.h"\n',    # bad: above
        "rt/Run.cpp": '#include <QWidget>\n#include <QString>\n',                  # bad: widgets
        "host/Registry.h": '#include "rt/Run.h"\n#include "jet/table/Table.h"\n',  # bad: inside
        "ui/main/Win.cpp": '#include "ui/dialogs/Dlg.h"\n#include "app/Main.h"\n',
        "ui/dialogs/Dlg.h": '#include "ui/main/Win.h"\n',                          # bad: above
        "ui/main/Win.h": "",
        "app/Main.h": "",
        "tools/Cli.cpp": '#include "ui/main/Win.h"\n#include "app/Main.h"\n',     # bad: ui
        "tests/x/T.cpp": '#include "jet/pager/Pager.h"\n#include "ui/main/Win.h"\n',
        "stray/New.cpp": "",                                                        # bad: no folder
    }
    expected = [
        "host/Registry.h:2:", "jet/include/jet/Locale.h:1:", "jet/include/jet/Recordset.h:1:", "jet/pager/Pager.cpp:1:",
        "jet/pager/Pager.h:1:", "jet/pager/Pager.h:2:", "rt/Run.cpp:1:", "rt/Run.h:2:",
        "stray/New.cpp:1:", "tools/Cli.cpp:1:", "ui/dialogs/Dlg.h:1:",
    ]
    with tempfile.TemporaryDirectory() as root:
        os.makedirs(os.path.join(root, "qt", "QtWidgets"))
        os.makedirs(os.path.join(root, "qt", "QtCore"))
        open(os.path.join(root, "qt", "QtWidgets", "QWidget"), "w").close()
        open(os.path.join(root, "qt", "QtCore", "QString"), "w").close()
        tree = os.path.join(root, "src")
        for rel, text in files.items():
            os.makedirs(os.path.dirname(os.path.join(tree, rel)), exist_ok=True)
            with open(os.path.join(tree, rel), "w") as f:
                f.write(text)
        found = Checker(tree, os.path.join(root, "qt")).run()
    got = sorted(p[:p.index(":", p.index(":") + 1) + 1] for p in found)
    if got != expected:
        print("self-test: expected problems at\n  %s\nbut found\n  %s" % ("\n  ".join(expected), "\n  ".join(found)))
        return 1
    print("self-test: all %d planted includes caught" % len(expected))
    return 0


def main(argv):
    if argv[1:] == ["--self-test"]:
        return self_test()
    if len(argv) not in (2, 4) or (len(argv) == 4 and argv[2] != "--qt-include"):
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    checker = Checker(argv[1], argv[3] if len(argv) == 4 else None)
    problems = checker.run()
    for problem in problems:
        print(problem)
    print("%d includes in %d files checked" % (checker.includes, checker.files))
    if problems:
        print("%d of them break the layer order (see README.md, Layout)" % len(problems))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

#!/usr/bin/env python3
"""That tools/rooms complains of what it is there for, on trees that are made up."""
import importlib.machinery
import importlib.util
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
PROGRAM = pathlib.Path(__file__).resolve().parents[2] / "tools" / "rooms"
LOADER = importlib.machinery.SourceFileLoader("rooms", str(PROGRAM))
rooms = importlib.util.module_from_spec(importlib.util.spec_from_loader("rooms", LOADER))
LOADER.exec_module(rooms)

TABLE = {"low": set(), "low/deep": {"low"}, "high": {"low", "low/deep"}}


class RoomsTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.root = pathlib.Path(self.folder.name)
        self.write("low/Value.h", "#pragma once\n")
        self.write("low/deep/Reader.h", '#include "low/Value.h"\n')
        self.write("high/View.h", '#include "low/Value.h"\n#include <vector>\n')
        self.write("high/View.cpp", '#include "high/View.h"\n\n#include "low/deep/Reader.h"\n')

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def complaints(self, table=None, known=()):
        return rooms.complaints(self.root, TABLE if table is None else table, known)

    def testGoodTreeIsGood(self):
        self.assertEqual(self.complaints(), [])

    def testArrowUpwards(self):
        self.write("low/Value.cpp", '#include "low/Value.h"\n#include "high/View.h"\n')
        self.assertIn("low may not know high: low/Value.cpp includes high/View.h", self.complaints())

    def testArrowIntoInnerRoom(self):
        self.write("low/Other.h", '  #  include "low/deep/Reader.h"\n')
        self.assertEqual(self.complaints(), ["low may not know low/deep: low/Other.h includes low/deep/Reader.h"])

    def testIncludeOfFileBeside(self):
        self.write("low/deep/Other.h", '#include "Reader.h"\n')
        self.assertEqual(self.complaints(), [])
        self.write("low/deep/Reader.h", '#include "Other.h"\n')
        self.assertEqual(self.complaints(), ["include each other round about: low/deep/Other, low/deep/Reader"])

    def testHeadersInCircle(self):
        self.write("low/A.h", '#include "low/B.h"\n')
        self.write("low/B.h", '#include "low/C.h"\n')
        self.write("low/C.h", '#include "low/A.h"\n')
        self.assertEqual(self.complaints(), ["include each other round about: low/A, low/B, low/C"])

    def testSourceCountsWithItsHeader(self):
        self.write("low/A.h", "class B;\n")
        self.write("low/A.cpp", '#include "low/A.h"\n#include "low/B.h"\n')
        self.write("low/B.h", '#include "low/A.h"\n')
        self.assertEqual(self.complaints(), ["include each other round about: low/A, low/B"])

    def testTwoCirclesAreTwo(self):
        for one, other in ("AB", "BA", "CD", "DC", "BC"):
            path = self.root / f"low/{one}.h"
            before = path.read_text(encoding="utf-8") if path.exists() else ""
            self.write(f"low/{one}.h", before + f'#include "low/{other}.h"\n')
        self.assertEqual(self.complaints(), ["include each other round about: low/A, low/B",
                                             "include each other round about: low/C, low/D"])

    def testKnownCircleIsBorneAsItIs(self):
        self.write("low/A.h", '#include "low/B.h"\n')
        self.write("low/B.h", '#include "low/A.h"\n')
        known = [["low/B", "low/A"]]
        self.assertEqual(self.complaints(known=known), [])
        self.write("low/B.h", '#include "low/C.h"\n')
        self.write("low/C.h", '#include "low/A.h"\n')
        self.assertEqual(self.complaints(known=known),
                         ["include each other round about: low/A, low/B, low/C",
                          "is no circle any more, so it is to go from the list: low/A, low/B"])

    def testKnownCircleThatIsUntied(self):
        self.assertEqual(self.complaints(known=[["high/View", "low/Value"]]),
                         ["is no circle any more, so it is to go from the list: high/View, low/Value"])

    def testTableInCircle(self):
        table = dict(TABLE, low={"high"})
        self.assertIn("may know each other round about by the table: high, low, low/deep", self.complaints(table))

    def testFileInNoRoomAndRoomWithoutFiles(self):
        self.write("low/Loose.h", "")
        table = {"low/deep": set(), "low/other": set(), "high": {"low/deep"}}
        self.assertEqual(self.complaints(table), ["lies in no room: low/Loose.h", "lies in no room: low/Value.h",
                                                  "has no files, so it is to go from the table: low/other"])

    def testLongChainIsNotTooDeep(self):
        for number in range(3000):
            self.write(f"low/F{number}.h", f'#include "low/F{number + 1}.h"\n')
        self.write("low/F3000.h", "")
        self.assertEqual(self.complaints(), [])

    def testNoSources(self):
        with tempfile.TemporaryDirectory() as empty:
            self.assertEqual(rooms.complaints(pathlib.Path(empty), TABLE, []), [f"there are no sources below {empty}"])

    def testProgramFailsOnBadTree(self):
        self.write("model/Item.h", '#include "lists/View.h"\n')
        self.write("lists/View.h", "")
        ran = subprocess.run([sys.executable, str(PROGRAM), str(self.root)], capture_output=True, text=True)
        self.assertEqual(ran.returncode, 1)
        self.assertIn("model may not know lists: model/Item.h includes lists/View.h", ran.stderr)

    def testProgramOnTheRealTree(self):
        ran = subprocess.run([sys.executable, str(PROGRAM), "--draw"], capture_output=True, text=True)
        self.assertEqual((ran.returncode, ran.stderr.count("\n")), (0, 1), ran.stderr)
        self.assertRegex(ran.stdout, r"(?m)^lists -> model \(\d+\)$")


if __name__ == "__main__":
    unittest.main()

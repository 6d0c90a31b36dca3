"""script/coverage-table, run on small made-up trees."""

import json
import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "script" / "coverage-table"


class CoverageTableTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name)
        self.files = []
        self.listed = ["| file | line | reason |", "|---|---|---|"]
        self.source("VynPacketTracer/Sm.cpp", [("work();", 3)])
        self.source("platform/Kel/Dir.cpp", [("look();", 1)])

    def source(self, name, lines, branches=()):
        """A file whose lines ran so often; the branches are those of its first line."""
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("".join(f"    {text}\n" for text, _ in lines), encoding="utf-8")
        entries = [
            {
                "line_number": number,
                "count": count,
                "branches": [],
                "gcovr/noncode": text == "",
                "gcovr/excluded": False,
            }
            for number, (text, count) in enumerate(lines, start=1)
        ]
        entries[0]["branches"] = [{"count": count} for count in branches]
        self.files = [file for file in self.files if file["file"] != name]
        self.files.append({"file": name, "lines": entries})

    def run_(self):
        (self.root / "docs").mkdir(exist_ok=True)
        (self.root / "docs" / "coverage.md").write_text("\n".join(self.listed), encoding="utf-8")
        coverage = self.root / "coverage.json"
        coverage.write_text(json.dumps({"files": self.files}), encoding="utf-8")
        run = subprocess.run(
            [SCRIPT, coverage, "--root", self.root],
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            check=False,
        )
        return run.returncode, run.stdout

    def rowOf(self, name):
        return next(line for line in self.run_()[1].splitlines() if line.startswith(name))

    def testEverythingThatIsReachedIsEnough(self):
        status, out = self.run_()
        self.assertEqual(status, 0, out)
        self.assertIn("VynPacketTracer/ lines: 1/1 100.0 %, at least 100 %\n", out)

    def testALineOfThePlugInThatIsNotReachedIsNotEnough(self):
        self.source("VynPacketTracer/Sm.cpp", [("a();", 1)] * 1999 + [("b();", 0)])
        status, out = self.run_()
        self.assertEqual(status, 1)
        self.assertIn("VynPacketTracer/ lines: 1999/2000  99.9 %, at least 100 %: NOT ENOUGH", out)
        self.assertTrue(self.rowOf("VynPacketTracer/Sm.cpp").endswith(" 2000"))

    def testTheBranchesOfThePlugInHaveAFloorOfTheirOwn(self):
        self.source("VynPacketTracer/Sm.cpp", [("if (a) {", 1)], branches=[1] * 18 + [0])
        status, out = self.run_()
        self.assertEqual(status, 1)
        self.assertIn("VynPacketTracer/ branches: 18/19  94.7 %, at least 95 %: NOT ENOUGH", out)
        self.source("VynPacketTracer/Sm.cpp", [("if (a) {", 1)], branches=[1] * 19 + [0])
        self.assertEqual(self.run_()[0], 0)

    def testThePlatformMayMissALineInTwenty(self):
        self.source("platform/Kel/Dir.cpp", [("a();", 1)] * 19 + [("b();", 0)])
        self.assertEqual(self.run_()[0], 0)
        self.source("platform/Kel/Dir.cpp", [("a();", 1)] * 18 + [("b();", 0)])
        self.assertEqual(self.run_()[0], 1)

    def testLinesWithoutCodeAreNotCounted(self):
        self.source("VynPacketTracer/Sm.cpp", [("a();", 1), ("", 0)])
        self.assertEqual(self.run_()[0], 0)

    def testALineThatIsListedWithAReasonIsNotCounted(self):
        self.source("VynPacketTracer/Sm.cpp", [("a();", 1), ("if (b || c) {", 0)])
        self.listed.append("| `VynPacketTracer/Sm.cpp` | `if (b \\|\\| c) {` | nobody can see it |")
        status, out = self.run_()
        self.assertEqual(status, 0, out)
        self.assertIn("VynPacketTracer/ lines: 1/1 100.0 %", out)
        self.assertTrue(self.rowOf("VynPacketTracer/Sm.cpp").endswith(" (2)"))

    def testARowOfTheListIsForOneLine(self):
        self.source("VynPacketTracer/Sm.cpp", [("a();", 1), ("return;", 0), ("return;", 0)])
        row = "| `VynPacketTracer/Sm.cpp` | `return;` | nobody can see it |"
        self.listed.append(row)
        self.assertEqual(self.run_()[0], 1)
        self.assertTrue(self.rowOf("VynPacketTracer/Sm.cpp").endswith(" (2) 3"))
        self.listed.append(row)
        self.assertEqual(self.run_()[0], 0)

    def testALineThatIsListedForAnotherFileIsCounted(self):
        self.source("VynPacketTracer/Sm.cpp", [("a();", 1), ("b();", 0)])
        self.source("platform/Kel/Dir.cpp", [("b();", 1)])
        self.listed.append("| `platform/Kel/Dir.cpp` | `b();` | nobody can see it |")
        self.assertEqual(self.run_()[0], 1)

    def testALineThatIsListedAndGoneIsTakenOffTheList(self):
        self.listed.append("| `VynPacketTracer/Sm.cpp` | `gone();` | nobody can see it |")
        status, out = self.run_()
        self.assertEqual(status, 1)
        self.assertIn("lists a line that is not there: VynPacketTracer/Sm.cpp: `gone();`", out)

    def testALineIsNotListedWithoutAReason(self):
        self.listed.append("| `VynPacketTracer/Sm.cpp` | `work();` | |")
        status, out = self.run_()
        self.assertEqual(status, 1)
        self.assertIn("without a reason", out)

    def testAFolderOfWhichNothingIsCountedIsNotEnough(self):
        self.files = [file for file in self.files if not file["file"].startswith("platform/")]
        self.assertEqual(self.run_()[0], 1)


if __name__ == "__main__":
    unittest.main()

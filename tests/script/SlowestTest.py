"""script/slowest, run on made-up records of builds and tests."""

import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "script" / "slowest"


class SlowestTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name)

    def write(self, name, text):
        path = self.root / "build" / "release" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def lines(self, *arguments):
        run = subprocess.run(
            [SCRIPT, "--root", self.root, *arguments, "release"], capture_output=True, text=True, check=True
        )
        return run.stdout.splitlines()

    def compiled(self, *rows):
        rows = [f"{begin}\t{end}\t7\t{output}\tabc" for begin, end, output in rows]
        self.write(".ninja_log", "# ninja log v5\n" + "\n".join(rows) + "\n")

    def testNamesTheSlowestFileFirst(self):
        self.compiled(
            (0, 1500, "cli/CMakeFiles/VynCli.dir/Road.cpp.o"), (0, 9000, "tests/CMakeFiles/test-Kel.dir/Kel/DirTest.cpp.o")
        )
        self.assertEqual(
            self.lines(),
            ["release: 10 s in 2 files, 0 s in 0 tests", "     9.0  tests/Kel/DirTest.cpp", "     1.5  cli/Road.cpp"],
        )

    def testCountsTheNewestTimeOfAFile(self):
        self.compiled((0, 9000, "a/CMakeFiles/A.dir/B.cpp.o"), (0, 2000, "a/CMakeFiles/A.dir/B.cpp.o"))
        self.assertEqual(self.lines()[1:], ["     2.0  a/B.cpp"])

    def testNamesTheSlowestTestFirst(self):
        self.write("Testing/Temporary/CTestCostData.txt", "Kel.Dir.Has 2 0.5\nsimulate.seeds 1 9.25\n---\n")
        self.assertEqual(
            self.lines(),
            ["release: 0 s in 0 files, 10 s in 2 tests", "     9.2  simulate.seeds", "     0.5  Kel.Dir.Has"],
        )

    def testPassesOverTheNamesOfTestsThatFailed(self):
        self.write("Testing/Temporary/CTestCostData.txt", "Kel.Dir.Has 1 0.5\n---\na name of three\n")
        self.assertEqual(self.lines()[1:], ["     0.5  Kel.Dir.Has"])

    def testShowsAsManyRowsAsAreAskedFor(self):
        self.compiled(*((0, n, f"a/CMakeFiles/A.dir/B{n}.cpp.o") for n in range(1000, 9000, 1000)))
        self.assertEqual(len(self.lines()), 1 + 5)
        self.assertEqual(len(self.lines("--most", "2")), 1 + 2)

    def testPassesOverAPresetThatWasNotBuilt(self):
        self.assertEqual(self.lines(), [])


if __name__ == "__main__":
    unittest.main()

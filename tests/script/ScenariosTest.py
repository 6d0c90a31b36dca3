"""script/scenarios, run with a stand-in for vynpt on made-up scenarios."""

import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "script" / "scenarios"

# Prints the scenario's file and its options; ends with the status that the file's last line names.
STAND_IN = """#!/bin/sh
test "$1" = replay || exit 99
shift
cat "$1"
status=$(sed -n 's/^exit //p' "$1")
shift
test $# = 0 || echo "options: $*"
echo "said on standard error" >&2
exit ${status:-0}
"""


class ScenariosTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.vynpt = self.folder / "vynpt"
        self.vynpt.write_text(STAND_IN)
        self.vynpt.chmod(0o755)

    def write(self, name, text):
        (self.folder / name).write_text(text)

    def read(self, name):
        return (self.folder / name).read_text()

    def run_(self, *arguments):
        run = subprocess.run(
            [SCRIPT, "--vynpt", self.vynpt, "--dir", self.folder, *arguments],
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            check=False,
        )
        return run.returncode, run.stdout

    def testOutputAsExpectedPasses(self):
        self.write("a.jsonl", "one\ntwo\n")
        self.write("a.out", "one\ntwo\n")
        self.assertEqual(self.run_(), (0, "1 passed, 0 failed\n"))

    def testADifferenceIsShownLineByLine(self):
        self.write("a.jsonl", "one\ntwo\n")
        self.write("a.out", "one\nthree\n")
        status, out = self.run_()
        self.assertEqual(status, 1)
        self.assertIn(" one\n-three\n+two\n", out)
        self.assertIn("standard error: said on standard error\n", out)
        self.assertTrue(out.endswith("0 passed, 1 failed\n"))

    def testOutputThatIsMissingIsADifference(self):
        self.write("a.jsonl", "one\n")
        status, out = self.run_()
        self.assertEqual(status, 1)
        self.assertIn("+one\n", out)

    def testAnotherExitStatusFails(self):
        self.write("a.jsonl", "exit 3\n")
        self.write("a.out", "exit 3\n")
        status, out = self.run_()
        self.assertEqual(status, 1)
        self.assertIn("a: expected exit status 0, now 3\n", out)

    def testTheExpectedExitStatusIsThatOfTheStatusFile(self):
        self.write("a.jsonl", "exit 3\n")
        self.write("a.out", "exit 3\n")
        self.write("a.status", "3\n")
        self.assertEqual(self.run_()[0], 0)

    def testOptionsComeFromTheArgsFile(self):
        self.write("a.jsonl", "one\n")
        self.write("a.args", "--dump --more\n")
        self.write("a.out", "one\noptions: --dump --more\n")
        self.assertEqual(self.run_()[0], 0)

    def testAcceptingMakesTheOutputAndStatusOfNowTheExpectedOnes(self):
        self.write("a.jsonl", "exit 2\n")
        self.write("b.jsonl", "one\n")
        self.write("b.status", "3\n")
        status, out = self.run_("--accept")
        self.assertEqual(status, 0, out)
        self.assertEqual((self.read("a.out"), self.read("a.status")), ("exit 2\n", "2\n"))
        self.assertEqual(self.read("b.out"), "one\n")
        self.assertFalse((self.folder / "b.status").exists())
        self.assertEqual(self.run_(), (0, "2 passed, 0 failed\n"))

    def testOnlyTheNamedScenariosRun(self):
        self.write("a.jsonl", "one\n")
        self.write("b.jsonl", "two\n")
        self.write("b.out", "two\n")
        self.assertEqual(self.run_("b"), (0, "1 passed, 0 failed\n"))

    def testAScenarioThatIsNotThereIsAnError(self):
        status, out = self.run_("nowhere")
        self.assertEqual(status, 2)
        self.assertIn("there is no scenario", out)
        self.assertIn("nowhere.jsonl", out)


if __name__ == "__main__":
    unittest.main()

"""script/setup, run with stand-ins for the package tools that write down how they were called."""

import os
import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "script" / "setup"


class SetupTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.bin = pathlib.Path(scratch.name)
        self.calls = self.bin / "calls"
        self.calls.touch()
        self.tool("id", "echo ${FAKE_UID:-0}")
        self.tool("sudo", "exit 1")
        self.tool("apt-get", f'echo "$DEBIAN_FRONTEND $*" >>{self.calls}; exit ${{FAKE_APT:-0}}')
        self.installedAre(*self.packages("all"))

    def tool(self, name, script):
        path = self.bin / name
        path.write_text(f"#!/bin/sh\n{script}\n")
        path.chmod(0o755)

    def installedAre(self, *packages):
        lines = " ".join(f"'{package} installed'" for package in packages) or "''"
        self.tool("dpkg-query", f"printf '%s\\n' {lines}")

    def packages(self, mode):
        out = subprocess.run([SCRIPT, mode, "--list"], stdout=subprocess.PIPE, text=True, check=True)
        return out.stdout.split()

    def run_(self, *arguments, **environment):
        path = f"{self.bin}{os.pathsep}{os.environ['PATH']}"
        run = subprocess.run(
            [SCRIPT, *arguments],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            check=False,
            env={**os.environ, **environment, "PATH": path},
        )
        self.assertEqual(run.stdout, "")
        return run.returncode, run.stderr

    def testNothingIsDoneWhenNothingIsMissing(self):
        self.assertEqual(self.run_(), (0, ""))
        self.assertEqual(self.calls.read_text(), "")

    def testWhatIsMissingIsInstalledWithoutAQuestion(self):
        self.installedAre(*(set(self.packages("all")) - {"tshark", "cmake"}))
        self.assertEqual(self.run_()[0], 0)
        update, install = self.calls.read_text().splitlines()
        self.assertTrue(update.endswith(" update"), update)
        self.assertTrue(install.startswith("noninteractive "), install)
        self.assertTrue(install.endswith(" install -y --no-install-recommends cmake tshark"), install)

    def testTheSetForTracingNeedsNoTestTools(self):
        self.installedAre(*self.packages("build"))
        self.assertNotIn("tshark", self.packages("build"))
        self.assertEqual(self.run_("build"), (0, ""))
        self.assertEqual(self.calls.read_text(), "")

    def testWithoutRightsThePackagesAndTheCommandAreNamed(self):
        self.installedAre(*(set(self.packages("all")) - {"tshark"}))
        status, said = self.run_(FAKE_UID="1000")
        self.assertEqual(status, 1)
        self.assertIn("missing packages: tshark\n", said)
        self.assertIn("apt-get install -y --no-install-recommends tshark\n", said)
        self.assertEqual(self.calls.read_text(), "")

    def testAFailedInstallationIsAnErrorThatNamesThePackages(self):
        self.installedAre(*(set(self.packages("all")) - {"tshark"}))
        status, said = self.run_(FAKE_APT="100")
        self.assertNotEqual(status, 0)
        self.assertIn("could not install: tshark", said)

    def testAnUnknownWordIsRefused(self):
        status, said = self.run_("everything")
        self.assertEqual(status, 2)
        self.assertIn('"everything"', said)


if __name__ == "__main__":
    unittest.main()

"""script/trace, run in a made-up tree with stand-ins for script/setup, cmake and vynpt."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "script"

# Stands for vynpt: tells its arguments and its standard input.
VYNPT = """#!/bin/sh
for argument; do echo "argument $argument"; done
sed 's/^/input /'
exit 4
"""


class TraceTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name).resolve() / "a tree"
        for name in ("common.sh", "trace"):
            (self.root / "script").mkdir(parents=True, exist_ok=True)
            shutil.copy(SCRIPTS / name, self.root / "script" / name)
        self.tool("script/setup", "#!/bin/sh\necho said by setup >&2\n")
        self.tool("build/release/cli/vynpt", VYNPT)
        self.cmake("echo said by cmake; cat")
        self.leaf = f"argument {self.root}/examples/leaf.json\n"

    def tool(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        path.chmod(0o755)

    def cmake(self, script):
        self.tool("bin/cmake", f"#!/bin/sh\n{script}\n")

    def trace(self, *arguments, cwd=None):
        run = subprocess.run(
            [self.root / "script/trace", *arguments],
            input="frames\n",
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            check=False,
            cwd=cwd or self.root,
            env={**os.environ, "PATH": f"{self.root}/bin{os.pathsep}{os.environ['PATH']}"},
        )
        return run.returncode, run.stdout, run.stderr

    def testOnlyTheAnswerStandsOnStandardOutput(self):
        status, out, _ = self.trace("a.pcap", "--in", "Ethernet1")
        self.assertEqual(
            out,
            "argument trace\nargument --switch\n"
            + self.leaf
            + "argument a.pcap\nargument --in\nargument Ethernet1\ninput frames\n",
        )
        self.assertEqual(status, 4)

    def testItWorksFromAnyFolder(self):
        status, out, _ = self.trace("a.pcap", cwd="/")
        self.assertEqual(status, 4)
        self.assertIn(self.leaf + "argument a.pcap\n", out)

    def testASwitchThatIsNamedTakesThePlaceOfTheExample(self):
        for words in (["--switch", "mine.json"], ["--switch=mine.json"]):
            _, out, _ = self.trace(*words)
            self.assertEqual(out.splitlines()[:-1], [f"argument {w}" for w in ["trace", *words]])

    def testABuildThatFailsIsShownAndItsOutputAlone(self):
        self.cmake("echo no such compiler; exit 1")
        status, out, err = self.trace("a.pcap")
        self.assertEqual((status, out), (3, ""))
        self.assertIn("no such compiler\n", err)
        self.assertIn("vynpt could not be built", err)

    def testASetUpThatFailsEndsIt(self):
        self.tool("script/setup", "#!/bin/sh\necho no rights >&2\nexit 1\n")
        self.assertEqual(self.trace("a.pcap"), (3, "", "no rights\n"))


if __name__ == "__main__":
    unittest.main()

"""What decides whether a mutant is noticed: programs that succeed on the unmutated sources."""

import dataclasses
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile
import time

MEMORY = 6 << 30  # bytes of addresses a process may have; a test of Vanta maps 4 GiB
FILE = 64 << 20  # bytes it may write to one file
TIMES, AT_LEAST = 10, 10  # how much longer than the unmutated run, and how many seconds, is a hang


@dataclasses.dataclass
class Judge:
    name: str
    target: str  # what must be built
    command: list
    filter: str = ""  # of a test program: which of its tests
    seconds: float = 0  # that it takes unmutated
    reached: bytes = b""  # a byte for each mutant, 1 if the judge comes by it
    tests: dict = dataclasses.field(default_factory=dict)  # the same for each test of a program

    def commandFor(self, number):
        """Only the tests of a program that come by the mutant are asked."""
        names = [name for name, reached in self.tests.items() if reached[number]]
        return self.command + ([f"--gtest_filter={':'.join(names)}"] if names else [])


def limits():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE, FILE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def gtest(build, folder, filter_="*"):
    program = build / "tests" / f"test-{folder}"
    command = [program, "--gtest_fail_fast", "--gtest_brief=1"]
    return Judge(f"tests/{folder}", f"test-{folder}", command, filter_)


def testsOf(command):
    """The names of a program's tests."""
    listed = subprocess.run([*command, "--gtest_list_tests"], stdout=subprocess.PIPE, text=True, check=True)
    suite = ""
    for line in listed.stdout.splitlines():
        if line.startswith("  "):
            yield suite + line.split("#")[0].strip()
        elif line.split("#")[0].strip().endswith("."):
            suite = line.split("#")[0].strip()


def judgesOf(tree, plugin):
    """Cheapest first; for what is below the plug-in, its own tests before the others."""
    build = tree.build
    scenarios = Judge("scenarios", "replayer",
                      [tree.source / "script" / "scenarios", "--vynpt", build / "replayer"])
    if not plugin:
        folders = ("Vanta", "Kel", "Orb", "VynPacketTracer")
        return [gtest(build, folder) for folder in folders] + [scenarios]
    return [
        gtest(build, "VynPacketTracer"),
        gtest(build, "faults", "-Allocation.*"),
        scenarios,
        Judge("simulation", "vynpt-simulate",
              [build / "simulate" / "vynpt-simulate", "--seeds", "1-300", "--jobs", "1",
               "--no-shrink", "--failures", "1"]),
    ]


class Runner:
    """Runs judges, each time in an empty folder of its own."""

    def __init__(self, scratch):
        self.scratch = pathlib.Path(scratch)

    def run(self, command, environment, timeout):
        """"passed", "failed" or "hung"."""
        folder = tempfile.mkdtemp(dir=self.scratch)
        process = subprocess.Popen(
            [str(word) for word in command], cwd=folder, preexec_fn=limits,
            start_new_session=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, env={**os.environ, "TMPDIR": folder, **environment},
        )
        try:
            return "passed" if process.wait(timeout) == 0 else "failed"
        except subprocess.TimeoutExpired:
            return "hung"
        finally:
            self.end(process)
            shutil.rmtree(folder, ignore_errors=True)

    @staticmethod
    def end(process):
        """Ends the judge with what it has started, its process group."""
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()

    def reached(self, command, mutants):
        """An unmutated run, which must pass: a byte for each mutant, 1 if it came by it."""
        with tempfile.NamedTemporaryFile(dir=self.scratch) as file:
            file.write(bytes(mutants + 1))
            file.flush()
            if self.run(command, {"VYN_MUTANTS_REACHED": file.name}, None) != "passed":
                raise SystemExit(f"this fails without a mutant: {' '.join(map(str, command))}")
            return pathlib.Path(file.name).read_bytes()

    def prepare(self, judge, mutants):
        """Notes a judge's time, and what it comes by."""
        start = time.monotonic()
        command = judge.command + ([f"--gtest_filter={judge.filter}"] if judge.filter else [])
        judge.reached = self.reached(command, mutants)
        judge.seconds = time.monotonic() - start
        for name in testsOf(command) if judge.filter else []:
            judge.tests[name] = self.reached([*judge.command, f"--gtest_filter={name}"], mutants)

    def verdict(self, mutant, judges):
        """How the mutant was killed, or None if it survived."""
        for judge in judges:
            if judge.reached[mutant.number]:
                timeout = max(TIMES * judge.seconds, AT_LEAST)
                chosen = {"VYN_MUTANT": str(mutant.number)}
                outcome = self.run(judge.commandFor(mutant.number), chosen, timeout)
                if outcome != "passed":
                    return judge.name if outcome == "failed" else f"{judge.name} hung"
        return None

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

MEMORY = 3 << 30  # bytes of addresses a process may have
FILE = 64 << 20  # bytes it may write to one file
TIMES, AT_LEAST = 10, 10  # how much longer than the unmutated run, and how many seconds, is a hang


@dataclasses.dataclass
class Judge:
    name: str
    target: str  # what must be built
    command: list
    seconds: float = 0  # that it takes unmutated
    reached: bytes = b""  # a byte for each mutant, 1 if the judge comes by it


def limits():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE, FILE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def gtest(build, folder, filter_="*"):
    program = build / "tests" / f"test-{folder}"
    return Judge(f"tests/{folder}", f"test-{folder}",
                 [program, "--gtest_fail_fast", "--gtest_brief=1", f"--gtest_filter={filter_}"])


def judgesOf(tree, plugin):
    """Cheapest first; for what is below the plug-in, its own tests before the others."""
    build = tree.build
    below = [] if plugin else [
        gtest(build, folder)
        for folder in ("Vanta", "Kel", "Hivedb", "VynSystem", "Plexa", "sdkseam", "scriptchip", "Orb")
    ]
    return below + [
        gtest(build, "VynPacketTracer"),
        gtest(build, "replay"),
        gtest(build, "faults", "-Allocation.*"),
        Judge("simulation", "vynpt-simulate",
              [build / "simulate" / "vynpt-simulate", "--seeds", "1-300", "--jobs", "1",
               "--no-shrink", "--failures", "1"]),
        Judge("scenarios", "vynpt",
              [tree.source / "script" / "scenarios", "--vynpt", build / "cli" / "vynpt"]),
    ]


class Runner:
    """Runs judges, each time in an empty folder of its own."""

    def __init__(self, scratch):
        self.scratch = pathlib.Path(scratch)

    def run(self, judge, environment, timeout):
        """"passed", "failed" or "hung"."""
        folder = tempfile.mkdtemp(dir=self.scratch)
        process = subprocess.Popen(
            [str(word) for word in judge.command], cwd=folder, preexec_fn=limits,
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

    def prepare(self, judge, mutants):
        """An unmutated run; it must pass. Notes its time and the mutants that it comes by."""
        bytes_ = self.scratch / "reached"
        bytes_.write_bytes(bytes(mutants + 1))
        start = time.monotonic()
        if self.run(judge, {"VYN_MUTANTS_REACHED": str(bytes_)}, None) != "passed":
            raise SystemExit(f"{judge.name} fails without a mutant: {' '.join(map(str, judge.command))}")
        judge.seconds = time.monotonic() - start
        judge.reached = bytes_.read_bytes()

    def verdict(self, mutant, judges):
        """How the mutant was killed, or None if it survived."""
        for judge in judges:
            if judge.reached[mutant.number]:
                timeout = max(TIMES * judge.seconds, AT_LEAST)
                outcome = self.run(judge, {"VYN_MUTANT": str(mutant.number)}, timeout)
                if outcome != "passed":
                    return judge.name if outcome == "failed" else f"{judge.name} hung"
        return None

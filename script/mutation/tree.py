"""The instrumented copy of the project, and its build."""

import hashlib
import multiprocessing
import os
import pathlib
import pickle
import re
import shutil
import subprocess

from mutation.constants import Constants
from mutation.finder import Finder
from mutation.schemata import Instrumented, numbered
from mutation.source import Source

HERE = pathlib.Path(__file__).resolve().parent
DIAGNOSTIC = re.compile(r"^(?P<file>[^:\n]+):(?P<line>\d+):(?:(?P<column>\d+):)? +(?P<kind>.*)$")
SUPPORT = f'#include "{HERE / "Mutation.h"}"\n'
# In a header this also tells the compiler to keep its warnings to itself.
BEFORE_HEADER = "#pragma GCC system_header\n" + SUPPORT
# What the copy builds differently: the instrumented sources, and a program that replays scenarios
# without what the command needs besides.
COMMANDS = """
set_source_files_properties({sources} TARGET_DIRECTORY VynPlatform VynPacketTracer
    PROPERTIES COMPILE_OPTIONS "-w;-Wno-narrowing")
add_executable(replayer {replayer})
target_link_libraries(replayer PRIVATE VynReplay)
"""
# Everything includes the platform's headers; what the compiler warns of in an instrumented template
# comes up wherever the template is used.
QUIET = "target_compile_options(VynCompile INTERFACE -Wno-error)\n"
# A function whose last statement is dropped returns. Of one that is said not to, the compiler would
# take the mutant for a case that cannot be.
NORETURN = "[[noreturn]]"


class Found:
    """What the finder says of one source, without libclang's objects."""

    def __init__(self, text, mutants, edits, skipped, constants):
        self.text, self.mutants, self.edits, self.skipped = text, mutants, edits, skipped
        self.constants = constants


def find(rootAndName):
    root, name = rootAndName
    constants = Constants()
    source = Source(root, name)
    finder = Finder(source, constants)
    return Found(source.text, finder.mutants, finder.edits, finder.skipped, constants)


def findAll(root, names, kept):
    """Name -> Found; the mutants have their numbers. `kept` is where what is found is kept."""
    seen = keyOf(*sorted((root / "platform").rglob("*.h")), *sorted(HERE.glob("*.py")),
                 *sorted((root / "VynPacketTracer").glob("*.h")))
    keys = {name: seen + keyOf(root / name) for name in names}
    old = pickle.loads(kept.read_bytes()) if kept.is_file() else {}
    found = {name: old[name][1] for name, key in keys.items() if name in old and old[name][0] == key}
    missing = [name for name in names if name not in found]
    with multiprocessing.Pool() as pool:
        found.update(zip(missing, pool.map(find, [(root, name) for name in missing], chunksize=1)))
    kept.parent.mkdir(parents=True, exist_ok=True)
    kept.write_bytes(pickle.dumps({**old, **{name: (keys[name], found[name]) for name in names}}))
    return connected({name: found[name] for name in names})


def keyOf(*paths):
    return "".join(hashlib.sha256(path.read_bytes()).hexdigest() for path in paths)


def connected(found):
    """Brings mentions of constants to their declarations in other sources; numbers all mutants."""
    everywhere = Constants()
    for one in found.values():
        everywhere.declared.update(one.constants.declared)
        everywhere.mentions += one.constants.mentions
    for name, edit in everywhere.edits():
        found[name].edits.append(edit)
    numbered([mutant for one in found.values() for mutant in one.mutants])
    return found


class Tree:
    """A copy of the project in `folder`, with its build as it is delivered.

    Of the copy as of the project itself the path from a build to a source is the same, so that what
    the compiler's cache has of the sources that are not instrumented serves both. `first` are the
    targets that are built of the instrumented ones alone.
    """

    def __init__(self, root, folder, found, first):
        self.root, self.source, self.build = root, folder, folder / "build" / "release"
        self.found, self.written, self.first = found, {}, first
        self.refusals = folder.parent / f"{folder.name}.refused"

    def copy(self):
        """Brings the copy up to date; what has not changed keeps its time."""
        listed = subprocess.run(
            ["git", "-C", self.root, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            stdout=subprocess.PIPE, check=True,
        )
        names = {name for name in listed.stdout.decode().split("\0") if name}
        names = {name for name in names if (self.root / name).is_file()}
        for path in [*self.source.rglob("*")]:
            name = path.relative_to(self.source)
            if path.is_file() and name.parts[0] != "build" and str(name) not in names:
                path.unlink()
        for name in names - set(self.found) - {"CMakeLists.txt"}:
            self.write(name, (self.root / name).read_bytes())
            shutil.copymode(self.root / name, self.source / name)
        sources = " ".join(f"${{CMAKE_SOURCE_DIR}}/{name}" for name in self.found if name.endswith(".cpp"))
        commands = COMMANDS.format(sources=sources, replayer=HERE / "replayer.cpp")
        if any(name.startswith("platform/") and name.endswith(".h") for name in self.found):
            commands += QUIET
        self.write("CMakeLists.txt", ((self.root / "CMakeLists.txt").read_text() + commands).encode())

    def write(self, name, content):
        path = self.source / name
        if not path.is_file() or path.read_bytes() != content:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)

    def instrument(self):
        for name, one in self.found.items():
            before = BEFORE_HEADER if name.endswith(".h") else SUPPORT
            text = one.text.replace(NORETURN, " " * len(NORETURN))
            self.written[name] = Instrumented(text, one.edits, before)
            self.write(name, self.written[name].text.encode("latin-1"))

    def configure(self):
        if (self.build / "build.ninja").is_file():
            return
        subprocess.run(
            ["cmake", "--preset", "release", "-DVYN_BENCH=OFF"],
            cwd=self.source, stdout=subprocess.DEVNULL, check=True,
        )

    def compile(self, targets, jobs, say):
        """Builds; mutants that the compiler refuses are dropped."""
        self.copy()
        self.dropKnown()
        self.instrument()
        self.configure()
        # What is mutated comes first: it takes few compilations to learn what the compiler refuses.
        for stage in (self.first, [*self.first, *targets]):
            self.compileStage(stage, jobs, say)

    def compileStage(self, targets, jobs, say):
        while True:
            run = subprocess.run(
                ["ninja", "-C", self.build, "-k", "0", "-j", str(jobs), *targets],
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
            )
            if run.returncode == 0:
                return
            refused = self.refused(run.stdout)
            if not refused:
                raise SystemExit(f"the instrumented copy does not build:\n{run.stdout[-4000:]}")
            for mutant in refused:
                mutant.dropped = True
            say(f"{len(refused)} mutants do not compile; building again without them")
            self.instrument()
            self.refusals.write_text("\n".join(self.refusalKey(one) for one in self.dropped()))

    def dropped(self):
        return [one for found in self.found.values() for one in found.mutants if one.dropped]

    @staticmethod
    def refusalKey(mutant):
        return "\t".join(map(str, (*mutant.key(), mutant.line, mutant.column)))

    def dropKnown(self):
        """What did not compile the last time is not tried again, as long as it stands there."""
        known = set()
        if self.refusals.is_file():
            known = set(self.refusals.read_text().split("\n"))
        for found in self.found.values():
            for mutant in found.mutants:
                mutant.dropped = self.refusalKey(mutant) in known

    def refused(self, said):
        """The mutants that the compiler's errors are about."""
        refused, context, blamed = set(), [], True
        for line in said.split("\n"):
            match = DIAGNOSTIC.match(line)
            if not match:
                continue
            mutants = self.mutantsAt(match)
            kind = match["kind"]
            if "error: " in kind:
                blamed = False
                for candidate in [mutants, *context]:
                    if candidate:
                        refused.update(candidate)
                        blamed = True
                        break
                context = []
            elif kind.startswith("note: "):
                if not blamed and mutants:
                    refused.update(mutants)
                    blamed = True
            else:
                context.append(mutants)
        return refused

    def mutantsAt(self, match):
        path = pathlib.Path(os.path.normpath(self.build / match["file"]))
        if not path.is_relative_to(self.source):
            return []
        written = self.written.get(str(path.relative_to(self.source)))
        return written.mutantsAt(int(match["line"]), int(match["column"] or 1)) if written else []

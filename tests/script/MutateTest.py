"""script/mutate's parts: which mutants there are, that each can be chosen, and what is said of them."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "script"))

from mutation import judges, report, schemata, survivors, tree  # noqa: E402

MAIN = """
#include <cstdio>
#include <initializer_list>
%s
int main() { return std::printf("%%d", value()), 0; }
"""


class Folder(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)


class Mutants(Folder):
    """Mutants of small programs that print one number."""

    def found(self, text):
        (self.folder / "a.cpp").write_text(text)
        return tree.connected({"a.cpp": tree.find((self.folder, "a.cpp"))})["a.cpp"]

    def changes(self, text):
        return [mutant.change for mutant in self.found(text).mutants]

    def values(self, text):
        """Mutant -> what the program prints with it; "" stands for no mutant."""
        found = self.found(MAIN % text)
        copy = self.folder / "copy.cpp"
        copy.write_text(schemata.Instrumented(found.text, found.edits).text)
        program = self.folder / "program"
        header = ROOT / "script" / "mutation" / "Mutation.h"
        subprocess.run(["g++", "-std=c++20", "-w", "-include", header, copy, "-o", program], check=True)
        printed = {"": self.printed(program, 0)}
        for mutant in found.mutants:
            if mutant.text.startswith("int main"):
                continue
            printed.setdefault(mutant.change, self.printed(program, mutant.number))
        return printed

    def printed(self, program, number):
        run = subprocess.run([program], env={"VYN_MUTANT": str(number)}, stdout=subprocess.PIPE, check=True)
        return int(run.stdout)

    def testComparisonsAreTurned(self):
        values = self.values(
            "bool less(int a, int b) { return a < b; } int value() { return less(3, 3) + 2 * less(1, 2); }"
        )
        self.assertEqual(values[""], 2)
        self.assertEqual(values["`<` becomes `<=` in `a < b`"], 3)
        self.assertEqual(values["`<` becomes `>=` in `a < b`"], 1)

    def testConditionsAreNegated(self):
        values = self.values("int value() { bool const yes = true; if (yes && !false) { return 1; } return 2; }")
        self.assertEqual(values["`yes` becomes `!(yes)`"], 2)
        self.assertEqual(values["`!false` becomes `!(!false)`"], 2)
        self.assertEqual(values["`yes && !false` becomes `!(yes && !false)`"], 2)
        self.assertEqual(values["`&&` becomes `||` in `yes && !false`"], 1)
        self.assertEqual(values["`true` becomes `false`"], 2)

    def testAVariableInAConditionIsNegated(self):
        values = self.values("int value() { int x = 3; if (int* p = &x) { return *p; } return 7; }")
        self.assertEqual(values["`p` negated"], 7)

    def testStatementsAreDropped(self):
        values = self.values("int value() { int x = 1; x *= 5; return x; }")
        self.assertEqual((values[""], values["`x *= 5;` dropped"]), (5, 1))

    def testNeighboursThatActOnTheSameAreSwapped(self):
        values = self.values("int value() { int x = 1; x *= 5; x += 2; return x; }")
        self.assertEqual((values[""], values["after `x += 2;`"]), (7, 15))

    def testNeighboursWithoutACommonEffectStay(self):
        changes = self.changes("int f() { int x = 0, y = 0; x = 1; y = 2; return x + y; }")
        self.assertFalse([change for change in changes if change.startswith("after")])

    def testArgumentsAreChanged(self):
        values = self.values("int minus(int a, int b) { return a - b; } int value() { return minus(5, 3); }")
        self.assertEqual(values["`5` becomes `6` in `minus(5, 3)`"], 3)
        self.assertEqual(values["`5` becomes `4` in `minus(5, 3)`"], 1)
        self.assertEqual(values["`5, 3` becomes `3, 5` in `minus(5, 3)`"], -2)

    def testConstantsAreChangedWhereTheyAreMentioned(self):
        values = self.values("constexpr int size = 8; int value() { char a[size]; return sizeof a + 100 * size; }")
        self.assertEqual((values[""], values["`8` becomes `8 + 1`"]), (808, 908))

    def testTablesThatAreConstantAreChanged(self):
        values = self.values("int value() { static constexpr int table[] = {4, 6}; return table[0] * table[1]; }")
        self.assertEqual((values[""], values["`4` becomes `5`"], values["`6` becomes `7`"]), (24, 30, 28))

    def testEnumeratorsBecomeTheNext(self):
        values = self.values("enum class E { a, b }; E e() { return E::b; } int value() { return int(e()); }")
        self.assertEqual((values[""], values["`E::b` becomes `E::a`"]), (1, 0))

    def testFunctionsReturnAtOnce(self):
        values = self.values("int twice(int x) { x = x * 2; return x; } int value() { return twice(4); }")
        self.assertEqual(values["`twice` does `return {};` at once"], 0)

    def testALoopTakesOneTurn(self):
        values = self.values("int value() { int all = 0; for (int x : {1, 2, 3}) { all += x; } return all; }")
        self.assertEqual((values[""], values["only one turn of the loop"]), (6, 1))

    def testMembersBeginWithNothing(self):
        values = self.values("struct S { S(int a) : a_(a) {} int a_; }; int value() { S s(4); return s.a_; }")
        self.assertEqual((values[""], values["`a` becomes `{}`"]), (4, 0))

    def testWhatIsFixedWhenItIsCompiledStaysAndIsCounted(self):
        found = self.found("static_assert(1 + 1 == 2); enum E { a = 1 };")
        self.assertEqual(found.mutants, [])
        self.assertEqual(found.skipped, 6)

    def testConstantExpressionsKeepTheirValue(self):
        values = self.values(
            "constexpr int twice(int x) { return x * 2; } static_assert(twice(2) == 4);"
            "int value() { int x = 3; return twice(x); }"
        )
        self.assertEqual((values[""], values["`*` becomes `/` in `x * 2`"]), (6, 1))

    def testMutantsSurviveWithTheTextOfTheirLine(self):
        (mutant,) = self.found("bool f(int a, int b)\n{\n    return a == b;  // why\n}\n").mutants
        self.assertEqual((mutant.line, mutant.text), (3, "return a == b;  // why"))

    def testWhatTheCompilerRefusesLeadsToItsMutant(self):
        found = self.found("int f(int a) { return a < 3; }\nint g(int a) { return a == 4; }\n")
        written = schemata.Instrumented(found.text, found.edits)
        for mutant in found.mutants:
            if "in `a == 4`" in mutant.change:
                offset = written.text.index("(a != 4)")
                line = written.text.count("\n", 0, offset)
                column = offset - written.lineStarts[line]
                self.assertEqual(written.mutantsAt(line + 1, column + 2), [mutant])

    def testADroppedMutantLeavesNoTrace(self):
        found = self.found("bool f(int a) { return a == 4; }")
        for mutant in found.mutants:
            mutant.dropped = True
        self.assertEqual(schemata.Instrumented(found.text, found.edits).text, found.text)


class Judging(Folder):
    def judge(self, script):
        return judges.Judge("sh", "", ["sh", "-c", script])

    def verdict(self, script, mutant=1):
        judge = self.judge(script)
        runner = judges.Runner(self.folder)
        runner.prepare(judge, 2)
        judge.reached = bytes([0, 1, 0])
        judges.AT_LEAST, before = 1, judges.AT_LEAST
        try:
            return runner.verdict(schemata.Mutant("a.cpp", 1, 1, "", "", mutant), [judge])
        finally:
            judges.AT_LEAST = before

    def testAMutantIsKilledWhenTheJudgeFails(self):
        self.assertEqual(self.verdict('test -z "$VYN_MUTANT"'), "sh")

    def testAMutantThatEveryJudgePassesSurvives(self):
        self.assertIsNone(self.verdict("true"))

    def testAMutantThatNeverEndsIsKilled(self):
        self.assertEqual(self.verdict('test -z "$VYN_MUTANT" || exec sleep 60'), "sh hung")

    def testAJudgeThatNeverComesByAMutantIsNotAsked(self):
        self.assertIsNone(self.verdict('test -z "$VYN_MUTANT"', mutant=2))

    def testAJudgeThatFailsWithoutAMutantEndsTheRun(self):
        with self.assertRaises(SystemExit):
            judges.Runner(self.folder).prepare(self.judge("false"), 1)


class Reporting(unittest.TestCase):
    def setUp(self):
        self.mutants = [
            schemata.Mutant("VynPacketTracer/A.cpp", n, 1, "x = y;", "dropped", n) for n in range(1, 101)
        ]
        self.found = {"VynPacketTracer/A.cpp": tree.Found("", self.mutants, [], 0, None)}
        self.said = []

    def status(self, survivors_, unseen=""):
        killed = {mutant: "a test" for mutant in self.mutants[survivors_:]}
        names = [*self.found]
        return report.report(self.found, names, self.mutants, killed, unseen, False, self.said.append)

    @staticmethod
    def listed(count, why="Nobody reads it."):
        entries = "['x = y;', 'dropped'], " * count
        return f'[[unseen]]\nfile = "VynPacketTracer/A.cpp"\nwhy = "{why}"\nmutants = [{entries}]\n'

    def testAllKilledIsASuccess(self):
        self.assertEqual(self.status(0), 0)

    def testASurvivorThatIsNotListedIsAFailure(self):
        self.assertEqual(self.status(1), 1)
        self.assertIn("VynPacketTracer/A.cpp:1\n    ['x = y;', 'dropped'],", "\n".join(self.said))

    def testAListedSurvivorIsASuccess(self):
        self.assertEqual(self.status(1, self.listed(1)), 0)

    def testAnEntryCountsForOneSurvivor(self):
        self.assertEqual(self.status(2, self.listed(1)), 1)

    def testTooManySurvivorsAreAFailureEvenWhenListed(self):
        self.assertEqual(self.status(5, self.listed(6)), 0)
        self.assertEqual(self.status(6, self.listed(6)), 1)

    def testAnEntryWithoutASurvivorIsNamed(self):
        self.assertEqual(self.status(0, self.listed(1)), 0)
        self.assertIn("listed, but no survivor", "\n".join(self.said))

    def testAnEntryNeedsAReason(self):
        with self.assertRaisesRegex(SystemExit, 'unseen]] 1: expected a text "why"'):
            survivors.Listed(self.listed(1, why=" "))

    def testATableNeedsMutants(self):
        with self.assertRaisesRegex(SystemExit, 'unseen]] 1: expected "mutants"'):
            survivors.Listed(self.listed(0))

    def testAnEntryIsALineAndAChange(self):
        with self.assertRaisesRegex(SystemExit, 'unseen]] 1: expected "mutants"'):
            survivors.Listed(self.listed(1).replace("'dropped'", "1"))

    def testAListThatIsNoTomlNamesLineAndColumn(self):
        with self.assertRaisesRegex(SystemExit, "unseen.toml: .*line 1, column"):
            survivors.Listed("[[unseen]")

    def testAnEntryIsPrintedAsItIsRead(self):
        for line, change in (("x = y;", "dropped"), ("char c = '\"';", "`'\"'` becomes `'\\0'`")):
            text = self.listed(1).replace("['x = y;', 'dropped'], ", survivors.entryOf(line, change))
            self.assertEqual([*survivors.Listed(text).entries], [("VynPacketTracer/A.cpp", line, change)])

    def testTheListOfThisTreeNamesFilesThatAreThere(self):
        text = (ROOT / survivors.NAME).read_text(encoding="utf-8")
        files = {file for file, _, _ in survivors.Listed(text).entries}
        self.assertEqual([name for name in files if not (ROOT / name).is_file()], [])


if __name__ == "__main__":
    unittest.main()

"""examples/scenarios/README.md, held against the scenarios that lie beside it."""

import pathlib
import re
import unittest

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "examples" / "scenarios"


class ScenarioTablesTest(unittest.TestCase):
    def setUp(self):
        self.scenarios = {path.stem for path in FOLDER.glob("*.jsonl")}
        # Names of scenarios are sentences; other words in code spelling have no hyphens.
        text = (FOLDER / "README.md").read_text(encoding="utf-8")
        self.named = set(re.findall(r"`((?:[a-z0-9]+-)+[a-z0-9]+|first)`", text))

    def testEveryScenarioThatTheTablesNameIsThere(self):
        self.assertEqual(self.named - self.scenarios, set())

    def testEveryScenarioStandsInATable(self):
        self.assertEqual(self.scenarios - self.named, set())


if __name__ == "__main__":
    unittest.main()

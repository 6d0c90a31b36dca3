"""docs/man/vynpt.1: it formats without complaint and knows every subcommand and option."""

import os
import pathlib
import re
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs" / "man" / "vynpt.1"
VYNPT = os.environ["VYNPT"]


def helpOf(*subcommand):
    return subprocess.run([VYNPT, *subcommand, "--help"], text=True, check=True,
                          stdout=subprocess.PIPE).stdout


class ManPageTest(unittest.TestCase):
    def testItIsAManualPageFromItsTitleToItsEnd(self):
        lines = PAGE.read_text().splitlines()
        self.assertTrue(lines[0].startswith(".TH VYNPT 1 "))
        for section in ("NAME", "SYNOPSIS", "DESCRIPTION", '"EXIT STATUS"', "EXAMPLES"):
            self.assertIn(f".SH {section}", lines)

    def testEverySubcommandAndOptionIsInIt(self):
        page = PAGE.read_text().replace("\\-", "-")
        subcommands = re.findall(r"^  (\w+)  ", helpOf().split("Subcommands:")[1], re.MULTILINE)
        self.assertEqual(subcommands, ["trace", "interfaces", "replay", "ringlog"])
        for subcommand in subcommands:
            self.assertIn(f".B vynpt {subcommand}\n", page)
            for option in re.findall(r"^  (?:-\w,)?(--[a-z-]+)", helpOf(subcommand), re.MULTILINE):
                if option != "--help":
                    self.assertRegex(page, re.escape(option) + r"\b", subcommand)


if __name__ == "__main__":
    unittest.main()

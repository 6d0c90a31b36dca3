"""docs/completion/vynpt.bash: what bash is told while somebody types."""

import os
import pathlib
import re
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
VYNPT = os.environ["VYNPT"]

# Asks the function that is registered for vynpt, as bash does when Tab is pressed.
ASK = r"""
source docs/completion/vynpt.bash
function=$(complete -p vynpt | sed 's/.*-F \([^ ]*\) .*/\1/')
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
"$function"
printf '%s\n' "${COMPREPLY[@]}"
"""


def completed(*words):
    run = subprocess.run(
        ["bash", "--norc", "-euo", "pipefail", "-c", ASK, "bash", VYNPT, *words],
        cwd=ROOT, text=True, capture_output=True, check=True,
    )
    if run.stderr:
        raise AssertionError(run.stderr)
    return run.stdout.split()


class CompletionTest(unittest.TestCase):
    def testTheSubcommands(self):
        self.assertEqual(completed(""), ["trace", "interfaces", "replay", "ringlog", "--help"])
        self.assertEqual(completed("r"), ["replay", "ringlog"])

    def testEveryOptionOfEverySubcommand(self):
        for subcommand in completed("")[:-1]:
            text = subprocess.run([VYNPT, subcommand, "--help"], text=True, check=True,
                                  stdout=subprocess.PIPE).stdout
            # Options stand at the beginning of a line, perhaps behind a short one.
            options = set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", text, re.MULTILINE))
            self.assertEqual(set(completed(subcommand, "--")), options)

    def testTheIngressInterfacesOfTheSwitchFile(self):
        for switch in (["--switch", "examples/small.json"], ["--switch", "=", "examples/small.json"]):
            self.assertEqual(
                completed("trace", *switch, "--in", "Eth"),
                ["Ethernet1", "Ethernet2", "Ethernet3", "Ethernet4", "Ethernet65"],
            )
        leaf = ["trace", "--switch", "examples/leaf.json", "--in"]
        self.assertEqual(completed(*leaf, "Ethernet51/1."),
                         [f"Ethernet51/1.{n}" for n in (30, 100, 200)])
        self.assertEqual(completed(*leaf, "Lag"), [])
        self.assertEqual(completed(*leaf, "=", "Ethernet47"), ["Ethernet47"])

    def testWithoutASwitchFileThereAreNoInterfaces(self):
        self.assertEqual(completed("trace", "--in", ""), [])
        self.assertEqual(completed("trace", "--switch", "nowhere.json", "--in", ""), [])

    def testTheListBehindExpectGoesOn(self):
        switch = ["--switch", "examples/small.json"]
        self.assertEqual(completed("trace", *switch, "--expect", "Ethernet1,Ethernet6"),
                         ["Ethernet1,Ethernet65"])

    def testFiles(self):
        self.assertEqual(completed("trace", "examples/captures/l2"), ["examples/captures/l2-unicast.pcap"])
        self.assertEqual(completed("trace", "--switch", "examples/le"), ["examples/leaf.json"])
        self.assertEqual(completed("replay", "examples/scenarios/first.j"),
                         ["examples/scenarios/first.jsonl"])

    def testWordsOfOptions(self):
        self.assertEqual(completed("trace", "--proto", "i"), ["icmp", "icmpv6"])
        self.assertEqual(completed("trace", "--arp-op", ""), ["request", "reply"])
        self.assertEqual(completed("trace", "--ttl", ""), [])


if __name__ == "__main__":
    unittest.main()

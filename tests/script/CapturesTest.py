"""examples/captures: what examples/make-captures writes, as tshark reads it."""

import pathlib
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples"
CAPTURES = EXAMPLES / "captures"


def filesIn(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir()}


class CapturesTest(unittest.TestCase):
    def testTheCapturesAreWhatTheirScriptWritesByteForByte(self):
        with tempfile.TemporaryDirectory() as scratch:
            subprocess.run([EXAMPLES / "make-captures", "--output", scratch], check=True)
            made = filesIn(pathlib.Path(scratch))
        kept = filesIn(CAPTURES)
        self.assertEqual(sorted(made), sorted(kept))
        for name, content in made.items():
            self.assertEqual(content, kept[name], name)

    def testEveryCaptureIsInTheReadme(self):
        readme = (EXAMPLES / "README.md").read_text(encoding="utf-8")
        for path in CAPTURES.iterdir():
            self.assertIn(f"| `{path.stem}`", readme)

    def tshark(self, *arguments):
        """What tshark prints of all frames: starting it once a capture would take long."""
        with tempfile.TemporaryDirectory() as scratch:
            merged = pathlib.Path(scratch) / "all.pcap"
            pcaps = [path.read_bytes() for path in sorted(CAPTURES.glob("*.pcap"))]
            merged.write_bytes(pcaps[0][:24] + b"".join(pcap[24:] for pcap in pcaps))
            return "".join(
                subprocess.run(["tshark", "-r", path, *arguments], check=True, text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
                for path in (merged, CAPTURES / "mixed.pcapng"))

    def testEveryFrameIsWellFormedAndHasRightChecksums(self):
        options = []
        for protocol in ("ip", "tcp", "udp"):
            options += ["-o", f"{protocol}.check_checksum:TRUE"]
        wrong = "_ws.malformed or _ws.expert.severity == error or " + " or ".join(
            f"{protocol}.checksum.status == Bad"
            for protocol in ("ip", "tcp", "udp", "icmp", "icmpv6"))
        self.assertEqual(self.tshark(*options, "-Y", wrong), "")

    def testNoFrameIsShorterThanEthernetAllows(self):
        lengths = [int(line) for line in self.tshark("-T", "fields", "-e", "frame.len").split()]
        self.assertGreater(len(lengths), len(list(CAPTURES.iterdir())))
        self.assertGreaterEqual(min(lengths), 60)


if __name__ == "__main__":
    unittest.main()

"""vynpt trace as a process of its own: what it prints, where it stops, how it ends."""

import json
import os
import pathlib
import pty
import resource
import signal
import subprocess
import tempfile
import unittest

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[2]
CAPTURES = ROOT / "examples" / "captures"
LEAF = ROOT / "examples" / "leaf.json"
VYNPT = os.environ["VYNPT"]


def command(*arguments, ingress="Ethernet1"):
    return [VYNPT, "trace", "--switch", LEAF, "--in", ingress, *map(str, arguments)]


def trace(*arguments, ingress="Ethernet1", stdin=b""):
    return subprocess.run(
        command(*arguments, ingress=ingress), input=stdin, capture_output=True, check=False, timeout=120
    )


def tshark(path, *arguments):
    return subprocess.run(
        ["tshark", "-r", path, *arguments], check=True, text=True,
        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
    ).stdout


class JsonTest(unittest.TestCase):
    """Every output is what docs/trace-output.schema.json describes."""

    @classmethod
    def setUpClass(cls):
        schema = json.loads((ROOT / "docs" / "trace-output.schema.json").read_text())
        jsonschema.Draft7Validator.check_schema(schema)
        cls.validator = jsonschema.Draft7Validator(schema)

    def objects(self, *arguments, ingress="Ethernet1"):
        run = trace(*arguments, "--json", ingress=ingress)
        self.assertTrue(run.stdout.endswith(b"\n"))
        found = [json.loads(line) for line in run.stdout.splitlines()]
        for each in found:
            self.validator.validate(each)
        self.assertTrue(found)
        return found

    def testEveryCapture(self):
        for capture in sorted(CAPTURES.iterdir()):
            with self.subTest(capture=capture.name):
                self.objects(capture)
                self.objects(capture, "--explain", "--expect", "Ethernet2,Cpu", ingress="Ethernet43")

    def testEveryOutcome(self):
        lonely = ROOT / "tests" / "cli" / "expected" / "lonely.json"
        broadcast = "ff" * 6 + "020000000001" + "88b5"
        runs = {
            "refused": self.objects(CAPTURES / "mpls.pcap"),
            "unknown ingress": self.objects(CAPTURES / "ttl-1.pcap", ingress="Ethernet99"),
            "dropped": self.objects(CAPTURES / "hairpin.pcap"),
            "flooded": self.objects(CAPTURES / "unknown-unicast.pcap"),
            "forwarded": self.objects(CAPTURES / "l2-unicast.pcap"),
            "no answer": self.objects(CAPTURES / "ecmp.pcap", "--timeout", "0"),
        }
        run = subprocess.run(
            [VYNPT, "trace", "--switch", lonely, "--in", "Ethernet1", "--hex", broadcast, "--json"],
            capture_output=True, check=True,
        )
        runs["no egress port"] = [json.loads(run.stdout)]
        self.validator.validate(runs["no egress port"][0])
        for outcome, objects in runs.items():
            self.assertEqual(objects[-1]["outcome"], outcome)

    def testPacketsByFields(self):
        (found,) = self.objects("--ip-dst", "10.1.20.11", "--explain")
        self.assertEqual(found["defaults"]["eth-dst"], "02:1c:73:00:00:01")
        self.assertEqual([step["step"] for step in found["steps"]], list(range(1, 14)))
        (refused,) = self.objects("--ip-dst", "10.1.20.11", "--ip-src", "::1", "--explain")
        self.assertEqual((refused["outcome"], refused["steps"]), ("refused", []))

    def testTheRoadBeginsWithTheRequestAndItsTimesAscend(self):
        (found,) = self.objects(CAPTURES / "routed-vlan.pcap", "--explain")
        self.assertTrue(found["road"][0]["text"].startswith("handleRequest"))
        texts = " ".join(passage["text"] for passage in found["road"])
        for name in ("getPhase0Data:", "sendPkt:", "processPktTracerDigest:", "updateResult:"):
            self.assertIn(name, texts)
        times = [passage["ns"] for passage in found["road"]]
        self.assertEqual(times, sorted(times))

    def testTheSchemaRefusesWhatIsNotAnswered(self):
        (good,) = self.objects(CAPTURES / "l2-unicast.pcap")
        for change in ({"outcome": "lost"}, {"state": 3}, {"egress": []}, {"more": 1}, {"frame": 0}):
            with self.assertRaises(jsonschema.ValidationError):
                self.validator.validate({**good, **change})


class ProcessTest(unittest.TestCase):
    def testFramesBeforeATearAreAnsweredInWholeLines(self):
        data = (CAPTURES / "ecmp.pcap").read_bytes()
        for size in (0, 10, 24, 30, 100, 101, 176, 250):
            with self.subTest(size=size):
                run = trace("-", "--json", stdin=data[:size])
                whole = max(0, (size - 24) // 76)
                lines = run.stdout.decode().splitlines(keepends=True)
                self.assertEqual([json.loads(line)["frame"] for line in lines], list(range(1, whole + 1)))
                torn = size < 24 or (size - 24) % 76 or whole == 0
                self.assertEqual(run.returncode, 2 if torn else 0)
                self.assertEqual(run.stderr.count(b"\n"), 1 if torn else 0)

    def testAClosedOutputEndsItQuietly(self):
        reader, writer = os.pipe()
        os.close(reader)
        run = subprocess.run(
            command(CAPTURES / "ecmp.pcap"), stdout=writer, stderr=subprocess.PIPE, check=False
        )
        os.close(writer)
        self.assertEqual(run.returncode, -signal.SIGPIPE)
        self.assertEqual(run.stderr, b"")

    def testAClosedOutputEndsItQuietlyAlsoWithTheSignalIgnored(self):
        run = subprocess.run(
            ["bash", "-c", 'trap "" PIPE; "$@" | true; echo "${PIPESTATUS[0]}"', "bash",
             *command(CAPTURES / "mixed.pcapng", "--explain")],
            capture_output=True, check=False, timeout=60,
        )
        self.assertEqual(run.stderr, b"")

    def testCtrlCEndsItWhileItWaitsForFrames(self):
        process = subprocess.Popen(
            command("-", "--json"), stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE
        )
        process.stdin.write((CAPTURES / "l2-unicast.pcap").read_bytes())
        process.stdin.flush()
        # The answer comes although the input has not ended, and it says that all is set up.
        self.assertEqual(json.loads(process.stdout.readline())["outcome"], "forwarded")
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        self.assertEqual((process.returncode, out, err), (-signal.SIGINT, b"", b""))

    def testARecordingThatMayGrowNoFurtherIsCutAtALine(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_DFL)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1024, 1024))

        with tempfile.TemporaryDirectory() as folder:
            recording = pathlib.Path(folder) / "run.jsonl"
            run = subprocess.run(
                command(CAPTURES / "ecmp.pcap", "--record", recording), preexec_fn=limit,
                capture_output=True, check=False, timeout=120,
            )
            self.assertEqual(run.returncode, 2)
            self.assertIn(str(recording), run.stderr.decode())
            self.assertTrue(recording.read_bytes().endswith(b"\n"))
            replayed = subprocess.run([VYNPT, "replay", recording], capture_output=True, check=False)
            self.assertEqual(replayed.returncode, 0, replayed.stderr)

    def testOnATerminalThereAreColoursUnlessTheyAreNotWanted(self):
        for variables, wanted in (({}, True), ({"NO_COLOR": "1"}, False), ({"TERM": "dumb"}, False)):
            ours, theirs = pty.openpty()
            clean = {k: v for k, v in os.environ.items() if k != "NO_COLOR"}
            subprocess.run(
                command(CAPTURES / "l2-unicast.pcap"), stdout=theirs, check=True,
                env={**clean, "TERM": "xterm", **variables},
            )
            os.close(theirs)
            self.assertEqual(b"\x1b[" in os.read(ours, 10000), wanted, variables)
            os.close(ours)

    def testFramesByFieldsAreDissectedWithoutComplaint(self):
        packets = (
            ["--ip-dst", "10.1.20.11", "--proto", "tcp", "--dport", "443", "--payload", "0102"],
            ["--ip-dst", "10.1.20.11", "--length", "1500", "--dscp", "46", "--dont-fragment"],
            ["--ip-dst", "10.1.20.11", "--proto", "icmp"],
            ["--ip-dst", "2001:db8:1:20::b", "--proto", "icmpv6"],
            ["--ip-dst", "2001:db8:1:20::b", "--proto", "udp", "--vlan", "10"],
            ["--arp-op", "request"],
        )
        with tempfile.TemporaryDirectory() as scratch:
            for packet in packets:
                with self.subTest(packet=packet):
                    path = pathlib.Path(scratch) / "written.pcap"
                    self.assertEqual(trace(*packet, "--write", path).returncode, 0)
                    self.assertEqual(len(tshark(path).splitlines()), 1)
                    complaints = tshark(
                        path, "-o", "ip.check_checksum:TRUE", "-o", "tcp.check_checksum:TRUE",
                        "-o", "udp.check_checksum:TRUE",
                        "-Y", "_ws.malformed or _ws.expert.severity >= warning",
                    )
                    self.assertEqual(complaints, "")

    def testFramesAreWrittenAsTheyWereInjected(self):
        with tempfile.TemporaryDirectory() as scratch:
            path = pathlib.Path(scratch) / "written.pcap"
            trace(CAPTURES / "ecmp.pcap", "--write", path)
            self.assertEqual(path.read_bytes()[24:], (CAPTURES / "ecmp.pcap").read_bytes()[24:])
            trace(CAPTURES / "mpls.pcap", "--write", path)
            self.assertEqual(len(path.read_bytes()), 24)


if __name__ == "__main__":
    unittest.main()

"""docs/switch.schema.json, against the examples and against what must not pass."""

import json
import pathlib
import subprocess
import tempfile
import unittest

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = sorted((ROOT / "examples").glob("*.json"))


def load(path):
    return json.loads(path.read_text(encoding="utf-8"))


def inserted(value, path, member):
    """`value` with `member` at `path`, whose last step may be new."""
    at = value
    for step in path[:-1]:
        at = at[step]
    at[path[-1]] = member
    return value


class SwitchSchemaTest(unittest.TestCase):
    def setUp(self):
        self.schema = load(ROOT / "docs" / "switch.schema.json")
        self.validator = jsonschema.Draft7Validator(self.schema)

    def problems(self, value):
        return [f"{error.json_path}: {error.message[:200]}" for error in
                self.validator.iter_errors(value)]

    def testTheSchemaIsASchema(self):
        jsonschema.Draft7Validator.check_schema(self.schema)

    def testEveryExampleIsValid(self):
        self.assertGreaterEqual(len(EXAMPLES), 3)
        for example in EXAMPLES:
            with self.subTest(example.name):
                self.assertEqual(self.problems(load(example)), [])

    def testEveryMemberOfTheSchemaIsInSomeExample(self):
        used = set()

        def collect(value):
            if isinstance(value, dict):
                used.update(value)
                for entry in value.values():
                    collect(entry)
            elif isinstance(value, list):
                for entry in value:
                    collect(entry)

        for example in EXAMPLES:
            collect(load(example))
        known = set(self.schema["properties"])
        for name in ("port", "lag", "subInterface", "vlanInterface"):
            known.update(self.schema["definitions"][name]["properties"])
        self.assertEqual(known - used, set())

    def testWhatBreaksTheFormatIsRefused(self):
        port = {"port": "0/0"}
        for path, member in (
            (["interface"], {}),
            (["description"], 7),
            (["routerMac"], "02:1c:73"),
            (["vrfs"], ["default"]),
            (["vrfs"], ["a", "a"]),
            (["vlans", "0"], {}),
            (["vlans", "red"], {}),
            (["vlans", "10"], {"nmae": "web"}),
            (["interfaces", "Eth1"], port),
            (["interfaces", "Ethernet01"], port),
            (["interfaces", "Cpu"], port),
            (["interfaces", "Ethernet1"], {}),
            (["interfaces", "Ethernet1"], {"port": 456}),
            (["interfaces", "Ethernet1"], {"port": 1.5}),
            (["interfaces", "Ethernet1"], {"port": "3/72"}),
            (["interfaces", "Ethernet1"], {"port": "0/128"}),
            (["interfaces", "Ethernet1"], {"port": 1, "acess": 10}),
            (["interfaces", "Ethernet1"], {"port": 1, "access": "10"}),
            (["interfaces", "Ethernet1"], {"port": 1, "access": 4095}),
            (["interfaces", "Ethernet1"], {"port": 1, "access": 10, "trunk": 20}),
            (["interfaces", "Ethernet1"], {"port": 1, "native": 10}),
            (["interfaces", "Ethernet1"], {"port": 1, "trunk": "10;20"}),
            (["interfaces", "Ethernet1"], {"port": 1, "trunk": ""}),
            (["interfaces", "Ethernet1"], {"port": 1, "up": "no"}),
            (["interfaces", "Ethernet1"], {"port": 1, "cpu": True, "access": 10}),
            (["interfaces", "Ethernet1"], {"port": 1, "access": 10, "addresses": []}),
            (["interfaces", "Ethernet1"], {"port": 1, "addresses": ["10.0.0.1"]}),
            (["interfaces", "Lag1"], {}),
            (["interfaces", "Lag1"], {"members": ["Lag2"]}),
            (["interfaces", "Lag1"], {"members": ["Ethernet1", "Ethernet1"]}),
            (["interfaces", "Ethernet1.5"], {"port": 1}),
            (["interfaces", "Ethernet1.5"], {"vlan": 10, "vrf": "a"}),
            (["interfaces", "Vlan10"], {"address": "10.0.0.1/24"}),
            (["acls", "edge"], [{"protocol": "tcp"}]),
            (["acls", "edge"], [{"action": "deny"}]),
            (["acls", "edge"], [{"action": "drop", "dport": 23}]),
            (["acls", "edge"], [{"action": "drop", "dscp": 64}]),
            (["acls", "edge"], [{"action": "drop", "tcpFlags": "nak"}]),
            (["acls", "edge"], [{"action": "drop", "etherType": "ip"}]),
            (["protocolCopies"], ["lldp2"]),
            (["protocolCopies"], [{"trap": True}]),
            (["neighbours", "Vlan10"], {"10.0.0": "02:00:00:00:00:01"}),
            (["neighbours", "Vlan10"], {"10.0.0.2": "02:00"}),
            (["routes", "default"], {"10.0.0.0": "10.0.0.1"}),
            (["routes", "default"], {"10.0.0.0/33": "10.0.0.1"}),
            (["routes", "default"], {"10.0.0.0/8": []}),
            (["routes", "default"], {"10.0.0.0/8": "nowhere"}),
            (["routes", "default"], {"10.0.0.0/8": ["drop"]}),
            (["fdb", "10"], {"02:00": "Ethernet1"}),
            (["fdb", "10"], {"02:00:00:00:00:01": "port 1"}),
            (["fdb", "10-20"], {}),
        ):
            with self.subTest(path=path, member=member):
                value = inserted(load(ROOT / "examples" / "leaf.json"), path, member)
                self.assertNotEqual(self.problems(value), [])

    def testAFileWithoutInterfacesIsRefused(self):
        self.assertNotEqual(self.problems({"vlans": {}}), [])


class MakeLeafTest(unittest.TestCase):
    def testTheLeafIsWhatItsScriptWrites(self):
        with tempfile.TemporaryDirectory() as scratch:
            made = pathlib.Path(scratch) / "leaf.json"
            subprocess.run([ROOT / "examples" / "make-leaf", "--output", made], check=True)
            self.assertEqual(made.read_text(), (ROOT / "examples" / "leaf.json").read_text())


if __name__ == "__main__":
    unittest.main()

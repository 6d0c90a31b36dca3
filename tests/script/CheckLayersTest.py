"""script/check-layers, run on small made-up trees."""

import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "script" / "check-layers"


class CheckLayersTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name)
        for header in (
            "platform/VynExport.h",
            "platform/Vanta/Node.h",
            "platform/Kel/Dir.h",
            "platform/VynSystem/Status.h",
            "platform/Fen/Vlan.h",
            "sdkseam/Chip.h",
            "softchip/SoftChip.h",
            "scriptchip/ScriptChip.h",
            "VynPacketTracer/VynPtSm.h",
            "agent/Agent.h",
        ):
            self.write(header, "#pragma once\n")

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def check(self):
        run = subprocess.run(
            [SCRIPT, "--root", self.root], stdout=subprocess.PIPE, text=True, check=False
        )
        self.assertEqual(run.returncode, 1 if run.stdout else 0)
        return run.stdout

    def breachOf(self, name, line):
        """The one message that `line`, as second line of file `name`, causes."""
        self.write(name, f"// a file\n{line}\n")
        out = self.check()
        self.assertEqual(out.count("\n"), 1, out)
        place, _, message = out.rstrip("\n").partition(": ")
        self.assertEqual(place, f"{name}:2")
        return message

    def testIncludesThatGoDownAreNoBreach(self):
        self.write("platform/Kel/Dir.cpp", '#include "Kel/Dir.h"\n#include "Vanta/Node.h"\n')
        self.write("platform/Vanta/Node.cpp", '#include "VynExport.h"\n#include <vector>\n')
        self.write("softchip/SoftChip.cpp", '#include "sdkseam/Chip.h"\n#include <sys/socket.h>\n')
        self.write("agent/Agent.cpp", '#include "softchip/SoftChip.h"\n#include <pcap/pcap.h>\n')
        self.assertEqual(self.check(), "")

    def testFoldersOfOneRowMayIncludeEachOther(self):
        self.write("platform/Fen/Vlan.cpp", '#include "VynSystem/Status.h"\n')
        self.assertEqual(self.check(), "")

    def testAPlatformFolderMustNotIncludeOneAboveIt(self):
        message = self.breachOf("platform/Vanta/Node.cpp", '#include "Kel/Dir.h"')
        self.assertIn("platform/Vanta must not include platform/Kel/", message)

    def testAPlatformFolderWithoutAPlaceInTheOrderIsNamed(self):
        message = self.breachOf("platform/Extra/New.cpp", '#include "Kel/Dir.h"')
        self.assertIn("platform/Extra/ has no place in the order", message)

    def testThePlatformMustNotIncludeThePlugIn(self):
        message = self.breachOf("platform/Kel/Dir.cpp", '#include "VynPacketTracer/VynPtSm.h"')
        self.assertIn("platform/ must not include VynPacketTracer/", message)

    def testThePlugInMustNotIncludeTheSeam(self):
        message = self.breachOf("VynPacketTracer/VynPtSm.cpp", '#include "sdkseam/Chip.h"')
        self.assertIn("VynPacketTracer/ must not include sdkseam/", message)

    def testTheChipsMustNotIncludeEachOther(self):
        message = self.breachOf("softchip/A.cpp", '#include "scriptchip/ScriptChip.h"')
        self.assertIn("softchip/ must not include scriptchip/", message)
        (self.root / "softchip/A.cpp").unlink()
        message = self.breachOf("scriptchip/A.cpp", '#include "softchip/SoftChip.h"')
        self.assertIn("scriptchip/ must not include softchip/", message)

    def testLowerLayersStandOnNoLibrary(self):
        message = self.breachOf("softchip/A.cpp", "#include <nlohmann/json.hpp>")
        self.assertIn("<nlohmann/json.hpp> is none of them", message)

    def testAHeaderIsNamedByItsPath(self):
        message = self.breachOf("softchip/A.cpp", '#include "SoftChip.h"')
        self.assertIn('"SoftChip.h" is no header of this project', message)

    def testAHeaderOfThisProjectStandsInQuotes(self):
        message = self.breachOf("agent/A.cpp", "#include <Vanta/Node.h>")
        self.assertIn("stands in quotes", message)

    def testHeadersThatIncludeEachOtherAreABreach(self):
        self.write("platform/Fen/Vlan.h", '#include "VynSystem/Status.h"\n')
        self.write("platform/VynSystem/Status.h", '#include "Fen/Vlan.h"\n')
        self.assertIn("headers include each other", self.check())


if __name__ == "__main__":
    unittest.main()

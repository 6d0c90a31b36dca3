"""The list of mutants that nobody can see, docs/mutants.md.

Under a heading with the file's name stand reasons, each a paragraph or more followed by the mutants
that it is about:

    - `the line as it stands in the file`: what the mutant changes
"""

import collections
import re

HEADING = re.compile(r"^## (?P<file>\S+)$")
ENTRY = re.compile(r"^- `(?P<text>.*?)`: (?P<change>.*)$")


class Listed:
    def __init__(self, text):
        self.entries = collections.Counter()
        file, reason = None, False
        for number, line in enumerate(text.split("\n"), start=1):
            heading, entry = HEADING.match(line), ENTRY.match(line)
            if heading:
                file, reason = heading["file"], False
            elif entry and file:
                if not reason:
                    raise SystemExit(f"docs/mutants.md:{number}: expected a reason before the mutant")
                self.entries[(file, entry["text"], entry["change"])] += 1
            elif line.strip():
                reason = True

    def take(self, mutant):
        """Whether the mutant is listed; an entry counts for one mutant."""
        if self.entries[mutant.key()] > 0:
            self.entries[mutant.key()] -= 1
            return True
        return False

    def rest(self, files):
        """Entries of these files that no survivor has taken."""
        return [key for key, count in self.entries.items() for _ in range(count) if key[0] in files]


def entryOf(mutant):
    return f"- `{mutant.text}`: {mutant.change}"

"""The mutants that nobody can see, and why: unseen.toml beside this file, whose top says what stands there."""

import collections
import json
import tomllib

NAME = "script/mutation/unseen.toml"


class Listed:
    def __init__(self, text):
        """Errors: SystemExit, with the number of the table that is wrong and what it must have."""
        try:
            tables = tomllib.loads(text).get("unseen", [])
        except tomllib.TOMLDecodeError as error:
            raise SystemExit(f"{NAME}: {error}") from error
        self.entries = collections.Counter()
        for number, table in enumerate(tables, start=1):
            for line, change in mutantsOf(number, table):
                self.entries[(table["file"], line, change)] += 1

    def take(self, mutant):
        """Whether the mutant is listed; an entry counts for one mutant."""
        if self.entries[mutant.key()] > 0:
            self.entries[mutant.key()] -= 1
            return True
        return False

    def rest(self, files):
        """Entries of these files that no survivor has taken."""
        return [key for key, count in self.entries.items() for _ in range(count) if key[0] in files]


def mutantsOf(number, table):
    for member in ("file", "why"):
        if not isinstance(table.get(member), str) or not table[member].strip():
            raise SystemExit(f"{NAME}: [[unseen]] {number}: expected a text \"{member}\"")
    pairs = table.get("mutants")
    isList = isinstance(pairs, list) and pairs
    if not isList or any([type(word) for word in pair] != [str, str] for pair in pairs):
        raise SystemExit(f"{NAME}: [[unseen]] {number}: expected \"mutants\", a list of [line, change]")
    return pairs


def quoted(text):
    return f"'{text}'" if "'" not in text else json.dumps(text, ensure_ascii=False)


def entryOf(line, change):
    """A mutant as it stands in a list."""
    return f"    [{quoted(line)}, {quoted(change)}],"

"""What is said at the end of a run, and whether it was good enough."""

import collections

from mutation import survivors

PLUGIN = "VynPacketTracer/"
FLOOR = 0.95  # of the plug-in's mutants that must be killed


def totals(found, names, mutants, killed, listed):
    count = collections.Counter(mutant.file for mutant in mutants)
    dead = collections.Counter(mutant.file for mutant in mutants if mutant in killed)
    known = collections.Counter(mutant.file for mutant in listed)
    yield " ".join(f"{word:>8}" for word in ("mutants", "killed", "listed", "open", "refused", "fixed"))
    for name in names:
        refused = sum(mutant.dropped for mutant in found[name].mutants)
        still = count[name] - dead[name] - known[name]
        row = (count[name], dead[name], known[name], still, refused, found[name].skipped)
        if any(row):
            yield " ".join(f"{number:8}" for number in row) + f"  {name}"


def report(found, names, mutants, killed, unseen, again, say):
    """Says it; returns the exit status. `unseen` is the text of the list of survivors."""
    listed = survivors.Listed(unseen)
    alive = [mutant for mutant in mutants if mutant not in killed]
    known = [mutant for mutant in alive if listed.take(mutant)]
    unknown = [mutant for mutant in alive if mutant not in known]
    say("")
    for line in totals(found, names, mutants, killed, known):
        say(line)
    if unknown:
        say(f"\nsurvivors that {survivors.NAME} does not list:")
        for mutant in unknown:
            say(f"{mutant.place()}\n{survivors.entryOf(mutant.text, mutant.change)}")
    for file, line, change in [] if again else listed.rest(names):
        say(f"\nlisted, but no survivor: {file}\n{survivors.entryOf(line, change)}")
    share = shareKilled(mutants, killed, say)
    return 1 if unknown or (share < FLOOR and not again) else 0


def shareKilled(mutants, killed, say):
    plugin = [mutant for mutant in mutants if mutant.file.startswith(PLUGIN)]
    if not plugin:
        return 1
    share = sum(mutant in killed for mutant in plugin) / len(plugin)
    say(f"\nof the plug-in's {len(plugin)} mutants {share:.1%} are killed")
    return share

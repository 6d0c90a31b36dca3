"""Constants, which are declared in one place and mutated in others."""

from mutation.schemata import Constant


class Constants:
    """Constants that can only be mutated where they are mentioned, in whatever file that is."""

    def __init__(self):
        self.declared, self.mentions = {}, []

    @staticmethod
    def key(cursor):
        return (str(cursor.location.file), cursor.location.offset)

    def edits(self):
        """(file, edit) for each mention of a constant that was declared in a mutated source."""
        for name, now, start, end, key in self.mentions:
            if key in self.declared:
                mutant, changed = self.declared[key]
                text = changed.replace("\0", now)
                yield name, Constant(start, end, mutant, text)

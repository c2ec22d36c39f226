"""The files of one size: a pair, and fresh copies of what a command changes. A with statement removes them."""
import os
import shutil
import subprocess

SCHEMA_FILE = "V3.site.at"  # the one that the generated configurations include


class Workspace:
    def __init__(self, directory, entries, generate):
        self._directory = directory
        self.entries = entries
        os.makedirs(directory, exist_ok=True)
        self.old = self.path("old.conf")
        self.new = self.path("new.conf")
        self.target = self.path("target/server.conf")
        self.state = self.path("state")
        self.schema_source = self.path("schemas")
        self.schema_target = self.path("target/etc")
        subprocess.run([generate, str(entries), "1", self.old, self.new], check=True)
        os.makedirs(self.path("schemas/etc"), exist_ok=True)
        with open(self.path(f"schemas/etc/{SCHEMA_FILE}"), "w", encoding="ascii") as file:
            file.write("# a site's attribute types\n")

    def path(self, name):
        return os.path.join(self._directory, name)

    def pair_size(self):
        return os.path.getsize(self.old) + os.path.getsize(self.new)

    def fresh_target(self):
        """The new configuration where a server would have it, nothing beside it, and nothing noted about it."""
        for directory in (os.path.dirname(self.target), self.state):
            shutil.rmtree(directory, ignore_errors=True)
            os.makedirs(directory)
        os.makedirs(self.schema_target)
        shutil.copyfile(self.new, self.target)

    def settle(self):
        """Brings to the disk what is still to be written, so that it does not fall to the next program's fsync."""
        os.sync()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self._directory)

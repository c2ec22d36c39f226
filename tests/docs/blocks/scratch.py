"""A directory like the one in which a reader tries a page out: the examples, and cfgmig on the PATH.

scripts/cfgmig, which builds the tool and runs it, runs the tool that was built here. Whatever else a page uses of the
project has to be said with "not run".
"""
import os
import shutil
import subprocess
import tempfile

from comparing import SHOWN_DIRECTORY

SECONDS = 240


class Scratch:
    def __init__(self, settings):
        self.settings = settings
        self.top = tempfile.mkdtemp(prefix="docs-", dir="/tmp")
        self.path = os.path.join(self.top, "move")
        os.makedirs(os.path.join(self.path, "scripts"))
        shutil.copytree(os.path.join(settings.source, "examples"), os.path.join(self.path, "examples"), symlinks=True)
        programs = os.path.join(self.top, "bin")
        os.mkdir(programs)
        os.symlink(settings.tool, os.path.join(programs, "cfgmig"))
        os.symlink(settings.tool, os.path.join(self.path, "scripts", "cfgmig"))
        self.environment = {
            "PATH": programs + os.pathsep + os.environ["PATH"],
            "HOME": os.path.join(self.top, "home"),
            "LC_ALL": "C.UTF-8",
            "CFGMIG_STATE_DIRECTORY": os.path.join(self.top, "state"),
            "PREFIX": settings.prefix,
            "LD_LIBRARY_PATH": os.path.join(settings.prefix, "lib"),
            "CXX": settings.compiler,
            "CXXFLAGS": settings.flags,
            "LDFLAGS": settings.flags,
            # The tool's own tests look for leaks; the library leaves the array blocks of value lists to their owner.
            "ASAN_OPTIONS": "detect_leaks=0",
        }

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.top)

    def shown(self, text):
        return text.replace(self.path, SHOWN_DIRECTORY).replace(self.settings.prefix, "PREFIX")

    def write(self, name, text):
        path = os.path.normpath(os.path.join(self.path, name))
        if not path.startswith(self.path + os.sep):
            raise ValueError(f"{name} is outside")
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def run(self, script, errors_too=True):
        """Runs a script of bash; its exit status and what it wrote, as a reader would see it."""
        done = subprocess.run(["bash", "-c", script], cwd=self.path, env=self.environment, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=SECONDS,
                              stderr=subprocess.STDOUT if errors_too else subprocess.PIPE)
        return done.returncode, self.shown(done.stdout.decode("utf-8", "backslashreplace"))

"""How fast `spacemintctl browse` is, beside ncdu in the same run: the time to the first screen, the time from a key to the
screen that answers it, and the memory.

usage: browse.py SPACEMINTCTL [FILES]

Makes FILES files (1,000,000 by default) in a temporary folder, one folder of 5,000 rows among them. The first screen is
that of a stored scan with about 100,000 nodes, for ncdu of an export of the same scan.
"""

import fcntl
import os
import pathlib
import pty
import select
import statistics
import struct
import subprocess
import sys
import tempfile
import termios
import time


class Session:
    """A program on a terminal of 100 columns and 30 lines."""

    def __init__(self, command, environment):
        self.start = time.perf_counter()
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.execvpe(command[0], command, {**os.environ, **environment, "TERM": "xterm-256color", "LC_ALL": "C.UTF-8"})
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 30, 100, 0, 0))

    def wait(self, text, limit=600):
        """The seconds until the program has written the text."""
        seen = b""
        while text not in seen:
            if not select.select([self.terminal], [], [], limit)[0]:
                raise SystemExit(f"no {text!r} within {limit} s")
            seen += os.read(self.terminal, 65_536)
        return time.perf_counter() - self.start

    def quiet(self, seconds=0.4):
        while select.select([self.terminal], [], [], seconds)[0]:
            os.read(self.terminal, 65_536)

    def answer(self, key):
        """The milliseconds from a key to the first byte of the new screen."""
        start = time.perf_counter()
        os.write(self.terminal, key)
        select.select([self.terminal], [], [], 10)
        taken = time.perf_counter() - start
        self.quiet(0.02)
        return taken * 1000

    def memory(self):
        """The most memory that it had, in MB."""
        status = pathlib.Path(f"/proc/{self.process}/status").read_text()
        return int(status.split("VmHWM:")[1].split()[0]) * 1024 / 1e6

    def end(self):
        os.kill(self.process, 15)
        os.close(self.terminal)
        os.waitpid(self.process, 0)


def make_tree(root, files):
    wide = root / "wide"
    wide.mkdir(parents=True)
    for i in range(5_000):
        (wide / f"row{i}").touch()
    for folder in range((files - 5_000) // 50):
        path = root / f"a{folder % 40}" / f"b{folder % 1000}" / f"c{folder}"
        path.mkdir(parents=True)
        for i in range(50):
            (path / f"f{i}").touch()


def show(what, ours, theirs, unit):
    print(f"{what:<58} {ours:9.1f} {theirs:9.1f} {unit:<3} {ours / theirs:6.2f}")


def main(program, files=1_000_000):
    with tempfile.TemporaryDirectory() as place:
        home, tree, small = (pathlib.Path(place) / name for name in ("home", "tree", "small"))
        home.mkdir()
        environment = {"HOME": str(home), "XDG_RUNTIME_DIR": str(home)}
        run = lambda *arguments: subprocess.run([program, *arguments], env={**os.environ, **environment}, check=True,
                                                stdout=subprocess.DEVNULL)
        make_tree(tree, int(files))
        make_tree(small, 98_000)
        print(f"{'':<58} {'browse':>9} {'ncdu':>9} {'':<3} {'ratio':>6}")

        export = str(home / "export.json")
        run("scan", str(small), "--min-size", "0", "--quiet", "--top", "0", "--export", export)
        nodes = pathlib.Path(export).read_text().count('"name":')
        first, theirs = [], []
        for _ in range(9):
            session = Session([program, "browse", str(small)], environment)
            first.append(session.wait(b"? keys") * 1000)
            session.end()
            session = Session(["ncdu", "-f", export], environment)
            theirs.append(session.wait(b"Total disk usage") * 1000)
            session.end()
        show(f"first screen of a stored scan of {nodes:,} nodes, median", statistics.median(first), statistics.median(theirs), "ms")
        show("the same, slowest of nine", max(first), max(theirs), "ms")

        ours = Session([program, "browse", str(tree)], environment)
        ours.wait(b"just now")
        other = Session(["ncdu", "-x", str(tree)], environment)
        other.wait(b"Total disk usage")
        ours.quiet(), other.quiet()
        show(f"memory after a scan of {int(files):,} files, peak", ours.memory(), other.memory(), "MB")
        ours.end(), other.end()

        wide = str(tree / "wide")
        ours, other = Session([program, "browse", wide], environment), Session(["ncdu", "-x", wide], environment)
        ours.wait(b"just now"), other.wait(b"Total disk usage")
        for name, key in (("down", b"j"), ("order by name, and back", b"n")):
            for session in (ours, other):
                session.quiet()
            answers = [[session.answer(key) for _ in range(60)] for session in (ours, other)]
            show(f"\"{name}\" at 5,000 rows, median", *(statistics.median(each) for each in answers), "ms")
            show(f"\"{name}\" at 5,000 rows, slowest of 60", *(max(each) for each in answers), "ms")
        ours.end(), other.end()


main(*sys.argv[1:])

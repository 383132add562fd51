"""Checks if the program's memory grows over half an hour on a virtual screen. Opens and closes the panel five hundred
times; every minute makes a scan and a clean-up, empties the Trash, and keeps the panel hidden until the interface is
released. Plots memory, descriptors and threads over time.

usage: soak.py SPACEMINT PLOT.svg [MINUTES]"""

import os
import pathlib
import statistics
import subprocess
import sys
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "tests/endtoend/desktop"))
from application import Application  # noqa: E402
from session import Session, wait_until  # noqa: E402

SPACEMINT, PLOT = sys.argv[1:3]
MINUTES = int(sys.argv[3]) if len(sys.argv) > 3 else 30
OPENED_A_MINUTE = 17
SETTINGS = {"hasStarted": True, "warningThresholdGB": 1, "scope": "home"}

DRAWING = """
set terminal svg size 900,420 font 'sans,12' background '#ffffff'
set xlabel 'minutes'
set ylabel 'MB'
set y2label 'descriptors, threads'
set yrange [0:*]
set y2range [0:*]
set ytics nomirror
set y2tics
set key outside bottom horizontal
plot '-' with lines lc rgb '#1a7f5a' title 'resident', \
     '-' with lines lc rgb '#7ab8f5' title 'of that, its own', \
     '-' axes x1y2 with lines lc rgb '#d9822b' title 'descriptors', \
     '-' axes x1y2 with lines lc rgb '#8e6bbf' title 'threads'
"""


class Meter(threading.Thread):
    """Reads the program's memory, descriptors and threads every two seconds."""

    def __init__(self, pid):
        super().__init__(daemon=True)
        self.process = pathlib.Path(f"/proc/{pid}")
        self.samples = []  # minutes, MB resident, MB its own, descriptors, threads
        self.ended = threading.Event()

    def run(self):
        begin = time.monotonic()
        while not self.ended.wait(2):
            try:
                fields = dict(line.split(":") for line in (self.process / "status").read_text().splitlines())
                figures = [int(fields[name].split()[0]) for name in ("VmRSS", "RssAnon", "Threads")]
                descriptors = len(os.listdir(self.process / "fd"))
            except (OSError, KeyError):
                return  # the program has ended; the main thread will notice
            self.samples.append(((time.monotonic() - begin) / 60, figures[0] / 1000, figures[1] / 1000, descriptors,
                                 figures[2]))

    def draw(self, path):
        columns = ["".join(f"{sample[0]} {sample[column]}\n" for sample in self.samples) for column in range(1, 5)]
        pathlib.Path(path).parent.mkdir(parents=True, exist_ok=True)
        with open(path, "wb") as picture:
            subprocess.run(["gnuplot"], input=(DRAWING + "e\n".join(columns) + "e\n").encode(), stdout=picture,
                           check=True)

    def say(self):
        """Prints the median, minimum and maximum of each third of the time."""
        third = len(self.samples) // 3
        for name, column in (("MB resident", 1), ("MB its own", 2), ("descriptors", 3), ("threads", 4)):
            parts = [[sample[column] for sample in self.samples[i * third:(i + 1) * third]] for i in range(3)]
            print(f"{name:<14}" + "".join(f"{statistics.median(part):>10.1f} ({min(part):.1f} to {max(part):.1f})"
                                          for part in parts), flush=True)


class Soak:
    def __init__(self, session):
        self.home = session.home
        self.fill()
        self.app = Application(session, SPACEMINT, SETTINGS)
        self.app.start()
        self.app.wait_item()
        self.opened = self.scans = self.cleaned = 0

    def fill(self):
        """Creates letters, and a fake pip3 that empties its cache on "cache purge"."""
        for folder in range(400):
            (self.home / f"letters/{folder}").mkdir(parents=True)
            for letter in range(50):
                (self.home / f"letters/{folder}/{letter}").write_text("Dear Ann")
        program = self.home / ".local/bin/pip3"
        program.parent.mkdir(parents=True, exist_ok=True)
        program.write_text('#!/bin/sh\n[ "$*" = "cache purge" ] && rm -r "$HOME/.cache/pip/http"\n')
        program.chmod(0o755)

    @staticmethod
    def allocate(path, size):
        path.parent.mkdir(parents=True, exist_ok=True)
        with open(path, "wb") as file:
            os.posix_fallocate(file.fileno(), 0, size)

    def open(self):
        self.app.click_item_of_status_area()
        self.app.wait_shown()
        self.opened += 1

    def close(self):
        self.app.press("Escape")
        self.app.wait_hidden()

    def first_scan(self):
        self.open()
        self.app.click("Start first scan")
        self.app.wait_scanned()
        self.close()

    def scan(self):
        newest = self.newest_scan()
        self.app.click("Scan now", "push button")
        wait_until(lambda: self.newest_scan() != newest, "the scan", 120)
        self.app.find("Scan now", "push button")
        self.scans += 1

    def newest_scan(self):
        return max((path.name for path in (self.home / ".local/share/Spacemint/Snapshots").glob("*.json")), default="")

    def clean(self):
        cache = self.home / ".cache/pip/http"
        self.app.click("Developer")
        self.app.find_starting("pip cache")
        self.app.click("Clean up", "push button")
        self.app.find("Cancel", "push button")
        self.app.click_item(self.app.all("Clean up", "push button")[-1])
        wait_until(lambda: not cache.exists(), "the end of the clean-up")
        wait_until(lambda: not self.app.sees("Cancel", "push button"), "that the question goes")
        self.app.click("Overview")
        self.cleaned += 1

    def empty_trash(self):
        self.app.click("Empty Trash", "push button")
        self.app.find("Cancel", "push button")
        self.app.click_item(self.app.all("Empty Trash", "push button")[-1])
        wait_until(lambda: not (self.home / ".local/share/Trash/files/old").exists(), "the empty Trash")
        wait_until(lambda: not self.app.sees("Cancel", "push button"), "that the question goes")
        self.cleaned += 1

    def minute(self):
        end = time.monotonic() + 60
        self.allocate(self.home / ".cache/pip/http/wheel", 90_000_000)
        self.allocate(self.home / ".local/share/Trash/files/old", 1_100_000_000)
        info = self.home / ".local/share/Trash/info/old.trashinfo"
        info.parent.mkdir(exist_ok=True)
        info.write_text("[Trash Info]\nPath=old\nDeletionDate=2026-01-01T00:00:00\n")
        self.open()
        self.scan()
        self.clean()
        self.empty_trash()
        self.close()
        for _ in range(OPENED_A_MINUTE - 1):
            self.open()
            self.close()
        # The interface is released after half a minute hidden: wait for that even on a busy machine.
        time.sleep(max(end - time.monotonic(), 35))

    def run(self):
        self.first_scan()
        meter = Meter(self.app.process.pid)
        meter.start()
        try:
            end = time.monotonic() + MINUTES * 60
            while time.monotonic() < end or self.opened < MINUTES * OPENED_A_MINUTE - 10:
                self.minute()
        finally:
            meter.ended.set()
            meter.join()
            meter.draw(PLOT)
            print(f"opened {self.opened} times, {self.scans} scans, {self.cleaned} clean-ups", flush=True)
            meter.say()
        self.app.terminate()
        print(f"ended with {self.app.process.returncode}")


def main():
    session = Session()
    try:
        session.start_status_area()
        Soak(session).run()
    finally:
        session.end()


main()

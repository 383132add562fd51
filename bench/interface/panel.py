"""Measures how soon the status item and the panel are shown, and the memory and wake-ups of the hidden program. Runs
the real program on a virtual screen with a status area and operates it with the mouse.

usage: panel.py SPACEMINT EMPTY_WINDOW"""

import pathlib
import re
import statistics
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "tests/endtoend/desktop"))
from application import Application  # noqa: E402
from session import Session, wait_until  # noqa: E402

SPACEMINT, EMPTY_WINDOW = sys.argv[1:3]
SETTINGS = {"hasStarted": True, "warningThresholdGB": 1, "scope": "home"}
# Makes Qt Quick log each frame with the time since the machine started.
FRAMES = {"QT_LOGGING_RULES": "qt.scenegraph.time.renderloop=true",
          "QT_MESSAGE_PATTERN": "%{time boot} %{message}"}


def now():
    return time.clock_gettime(time.CLOCK_BOOTTIME) * 1000


def frames(session):
    lines = (session.folder / "spacemint.log").read_text().splitlines()
    times = [re.match(r" *([0-9.]+) .*rendered", line) for line in lines]
    return [1000 * float(found.group(1)) for found in times if found]


def frame_after(session, start):
    return wait_until(lambda: [t for t in frames(session) if t >= start], "a frame")[0] - start


def status(pid, field):
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith(field + ":"):
            return int(line.split()[1])
    return 0


def memory(pid):
    rollup = pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text()
    own = int(re.search(r"^Pss: +(\d+)", rollup, re.M).group(1))
    return f"{status(pid, 'VmRSS') / 1000:.1f} MB resident, {own / 1000:.1f} MB its share"


def wake_ups(pid):
    total = 0
    for thread in pathlib.Path(f"/proc/{pid}/task").iterdir():
        text = (thread / "status").read_text()
        total += sum(int(n) for n in re.findall(r"ctxt_switches:\s+(\d+)", text))
    return total


def say(what, figure):
    print(f"{what:<58}{figure}", flush=True)


def start(app, rounds=5):
    """Measures the time from the start of the process to the drawn status item, and from the first click to the first
    frame. The first round only fills caches and is not counted. The program of the last round keeps running."""
    times = []
    for left in reversed(range(rounds + 1)):
        begin = now()
        app.start(**FRAMES)
        wait_until(lambda: app.session.has_name(f"org.kde.StatusNotifierItem-{app.process.pid}-1"), "the item's name")
        named = now() - begin
        app.wait_item()
        shown = now() - begin
        time.sleep(1)
        if not left:
            say("memory before anything was shown", memory(app.process.pid))
        app.xdotool("mousemove", "--sync", *app.item_centre())
        times.append((named, shown, click(app)))
        if left:
            app.terminate()
            app.wait_no_item()
    named, shown, first = (statistics.median(column) for column in zip(*times[1:]))
    say("status item on the bus (400 ms)", f"{named:.0f} ms")
    say("status item drawn, seen in a picture of the screen", f"{shown:.0f} ms")
    say("panel's first frame after the first click (150 ms)", f"{first:.0f} ms")


def languages(app, rounds=15):
    """Compares the start in a language with the start in English, by turns."""
    times = {"en": [], "de": [], "ar": []}
    for turn in range(rounds):
        order = list(times.items())
        for language, taken in order[turn % 3:] + order[:turn % 3]:
            begin = now()
            app.start(LANGUAGE=language)
            # Asks without a pause, for the difference is a few milliseconds.
            while not app.session.has_name(f"org.kde.StatusNotifierItem-{app.process.pid}-1"):
                if now() - begin > 30_000:
                    raise TimeoutError("the item's name")
            taken.append(now() - begin)
            app.wait_item()
            app.terminate()
            app.wait_no_item()
    english = statistics.median(times["en"])
    for language in ("de", "ar"):
        more = statistics.median(times[language]) - english
        say(f"status item on the bus, in {language} after in English (5 ms)", f"{more:+.1f} ms of {english:.0f} ms")


def click(app):
    begin = now()
    app.xdotool("click", 1)
    return frame_after(app.session, begin)


def panel(app):
    times = []
    for _ in range(9):
        wait_until(app.is_shown, "the panel")
        app.press("Escape")
        app.wait_hidden()
        time.sleep(0.4)
        times.append(click(app))
    say("panel's first frame after the next ones (60 ms), median", f"{statistics.median(times):.0f} ms")
    wait_until(app.is_shown, "the panel")
    say("memory with the panel open", memory(app.process.pid))
    app.press("Escape")
    app.wait_hidden()


def main():
    session = Session()
    try:
        session.start_status_area()
        for i in range(20):
            (session.home / f"letter-{i}").write_text("Dear Ann")
        app = Application(session, SPACEMINT, SETTINGS)
        languages(app)
        start(app)
        panel(app)
        time.sleep(35)
        say("memory hidden for 35 s (70 MB)", memory(app.process.pid))
        before = wake_ups(app.process.pid)
        time.sleep(60)
        say("context switches of all threads in 60 s hidden", wake_ups(app.process.pid) - before)
        app.xdotool("mousemove", "--sync", *app.item_centre())
        say("panel's first frame after it was released", f"{click(app):.0f} ms")
        app.terminate()
        empty = session.start([EMPTY_WINDOW], stdout=subprocess.PIPE)
        empty.stdout.readline()
        say("floor: an empty window of Qt Quick", memory(empty.pid))
    finally:
        session.end()


main()

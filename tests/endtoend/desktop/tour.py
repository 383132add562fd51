"""The same walk through the program on every desktop: item, panel, menu, second start.

Desktops differ in how they are started and in how a program moves the pointer. What is on the screen is found by
comparing pictures, which works on each of them.

usage: tour.py DESKTOP PROGRAM FOLDER     as an ordinary user, on a session bus
"""

import json
import os
import pathlib
import signal
import subprocess
import sys
import time

WIDTH, HEIGHT = 1280, 800
SETTINGS = {"hasStarted": True, "warningThresholdGB": 1, "showFreeSpaceInMenuBar": True}
WATCHER = "org.kde.StatusNotifierWatcher"


class Screen:
    """A picture of the screen, three bytes a pixel."""

    def __init__(self, file):
        command = ["convert", str(file), "-depth", "8", "rgb:-"]
        self.pixels = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout

    def row(self, y, left=0, right=WIDTH):
        return self.pixels[(y * WIDTH + left) * 3:(y * WIDTH + right) * 3]

    def changes(self, other):
        """Boxes (left, top, right, bottom) of what differs, the largest first. What is closer than 24 is one."""
        cell = 8
        cells = set()
        for y in range(HEIGHT):
            if self.row(y) == other.row(y):
                continue
            for x in range(0, WIDTH, cell):
                if (x // cell, y // cell) not in cells and self.row(y, x, x + cell) != other.row(y, x, x + cell):
                    cells.add((x // cell, y // cell))
        boxes = []
        while cells:
            heap, found = [cells.pop()], []
            while heap:
                x, y = heap.pop()
                found.append((x, y))
                near = {(x + i, y + j) for i in range(-3, 4) for j in range(-3, 4)} & cells
                cells -= near
                heap += near
            xs, ys = [x for x, _ in found], [y for _, y in found]
            boxes.append((min(xs) * cell, min(ys) * cell, (max(xs) + 1) * cell, (max(ys) + 1) * cell))
        return sorted(boxes, key=lambda box: -(box[2] - box[0]) * (box[3] - box[1]))


class X11:
    """Pointer, keyboard and pictures of an X server."""

    def __init__(self):
        reading, writing = os.pipe()
        start("Xvfb", "-displayfd", str(writing), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-nolisten", "tcp", "+extension",
              "GLX", pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as answer:
            os.environ["DISPLAY"] = ":" + answer.readline().strip()

    def picture(self, file):
        run("import", "-silent", "-window", "root", str(file))

    def point(self, x, y):
        run("xdotool", "mousemove", "--sync", str(x), str(y))
        run("xdotool", "mousemove_relative", "--sync", "1", "0")

    def press(self, button):
        run("xdotool", "click", str(button))

    def key(self, name):
        run("xdotool", "key", name)


class Wlroots:
    """The same of a compositor that has the protocols of wlroots."""

    buttons = {1: "left", 2: "middle", 3: "right"}

    def __init__(self):
        os.environ.update(WLR_BACKENDS="headless", WLR_RENDERER="pixman", WLR_LIBINPUT_NO_DEVICES="1",
                          XDG_SESSION_TYPE="wayland")

    def picture(self, file):
        run("grim", str(file))

    def point(self, x, y):
        # Relative moves only: first into the corner.
        run("wlrctl", "pointer", "move", "-4000", "-4000")
        run("wlrctl", "pointer", "move", str(x), str(y))

    def press(self, button):
        run("wlrctl", "pointer", "click", self.buttons[button])

    def key(self, name):
        run("wtype", "-k", name)


def run(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, **options).stdout


started = []


def start(*command, **options):
    with open(pathlib.Path.home() / (pathlib.Path(command[0]).name + ".log"), "ab") as log:
        process = subprocess.Popen(command, stdout=log, stderr=log, stdin=subprocess.DEVNULL, start_new_session=True,
                                   **options)
    started.append(process)
    return process


def has_name(name):
    answer = subprocess.run(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                             "org.freedesktop.DBus.NameHasOwner", f"string:{name}"], stdout=subprocess.PIPE, check=False)
    return b"true" in answer.stdout


def wait(condition, what, limit=60):
    end = time.monotonic() + limit
    while not (answer := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"waited {limit} s in vain: {what}")
        time.sleep(0.1)
    return answer


def write(path, text):
    file = pathlib.Path.home() / path
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_text(text)


def environment(**variables):
    os.environ.update(variables)
    run("dbus-update-activation-environment", "--all")


# How each desktop is started. Answers what moves its pointer.

def xfce():
    screen = X11()
    environment(XDG_CURRENT_DESKTOP="XFCE")
    panel = (pathlib.Path(__file__).parent / "xfce4-panel.xml").read_text().format(size=30, icon=22)
    write(".config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", panel)
    start("openbox")
    start("xfce4-panel", "--disable-wm-check")
    return screen


def lxqt():
    screen = X11()
    environment(XDG_CURRENT_DESKTOP="LXQt")
    write(".config/lxqt/panel.conf", "[General]\n__userfile__=true\npanels=panel1\n\n[panel1]\nposition=Bottom\n"
          "plugins=mainmenu,taskbar,statusnotifier\n[mainmenu]\ntype=mainmenu\n[taskbar]\ntype=taskbar\n"
          "[statusnotifier]\ntype=statusnotifier\n")
    start("openbox")
    start("lxqt-panel")
    return screen


def mate():
    screen = X11()
    environment(XDG_CURRENT_DESKTOP="MATE")
    start("openbox")
    start("mate-panel")
    return screen


def cinnamon():
    screen = X11()
    environment(XDG_CURRENT_DESKTOP="X-Cinnamon", LIBGL_ALWAYS_SOFTWARE="1", CINNAMON_SOFTWARE_RENDERING="1")
    run("gsettings", "set", "org.cinnamon.desktop.interface", "enable-animations", "false")
    start("cinnamon", "--sm-disable")
    return screen


def plasma():
    screen = X11()
    environment(XDG_CURRENT_DESKTOP="KDE", KDE_FULL_SESSION="true", KDE_SESSION_VERSION="6", DESKTOP_SESSION="plasma",
                XDG_SESSION_TYPE="x11", QT_QUICK_BACKEND="software", LIBGL_ALWAYS_SOFTWARE="1", XDG_MENU_PREFIX="plasma-")
    start("kwin_x11", "--replace")
    start("kded6")
    start("plasmashell")
    return screen


def gnome():
    screen = X11()
    os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = run("dbus-daemon", "--session", "--fork", "--print-address=1").decode().strip()
    environment(XDG_CURRENT_DESKTOP="GNOME", XDG_SESSION_DESKTOP="gnome", DESKTOP_SESSION="gnome", XDG_SESSION_TYPE="x11",
                LIBGL_ALWAYS_SOFTWARE="1", XDG_DATA_DIRS="/usr/local/share:/usr/share")
    for schema, key, value in (("shell", "welcome-dialog-last-shown-version", "99"),
                               ("desktop.interface", "enable-animations", "false"),
                               ("shell", "enabled-extensions", "['ubuntu-appindicators@ubuntu.com']")):
        run("gsettings", "set", f"org.gnome.{schema}", key, value)
    start("gnome-shell", "--x11", "--sm-disable")
    return screen


def wlroots(name, arguments=(), position="top"):
    screen = Wlroots()
    environment(XDG_CURRENT_DESKTOP=f"{name}:wlroots")
    write(".config/waybar/config", json.dumps({"layer": "top", "position": position, "height": 30,
                                               "modules-right": ["tray"], "tray": {"spacing": 10}}))
    start(name, *arguments)
    runtime = pathlib.Path(os.environ["XDG_RUNTIME_DIR"])
    socket = wait(lambda: sorted(path for path in runtime.glob("wayland-*") if path.suffix != ".lock"), "the compositor")
    os.environ["WAYLAND_DISPLAY"] = socket[-1].name
    start("waybar")
    return screen


def labwc():
    return wlroots("labwc")


def sway():
    write(".config/sway/config", f"xwayland disable\noutput * resolution {WIDTH}x{HEIGHT}\n")
    return wlroots("sway")


DESKTOPS = {function.__name__: function for function in (xfce, lxqt, mate, cinnamon, plasma, gnome, labwc, sway)}


class Tour:
    def __init__(self, desktop, program, folder):
        self.program = program
        self.folder = folder
        self.name = desktop
        self.said = {}
        self.settings = pathlib.Path.home() / ".config/spacemint/app.spacemint.Spacemint.json"
        self.settings.parent.mkdir(parents=True, exist_ok=True)
        self.settings.write_text(json.dumps(SETTINGS))
        (pathlib.Path.home() / "letter").write_text("Dear Ann")
        self.screen = DESKTOPS[desktop]()
        # GNOME's status area opens the menu on one click.
        self.clicks = 2 if desktop == "gnome" else 1

    def look(self, name):
        file = self.folder / f"{self.name}-{name}.png"
        self.screen.picture(file)
        return Screen(file)

    def resting(self, name, limit=30):
        """The screen as soon as it has stopped changing."""
        end = time.monotonic() + limit
        last = self.look(name)
        while time.monotonic() < end:
            time.sleep(0.7)
            now = self.look(name)
            if now.pixels == last.pixels:
                return now
            last = now
        return last

    def window(self, screen):
        """The box of the panel or the window; nothing where there is none."""
        return next((box for box in screen.changes(self.empty) if box[2] - box[0] >= 380 and box[3] - box[1] >= 450), None)

    def wait_window(self, name):
        box = wait(lambda: self.window(self.look(name)), "the panel or the window")
        self.resting(name)
        return box

    def wait_none(self, name):
        """Whether the panel goes."""
        end = time.monotonic() + 5
        while time.monotonic() < end:
            if not self.window(self.look(name)):
                return True
        return False

    def click(self, point, button=1, count=1):
        time.sleep(0.5)  # within a quarter of a second the program takes two clicks for one
        self.screen.point(*point)
        time.sleep(0.3)
        for _ in range(count):
            self.screen.press(button)

    def click_item(self):
        self.click(self.item, count=self.clicks)

    def note(self, what, value):
        self.said[what] = value
        print(f"{self.name}: {what}: {value}", flush=True)

    def run(self):
        wait(lambda: has_name(WATCHER), "the status area", 120)
        self.screen.point(WIDTH // 3, HEIGHT // 2)
        before = self.resting("before", 60)
        program = start(self.program)
        wait(lambda: has_name(f"org.kde.StatusNotifierItem-{program.pid}-1"), "the item on the bus")
        time.sleep(3)
        self.empty = self.resting("item")
        small = [box for box in self.empty.changes(before) if box[2] - box[0] <= 120 and box[3] - box[1] <= 64]
        if not small:
            raise AssertionError("the item is not seen")
        left, top, right, bottom = min(small, key=lambda box: min(box[1], HEIGHT - box[3]))
        self.item = ((left + right) // 2, (top + bottom) // 2)
        self.note("item", f"at {self.item}")
        self.click_item()
        self.note("panel", self.wait_window("panel"))
        self.screen.key("Escape")
        self.note("Escape closes", self.wait_none("escape"))
        self.click_item()
        self.wait_window("again")
        self.click_item()
        self.note("a second click closes", self.wait_none("second"))
        self.click_item()
        self.wait_window("again")
        self.click((WIDTH // 5, HEIGHT // 2))
        self.note("a click beside it closes", self.wait_none("beside"))
        self.click(self.item, button=3)
        menu = self.resting("menu", 5).changes(self.empty)
        self.note("menu", menu[0] if menu else "none")
        self.screen.key("Escape")
        time.sleep(1)
        subprocess.run([self.program, "--settings"], check=True, timeout=30)
        self.note("settings from a launcher", self.wait_window("settings"))
        program.send_signal(signal.SIGTERM)
        self.note("exit code", program.wait(30))
        log = (pathlib.Path.home() / (pathlib.Path(self.program).name + ".log")).read_text()
        self.note("written to standard error", log.strip() or "nothing")


def end():
    for process in reversed(started):
        if process.poll() is None:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()


if __name__ == "__main__":
    tour = None
    try:
        tour = Tour(sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]))
        tour.run()
    except Exception as failure:
        if tour:
            tour.look("failed")
        print(f"{sys.argv[1]}: FAILED: {failure}", flush=True)
        sys.exit(1)
    finally:
        end()

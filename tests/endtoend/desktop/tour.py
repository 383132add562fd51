"""The same walk through the program on every desktop: item, panel, menu, second start.

Desktops differ in how they are started and in how a program moves the pointer. What is on the screen is found by
comparing pictures, which works on each of them.

It goes through all steps and says what it saw. It fails where that is not what is expected of the desktop.

usage: tour.py DESKTOP SPACEMINT SPACEMINTCTL FOLDER

The pictures come into FOLDER. Root becomes "nobody", because compositors refuse root.
"""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SETTINGS = {"hasStarted": True, "warningThresholdGB": 1, "showFreeSpaceInMenuBar": True}
WATCHER = "org.kde.StatusNotifierWatcher"


class Screen:
    """A picture of the screen, three bytes a pixel."""

    def __init__(self, file):
        header, _, self.pixels = run("convert", str(file), "-depth", "8", "ppm:-").partition(b"\n255\n")
        self.width, self.height = map(int, header.split()[1:])

    def row(self, y, left=0, right=None):
        right = self.width if right is None else right
        return self.pixels[(y * self.width + left) * 3:(y * self.width + right) * 3]

    def changes(self, other):
        """Boxes (left, top, right, bottom) of what differs, the largest first. What is closer than 24 is one."""
        cell = 8
        cells = set()
        for y in range(self.height):
            if self.row(y) == other.row(y):
                continue
            for x in range(0, self.width, cell):
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


class Server:
    """An X server, in which the desktop runs: its pointer, its keyboard, and pictures of it."""

    def __init__(self):
        reading, writing = os.pipe()
        start("Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x800x24", "-noreset", "-nolisten", "tcp",
              "+extension", "GLX", pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as answer:
            os.environ["DISPLAY"] = ":" + answer.readline().strip()
        self.environment = dict(os.environ)

    def run(self, *command):
        return run(*map(str, command), env=self.environment)

    def picture(self, file):
        self.run("import", "-silent", "-window", "root", file)

    def point(self, x, y):
        self.run("xdotool", "mousemove", "--sync", x, y)
        self.run("xdotool", "mousemove_relative", "--sync", 1, 0)

    def press(self, button):
        self.run("xdotool", "click", button)

    def key(self, name):
        self.run("xdotool", "key", name)


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
    screen = Server()
    environment(XDG_CURRENT_DESKTOP="XFCE")
    panel = (pathlib.Path(__file__).parent / "xfce4-panel.xml").read_text().format(size=30, icon=22)
    write(".config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", panel)
    start("openbox")
    start("xfce4-panel", "--disable-wm-check")
    return screen


def lxqt():
    screen = Server()
    environment(XDG_CURRENT_DESKTOP="LXQt")
    write(".config/lxqt/panel.conf", "[General]\n__userfile__=true\npanels=panel1\n\n[panel1]\nposition=Bottom\n"
          "plugins=mainmenu,taskbar,statusnotifier\n[mainmenu]\ntype=mainmenu\n[taskbar]\ntype=taskbar\n"
          "[statusnotifier]\ntype=statusnotifier\n")
    start("openbox")
    start("lxqt-panel")
    return screen


def mate():
    screen = Server()
    environment(XDG_CURRENT_DESKTOP="MATE")
    start("openbox")
    start("mate-panel")
    return screen


def cinnamon():
    screen = Server()
    environment(XDG_CURRENT_DESKTOP="X-Cinnamon", XDG_SESSION_TYPE="x11", LIBGL_ALWAYS_SOFTWARE="1",
                CINNAMON_SOFTWARE_RENDERING="1")
    run("gsettings", "set", "org.cinnamon.desktop.interface", "enable-animations", "false")
    start("cinnamon", "--sm-disable")
    start("/usr/lib/x86_64-linux-gnu/xapps/xapp-sn-watcher")
    return screen


def plasma():
    screen = Server()
    environment(XDG_CURRENT_DESKTOP="KDE", KDE_FULL_SESSION="true", KDE_SESSION_VERSION="6", DESKTOP_SESSION="plasma",
                XDG_SESSION_TYPE="x11", QT_QUICK_BACKEND="software", LIBGL_ALWAYS_SOFTWARE="1", XDG_MENU_PREFIX="plasma-")
    start("kwin_x11", "--replace")
    start("kded6")
    start("plasmashell")
    return screen


def gnome():
    screen = Server()
    os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = run("dbus-daemon", "--session", "--fork", "--print-address=1").decode().strip()
    environment(XDG_CURRENT_DESKTOP="GNOME", XDG_SESSION_DESKTOP="gnome", DESKTOP_SESSION="gnome", XDG_SESSION_TYPE="x11",
                LIBGL_ALWAYS_SOFTWARE="1", XDG_DATA_DIRS="/usr/local/share:/usr/share")
    for schema, key, value in (("shell", "welcome-dialog-last-shown-version", "99"),
                               ("desktop.interface", "enable-animations", "false"),
                               ("shell", "enabled-extensions", "['ubuntu-appindicators@ubuntu.com']")):
        run("gsettings", "set", f"org.gnome.{schema}", key, value)
    start("gnome-shell", "--x11", "--sm-disable")
    return screen


def wlroots(name):
    """A compositor of the wlroots family in a window of the X server. The programs in it do not know the X server."""
    screen = Server()
    environment(XDG_CURRENT_DESKTOP=f"{name}:wlroots", XDG_SESSION_TYPE="wayland", WLR_BACKENDS="x11",
                WLR_RENDERER="pixman")
    write(".config/waybar/config", json.dumps({"layer": "top", "position": "top", "height": 30,
                                               "modules-right": ["tray"], "tray": {"spacing": 10}}))
    start(name)
    runtime = pathlib.Path(os.environ["XDG_RUNTIME_DIR"])
    socket = wait(lambda: sorted(path for path in runtime.glob("wayland-*") if path.suffix != ".lock"), "the compositor")
    os.environ["WAYLAND_DISPLAY"] = socket[-1].name
    del os.environ["DISPLAY"]
    run("dbus-update-activation-environment", "WAYLAND_DISPLAY", "DISPLAY=")
    start("waybar")
    return screen


def labwc():
    return wlroots("labwc")


def sway():
    write(".config/sway/config", "xwayland disable\noutput * resolution 1280x800\n")
    return wlroots("sway")


DESKTOPS = {function.__name__: function for function in (xfce, lxqt, mate, cinnamon, plasma, gnome, labwc, sway)}

# Where the program cannot place a panel, and opens a window: sway without the QML module of layer shell.
WINDOWED = [] if pathlib.Path("/usr/lib/x86_64-linux-gnu/qt6/qml/org/kde/layershell").exists() else ["sway", "labwc"]


class Tour:
    def __init__(self, desktop, program, ctl, folder):
        self.name = desktop
        self.program = program
        self.folder = folder
        self.surprises = []
        write(".config/spacemint/app.spacemint.Spacemint.json", json.dumps(SETTINGS))
        write("Documents/letter", "Dear Ann" * 1_000_000)
        run(ctl, "scan", "--top", "0")
        self.screen = DESKTOPS[desktop]()
        # GNOME's status area opens the menu on one click.
        self.clicks = 2 if desktop == "gnome" else 1

    def look(self, name):
        file = self.folder / f"{self.name}-{name}.png"
        self.screen.picture(file)
        return Screen(file)

    def resting(self, name, limit=30, looks=1):
        """The screen as soon as it is not blank and has stayed the same for so many looks."""
        end = time.monotonic() + limit
        last, same = self.look(name), 0
        while time.monotonic() < end and same < looks:
            time.sleep(0.7)
            now = self.look(name)
            is_blank = len(set(now.pixels[::997])) < 2
            same = same + 1 if now.pixels == last.pixels and not is_blank else 0
            last = now
        return last

    def window(self, name):
        """The box of the panel or the window; nothing where there is none."""
        boxes = self.look(name).changes(self.empty)
        return next((box for box in boxes if box[2] - box[0] >= 380 and box[3] - box[1] >= 450), None)

    def is_shown(self, name):
        return self.changes_to(name, True)

    def is_hidden(self, name):
        return self.changes_to(name, False)

    def changes_to(self, name, shown):
        end = time.monotonic() + 8
        while time.monotonic() < end:
            if bool(self.window(name)) == shown:
                self.resting(name, 5)
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

    def note(self, what, value, expected=None):
        print(f"{self.name}: {what}: {value}", flush=True)
        if expected is not None and value != expected:
            self.surprises.append(what)

    def find_item(self, before):
        self.empty = self.resting("item", looks=3)
        small = [box for box in self.empty.changes(before) if box[2] - box[0] <= 160 and box[3] - box[1] <= 64]
        if not small:
            raise AssertionError("the item is not seen")
        left, top, right, bottom = min(small, key=lambda box: min(box[1], self.empty.height - box[3]))
        self.item = ((left + right) // 2, (top + bottom) // 2)
        self.note("item at", self.item)

    def run(self):
        wait(lambda: has_name(WATCHER), "the status area", 120)
        self.screen.point(400, 400)
        self.resting("before", 60)
        self.screen.key("Escape")  # out of GNOME's overview
        before = self.resting("before", 90, looks=8)
        program = start(self.program)
        wait(lambda: has_name(f"org.kde.StatusNotifierItem-{program.pid}-1"), "the item on the bus")
        time.sleep(3)
        self.find_item(before)
        self.click_item()
        self.note("a click opens it", self.is_shown("panel"), True)
        self.note("place", self.window("panel"))
        is_panel = self.name not in WINDOWED
        if is_panel:
            self.screen.key("Escape")
            self.note("Escape closes it", self.is_hidden("escape"), True)
            self.click_item()
            self.is_shown("again")
        self.click_item()
        self.note("a second click closes it", self.is_hidden("second"), True)
        if is_panel:
            self.click_item()
            self.is_shown("again")
            self.click((200, 400))
            self.note("a click beside closes it", self.is_hidden("beside"), True)
        self.click(self.item, button=3)
        menu = [box for box in self.resting("menu", 5).changes(self.empty) if box[3] - box[1] > 80]
        self.note("a right click opens the menu", bool(menu), True)
        self.screen.key("Escape")
        time.sleep(1)
        subprocess.run([self.program, "--settings"], check=True, timeout=30)
        self.note("a launcher opens the settings", self.is_shown("settings"), True)
        program.send_signal(signal.SIGTERM)
        self.note("exit code", program.wait(30), 0)
        log = (pathlib.Path.home() / "spacemint.log").read_text().strip()
        self.note("written to standard error", log or "nothing", "nothing")


def end():
    for process in reversed(started):
        if process.poll() is None:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()


def as_nobody(desktop, program, ctl, folder):
    """Runs this file again as an ordinary user, with a home folder and a bus of its own. Everything is copied there,
    because "nobody" may not enter every folder that root works in."""
    home = pathlib.Path(tempfile.mkdtemp(prefix="spacemint-tour-"))
    shutil.copytree(pathlib.Path(__file__).parent, home / "tour")
    for file in (program, ctl):
        shutil.copy(file, home)
    for path in (home / "run", home / "pictures"):
        path.mkdir(mode=0o700)
    for path in (home, home / "run", home / "pictures"):
        shutil.chown(path, "nobody")
    sockets = pathlib.Path("/tmp/.X11-unix")
    if not sockets.exists():
        sockets.mkdir()
        sockets.chmod(0o1777)
    variables = {"HOME": home, "XDG_RUNTIME_DIR": home / "run", "PATH": "/usr/bin:/bin:/usr/games", "LANG": "C.UTF-8",
                 "NO_AT_BRIDGE": "1", "PYTHONDONTWRITEBYTECODE": "1"}
    command = ["setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups", "dbus-run-session", "--", sys.executable,
               home / "tour/tour.py", desktop, home / pathlib.Path(program).name, home / pathlib.Path(ctl).name,
               home / "pictures"]
    try:
        return subprocess.run([str(word) for word in command], cwd=home, check=False,
                              env={name: str(value) for name, value in variables.items()}).returncode
    finally:
        shutil.copytree(home / "pictures", folder, dirs_exist_ok=True)
        shutil.rmtree(home, ignore_errors=True)


def main(desktop, program, ctl, folder):
    folder = pathlib.Path(folder)
    if os.geteuid() == 0:
        return as_nobody(desktop, program, ctl, folder)
    tour = None
    try:
        tour = Tour(desktop, program, ctl, folder)
        tour.run()
    except Exception as failure:
        if tour:
            tour.look("failed")
        print(f"{desktop}: FAILED: {failure}", flush=True)
        for log in pathlib.Path.home().glob("*.log"):
            print(f"--- {log.name}", *log.read_text(errors="replace").splitlines()[-12:], sep="\n", file=sys.stderr)
        return 1
    finally:
        end()
    if tour.surprises:
        print(f"{desktop}: NOT AS EXPECTED: {', '.join(tour.surprises)}", flush=True)
    return 1 if tour.surprises else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

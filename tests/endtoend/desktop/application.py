"""The program as a person meets it: what is seen is found by role and name, and worked by mouse and keyboard."""

import json
import os
import re
import signal
import subprocess
import tempfile
import time

from session import wait_until

ITEM_WIDTH = 34


class Application:
    """The program, running in a session. Make it after the session, whose surroundings it reads."""

    def __init__(self, session, program, settings=None, info=None):
        import pyatspi  # connects to the session's bus
        self.atspi = pyatspi
        self.session = session
        self.program = program
        self.info = info
        self.process = None
        self.log = session.log_of(program)
        self.log_start = self.log.stat().st_size if self.log.exists() else 0
        self.settings_file = session.home / ".config/spacemint/app.spacemint.Spacemint.json"
        if settings is not None:
            self.settings_file.parent.mkdir(parents=True, exist_ok=True)
            self.settings_file.write_text(json.dumps(settings))

    # The process

    def environment(self, **more):
        environment = dict(self.session.environment)
        if self.info:
            environment["SPACEMINT_INFO"] = str(self.info)
        environment.update(more)
        return environment

    def start(self, *arguments, **environment):
        self.process = self.session.start([self.program, *arguments], environment=self.environment(**environment))

    def output(self):
        """What the program wrote to standard output and standard error, over all its starts."""
        return self.log.read_bytes()[self.log_start:].decode(errors="replace")

    def launch_again(self, *arguments):
        """As from the menu or a file manager, while it runs."""
        return subprocess.run([self.program, *map(str, arguments)], env=self.environment(), timeout=60,
                              check=False).returncode

    def settings(self):
        return json.loads(self.settings_file.read_text())

    def terminate(self):
        if self.process and self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            self.process.wait(30)

    def exit_code(self):
        return wait_until(lambda: self.process.poll() is not None and [self.process.returncode],
                          "the end of the program")[0]

    # What is seen

    def windows(self):
        """The program's windows that are on the screen."""
        return self.session.visible_windows("--pid", str(self.process.pid), "--name", "^Spacemint$")

    def is_shown(self):
        return bool(self.windows())

    def wait_shown(self):
        wait_until(self.is_shown, "the interface")

    def wait_hidden(self):
        wait_until(lambda: not self.is_shown(), "that the interface goes")

    def stays_hidden(self, seconds=0.8):
        """That nothing comes can only be seen by waiting for it."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if self.is_shown():
                return False
            time.sleep(0.02)
        return True

    def place(self):
        """Of the one window: x, y, width, height, without what the window manager adds."""
        answer = self.session.output(["xdotool", "getwindowgeometry", "--shell", self.windows()[0].decode()]).decode()
        values = dict(line.split("=") for line in answer.split())
        return tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def roots(self):
        """What the program has registered with the reader of windows; it may do that twice."""
        desktop = self.atspi.Registry.getDesktop(0)
        found = []
        for index in range(desktop.childCount):
            try:
                child = desktop.getChildAtIndex(index)
                if child and child.get_process_id() == self.process.pid:
                    found.append(child)
            except Exception:  # it went meanwhile
                continue
        return found

    @staticmethod
    def role(item):
        """Newer versions of the reader call a push button a button."""
        name = item.getRoleName()
        return "push button" if name == "button" else name

    def all(self, name=None, role=None):
        """What is on the screen with that name and role, from top to bottom."""
        found = []

        def look(item):
            try:
                states = item.getState()
                if item.getRoleName() != "application" and not states.contains(self.atspi.STATE_SHOWING):
                    return
                if (name is None or item.name == name) and (role is None or self.role(item) == role):
                    found.append(item)
                for index in range(item.childCount):
                    child = item.getChildAtIndex(index)
                    if child:
                        look(child)
            except Exception:  # it went meanwhile
                return

        for root in self.roots():
            look(root)
        return found

    def sees(self, name, role=None):
        return bool(self.all(name, role))

    def sees_text(self, part):
        return any(part in item.name for item in self.all())

    def find(self, name, role=None):
        return wait_until(lambda: self.all(name, role), f"{role or 'something'} named {name!r}")[0]

    def find_starting(self, start):
        """A row: its name goes on with what else it says."""
        return wait_until(lambda: [item for item in self.all() if item.name.startswith(start)],
                          f"something that starts with {start!r}")[0]

    def wait_scanned(self):
        """A scan has time: it yields to everything else."""
        wait_until(lambda: self.sees_text("Scanned") or self.sees_text("Updated"), "the end of the scan", 240)

    def wait_text(self, part, limit=30):
        wait_until(lambda: self.sees_text(part), f"a text with {part!r}", limit)

    def names(self):
        return [(self.role(item), item.name) for item in self.all()]

    # What a person does

    def xdotool(self, *arguments):
        subprocess.run(["xdotool", *map(str, arguments)], env=self.session.environment, check=True)

    def click_at(self, x, y, button=1):
        self.xdotool("mousemove", "--sync", x, y)
        # The window looks at the pointer before it looks at the button.
        self.xdotool("mousemove_relative", "--sync", 1, 0)
        self.xdotool("click", button)

    def centre(self, item):
        box = item.queryComponent().getExtents(self.atspi.DESKTOP_COORDS)
        # The reader of windows counts as the program does, the pointer as the screen.
        return (box.x + box.width // 2) * self.session.scale, (box.y + box.height // 2) * self.session.scale

    def covers(self, upper, lower):
        """Whether one thing lies over a part of another."""
        a, b = (item.queryComponent().getExtents(self.atspi.DESKTOP_COORDS) for item in (upper, lower))
        return a.x < b.x + b.width and b.x < a.x + a.width and a.y < b.y + b.height and b.y < a.y + a.height

    def resting_centre(self, item):
        """Once it moves no more."""
        last = []

        def rests():
            last.append(self.centre(item))
            return len(last) > 2 and last[-1] == last[-2] == last[-3]

        wait_until(rests, "that it rests")
        return last[-1]

    def point_at(self, item):
        self.xdotool("mousemove", "--sync", *self.resting_centre(item))
        self.xdotool("mousemove_relative", "--sync", 1, 0)

    def scroll_until(self, look, what):
        """With the wheel, over the middle of the window."""
        self.point_at_middle()
        return wait_until(lambda: look() or self.xdotool("click", 5), f"{what} when scrolling")

    def scroll_to(self, name, role=None):
        return self.scroll_until(lambda: [item for item in self.all(name, role) if self.can_be_clicked(item)],
                                 repr(name))[0]

    def can_be_clicked(self, item):
        """What is half below the edge is on the screen too, but a click at its middle is one beside the window."""
        left, top, width, height = self.place()
        x, y = self.resting_centre(item)
        return left < x < left + width and top < y < top + height

    def point_at_middle(self):
        x, y, width, height = self.place()
        self.xdotool("mousemove", "--sync", x + width // 2, y + height // 2)

    def scroll_to_the_end(self):
        self.point_at_middle()
        self.xdotool("click", "--repeat", 30, "--delay", 20, 5)
        self.wait_still()

    def wait_still(self):
        """Until the window has looked the same for a second: a click while a page still moves only stops it."""
        last = since = None

        def is_still():
            nonlocal last, since
            now = self.session.pixels(*self.place())
            if now != last:
                last, since = now, time.monotonic()
            return time.monotonic() - since > 1

        wait_until(is_still, "that nothing moves")

    def scroll_to_text(self, part):
        self.scroll_until(lambda: self.sees_text(part), f"a text with {part!r}")

    def click(self, name, role=None, button=1):
        self.click_item(self.find(name, role), button)

    def click_item(self, item, button=1):
        self.click_at(*self.resting_centre(item), button)

    def double_click_item(self, item):
        self.click_item(item)
        self.xdotool("click", 1)

    def press(self, *keys):
        self.xdotool("key", *keys)

    # The status item: the last cell of the status area, at the right end of the screen.

    def item_centre(self):
        scale = self.session.scale
        return (1280 - 14) * scale, 15 * scale

    def item_pixels(self):
        scale = self.session.scale
        return self.session.pixels((1280 - ITEM_WIDTH) * scale, 1, (ITEM_WIDTH - 2) * scale, 27 * scale)

    def has_item(self):
        return len(set(self.item_colours())) > 1

    def item_colours(self):
        pixels = self.item_pixels()
        return [pixels[i:i + 3] for i in range(0, len(pixels), 3)]

    def wait_item(self):
        wait_until(self.has_item, "the status item")

    def wait_no_item(self):
        wait_until(lambda: not self.has_item(), "that the status item goes")

    # Its menu, which the status area draws. The area says nothing to readers of windows, so the rows are looked for:
    # below the area, bright letters on the menu's dark ground.

    def menu_titles(self):
        """Of the entries, from top to bottom."""
        answer = self.session.output(
            ["dbus-send", "--session", "--print-reply", f"--dest=org.kde.StatusNotifierItem-{self.process.pid}-1",
             "/StatusNotifierItem/Menu", "com.canonical.dbusmenu.GetLayout", "int32:0", "int32:-1", "array:string:"])
        return re.findall(r'string "label"\s+variant\s+string "(.*?)"', answer.decode())

    def menu_rows(self):
        """The middles of the rows of letters; none while the menu is closed."""
        x, y, width, height = 1280 - 190, 32, 180, 240
        pixels = self.session.pixels(x, y, width, height)
        bright = [max(pixels[line * width * 3:(line + 1) * width * 3], default=0) > 170 for line in range(height)]
        rows, start = [], None
        for line, is_bright in enumerate([*bright, False]):
            if is_bright and start is None:
                start = line
            elif not is_bright and start is not None:
                rows.append((x + width // 3, y + (start + line) // 2))
                start = None
        return rows

    def open_menu(self):
        self.click_at(*self.item_centre(), button=3)
        count = len(self.menu_titles())
        return wait_until(lambda: len(rows := self.menu_rows()) == count and rows, "the menu of the status item")

    def wait_menu_closed(self):
        wait_until(lambda: not self.menu_rows(), "the end of the menu")

    def choose_by_mouse(self, title):
        self.click_at(*self.open_menu()[self.menu_titles().index(title)])

    def choose_by_keyboard(self, title):
        self.open_menu()
        self.press(*["Down"] * (self.menu_titles().index(title) + 1), "Return")

    def click_item_of_status_area(self):
        # A click within a quarter of a second after the panel went is the one that closed it.
        time.sleep(0.3)
        self.click_at(*self.item_centre())

    def open_panel(self):
        self.wait_item()
        self.click_item_of_status_area()
        self.wait_shown()


def pictures_folder():
    """Where a run leaves its pictures of the screen."""
    return os.environ.get("SPACEMINT_PICTURES") or tempfile.mkdtemp(prefix="spacemint-pictures-")

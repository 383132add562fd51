"""The program as a person meets it: what is seen is found by role and name, and worked by mouse and keyboard."""

import json
import os
import signal
import subprocess
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

    def launch_again(self):
        """As from the menu, while it runs."""
        return subprocess.run([self.program], env=self.environment(), timeout=60, check=False).returncode

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
        answer = self.session.output(["xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid), "--name",
                                      "^Spacemint$"])
        return answer.split()

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

    def root(self):
        desktop = self.atspi.Registry.getDesktop(0)
        for index in range(desktop.childCount):
            child = desktop.getChildAtIndex(index)
            try:
                if child and child.get_process_id() == self.process.pid:
                    return child
            except Exception:  # it went meanwhile
                continue
        return None

    def all(self, name=None, role=None):
        """What is on the screen with that name and role, from top to bottom."""
        found = []

        def look(item):
            try:
                states = item.getState()
                if item.getRoleName() != "application" and not states.contains(self.atspi.STATE_SHOWING):
                    return
                if (name is None or item.name == name) and (role is None or item.getRoleName() == role):
                    found.append(item)
                for index in range(item.childCount):
                    child = item.getChildAtIndex(index)
                    if child:
                        look(child)
            except Exception:  # it went meanwhile
                return

        root = self.root()
        if root:
            look(root)
        return found

    def sees(self, name, role=None):
        return bool(self.all(name, role))

    def sees_text(self, part):
        return any(part in item.name for item in self.all())

    def find(self, name, role=None):
        return wait_until(lambda: self.all(name, role), f"{role or 'something'} named {name!r}")[0]

    def wait_text(self, part, limit=60):
        wait_until(lambda: self.sees_text(part), f"a text with {part!r}", limit)

    def names(self):
        return [(item.getRoleName(), item.name) for item in self.all()]

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
        return box.x + box.width // 2, box.y + box.height // 2

    def point_at(self, item):
        self.xdotool("mousemove", "--sync", *self.centre(item))
        self.xdotool("mousemove_relative", "--sync", 1, 0)

    def click(self, name, role=None, button=1):
        self.click_item(self.find(name, role), button)

    def click_item(self, item, button=1):
        self.click_at(*self.centre(item), button)

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

    def click_item_of_status_area(self):
        self.click_at(*self.item_centre())


def pictures_folder():
    """Where a run leaves its pictures of the screen."""
    return os.environ.get("SPACEMINT_PICTURES", "pictures")

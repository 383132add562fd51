"""A desktop of its own for a test: screen, bus, window manager, status area, notifications."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

HERE = pathlib.Path(__file__).parent


class TimedOut(AssertionError):
    pass


def wait_until(condition, what, limit=30):
    """What `condition` answers as soon as it is true."""
    end = time.monotonic() + limit
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise TimedOut(f"waited {limit} s in vain: {what}")
        time.sleep(0.05)


class Session:
    """Everything starts in a home folder of its own, and ends with it."""

    def __init__(self, scale=1, disk_size=None):
        """With a `disk_size` the home folder is a small disk of its own, which only root can make."""
        self.scale = scale
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="spacemint-session-"))
        self.home = self.folder / "home"
        self.processes = []
        self.panel = None
        self.home.mkdir()
        self.has_disk = disk_size is not None
        if self.has_disk:
            self._mount_disk(disk_size)
        for path in ("home/.config", "run"):
            (self.folder / path).mkdir()
        (self.folder / "run").chmod(0o700)
        self.environment = {
            "HOME": str(self.home),
            "PATH": os.environ["PATH"],
            "XDG_RUNTIME_DIR": str(self.folder / "run"),
            "XDG_CURRENT_DESKTOP": "XFCE",
            "LC_ALL": "C.UTF-8",
            "LANG": "en_US.UTF-8",
            "TZ": "UTC",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "NO_AT_BRIDGE": "0",
            # Qt warns of each question of the reader about an item that is gone.
            "QT_LOGGING_RULES": "qt.accessibility.atspi.warning=false",
        }
        try:
            self._start_screen()
            self._start_bus()
        except BaseException:
            self.end()
            raise
        # What runs in this process, above all the reader of other programs' windows, is part of the session.
        os.environ.update(self.environment)

    def _mount_disk(self, size):
        mount = ["mount", "-t", "tmpfs", "-o", f"size={size}", "tmpfs", str(self.home)]
        if subprocess.run(mount, check=False).returncode != 0:
            shutil.rmtree(self.folder)
            raise unittest.SkipTest("no disk can be made here")

    def _start_screen(self):
        reading, writing = os.pipe()
        size = f"{1280 * self.scale}x{800 * self.scale}x24"
        # Without -noreset the server begins anew when its last client leaves, and refuses who connects meanwhile.
        self.start(["Xvfb", "-displayfd", str(writing), "-screen", "0", size, "-noreset", "-nolisten", "tcp"],
                   pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("the X server did not start")
        self.environment["DISPLAY"] = ":" + number

    def _start_bus(self):
        # The bus would start a notification service by itself. Here a test decides when one starts.
        services = self.folder / "run/dbus-1/services"
        services.mkdir(parents=True)
        (services / "org.freedesktop.Notifications.service").write_text("[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=/bin/false\n")
        daemon = self.start(["dbus-daemon", "--session", "--nofork", "--print-address"], stdout=subprocess.PIPE)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().decode().strip()
        self.window_manager = self.start(["openbox"])
        wait_until(self.has_window_manager, "the window manager")

    def kill_window_manager(self):
        """From now on nobody moves the focus, but programs still believe that somebody does."""
        os.killpg(self.window_manager.pid, signal.SIGKILL)
        self.window_manager.wait()

    def has_window_manager(self):
        return b"window id" in self.output(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"])

    def renew_home(self):
        """An empty home folder, but for what the desktop keeps there."""
        for item in self.home.iterdir():
            if item.name != ".config":
                shutil.rmtree(item) if item.is_dir() and not item.is_symlink() else item.unlink()
        shutil.rmtree(self.home / ".config/spacemint", ignore_errors=True)

    def log_of(self, program):
        """The file with what a program writes to standard output and standard error."""
        return self.folder / (pathlib.Path(program).name + ".log")

    def start(self, command, environment=None, **options):
        log = open(self.log_of(command[0]), "ab")
        options.setdefault("stdout", log)
        process = subprocess.Popen(command, env=environment or self.environment, stderr=log,
                                   stdin=subprocess.DEVNULL, start_new_session=True, **options)
        log.close()
        self.processes.append(process)
        return process

    def output(self, command):
        return subprocess.run(command, env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              check=False).stdout

    def start_status_area(self):
        folder = self.home / ".config/xfce4/xfconf/xfce-perchannel-xml"
        if not folder.exists():
            folder.mkdir(parents=True)
            panel = (HERE / "xfce4-panel.xml").read_text()
            (folder / "xfce4-panel.xml").write_text(panel.format(size=30 * self.scale, icon=22 * self.scale))
        self.panel = self.start(["xfce4-panel", "--disable-wm-check"])
        wait_until(lambda: self.has_name("org.kde.StatusNotifierWatcher"), "the status area")

    def end_status_area(self):
        os.killpg(self.panel.pid, signal.SIGKILL)
        self.panel.wait()
        # Its parts are processes of their own.
        subprocess.run(["pkill", "-KILL", "-f", "xfce4/panel/wrapper"], check=False)
        wait_until(lambda: not self.has_name("org.kde.StatusNotifierWatcher"), "the end of the status area")

    def start_notifications(self):
        self.start(["dunst", "-config", str(HERE / "dunstrc")])
        wait_until(lambda: self.has_name("org.freedesktop.Notifications"), "the notification service")

    def wait_notification(self):
        wait_until(lambda: self.visible_windows("--class", "Dunst"), "the notification")

    def visible_windows(self, *criteria):
        """The windows on the screen that fit. The search fails if a window goes while it looks at all of them."""
        while True:
            answer = subprocess.run(["xdotool", "search", "--onlyvisible", *criteria], env=self.environment,
                                    capture_output=True, check=False)
            if b"BadWindow" not in answer.stderr:
                return answer.stdout.split()

    def has_name(self, name):
        answer = self.output(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                              "org.freedesktop.DBus.NameHasOwner", f"string:{name}"])
        return b"true" in answer

    def picture(self, path, crop=None):
        """The screen as a file; `crop` is WIDTHxHEIGHT+X+Y."""
        pathlib.Path(path).parent.mkdir(parents=True, exist_ok=True)
        command = ["import", "-silent", "-window", "root"]
        if crop:
            command += ["-crop", crop, "+repage"]
        subprocess.run(command + [str(path)], env=self.environment, check=True)

    def pixels(self, x, y, width, height):
        """The colours of a part of the screen."""
        return self.output(["import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "-depth", "8",
                            "rgb:-"])

    def end(self):
        for process in reversed(self.processes):
            if process.poll() is None:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()
            if process.stdout:
                process.stdout.close()
        if self.has_disk:
            subprocess.run(["umount", "--lazy", str(self.home)], check=False)
        shutil.rmtree(self.folder, ignore_errors=True)

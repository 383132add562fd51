"""The status item, the panel and the window on a real desktop, driven by mouse and keyboard."""

import glob
import os
import subprocess
import unittest

from on_a_desktop import PROGRAM, OnADesktop
from releases import Maker
from session import wait_until

STARTED = {"hasStarted": True, "warningThresholdGB": 1}
NOBODY_IS_WARNED = {**STARTED, "showFreeSpaceInMenuBar": True}


class Panel(OnADesktop):
    def test_item_opens_and_closes_the_panel(self):
        app = self.start(NOBODY_IS_WARNED)
        app.wait_item()
        self.assertTrue(app.stays_hidden(), "a start with a status area opens nothing")
        app.open_panel()
        app.wait_text("free")
        x, y, width, height = app.place()
        self.assertEqual((width, height), (460, 700))
        self.assertEqual(x + width, 1280 - 8, "8 points inside the screen")
        self.assertGreaterEqual(y, 30, "under the status area")
        self.picture("panel")
        # Nobody composes this screen, so that a rounded corner would be black.
        self.assertGreater(min(self.session.pixels(x + 1, y + 1, 1, 1)), 128, "the corner is the panel's")
        # The click on the item that takes the focus away does not open it again.
        app.click_item_of_status_area()
        app.wait_hidden()
        self.assertTrue(app.stays_hidden())
        app.open_panel()
        app.press("Escape")
        app.wait_hidden()
        app.open_panel()
        app.wait_text("free")  # as nobody clicks elsewhere before anything is to be seen
        # Anywhere else.
        app.click_at(200, 500)
        app.wait_hidden()

    def test_escape_closes_one_thing_at_a_time(self):
        app = self.start(STARTED)
        app.open_panel()
        app.click("Settings", "push button")
        app.wait_text("Warn me")
        app.press("Escape")
        wait_until(lambda: not app.sees_text("Warn me"), "that the settings go")
        self.assertTrue(app.is_shown())
        app.press("Escape")
        app.wait_hidden()

    def test_first_start_opens_the_panel_and_a_second_launch_brings_it_back(self):
        app = self.start({"warningThresholdGB": 1})  # a warning would stay on the screen of the other tests
        app.wait_shown()
        app.wait_text("Never be surprised by a full disk again.")
        self.picture("welcome")
        app.press("Escape")
        app.wait_hidden()
        self.assertEqual(app.launch_again(), 0)
        app.wait_shown()
        self.assertIsNone(app.process.poll())

    def test_notification_opens_the_overview(self):
        app = self.start({"hasStarted": True, "warningThresholdGB": 1_000_000})
        app.open_panel()
        app.wait_scanned()
        app.click("Large files")
        app.press("Escape")
        app.wait_hidden()
        # The bubble of the warning.
        self.session.wait_notification()
        self.picture("notification")
        app.click_at(1280 - 180, 90)
        app.wait_shown()
        app.find("What changed", "heading")
        # It is low on space by that threshold, so the item is coloured and tells how much is free.
        colours = set(app.item_colours())
        self.assertTrue(any(red > 180 and blue < 120 for red, _, blue in map(tuple, colours)), "orange or red")

    def test_presence_is_switched(self):
        app = self.start(STARTED)
        app.open_panel()
        app.click("Settings", "push button")
        app.click("Window")
        app.wait_no_item()
        wait_until(lambda: app.is_shown() and app.place()[0] + 460 < 1270, "the window")
        app.click("Settings", "push button")
        app.find("Window")
        self.picture("window")
        self.assertEqual(app.settings()["presence"], "dock")
        app.click("Status area")
        app.wait_item()
        wait_until(lambda: app.is_shown() and app.place()[0] == 1280 - 8 - 460, "the panel")

    def test_item_comes_back_with_the_status_area(self):
        app = self.start(STARTED)
        app.wait_item()
        self.session.end_status_area()
        self.session.start_status_area()
        app.wait_item()
        self.assertIsNone(app.process.poll())

    def test_about_and_quit(self):
        app = self.start(STARTED)
        app.open_panel()
        app.wait_text("free")
        app.press("ctrl+q")
        self.assertEqual(app.exit_code(), 0)


class Menu(OnADesktop):
    """Every entry of the item's menu, in the status area that draws it."""

    def each_entry(self, choose):
        maker = Maker(self.session.folder / self.id())
        self.addCleanup(maker.end)
        maker.offer("2.0")
        app = self.start(STARTED, maker.dictionary())
        app.wait_item()
        is_done = {
            "Open Spacemint": lambda: app.is_shown() and app.sees_text("free"),
            "Open a Scan…": lambda: app.is_shown() and app.sees_text("no dialog for choosing a file"),
            "About Spacemint": lambda: app.is_shown() and app.sees("About Spacemint", "dialog"),
            "Settings…": lambda: app.is_shown() and app.sees("Settings", "heading"),
            "Check for Updates…": lambda: maker.asked["/updates.xml"] > 0,
            "Share Anonymous Usage": lambda: app.settings().get("BrindlefoxShareUsage") is True,
            "Quit Spacemint": lambda: app.process.poll() == 0,
        }
        self.assertEqual(app.menu_titles(), list(is_done))
        app.open_menu()
        self.picture("menu")
        app.press("Escape")
        app.wait_menu_closed()
        for title, condition in is_done.items():
            self.assertFalse(condition(), title)
            choose(app, title)
            wait_until(condition, title)
            while app.process.poll() is None and app.is_shown():
                app.press("Escape")
            app.wait_menu_closed()

    def test_by_mouse(self):
        self.each_entry(lambda app, title: app.choose_by_mouse(title))

    def test_by_keyboard(self):
        self.each_entry(lambda app, title: app.choose_by_keyboard(title))


class WithoutFocus(OnADesktop):
    def test_a_click_beside_the_panel_closes_it(self):
        app = self.start(STARTED)
        app.wait_item()
        self.session.kill_window_manager()
        for _ in range(2):
            app.open_panel()
            app.wait_text("free")
            focused = self.session.output(["xdotool", "getwindowfocus"]).split()
            self.assertNotEqual(focused, app.windows(), "the panel has no focus to lose")
            x, y, width, _ = app.place()
            app.click_at(x + width // 2, y + 20)
            self.assertTrue(app.is_shown(), "a click on the panel is none beside it")
            app.click_at(200, 500)
            app.wait_hidden()
        app.open_panel()
        app.click_item_of_status_area()
        app.wait_hidden()
        self.assertTrue(app.stays_hidden(), "the click that closes it does not open it again")


class LateNotifications(OnADesktop):
    has_notifications = False

    def test_a_warning_waits_for_the_notification_service(self):
        app = self.start({"hasStarted": True, "warningThresholdGB": 1_000_000}, SPACEMINT_LOG="info")
        wait_until(lambda: "no notification service accepted" in app.output(), "the first attempt")
        self.session.start_notifications()
        self.session.wait_notification()


class WithoutDisplay(unittest.TestCase):
    def test_one_plain_line_says_what_is_missing(self):
        has_plugin = glob.glob("/usr/lib/*/qt6/plugins/platforms/libqwayland*")
        cannot_open = "cannot open the display"
        for variables, what in (({}, "there is no display"),
                                ({"DISPLAY": ":4711"}, cannot_open),
                                ({"WAYLAND_DISPLAY": "nowhere"}, cannot_open if has_plugin else "qt6-wayland"),
                                ({"DISPLAY": ":4711", "WAYLAND_DISPLAY": "nowhere"}, cannot_open)):
            environment = {"PATH": os.environ["PATH"], "HOME": "/nonexistent", "XDG_RUNTIME_DIR": "/nonexistent"}
            ended = subprocess.run([PROGRAM], env={**environment, **variables}, capture_output=True, text=True, timeout=60,
                                   check=False)
            self.assertEqual(ended.returncode, 1, variables)
            self.assertEqual(len(ended.stderr.splitlines()), 1, ended.stderr)
            self.assertIn("spacemint: ", ended.stderr)
            self.assertIn(what, ended.stderr)


class Elsewhere(OnADesktop):
    has_status_area = False

    def test_window_stands_in_where_there_is_no_status_area(self):
        app = self.start({"warningThresholdGB": 1})
        app.find("Start first scan")
        # Closed and opened again before there is a page that shows messages.
        app.press("ctrl+w")
        app.wait_hidden()
        self.assertEqual(app.launch_again(), 0)
        app.click("Start first scan")
        app.wait_text("no status area")
        self.picture("no-status-area")
        app.wait_scanned()
        app.terminate()
        # It is said once.
        app.start()
        app.wait_shown()
        app.wait_scanned()
        self.assertFalse(app.sees_text("no status area"))

    def test_a_file_and_then_a_folder_are_opened(self):
        home = self.session.home
        (home / "usage.json").write_text('[1,2,{"host":"db1"},[{"name":"/srv"},{"name":"table","dsize":900000000}]]')
        (home / "Films").mkdir()
        with open(home / "Films/film.mkv", "wb") as film:
            os.posix_fallocate(film.fileno(), 0, 30_000_000)
        app = self.start(STARTED, arguments=[str(home / "usage.json")])
        app.find("Scan of db1")
        app.find_starting("table")
        app.click("Back to this computer", "push button")
        self.assertEqual(app.launch_again("--scan"), 0)
        app.wait_scanned()
        self.assertEqual(app.launch_again(home / "Films"), 0)
        app.find_starting("film.mkv, 30")

    def test_the_window_offers_what_the_menu_has(self):
        for settings in (STARTED, {**STARTED, "presence": "dock"}):
            app = self.start(settings)
            app.wait_shown()
            app.press("F1")
            app.find("About Spacemint", "dialog")
            app.find("Ctrl+Q")
            self.picture("about")
            app.press("Escape")
            wait_until(lambda: not app.sees("About Spacemint", "dialog"), "that the card goes")
            app.click("Settings", "push button")
            app.scroll_to_the_end()
            app.click("About", "push button")
            app.find("About Spacemint", "dialog")
            app.click("Close", "push button")
            app.click_item(app.scroll_to("Quit Spacemint"))
            self.assertEqual(app.exit_code(), 0)


class DarkTwice(OnADesktop):
    scale = 2

    def test_follows_the_desktop_into_the_dark_and_back(self):
        from portal import DARK, LIGHT, Portal
        portal = Portal(self.session.environment["DBUS_SESSION_BUS_ADDRESS"], LIGHT)
        self.addCleanup(portal.end)
        app = self.start(NOBODY_IS_WARNED, QT_SCALE_FACTOR="2")
        app.open_panel()
        app.wait_text("free")
        brightness = lambda: sum(self.session.pixels(2560 - 200, 1300, 20, 20)) / 1200
        wait_until(lambda: brightness() > 200, "a light panel")
        self.picture("panel-light-2")
        portal.set_scheme(DARK)
        wait_until(lambda: brightness() < 80, "a dark panel")
        self.picture("panel-dark-2")
        portal.set_scheme(LIGHT)
        wait_until(lambda: brightness() > 200, "a light panel")


if __name__ == "__main__":
    unittest.main(verbosity=2)

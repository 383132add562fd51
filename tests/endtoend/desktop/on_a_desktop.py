"""What tests of the program on a desktop share."""

import pathlib
import re
import sys
import unittest

from application import Application, pictures_folder
from session import Session

PROGRAM = sys.argv.pop(1)
PICTURES = pathlib.Path(pictures_folder())
LOG_LINE = re.compile(r"\d{4}-\d\d-\d\dT[\d:]+Z spacemint: ")


class OnADesktop(unittest.TestCase):
    """One desktop for all tests of a class, of which a process runs one: it can read the windows of one desktop."""

    scale = 1
    has_status_area = True
    has_notifications = True
    disk_size = None

    @classmethod
    def setUpClass(cls):
        cls.session = Session(cls.scale, cls.disk_size)
        cls.addClassCleanup(cls.session.end)
        if cls.has_status_area:
            cls.session.start_status_area()
        if cls.has_status_area and cls.has_notifications:
            cls.session.start_notifications()

    def setUp(self):
        self.apps = []
        self.session.renew_home()
        (self.session.home / "letter").write_text("Dear Ann")

    def start(self, settings, info=None, arguments=(), **environment):
        app = Application(self.session, PROGRAM, settings, info)
        self.addCleanup(self.end, app)
        self.apps.append(app)
        app.start(*arguments, **environment)
        return app

    def end(self, app):
        """A warning of Qt, QML or D-Bus is a fault, whatever else the test says."""
        app.terminate()
        lines = [line for line in app.output().splitlines() if not LOG_LINE.match(line)]
        self.assertEqual(lines, [], "the program writes nothing but its log")

    def _callTestMethod(self, method):
        """With a picture of what was on the screen when it failed, and the names there."""
        try:
            super()._callTestMethod(method)
        except Exception:
            self.picture(f"failed-{self.id()}")
            for app in self.apps:
                print(app.names(), file=sys.stderr)
            raise

    def picture(self, name):
        self.session.picture(PICTURES / f"{name}.png")

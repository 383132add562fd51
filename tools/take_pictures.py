"""Takes the pictures of the documentation: the program shows a home folder that grew.

usage: take_pictures.py SPACEMINT FOLDER; needs root, because it makes a disk"""

import os
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "tests/endtoend/desktop"))

from application import Application
from portal import DARK, LIGHT, Portal
from session import Session, wait_until

PROGRAM, FOLDER = sys.argv[1:3]
MB = 1_000_000
BEFORE = {"Videos/holiday.mp4": 900, "Downloads/debian-12.iso": 660, ".local/share/Trash/files/old.zip": 1300,
          "code/shop/node_modules/icons": 420, "code/site/node_modules/icons": 310, "Pictures/2024.tar": 520}
GROWN = {".cache/pip/http/wheel": 640, "Videos/birthday.mp4": 780, "code/shop/node_modules/webdriver": 260,
         "vm/disk.img": 3800}


def fill(home, files):
    for name, size in files.items():
        path = home / name
        path.parent.mkdir(parents=True, exist_ok=True)
        with open(path, "wb") as file:
            os.posix_fallocate(file.fileno(), 0, size * MB)


def main():
    session = Session(scale=2, disk_size="14g")
    try:
        session.start_status_area()
        session.start_notifications()
        portal = Portal(session.environment["DBUS_SESSION_BUS_ADDRESS"], LIGHT)
        fill(session.home, BEFORE)
        app = Application(session, PROGRAM, {"warningThresholdGB": 1})
        app.start(QT_SCALE_FACTOR="2", LC_ALL="en_US.UTF-8")
        app.find("Start first scan")
        app.press("Return")
        app.wait_scanned()
        fill(session.home, GROWN)
        app.press("ctrl+w")
        app.wait_hidden()
        app.click_item_of_status_area()
        app.click("Scan now")
        app.wait_text("Free space dropped", 120)
        app.wait_scanned()
        for tab, name, scheme in (("Overview", "panel-light", LIGHT), ("Folders", "folders-dark", DARK)):
            app.click(tab)
            portal.set_scheme(scheme)
            bright = scheme == LIGHT
            wait_until(lambda: (sum(session.pixels(1640, 1440, 8, 8)) / 192 > 128) == bright, "the appearance")
            session.picture(pathlib.Path(FOLDER) / f"{name}.png", "920x1400+1624+74")
        portal.end()
        app.terminate()
    finally:
        session.end()


main()

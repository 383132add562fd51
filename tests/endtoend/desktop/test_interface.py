"""A person's first day with the program: a real home folder, mouse and keyboard, and the disk looked at after."""

import os
import subprocess
import sys
import unittest

from on_a_desktop import OnADesktop
from session import wait_until

MB = 1_000_000


def fill(path, size):
    """A file that takes that much of the disk."""
    path.parent.mkdir(parents=True, exist_ok=True)
    with open(path, "wb") as file:
        os.posix_fallocate(file.fileno(), 0, size)


if os.geteuid() != 0:
    # As root of a name space of our own, where a disk can be made.
    os.execvp("unshare", ["unshare", "--map-root-user", "--mount", sys.executable, *sys.orig_argv[1:]])


class FirstDay(OnADesktop):
    disk_size = "4g"

    def setUp(self):
        super().setUp()
        self.home = self.session.home
        self.trash = self.home / ".local/share/Trash"
        fill(self.home / "Videos/holiday.mp4", 90 * MB)
        fill(self.home / "Downloads/old.zip", 1_200 * MB)
        fill(self.home / "Downloads/debian.iso", 40 * MB)
        fill(self.home / ".local/share/games/world", 30 * MB)
        fill(self.home / ".cache/pip/http/wheel", 150 * MB)
        self.make_pip()
        self.make_worktree()

    def make_pip(self):
        """A package manager that keeps a cache and empties it when it is told to."""
        program = self.home / ".local/bin/pip3"
        program.parent.mkdir(parents=True, exist_ok=True)
        program.write_text('#!/bin/sh\n[ "$*" = "cache purge" ] && rm -r "$HOME/.cache/pip/http"\n')
        program.chmod(0o755)

    def git(self, *arguments):
        environment = dict(self.session.environment, GIT_CONFIG_GLOBAL="/dev/null", GIT_AUTHOR_NAME="Ann",
                           GIT_AUTHOR_EMAIL="ann@spacemint.example", GIT_COMMITTER_NAME="Ann",
                           GIT_COMMITTER_EMAIL="ann@spacemint.example")
        return subprocess.run(["git", "-C", str(self.home / "shop"), *arguments], env=environment, check=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE).stdout.decode()

    def make_worktree(self):
        (self.home / "shop").mkdir()
        self.git("init", "-q", "-b", "main")
        (self.home / "shop/.gitignore").write_text("build\n")
        self.git("add", ".gitignore")
        self.git("commit", "-qm", "Begin")
        self.git("worktree", "add", "-q", str(self.home / "shop-old"), "-b", "old")
        fill(self.home / "shop-old/build/product", 120 * MB)
        long_ago = 1_600_000_000
        for name in ("HEAD", "index"):
            os.utime(self.home / "shop/.git/worktrees/shop-old" / name, (long_ago, long_ago))

    def test_scan_clean_and_quit(self):
        app = self.app = self.start({"warningThresholdGB": 1})
        app.click("Start first scan")
        app.wait_scanned()
        app.find("What changed")
        self.picture("overview")
        self.chooses_the_home_folder()
        self.looks_at_the_folders()
        self.moves_a_file_to_the_trash()
        self.empties_the_trash()
        self.cleans_the_cache()
        self.removes_the_worktree()
        self.is_warned()
        app.click_item(app.scroll_to("Quit Spacemint"))
        self.assertEqual(app.exit_code(), 0)
        snapshots = list((self.home / ".local/share/Spacemint/Snapshots").iterdir())
        self.assertTrue(snapshots, "the history is on the disk")
        self.assertTrue((self.home / "Videos/holiday.mp4").exists(), "what nobody chose is there")
        self.assertTrue((self.home / "shop/.gitignore").exists())

    def chooses_the_home_folder(self):
        """The first scan was of the whole disk, in which the home folder of this test lies deep."""
        app = self.app
        app.click("Settings", "push button")
        app.click_item(app.find("Scan", "combo box"))
        app.press("Up")
        app.press("Return")
        app.click("Back", "push button")

    def looks_at_the_folders(self):
        app = self.app
        app.click("Folders")
        self.picture("folders")
        downloads = app.find_starting("Downloads")
        app.double_click_item(downloads)
        app.find_starting("old.zip")
        self.picture("folders-downloads")
        app.click("Developer")
        app.find_starting("pip cache")
        self.picture("developer")

    def moves_a_file_to_the_trash(self):
        app = self.app
        app.click("Large files")
        row = app.find_starting("old.zip")
        app.point_at(row)
        self.picture("files")
        app.click("Move to Trash…", "push button")
        self.answer("Move to Trash", self.home / "Downloads/old.zip")
        wait_until(lambda: (self.trash / "files/old.zip").exists(), "the file in the Trash")
        self.assertIn("Path=", (self.trash / "info/old.zip.trashinfo").read_text())

    def answer(self, button, path):
        """Confirms the question about `path` with the button of that name, and waits until the path is gone."""
        app = self.app
        app.find("Cancel", "push button")
        self.assertTrue(path.exists(), "nothing goes before the answer")
        self.picture("confirmation-" + button.lower().replace(" ", "-"))
        app.click_item(app.all(button, "push button")[-1])
        wait_until(lambda: not path.exists(), f"that {path} goes")

    def empties_the_trash(self):
        app = self.app
        app.click("Overview")
        # What is in the Trash is looked at whenever the panel opens.
        app.press("Escape")
        app.wait_hidden()
        app.open_panel()
        app.click("Empty Trash", "push button")
        self.answer("Empty Trash", self.trash / "files/old.zip")
        wait_until(lambda: not list((self.trash / "info").iterdir()), "that nothing is remembered of it")

    def cleans_the_cache(self):
        app = self.app
        app.click("Developer")
        app.find_starting("pip cache")
        app.click("Clean up", "push button")
        self.answer("Clean up", self.home / ".cache/pip/http/wheel")
        app.wait_text("Cleaned pip cache")

    def removes_the_worktree(self):
        app = self.app
        app.scroll_to("Remove", "push button")
        app.click("Remove", "push button")
        app.find("Remove this worktree?")
        self.answer("Remove worktree", self.home / "shop-old")
        self.assertNotIn("shop-old", self.git("worktree", "list"))
        self.assertIn("old", self.git("branch", "--list", "old"), "its branch stays")

    def is_warned(self):
        app = self.app
        app.click("Settings", "push button")
        calm = app.item_pixels()
        app.click("Warn me below", "combo box")
        app.find("200 GB free")
        self.picture("settings-picker")
        app.press("End", "Return")
        self.session.wait_notification()
        wait_until(lambda: app.item_pixels() != calm, "another colour of the item")
        self.assertEqual(app.settings()["warningThresholdGB"], 200)
        self.picture("warned")


if __name__ == "__main__":
    unittest.main(verbosity=2)

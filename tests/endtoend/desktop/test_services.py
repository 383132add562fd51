"""The question, a message and an update in the running program, from a maker's server on this machine."""

import unittest

from on_a_desktop import OnADesktop
from releases import Maker
from session import wait_until

REPORTS = "/i/v0/e/"
STARTED = {"hasStarted": True, "warningThresholdGB": 1}


class Services(OnADesktop):
    def setUp(self):
        super().setUp()
        self.maker = Maker(self.session.folder / self.id())
        self.addCleanup(self.maker.end)

    def test_question_then_message_then_update(self):
        self.maker.offer("2.0")
        app = self.start(STARTED, self.maker.dictionary())
        app.open_panel()
        app.find("Share anonymous usage?")
        self.picture("services-question")
        self.assertEqual(self.maker.asked[REPORTS], 0, "nothing is sent before a yes")
        app.click("Share")
        app.find("Spacemint 2 is here")
        app.find(self.maker.link, "push button")
        self.assertEqual(self.maker.asked["/picture.png"], 0, "only the services use the network")
        wait_until(lambda: self.maker.asked[REPORTS] == 1, "the report of today")
        self.assertFalse(app.sees("Share anonymous usage?"), "one notice at a time")
        self.picture("services-message")
        app.click("Close")
        wait_until(lambda: not app.sees("Spacemint 2 is here"), "that the message goes")
        app.click("Settings", "push button")
        app.click_item(app.scroll_to("Check now"))
        app.scroll_to("Version 2.0 is ready to install.")
        install = app.scroll_to("Install", "push button")
        self.picture("services-update")
        # No program here opens packages.
        app.click_item(install)
        app.scroll_to_text("sudo apt install '")
        self.picture("services-no-installer")
        # Both answers are kept: nothing is asked or told twice.
        app.terminate()
        app.start()
        app.open_panel()
        app.click("Settings", "push button")
        app.scroll_to("Version 2.0 is ready to install.")
        app.find("Install", "push button")
        wait_until(lambda: self.maker.asked["/feed/spacemint.json"] >= 2, "that it looks for messages")
        self.assertFalse(app.sees("Share anonymous usage?"))
        self.assertFalse(app.sees("Spacemint 2 is here"))
        self.assertEqual(self.maker.asked[REPORTS], 1, "once a day")

    def test_notice_covers_nothing(self):
        app = self.start({"warningThresholdGB": 1}, self.maker.dictionary())
        notice = app.find("Share anonymous usage?", "alert")
        app.resting_centre(notice)
        self.assertFalse(app.covers(notice, app.find("Start first scan")))
        self.picture("services-question-over-welcome")
        app.click("Start first scan")
        app.wait_scanned()
        self.picture("services-question-over-tabs")
        app.click("Settings", "push button")
        app.find("Warn me below", "combo box")
        app.scroll_to_the_end()
        self.picture("services-question-over-settings")
        self.assertFalse(app.covers(app.find("Share anonymous usage?", "alert"), app.find("Quit Spacemint")))
        app.click("Quit Spacemint")
        self.assertEqual(app.exit_code(), 0)

    def test_no_is_a_no(self):
        app = self.start(STARTED, self.maker.dictionary())
        app.open_panel()
        app.click("Don't share")
        app.find("Spacemint 2 is here")
        app.terminate()
        self.assertEqual(self.maker.asked[REPORTS], 0)

    def test_without_a_dictionary_there_is_none_of_it(self):
        app = self.start(STARTED, self.session.folder / "nowhere.plist")
        app.open_panel()
        app.click("Settings", "push button")
        app.scroll_to("Open at login")
        for name in ("Updates", "Share anonymous usage", "Share anonymous usage?"):
            self.assertFalse(app.sees(name), name)
        self.picture("services-none")
        app.terminate()
        self.assertEqual(sum(self.maker.asked.values()), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)

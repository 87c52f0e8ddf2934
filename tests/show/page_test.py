#!/usr/bin/env python3
"""page_test.py SIMULATOR DEVICE-LIBRARY: the page in a real browser, with the real server, devices and library."""
import contextlib
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import unittest

from browser import Browser, Keys, Page
from shown import GREETING, LAUNCH, ROOT, SIMULATOR, Shown, main


class PageTest(Shown):
    # ---- What a visitor does

    def test_play_on_the_lock_screen_starts_the_player(self):
        page = self.open()
        page.press("Play", "#phone")
        self.assertEqual(page.lines()[-1], "tap-transport 3")
        self.assertRow(page, "taken over", "tapOnControlType:3")
        self.assertRow(page, LAUNCH, "com.spotify.client")
        page.press("To next timer")
        self.assertRow(page, "-[SPTPlayer setPaused:NO]")
        self.assertIn("playing", page.text("#screen"))
        self.assertIn("Spotify", page.text("#screen"))

    def test_the_greeting_its_offer_and_its_thanks_are_three_alerts(self):
        page = self.open(GREETING + 'account someone\naccount another\n')
        page.press("Unlock", "#phone")
        alert = "#screen [role=alertdialog]"
        shown = []
        while page.all(alert):
            shown.append(page.text(alert))
            self.assertEqual(page.findings(), [])
            page.all(alert + " button")[-1].click()  # "I'd love to!", then the last account
            page.settle()
        self.assertEqual(len(shown), 3)
        self.assertIn("Thanks for purchasing", shown[0])
        self.assertIn("another", shown[1])
        self.assertRow(page, "SLRequest performRequestWithHandler:", "another")

    def test_headphones_are_plugged_in_and_pulled_out(self):
        page = self.open()
        page.press("Plug in", "#around")
        self.assertEqual(page.lines()[-1], "headphones in")
        self.assertIn("headphones", page.text("#status"))
        page.press("Pull out", "#around")
        self.assertNotIn("headphones", page.text("#status"))

    def test_play_in_another_app_is_sent_to_the_player_of_choice(self):
        page = self.open()
        page.press("Unlock", "#phone")
        page.press("Notes", "#phone")
        self.assertIn("Notes", page.text("#screen"))
        page.press("Press Play in here", "#phone")
        self.assertEqual(page.lines()[-1], "remote 2 in com.example.notes")
        self.assertRow(page, "taken over", "MRMediaRemoteSendCommand")
        self.assertRow(page, "heard", "VNutj2BhJMTGTwVk")
        self.assertRow(page, LAUNCH, "com.spotify.client")

    def test_what_cannot_happen_now_is_disabled_and_says_why(self):
        page = self.open("app com.spotify.client \"Spotify\"\n")
        self.assertIn("off", page.text("#screen"))
        plug = page.button("Plug in", "#around")
        self.assertFalse(plug.is_enabled())
        self.assertIn("off", plug.get_attribute("title"))
        page.press("Switch on", "#phone")
        self.assertTrue(page.button("Plug in", "#around").is_enabled())

    def test_the_settings_page_is_the_product_s_own(self):
        page = self.open("boot\n")
        page.press("Settings", "#phone")
        switch = next(one for one in page.all("#screen [role=switch]") if "Enabled" in one.text)
        self.assertEqual(switch.get_attribute("aria-checked"), "false")
        switch.click()
        page.settle()
        self.assertEqual(page.lines()[-1], 'settings set "Enabled" yes')
        self.assertRow(page, "writeToFile")
        switch = next(one for one in page.all("#screen [role=switch]") if "Enabled" in one.text)
        self.assertEqual(switch.get_attribute("aria-checked"), "true")

    # ---- Time and the scenario

    def test_back_in_time_and_another_way_forward(self):
        page = self.open()
        before = page.lines()
        page.press("Play", "#phone")
        page.press("To next timer")
        page.press("One line back", "#time")
        page.press("One line back", "#time")
        self.assertIn("nothing", page.text("#screen").lower())
        page.press("Plug in", "#around")
        self.assertEqual(page.lines(), before + ["headphones in"])
        self.assertIn("Undo", page.text("#said"))
        page.press("Undo", "#time")
        self.assertEqual(page.lines()[len(before)], "tap-transport 3")

    def test_real_time_passes_without_a_flood_of_lines(self):
        page = self.open()
        page.press("Play", "#phone")
        before = page.lines()
        page.press("Let time pass", "#time")
        page.wait(lambda: "playing" in page.text("#screen"), "the player plays by itself")
        page.press("Hold time", "#time")
        waits = page.lines()[len(before):]
        self.assertLessEqual(len(waits), 2)
        self.assertTrue(all(line.startswith("advance ") for line in waits), waits)

    def test_a_row_is_explained_with_the_settings_that_decided(self):
        page = self.open()
        page.press("Play", "#phone")
        page.row(LAUNCH).click()
        page.settle()
        told = page.text("#detail")
        self.assertIn("Preferred Player", told)
        self.assertIn("Every call behind it", told)
        page.one("#detail summary").click()
        self.assertIn("objectForKey", page.text("#detail"))

    def test_the_record_is_searched_and_filtered(self):
        page = self.open()
        page.press("Play", "#phone")
        page.one("#by-text").send_keys("Spotify is STARTED")
        rows = page.rows()
        self.assertTrue(rows and all("Spotify is started" in row for row in rows), rows)
        page.one("#by-text").send_keys(Keys.CONTROL, "a", Keys.DELETE)
        page.one("#by-process").send_keys("Spotify")
        rows = page.rows()
        self.assertTrue(rows and all(" you" in row or "Spotify" in row for row in rows), rows)
        page.one("#by-outcome").send_keys("heard")
        rows = page.rows()
        self.assertTrue(rows and all("heard" in row for row in rows), rows)

    def test_expect_this_adds_the_line_and_it_holds(self):
        page = self.open()
        page.press("Play", "#phone")
        page.row(LAUNCH).click()
        page.press("Expect this", "#detail")
        self.assertTrue(page.lines()[-1].startswith("expect -[SpringBoard " + LAUNCH), page.lines()[-1])
        self.assertEqual(page.all("#lines li")[-1].find_element("css selector", ".done").text, "✓")

    def test_a_scenario_is_edited_saved_and_opened_again(self):
        page = self.open()
        page.enter("locked yes\nboot\n")
        self.assertEqual(page.lines(), ["locked yes", "boot"])
        name = page.one("#save-as")
        name.clear()
        name.send_keys("two lines.txt")
        page.press("Save", "#scenario")
        page.wait(lambda: "Saved" in page.text("#said"), "it is saved")
        self.assertEqual((self.saved / "two lines.txt").read_text(), "locked yes\nboot\n")
        page.choose("#open", "press-play")
        page.wait(lambda: len(page.lines()) > 10, "the other one is opened")
        page.settle()
        self.assertIn("✓", page.text("#lines"))
        page.choose("#open", "two lines")
        page.wait(lambda: page.lines() == ["locked yes", "boot"], "it is opened again")

    def test_a_link_holds_the_scenario(self):
        page = self.open("locked yes\nboot\n")
        page.press("Copy link", "#scenario")
        page.wait(lambda: page.text("#said"), "it is said")
        again = Page(self.browser, self.browser.driver.current_url)
        self.assertEqual(again.lines(), ["locked yes", "boot"])

    def test_a_wrong_line_says_so_at_that_line_and_nothing_is_lost(self):
        page = self.open()
        before = page.lines()
        page.enter("boot\nfly\n")
        self.assertEqual(page.text("#wrong"), "Line 2: unknown command fly")
        self.assertEqual(page.one("#text").get_attribute("value"), "boot\nfly\n")
        page.press("Leave as it was", "#scenario")
        self.assertEqual(page.lines(), before)

    def test_a_command_out_of_place_says_so_where_it_stands(self):
        page = self.open("boot\npress 0\n")
        self.assertIn("no alert is shown", page.text("#lines"))

    def test_a_process_that_crashes_is_a_row_and_the_phone_goes_on(self):
        page = self.open("no-method SBMediaController hasTrack\nprefs iea9AQXrEmhSZ4u yes\n"
                         "prefs 2I8UQMOAwU5nnNZt \"com.apple.Music\"\nboot\ntap-transport 3\n")
        self.assertRow(page, "crash", "unrecognized selector")
        self.assertIn("off", page.text("#screen"))
        page.press("Switch on", "#phone")
        self.assertIn("boot", page.lines()[-1])

    def test_a_device_that_dies_is_said_and_the_next_press_goes_on(self):
        page = self.open()
        page.press("Plug in", "#around")
        for device in self.server.devices():
            # (That of a page closed a moment ago may end by itself before.)
            with contextlib.suppress(ProcessLookupError):
                os.kill(device, signal.SIGSEGV)
        page.wait(lambda: "signal 11" in page.text("#said"), "its end is said")
        page.press("Pull out", "#around")
        self.assertEqual(page.lines()[-1], "headphones out")
        self.assertNotIn("headphones", page.text("#status"))

    def test_a_connection_that_is_closed_for_good_is_followed_by_another(self):
        page = self.open_with_sources()
        self.browser.driver.execute_script("sources[0].close(); sources[0].onerror();")
        page.wait(lambda: self.browser.driver.execute_script("return sources[1]?.readyState") == 1, "another one is opened")
        page.press("Play", "#phone")
        page.wait(lambda: page.lines()[-1] == "tap-transport 3", "it is played there")
        self.assertRow(page, LAUNCH, "com.spotify.client")
        self.assertEqual(page.text("#said"), "")

    # ---- Builds, versions, what is missing

    def test_every_build_shows_the_same(self):
        page = self.open()
        page.press("Play", "#phone")
        rows = page.rows()
        for build in ("arm64", "armv7"):
            page.choose("#build", build)
            page.wait(lambda: len(page.rows()) == len(rows), "it is played there")
            self.assertEqual(page.rows(), rows, build)

    def test_two_builds_side_by_side_do_not_differ_and_two_versions_do(self):
        page = self.open()
        page.press("Play", "#phone")
        page.choose("#compare", "armv7")
        page.wait(lambda: "no difference" in page.text("#difference"), "they are compared")
        self.assertTrue(page.one("#second").is_displayed())
        page.choose("#compare", "iOS 7.0")
        page.wait(lambda: page.all("#first .differs") and page.all("#second .differs"), "both mark it")
        self.assertIn("first difference", page.text("#difference"))

    def test_another_version_keeps_play_what_it_is(self):
        page = self.open()
        page.press("Play", "#phone")
        page.choose("#version", "iOS 8.0")
        self.assertIn("tap-transport 4", page.lines())
        self.assertRow(page, "taken over", "tapOnControlType:4")

    # ---- For everybody

    def test_the_keyboard_alone_is_enough(self):
        page = self.open()
        for _ in range(60):
            page.keys(Keys.TAB)
            focused = self.browser.driver.switch_to.active_element
            if focused.get_attribute("aria-label") == "Play":
                break
        outline = focused.value_of_css_property("outline-style")
        self.assertNotEqual(outline, "none", "the focus is seen")
        page.keys(Keys.ENTER)
        self.assertEqual(page.lines()[-1], "tap-transport 3")
        for _ in range(60):
            focused = self.browser.driver.switch_to.active_element
            if focused.get_attribute("role") == "listbox":
                break
            page.keys(Keys.TAB)
        page.keys(Keys.END)
        self.assertTrue(focused.get_attribute("aria-activedescendant"))
        self.assertIn("Every call behind it", page.text("#detail"))

    def test_narrow_and_wide_nothing_lies_beside_the_window(self):
        for width in (360, 768, 1280, 1920):
            self.browser.size(width, 900)
            page = self.open()
            page.press("Play", "#phone")
            self.assertLessEqual(page.sideways(), 0, f"{width} pixels")
            self.assertTrue(page.button("Play", "#phone").is_displayed() if width > 360 else True)
        self.browser.size(1280, 900)

    def test_no_barrier_is_found_in_any_state_light_or_dark(self):
        for scheme in ("light", "dark"):
            self.browser.driver.execute_cdp_cmd(
                "Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
            page = self.open()
            self.assertEqual(page.findings(), [], scheme)
            page.press("Play", "#phone")
            page.row(LAUNCH).click()
            self.assertEqual(page.findings(), [], scheme + ", a row chosen")
            page.press("Unlock", "#phone")
            self.assertEqual(page.findings(), [], scheme + ", home screen")
            page.press("Settings", "#phone")
            self.assertEqual(page.findings(), [], scheme + ", settings")

    def test_texts_of_a_scenario_are_never_markup(self):
        page = self.open('app a.b "<img src=x onerror=alert(1)>"\nboot\n')
        self.assertEqual(page.all("#screen img"), [])
        self.assertIn("<img src=x onerror=alert(1)>", page.text("#screen"))

    def test_a_record_of_many_rows_draws_those_that_are_seen(self):
        page = self.open("boot\n" + "remote 1\n" * 1500)
        count = int(re.match(r"\d+", page.text("#count"))[0])
        self.assertGreaterEqual(count, 3000)
        self.assertLess(len(page.all("#first [data-at]")), 60)


class StaticPageTest(unittest.TestCase):
    def test_it_opens_from_the_disk_with_the_network_off(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "page.html"
            file.write_bytes(subprocess.run(
                [SIMULATOR, "run", "--format", "html", ROOT / "scenarios" / "press-play.txt"],
                check=True, stdout=subprocess.PIPE).stdout)
            browser = Browser()
            try:
                browser.driver.execute_cdp_cmd("Network.enable", {})
                browser.driver.execute_cdp_cmd("Network.emulateNetworkConditions", {
                    "offline": True, "latency": 0, "downloadThroughput": 0, "uploadThroughput": 0})
                page = Page(browser, file.as_uri())
                self.assertIn("Spotify", page.text("#screen"))
                self.assertTrue(any(LAUNCH in row for row in page.rows()))
                page.press("One line back", "#time")
                self.assertEqual(page.findings(), [])
                self.assertEqual(browser.console(), [])
                self.assertEqual([url for url in browser.requests() if not url.startswith(("file:", "data:", "about:"))], [])
            finally:
                browser.quit()


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""page_edges_test.py SIMULATOR DEVICE-LIBRARY: the page when it is used at an awkward moment, or handed something odd."""
import urllib.parse

from browser import Keys, Page
from shown import LAUNCH, Shown, main


class Links(Shown):
    def test_a_broken_link_is_said_and_the_page_is_of_use(self):
        page = Page(self.browser, self.server.url + "#scenario=%E0%A4%A")
        self.assertIn("link", page.text("#said"))
        self.assertIn("boot", page.lines())
        self.browser.driver.execute_script("location.hash = '#open=%'")
        page.wait(lambda: "#open" in self.browser.driver.current_url, "it is asked for")
        self.assertIn("boot", page.lines())

    def test_a_link_to_no_file_is_said_and_the_page_is_of_use(self):
        for path in ("scenarios/none.txt", "//example.com/a.txt", "none"):
            page = Page(self.browser, self.server.url + "#open=" + path)
            page.wait(lambda page=page: "no such file" in page.text("#said"), path)
            self.assertIn("boot", page.lines())
            self.assertEqual([line for line in self.browser.console() if "404" not in line], [])

    def test_a_scenario_that_is_too_long_is_refused_and_the_page_goes_on(self):
        page = self.open("# too long\n" * 5001)
        page.wait(lambda: page.text("#wrong") == "more than 5000 lines", "it is said")
        self.assertIn("boot", page.lines())
        self.assertEqual(len(page.one("#text").get_attribute("value").split("\n")), 5002)
        self.at_once("[data-file=apply]")
        page.wait(lambda: "413" in str(self.browser.console()), "it is refused once more")
        page.settle()
        self.assertEqual(len(page.one("#text").get_attribute("value").split("\n")), 5002)
        page.press("Leave as it was", "#scenario")
        page.press("Play", "#phone")
        self.assertEqual(page.lines()[-1], "tap-transport 3")
        self.assertRow(page, LAUNCH, "com.spotify.client")
        self.assertEqual([line for line in self.browser.console() if "413" not in line], [])


class Races(Shown):
    def test_undo_pressed_twice_at_once_is_one_undo(self):
        page = self.open("boot\n")
        page.press("Plug in", "#around")
        for _ in range(2):
            self.at_once("[data-time=undo]", "[data-time=undo]", "[data-time=undo]")
            page.settle()
        self.assertIn("boot", page.lines())

    def test_the_next_timer_pressed_twice_at_once_is_one_timer(self):
        page = self.open()
        page.press("Play", "#phone")
        before = page.lines()
        self.at_once("[data-time=timer]", "[data-time=timer]")
        page.settle()
        self.assertEqual(len(page.lines()), len(before) + 1, page.lines())

    def test_time_that_nothing_can_play_does_not_pass(self):
        page = self.open()
        page.press("Play", "#phone")
        self.assertTrue(page.button("To next timer").is_enabled())
        page.enter("\n".join([*page.lines(), "press 0"]))
        self.assertIn("no alert is shown", page.text("#lines"))
        self.assertFalse(page.button("To next timer").is_enabled())

    def test_going_back_while_time_passes_keeps_what_was_played(self):
        page = self.open()
        page.press("Play", "#phone")
        before = page.lines()
        page.press("Let time pass", "#time")
        page.wait(lambda: "playing" in page.text("#screen"), "the player plays by itself")
        self.browser.driver.execute_script(f"""
            const moment = document.getElementById("moment");
            moment.value = {len(before) - 1};
            moment.dispatchEvent(new Event("input", {{ bubbles: true }}));""")
        page.settle()
        self.assertEqual(page.lines()[:len(before)], before)
        self.assertIn("nothing is loaded", page.text("#screen"))
        self.assertEqual(page.one("[data-time=pace]").get_attribute("aria-pressed"), "false")
        page.press("Undo", "#time")
        self.assertEqual(page.lines(), before)

    def test_what_is_pressed_before_a_refusal_comes_is_undone_with_it(self):
        page = self.open()
        before = page.lines()
        page.press("Edit", "#scenario")
        self.browser.driver.execute_script("document.getElementById('text').value = 'boot\\nfly\\n'")
        self.at_once("[data-file=apply]", "[data-do='headphones in']")
        page.wait(lambda: "unknown command fly" in page.text("#wrong"), "it is refused")
        page.press("Leave as it was", "#scenario")
        self.assertEqual(page.lines(), before)

    def test_many_comparisons_in_a_moment_leave_the_last(self):
        page = self.open()
        page.press("Play", "#phone")
        self.browser.driver.execute_script("""
            const compare = document.getElementById("compare");
            for (let at = 0; at < 40; ++at) {
              compare.selectedIndex = 1 + at % (compare.options.length - 1);
              compare.dispatchEvent(new Event("change", { bubbles: true }));
            }
            compare.value = "armv7";
            compare.dispatchEvent(new Event("change", { bubbles: true }));""")
        page.wait(lambda: page.text("#difference") == "armv7: no difference so far" and page.rows("#second"), "it is compared")
        self.assertEqual(page.rows("#second"), page.rows("#first"))
        self.assertEqual([line for line in self.browser.console() if "429" not in line], [])

    def test_no_free_connection_is_said(self):
        page = self.open()
        self.browser.driver.execute_script("""
            const patience = AbortSignal.timeout;
            AbortSignal.timeout = () => patience(500);
            window.others = Array.from({ length: 5 }, () => new EventSource("sessions?build=host"));""")
        page.wait(lambda: self.browser.driver.execute_script("return others.every((one) => one.readyState === 1)"), "all are taken")
        self.at_once("[data-do='headphones in']")
        page.wait(lambda: "too many pages" in page.text("#said"), "it is said")
        self.browser.driver.execute_script("others.forEach((one) => one.close())")
        page.press("Play", "#phone")
        self.assertRow(page, LAUNCH, "com.spotify.client")

    def test_a_session_that_the_server_has_ended_is_followed_by_another(self):
        page = self.open_with_sources()
        self.browser.driver.execute_script("sources[0].close()")
        page.wait(lambda: not self.server.devices(), "the server ends it")
        page.press("Play", "#phone")
        page.wait(lambda: page.lines()[-1] == "tap-transport 3", "it is played")
        self.assertRow(page, LAUNCH, "com.spotify.client")
        self.assertEqual(page.text("#said"), "")
        self.assertEqual([line for line in self.browser.console() if "404" not in line], [])

    def test_a_page_that_is_come_back_to_goes_on(self):
        page = self.open()
        self.browser.driver.execute_script("""
            dispatchEvent(new PageTransitionEvent("pagehide", { persisted: true }));
            dispatchEvent(new PageTransitionEvent("pageshow", { persisted: true }));""")
        page.settle()
        page.press("Play", "#phone")
        self.assertRow(page, LAUNCH, "com.spotify.client")


class Looking(Shown):
    def value(self, selector):
        return self.browser.driver.execute_script(
            "const one = document.querySelector(arguments[0]); return [one.value, one.selectedOptions[0]?.text]", selector)

    def test_a_filter_shows_what_is_filtered(self):
        page = self.open()
        page.press("Play", "#phone")
        page.one("#by-process").send_keys("Spotify")
        for _ in range(3):
            page.press("One line back", "#time")
            self.assertEqual(self.value("#by-process"), ["com.spotify.client", "Spotify"])
        page.enter('app com.example.notes "Notes"\nboot\nstart com.example.notes\nstart com.spotify.client\n')
        self.assertEqual(self.value("#by-process"), ["com.spotify.client", "Spotify"])
        page.one("#by-text").send_keys("e")
        self.assertEqual(self.value("#by-process")[0], "com.spotify.client")

    def test_a_fold_counts_what_is_looked_for(self):
        page = self.open("boot\n")
        page.one("#by-text").send_keys("launchIcon")
        folded = [row for row in page.rows() if "Starting up" in row]
        self.assertEqual(len(folded), 1)
        self.assertIn("(1)", folded[0])

    def test_a_choice_of_another_page_is_shown(self):
        start = 'app com.spotify.client "Spotify"\nprefs iea9AQXrEmhSZ4u yes\n'
        page = self.open(start + "boot\nsettings open\n")
        page.enter(start + 'app com.pandora "Pandora"\nboot\nsettings open\nsettings choose "Preferred Player" com.pandora\n')
        self.assertEqual(self.value("#screen [data-choose='Preferred Player']"), ["com.pandora", "Pandora"])

    def test_a_choice_that_was_not_there_before_is_shown(self):
        self.open()
        shown = self.browser.driver.execute_async_script("""
            const done = arguments[0];
            import(location.pathname + "dom.js").then(({ el, fill }) => {
              const host = el("div"), select = (...values) => [el("label", {}, el("select", {},
                values.map((value) => el("option", { value, selected: value === values.at(-1) }))))];
              const showing = (...values) => { fill(host, select(...values)); return host.querySelector("select").value; };
              done([showing("a"), showing("a", "b"), showing("a", "b", "c"), showing("b")]);
            });""")
        self.assertEqual(shown, ["a", "b", "c", "b"])

    def test_the_focus_stays_on_a_line(self):
        page = self.open()
        line = page.one("#lines [data-line='5']")
        line.send_keys(Keys.ENTER)
        page.settle()
        focused = self.browser.driver.switch_to.active_element
        self.assertEqual(focused.get_attribute("data-line"), "5")
        self.assertEqual(focused.get_attribute("aria-current"), "step")

    def test_a_row_of_the_other_device_is_only_told(self):
        page = self.open()
        page.press("Play", "#phone")
        page.row(LAUNCH).click()
        self.assertTrue(page.button("Expect this", "#detail"))
        page.choose("#compare", "iOS 7.0")
        page.wait(lambda: page.all("#second .differs"), "they are compared")
        page.row(LAUNCH, "#second").click()
        page.settle()
        self.assertIn("Spotify", page.text("#detail h3"))
        self.assertEqual(page.all("#detail [data-row]"), [])

    def test_a_row_of_a_scenario_that_is_gone_is_only_told(self):
        page = self.open()
        page.press("Play", "#phone")
        page.row(LAUNCH).click()
        self.assertTrue(page.button("Expect this", "#detail"))
        page.enter("locked yes\nboot\n")
        self.assertEqual(page.all("#detail [data-row]"), [])

    def test_names_with_signs_of_patterns_are_shown_as_they_are(self):
        page = self.open('app a.b "$& $1 [$1] {}"\nboot\nstart a.b\n')
        self.assertRow(page, "$& $1 [$1] {} is started.")
        self.assertRow(page, "$& $1 [$1] {} starts")

    def test_another_build_is_what_a_version_is_compared_on(self):
        page = self.open()
        page.choose("#compare", "iOS 8.4")
        page.wait(lambda: "no difference" in page.text("#difference"), "they are compared")
        page.choose("#build", "arm64")
        page.wait(lambda: "no difference" in page.text("#difference"), "they are compared again")
        asked = self.browser.driver.execute_script(
            "return performance.getEntriesByType('resource').map((one) => one.name).filter((name) => /build=/.test(name))")
        builds = [urllib.parse.urlsplit(one).query for one in self.devices(page, asked)]
        self.assertEqual(builds[-2:], ["build=arm64", "build=arm64"], builds)

    def devices(self, page, finished):
        """Sessions asked for since the page was loaded, in their order."""
        return [one for one in self.browser.requests() if "sessions?build=" in one] or finished


class Saving(Shown):
    def text_of(self, name):
        return (self.saved / name).read_text()

    def save_as(self, page, name):
        field = page.one("#save-as")
        field.clear()
        field.send_keys(name)
        page.press("Save", "#scenario")

    def test_what_is_being_edited_is_what_is_saved_and_not_lost(self):
        page = self.open("boot\n")
        page.press("Edit", "#scenario")
        page.one("#text").send_keys("locked yes")
        page.press("Edit", "#scenario")
        self.assertEqual(page.one("#text").get_attribute("value"), "boot\nlocked yes")
        self.save_as(page, "edited.txt")
        page.wait(lambda: "Saved" in page.text("#said"), "it is saved")
        self.assertEqual(self.text_of("edited.txt"), "boot\nlocked yes\n")

    def test_another_file_is_replaced_when_asked_twice(self):
        (self.saved / "kept.txt").write_text("locked yes\n")
        page = self.open("boot\n")
        self.save_as(page, "kept")
        page.wait(lambda: "again" in page.text("#said"), "it is said")
        self.assertEqual(self.text_of("kept.txt"), "locked yes\n")
        page.press("Save", "#scenario")
        page.wait(lambda: "Saved" in page.text("#said"), "it is saved")
        self.assertEqual(self.text_of("kept.txt"), "boot\n")
        page.choose("#open", "kept")
        page.wait(lambda: page.text("#name") == "kept.txt", "it is opened")
        self.assertEqual(page.one("#save-as").get_attribute("value"), "kept.txt")
        page.press("Plug in", "#around")
        page.press("Save", "#scenario")
        page.wait(lambda: "Saved" in page.text("#said"), "one's own is saved at once")
        self.assertEqual(self.text_of("kept.txt"), "boot\nheadphones in\n")
        page.choose("#open", "press-play")
        page.wait(lambda: page.text("#name") == "press-play.txt", "another one is opened")
        page.press("Save", "#scenario")
        page.wait(lambda: "again" in page.text("#said"), "which is not that file")
        self.assertEqual(self.text_of("kept.txt"), "boot\nheadphones in\n")


if __name__ == "__main__":
    main()

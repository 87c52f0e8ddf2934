#!/usr/bin/env python3
"""page_edges_test.py SIMULATOR DEVICE-LIBRARY: the page when it is used at an awkward moment, or handed something odd."""
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
        page.wait(lambda: "more than 5000 lines" in page.text("#said"), "it is said")
        self.assertIn("boot", page.lines())
        page.press("Play", "#phone")
        self.assertEqual(page.lines()[-1], "tap-transport 3")
        self.assertRow(page, LAUNCH, "com.spotify.client")
        self.assertEqual([line for line in self.browser.console() if "413" not in line], [])


class Races(Shown):
    def at_once(self, *clicks):
        self.browser.driver.execute_script("for (const one of arguments) document.querySelector(one).click()", *clicks)

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

    def test_a_page_that_is_come_back_to_goes_on(self):
        page = self.open()
        self.browser.driver.execute_script("""
            dispatchEvent(new PageTransitionEvent("pagehide", { persisted: true }));
            dispatchEvent(new PageTransitionEvent("pageshow", { persisted: true }));""")
        page.settle()
        page.press("Play", "#phone")
        self.assertRow(page, LAUNCH, "com.spotify.client")


class Looking(Shown):
    def test_the_focus_stays_on_a_line(self):
        page = self.open()
        line = page.one("#lines [data-line='5']")
        line.send_keys(Keys.ENTER)
        page.settle()
        focused = self.browser.driver.switch_to.active_element
        self.assertEqual(focused.get_attribute("data-line"), "5")
        self.assertEqual(focused.get_attribute("aria-current"), "step")


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


if __name__ == "__main__":
    main()

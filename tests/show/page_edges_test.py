#!/usr/bin/env python3
"""page_edges_test.py SIMULATOR DEVICE-LIBRARY: the page when it is used at an awkward moment, or handed something odd."""
from browser import Keys
from shown import Shown, main


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

"""A page in a real browser, headless: pressed, read and looked at as a person would."""
import contextlib
import json
import pathlib
import time

from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select

PATIENCE = 30  # seconds, on a busy machine
AXE = pathlib.Path(__file__).parent / "axe-core" / "axe.min.js"


class Browser:
    """Debian's chromium. Keeps what pages write to the console and every address that they ask for."""

    def __init__(self, width=1280, height=900, dark=False):
        options = webdriver.ChromeOptions()
        for switch in ("headless=new", "no-sandbox", "disable-gpu", "disable-dev-shm-usage", "hide-scrollbars",
                       "force-prefers-reduced-motion", f"window-size={width},{height}", "no-first-run",
                       "disable-background-networking", "disable-component-update", "disable-sync"):
            options.add_argument("--" + switch)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        options.binary_location = "/usr/bin/chromium"
        self.driver = webdriver.Chrome(options=options)
        self.driver.set_page_load_timeout(PATIENCE)
        self.size(width, height)
        if dark:
            self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                                        {"features": [{"name": "prefers-color-scheme", "value": "dark"}]})

    def size(self, width, height):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                    {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})

    def quit(self):
        self.driver.quit()

    # ---- What it saw beside the page

    def console(self):
        """What was written since the last time."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def requests(self):
        """Addresses that were asked for since the last time."""
        events = (json.loads(entry["message"])["message"] for entry in self.driver.get_log("performance"))
        return [event["params"]["request"]["url"] for event in events
                if event["method"] == "Network.requestWillBeSent"]


class Page:
    """The page of one device. What is done waits until all of it has been played and drawn."""

    def __init__(self, browser, url):
        self.browser, self.driver = browser, browser.driver
        # (Another fragment alone would not load the page anew.)
        self.driver.get("about:blank")
        self.driver.get(url)
        self.settle()

    def settle(self):
        self.wait(lambda: self.driver.execute_script(
            "return document.readyState === 'complete' && document.querySelector('#lines li')"
            " && !document.body.classList.contains('busy')"), "the page comes to rest")
        self.driver.execute_async_script("const done = arguments[0];"
                                         "requestAnimationFrame(() => requestAnimationFrame(done))")

    @staticmethod
    def wait(what, wanted):
        end = time.monotonic() + PATIENCE
        while True:
            with contextlib.suppress(Exception):
                if what():
                    return
            if time.monotonic() > end:
                raise AssertionError("never: " + wanted)
            time.sleep(0.02)

    # ---- Finding

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def button(self, label, within="body"):
        """By what is read of it, or by its label for those who do not see."""
        for button in self.all(within + " button"):
            if label in [*button.text.split("\n"), button.get_attribute("aria-label")]:
                return button
        raise AssertionError(f"no button {label} within {within}: " +
                             ", ".join(button.text for button in self.all(within + " button")))

    def text(self, selector):
        return self.one(selector).text

    # ---- Doing

    def press(self, label, within="body"):
        self.button(label, within).click()
        self.settle()

    def choose(self, selector, label):
        Select(self.one(selector)).select_by_visible_text(label)
        self.settle()

    def keys(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()
        self.settle()

    def enter(self, text):
        """The whole scenario, in its editor."""
        self.press("Edit", "#scenario")
        area = self.one("#text")
        self.driver.execute_script("arguments[0].value = arguments[1]", area, text)
        self.press("Apply", "#scenario")

    # ---- Reading

    def lines(self):
        return [line.get_attribute("textContent") for line in self.all("#lines code")]

    def rows(self, record="#first"):
        """All rows of the record, seen or not, as the words in them."""
        return self.driver.execute_async_script("""
          const [host, done] = arguments;
          const box = document.querySelector(host + " .record");
          const found = new Map();
          const frame = () => new Promise((drawn) => requestAnimationFrame(drawn));
          (async () => {
            const before = box.scrollTop;
            for (let top = 0; ; top += box.clientHeight / 2) {
              box.scrollTop = top;
              await frame(); await frame();
              for (const row of box.querySelectorAll("[data-at]")) found.set(+row.dataset.at, row.innerText.replace(/\\s+/g, " "));
              if (top >= box.scrollHeight) break;
            }
            box.scrollTop = before;
            await frame();
            done([...found].sort((a, b) => a[0] - b[0]).map(([, text]) => text));
          })();""", record)

    def row(self, words, record="#first"):
        """The first row that holds these words, brought into view."""
        at = next((at for at, text in enumerate(self.rows(record)) if words in text), None)
        assert at is not None, f"no row with {words}: {self.rows(record)}"
        self.driver.execute_script("document.querySelector(arguments[0] + ' .record').scrollTop = 46 * arguments[1]",
                                   record, at)
        self.settle()
        return self.one(f"{record} [data-at='{at}']")

    def findings(self):
        """What axe-core finds wrong, and how bad: serious and critical ones."""
        self.driver.execute_script(AXE.read_text())
        found = self.driver.execute_async_script(
            "const done = arguments[0]; axe.run().then((result) => done(result.violations))")
        return [f"{one['id']} ({one['impact']}): {node['html'][:120]}" for one in found
                if one["impact"] in ("serious", "critical") for node in one["nodes"]]

    def picture(self, path):
        self.driver.save_screenshot(str(path))

    def sideways(self):
        """By how many pixels the page is wider than the window."""
        return self.driver.execute_script("return document.documentElement.scrollWidth - innerWidth")


__all__ = ["Browser", "Page", "Keys", "PATIENCE"]

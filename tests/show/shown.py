"""What tests of the page have in common: a server of their own with real devices, and a browser that must see no mistake."""
import pathlib
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

from browser import Browser, Page

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SIMULATOR, DEVICE_LIBRARY = (pathlib.Path(argument) for argument in sys.argv[1:3])
GREETING = 'prefs iea9AQXrEmhSZ4u yes\nlocked yes\nboot\n'
LAUNCH = "launchApplicationWithIdentifier"


class Server:
    def __init__(self, saved):
        self.process = subprocess.Popen(
            [SIMULATOR, "serve", "--scenarios", ROOT / "scenarios", "--saved", saved, "--image", DEVICE_LIBRARY],
            stdout=subprocess.PIPE, text=True)
        self.url = self.process.stdout.readline().strip()

    def devices(self):
        """Their numbers."""
        found = subprocess.run(["pgrep", "-P", str(self.process.pid)], stdout=subprocess.PIPE, text=True, check=False)
        return [int(number) for number in found.stdout.split()]

    def end(self):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()


class Shown(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.saved = pathlib.Path(cls.folder.name)
        cls.server = Server(cls.saved)
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()
        cls.server.end()
        cls.folder.cleanup()

    def tearDown(self):
        self.assertEqual(self.browser.console(), [])
        ours = urllib.parse.urlsplit(self.server.url).netloc
        others = {url for url in self.browser.requests()
                  if urllib.parse.urlsplit(url).scheme.startswith("http") and urllib.parse.urlsplit(url).netloc != ours}
        self.assertEqual(others, set())

    def open(self, scenario=None):
        if scenario is None:
            return Page(self.browser, self.server.url)
        return Page(self.browser, f"{self.server.url}#scenario={urllib.parse.quote(scenario)}")

    def open_with_sources(self):
        """A page whose connections to the server stand in its `sources`."""
        kept = self.browser.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": """
            window.sources = [];
            window.EventSource = class extends EventSource {
              constructor(address) { super(address); sources.push(this); }
            };"""})
        page = self.open()
        self.browser.driver.execute_cdp_cmd("Page.removeScriptToEvaluateOnNewDocument", kept)
        return page

    def at_once(self, *clicks):
        self.browser.driver.execute_script("for (const one of arguments) document.querySelector(one).click()", *clicks)

    def assertRow(self, page, *words, record="#first"):
        rows = page.rows(record)
        self.assertTrue(any(all(word in row for word in words) for row in rows), f"no row with {words}: {rows}")


def main():
    unittest.main(module="__main__", argv=sys.argv[:1] + sys.argv[3:], verbosity=2)

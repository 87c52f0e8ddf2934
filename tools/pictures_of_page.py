#!/usr/bin/env python3
"""pictures_of_page.py SIMULATOR: makes the pictures of the page that stand in README and docs, in docs/pictures/.

Debian's chromium and selenium draw them; /usr/bin/python3 finds the latter.
"""
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(ROOT / "tests" / "show")]
from browser import Browser, Page  # noqa: E402

FOLDER = ROOT / "docs" / "pictures"
SIZE = (1280, 860)


def play_pressed(browser, url):
    """A silent, locked phone on which Play was pressed: why the player came up."""
    page = Page(browser, url)
    page.press("Play", "#phone")
    page.press("To next timer")
    page.row("launchApplicationWithIdentifier").click()
    page.settle()
    return page


def greeting(browser, url):
    """The first unlock, in the dark."""
    page = Page(browser, url + "#scenario=" + "app%20com.spotify.client%20%22Spotify%22%0Alocked%20yes%0Aboot%0Aunlock")
    page.row("UIAlertView show").click()
    page.settle()
    return page


def settings(browser, url):
    """The settings page, with the switch just moved."""
    page = Page(browser, url)
    page.press("Unlock", "#phone")
    page.press("Settings", "#phone")
    page.row("settings open").click()
    page.settle()
    return page


def main():
    pictures = [("page-play", play_pressed, False), ("page-greeting", greeting, True), ("page-settings", settings, False)]
    with tempfile.TemporaryDirectory() as saved:
        server = subprocess.Popen([sys.argv[1], "serve", "--scenarios", ROOT / "scenarios", "--saved", saved],
                                  stdout=subprocess.PIPE, text=True)
        url = server.stdout.readline().strip()
        try:
            for name, draw, dark in pictures:
                browser = Browser(*SIZE, dark=dark)
                try:
                    draw(browser, url).picture(FOLDER / f"{name}.png")
                finally:
                    browser.quit()
        finally:
            server.terminate()
            server.wait()


if __name__ == "__main__":
    main()

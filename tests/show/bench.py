#!/usr/bin/env python3
"""bench.py SIMULATOR: how quick the page is, in a real browser on the real server.

Prints milliseconds, each the median of several tries, beside what is aimed for. Machines differ and are noisy:
the ratios beside them are of the same run, a click at the most rows to one at the fewest.
"""
import pathlib
import statistics
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(ROOT / "tests" / "show")]
from browser import Browser, Page  # noqa: E402

TRIES = 9
TIRELESS = """app com.spotify.client "Spotify"
prefs iea9AQXrEmhSZ4u yes
prefs 2I8UQMOAwU5nnNZt "com.spotify.client"
prefs 4sySMd4CfPOr0F yes
prefs LyyY0YZw4enaXR6S yes
player com.spotify.client never
locked yes
boot
"""
# From the press to the frame in which the answer stands there.
CLICK = """
  const [selector, done] = arguments;
  const count = document.querySelectorAll("#lines li").length;
  const began = performance.now();
  const look = () => {
    const more = document.querySelectorAll("#lines li").length !== count && !document.body.classList.contains("busy");
    if (more) requestAnimationFrame(() => done(performance.now() - began)); else setTimeout(look, 1);
  };
  document.querySelector(selector).click();
  look();"""
MOVE = """
  const [to, done] = arguments;
  const moment = document.getElementById("moment");
  const began = performance.now();
  moment.value = to;
  moment.dispatchEvent(new Event("input", { bubbles: true }));
  requestAnimationFrame(() => requestAnimationFrame(() => done(performance.now() - began)));"""
SCROLL = """
  const done = arguments[0];
  const box = document.querySelector("#first .record");
  const frames = [];
  let last = performance.now();
  const next = (now) => {
    frames.push(now - last); last = now;
    if (frames.length > 60) return done(frames.slice(1));
    box.scrollTop += 700;
    requestAnimationFrame(next);
  };
  box.scrollTop = 0;
  requestAnimationFrame(next);"""


def median(work):
    return statistics.median(work() for _ in range(TRIES))


def scenario(commands):
    return "boot\n" + "".join(f"headphones {'in' if at % 2 else 'out'}\n" for at in range(commands))


def main():
    simulator = pathlib.Path(sys.argv[1])
    with tempfile.TemporaryDirectory() as folder:
        server = subprocess.Popen([simulator, "serve", "--scenarios", ROOT / "scenarios", "--saved", folder],
                                  stdout=subprocess.PIPE, text=True)
        url = server.stdout.readline().strip()
        browser = Browser()
        run = browser.driver.execute_async_script

        def opened(text):
            page = Page(browser, url)
            page.enter(text)
            return page

        def click():
            return median(lambda: run(CLICK, "#around [data-do^=headphones]"))

        def say(what, value, aim, note=""):
            print(f"{what:<52} {value:7.1f} ms   (aim: {aim}){note}", flush=True)

        try:
            opened(scenario(5))
            few = click()
            opened(scenario(100))
            some = click()
            say("a press, answered and drawn, at 200 rows", some, "under 50", f"   {some / few:.2f} of that at few rows")
            page = opened(scenario(500))
            many = click()
            say("the same at 1,000 rows", many, "-", f"   {many / few:.2f}")
            lines = len(page.lines())
            say("back over 500 commands", median(lambda: run(MOVE, 1) + 0 * run(MOVE, lines)), "under 300")
            run(MOVE, 2)
            say("and on from there, another way", run(CLICK, "#around [data-do^=headphones]"), "under 300")
            # An app that is never content with its player: some 400 rows a start.
            page = opened(TIRELESS + "tap-transport 3\nadvance 37\nend com.spotify.client\n" * 70)
            page.one("#by-folded").click()
            rows = page.text("#count")
            frames = run(SCROLL)
            say(f"a frame while {rows} scroll", statistics.median(frames), "16.7",
                f"   the longest of 60: {max(frames):.0f} ms")
        finally:
            browser.quit()
            server.terminate()
            server.wait()


if __name__ == "__main__":
    main()

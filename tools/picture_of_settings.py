#!/usr/bin/env python3
"""picture_of_settings.py PROGRAM [--check]: draws docs/pictures/settings.svg.

PROGRAM is a built corvalen-sim: what is drawn is the page that its Settings app shows after
docs/pictures/settings.txt, and beside it the same page with its help. With --check nothing is
written: the exit status is 1 if the picture that is there is another one.
"""
import argparse
import html
import json
import pathlib
import subprocess
import sys
import textwrap

ROOT = pathlib.Path(__file__).resolve().parent.parent
SCENARIO = ROOT / 'docs' / 'pictures' / 'settings.txt'
PICTURE = ROOT / 'docs' / 'pictures' / 'settings.svg'

# Pixels.
WIDTH, GAP, MARGIN, INSET = 360, 32, 24, 16
BAR, ROW, TITLE, LINE = 52, 44, 34, 17
LETTERS = 51  # in a line of a footer

STYLE = '''
  .paper { fill: #eef0f2 } .card, .knob { fill: #ffffff } .edge { fill: none; stroke: #c3c9cf }
  .rule { stroke: #dde1e5 } .text { fill: #1d2329 } .quiet { fill: #66707a }
  .act { fill: #1f6f8b } .off { fill: #b9c0c7 } .on { fill: #2f8f6b } .grey { opacity: 0.38 }
  .arrow { fill: none; stroke: #97a0a9; stroke-width: 1.5 }
  text { font: 15px "DejaVu Sans", Verdana, sans-serif } .small { font-size: 11.5px }
  .bold { font-weight: bold }
  @media (prefers-color-scheme: dark) {
    .paper { fill: #15191d } .card { fill: #22282e } .edge { stroke: #3b444c }
    .rule { stroke: #343c44 } .text { fill: #e6eaee } .quiet { fill: #98a3ad }
    .act { fill: #6cb9d4 } .off { fill: #56616b }
  }
'''


class Drawing:
    """One page, from the top down."""

    def __init__(self, left):
        self.left, self.right = left + INSET, left + WIDTH - INSET
        self.middle = left + WIDTH / 2
        self.y = MARGIN
        self.parts = []

    def text(self, x, y, words, kind, anchor='start'):
        self.parts.append(f'<text class="{kind}" x="{x:g}" y="{y:g}" text-anchor="{anchor}">'
                          f'{html.escape(words, quote=False)}</text>')

    def bar(self, page):
        self.text(self.middle, self.y + 32, page['title'], 'text bold', 'middle')
        self.text(self.right, self.y + 32, page['button'], 'act', 'end')
        self.y += BAR

    def switch(self, on):
        side = 'on' if on else 'off'
        self.parts.append(f'<rect class="{side}" x="{self.right - 54:g}" y="{self.y + 12:g}" '
                          'width="40" height="20" rx="4"/>')
        knob = self.right - (32 if on else 52)
        self.parts.append(f'<rect class="knob" x="{knob:g}" y="{self.y + 14:g}" '
                          'width="16" height="16" rx="3"/>')

    def chooser(self, chosen):
        self.text(self.right - 30, self.y + 28, chosen, 'quiet', 'end')
        self.parts.append(f'<path class="arrow" d="M{self.right - 20:g} {self.y + 16:g}l6 6l-6 6"/>')

    def row(self, row):
        self.parts.append('<g>' if row['enabled'] else '<g class="grey">')
        kind = 'act' if row['kind'] == 'button' else 'text'
        self.text(self.left + 14, self.y + 28, row['label'], kind)
        if row['kind'] == 'switch':
            self.switch(row['value'])
        elif row['kind'] == 'chooser':
            self.chooser(row['value'])
        self.parts.append('</g>')
        self.y += ROW

    def group(self, group):
        if group['title']:
            self.text(self.left + 14, self.y + 24, group['title'], 'quiet small bold')
        self.y += TITLE if group['title'] else 18
        box = f'x="{self.left:g}" y="{self.y:g}" width="{self.right - self.left:g}"' \
              f' height="{ROW * len(group["rows"])}" rx="6"'
        self.parts.append(f'<rect class="card" {box}/>')
        for number, row in enumerate(group['rows']):
            if number:
                self.parts.append(f'<path class="rule" d="M{self.left + 14:g} {self.y:g}H{self.right:g}"/>')
            self.row(row)
        self.parts.append(f'<rect class="edge" {box}/>')
        for paragraph in group['footer'].splitlines():
            for line in textwrap.wrap(paragraph, LETTERS):
                self.y += LINE
                self.text(self.left + 14, self.y, line, 'quiet small')
        self.y += 6


def draw(page, left):
    drawing = Drawing(left)
    drawing.bar(page)
    for group in page['groups']:
        drawing.group(group)
    return drawing


def shown(program, commands):
    done = subprocess.run([program, 'page', '-'], input=commands, capture_output=True, text=True,
                          check=False)
    if done.returncode != 0:
        sys.exit(done.stderr)
    return json.loads(done.stdout)


def picture(program):
    commands = SCENARIO.read_text()
    lefts = [MARGIN, MARGIN + WIDTH + GAP]
    pages = [draw(shown(program, commands), lefts[0]),
             draw(shown(program, commands + 'settings help\n'), lefts[1])]
    width = lefts[1] + WIDTH + MARGIN
    bottom = max(page.y for page in pages) + INSET
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{bottom + MARGIN:g}"'
             f' viewBox="0 0 {width} {bottom + MARGIN:g}">',
             '<title>The settings page, without and with its help</title>',
             f'<style>{STYLE}</style>']
    for left, page in zip(lefts, pages):
        lines.append(f'<rect class="paper" x="{left}" y="{MARGIN}" width="{WIDTH}"'
                     f' height="{bottom - MARGIN:g}" rx="10"/>')
        lines += page.parts
        lines.append(f'<rect class="edge" x="{left}" y="{MARGIN}" width="{WIDTH}"'
                     f' height="{bottom - MARGIN:g}" rx="10"/>')
    return '\n'.join([*lines, '</svg>', ''])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('program')
    parser.add_argument('--check', action='store_true')
    options = parser.parse_args()
    svg = picture(options.program)
    if not options.check:
        PICTURE.write_text(svg)
    elif not PICTURE.exists() or PICTURE.read_text() != svg:
        sys.exit(f'{PICTURE.relative_to(ROOT)} shows another page than there is now: '
                 f'run tools/picture_of_settings.py {options.program}')


if __name__ == '__main__':
    main()

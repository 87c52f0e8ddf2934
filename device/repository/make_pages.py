#!/usr/bin/python3
"""make_pages.py OUT: the repository's pages, made from Markdown: its front page, the page that Cydia
shows for the package, and the changelog. Each is one file that loads nothing."""
import pathlib
import sys

import markdown

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
sys.path.insert(0, str(HERE.parent / 'package'))
import publication  # noqa: E402

PAGES = {'index.html': (HERE / 'index.md', 'Corvalen Pro'),
         'depiction.html': (HERE / 'depiction.md', 'Corvalen Pro'),
         'changelog.html': (ROOT / 'CHANGELOG.md', 'Corvalen Pro: Changelog')}


def page(source, title):
    text = source.read_text()
    if source.parent == HERE:  # a template
        text = publication.filled(text, publication.values())
    body = markdown.markdown(text, output_format='xhtml', extensions=['sane_lists'])
    known = {'TITLE': title, 'ICON': (HERE / 'icon.svg').read_text().strip(), 'BODY': body}
    return publication.filled((HERE / 'page.html').read_text(), known)


def main():
    for name, (source, title) in PAGES.items():
        (pathlib.Path(sys.argv[1]) / name).write_text(page(source, title))


if __name__ == '__main__':
    main()

#!/usr/bin/env python3
"""check_documents.py [ROOT]: what the project's documents say about each other and the code names of them.

Every link between documents leads to a file, and to a heading of it where one is named. Every file of
docs/ is in the index. Every decision has its three lines, and every title that the code names is one of
a decision's. Prints what is wrong; exit status 1 if anything is.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
SKIPPED = {"build", "out", ".git", ".cache"}
CODE = {".cpp", ".hpp", ".h", ".m", ".py", ".sh", ".cmake"}
DECISIONS = ROOT / "docs" / "decisions.md"
LINES = ["What", "Why", "Would change it"]

LINK = re.compile(r"(?<!!)\[[^\]\n]*\]\(([^)\s]+)\)|!\[[^\]\n]*\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#{1,6} +(.*?) *#*$", re.M)
NAMED = re.compile(r"^\s*(?://|#|/?\*) *docs/decisions\.md: (.+?)\s*(?:\*/)?$", re.M)


def files():
    for path in sorted(ROOT.rglob("*")):
        if path.is_file() and not SKIPPED & set(path.relative_to(ROOT).parts):
            yield path


def prose(path):
    """The document without its code, which may look like links and headings."""
    text = re.sub(r"^(```|~~~).*?^\1$", "", path.read_text(), flags=re.M | re.S)
    text = re.sub(r"^ {4,}.*$", "", text, flags=re.M)
    return re.sub(r"`[^`\n]*`", lambda code: code.group(0).strip("`") if "](" not in code.group(0) else "", text)


def anchors(path):
    """What the headings of a document are reached by: small letters, dashes for blanks."""
    found = set()
    for heading in HEADING.findall(prose(path)):
        anchor = re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
        number = 0
        while (name := f"{anchor}-{number}" if number else anchor) in found:
            number += 1
        found.add(name)
    return found


def links(documents):
    for document in documents:
        for target in (one or other for one, other in LINK.findall(prose(document))):
            if re.match(r"[a-z]+:", target):
                continue
            file, _, anchor = target.partition("#")
            there = (document.parent / file).resolve() if file else document
            name = document.relative_to(ROOT)
            if file.endswith(".html") and document.parent == ROOT / "device" / "repository":
                continue  # pages that are made when the repository is
            if not there.exists():
                yield f"{name}: {target} leads nowhere"
            elif anchor and there.suffix == ".md" and anchor not in anchors(there):
                yield f"{name}: {there.name} has no heading for #{anchor}"


def index(documents):
    page = (ROOT / "docs" / "README.md").read_text()
    for document in documents:
        if document.parent == ROOT / "docs" and document.name != "README.md" and f"({document.name})" not in page:
            yield f"docs/README.md: {document.name} is not in it"


def decisions():
    """The titles, and what is wrong with the page."""
    titles, wrong = [], []
    for section in re.split(r"^### ", DECISIONS.read_text(), flags=re.M)[1:]:
        title, _, body = section.partition("\n")
        if title in titles:
            wrong.append(f"docs/decisions.md: {title} is there twice")
        titles.append(title)
        entries = re.findall(r"^- \*\*(.+?):\*\* \S", body, re.M)
        if entries != LINES:
            wrong.append(f"docs/decisions.md: {title} has not the three lines {', '.join(LINES)}")
    return titles, wrong


def named(paths, titles):
    for path in paths:
        if path.suffix not in CODE and path.name != "CMakeLists.txt":
            continue
        for title in NAMED.findall(path.read_text(errors="replace")):
            if title not in titles:
                yield f"{path.relative_to(ROOT)}: no decision is called {title}"


def main():
    paths = list(files())
    documents = [path for path in paths if path.suffix == ".md"]
    titles, wrong = decisions()
    wrong += [*links(documents), *index(documents), *named(paths, titles)]
    for line in wrong:
        print(line, file=sys.stderr)
    print(f"{len(documents)} documents, {len(titles)} decisions")
    return 1 if wrong else 0


sys.exit(main())

#!/usr/bin/python3
"""Checks that a page is well-formed and needs nothing beside itself: check-html.py FILE; prints its text"""
import sys
from html.parser import HTMLParser

VOID = {"area", "base", "br", "col", "embed", "hr", "img", "input", "link", "meta", "source", "track", "wbr"}
LOADING = {"src", "srcset", "data", "action", "background"}


class Checker(HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open = []
        self.ids = set()
        self.links = set()
        self.problems = []
        self.text = []

    def complain(self, problem):
        line, column = self.getpos()
        self.problems.append(f"{line}:{column}: {problem}")

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in LOADING or name.startswith("on"):
                self.complain(f"<{tag} {name}>")
            if name == "href" and not value.startswith("#"):
                self.complain(f"a link to {value}")
            if name == "href":
                self.links.add(value[1:])
            if name == "id":
                if value in self.ids:
                    self.complain(f"the id {value} twice")
                self.ids.add(value)
        if tag in ("script", "iframe", "object"):
            self.complain(f"<{tag}>")
        if tag not in VOID:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        if tag not in VOID:
            self.open.pop()

    def handle_endtag(self, tag):
        if not self.open or self.open[-1] != tag:
            self.complain(f"</{tag}> inside {self.open}")
        else:
            self.open.pop()

    def handle_data(self, data):
        if not self.open or self.open[-1] != "style":
            self.text.append(data)
        elif "url(" in data or "@import" in data:
            self.complain("a style from elsewhere")


def main(path):
    with open(path, encoding="utf-8", newline="") as file:
        page = file.read()
    checker = Checker()
    checker.feed(page)
    checker.close()
    if not page.lower().startswith("<!doctype html>"):
        checker.complain("no doctype")
    if checker.open:
        checker.complain(f"not closed: {checker.open}")
    for link in sorted(checker.links - checker.ids):
        checker.complain(f"a link to nowhere: {link}")
    for problem in checker.problems:
        print(problem, file=sys.stderr)
    print("\n".join(" ".join(text.split()) for text in checker.text if text.strip()))
    return 1 if checker.problems else 0


sys.exit(main(sys.argv[1]))

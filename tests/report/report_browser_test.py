#!/usr/bin/python3
"""Looks at a report in a browser: that it says nothing on the console, that every table is what it claims to be, and
that it shows in light and dark.

Usage: report_browser_test.py SAMPLE [--keep FOLDER]

SAMPLE is the program that writes the report. --keep copies the page and its pictures there, to be looked at.
"""
import argparse
import functools
import html.parser
import http.server
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import unittest
import zlib

BROWSER = "chromium"
PATIENCE = 90  # Seconds for one start of the browser.
VOID = {"meta", "link", "img", "br", "hr", "input", "col"}

options = None


def png_chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png_of(width, height, pixel):
    """A PNG file whose pixels are what the function tells, as three bytes."""
    rows = b"".join(b"\0" + b"".join(bytes(pixel(x, y)) for x in range(width)) for y in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", header) + png_chunk(b"IDAT", zlib.compress(rows)) +
            png_chunk(b"IEND", b""))


def bars(x, y):
    return (40, 110, 180) if x % 110 > 20 and 160 - y < (60, 90, 120)[x // 110 % 3] else (255, 255, 255)


def png_rows(path):
    """The rows of a picture as bytes of red, green, blue and perhaps alpha, and the bytes of one pixel."""
    data = path.read_bytes()
    width, height, depth, kind = struct.unpack(">IIBB", data[16:26])
    size = {2: 3, 6: 4}[kind]
    assert depth == 8
    packed, at = b"", 8
    while at < len(data):
        length, name = struct.unpack(">I4s", data[at:at + 8])
        if name == b"IDAT":
            packed += data[at + 8:at + 8 + length]
        at += 12 + length
    raw = zlib.decompress(packed)
    rows, above, line = [], bytes(width * size), width * size + 1
    for y in range(height):
        above = unfiltered(raw[y * line], bytearray(raw[y * line + 1:(y + 1) * line]), above, size)
        rows.append(above)
    return rows, size


def unfiltered(kind, row, above, size):
    for i in range(len(row)):
        left = row[i - size] if i >= size else 0
        corner = above[i - size] if i >= size else 0
        if kind == 1:
            row[i] = row[i] + left & 255
        elif kind == 2:
            row[i] = row[i] + above[i] & 255
        elif kind == 3:
            row[i] = row[i] + (left + above[i]) // 2 & 255
        elif kind == 4:
            guess = left + above[i] - corner
            nearest = min((abs(guess - left), 0, left), (abs(guess - above[i]), 1, above[i]),
                          (abs(guess - corner), 2, corner))
            row[i] = row[i] + nearest[2] & 255
    return bytes(row)


class Element:
    def __init__(self, name, attributes, parent):
        self.name, self.attributes, self.parent = name, dict(attributes), parent
        self.children = []

    def all(self, *names):
        """Every element of these names inside this one, in the order of the page."""
        for child in self.children:
            if isinstance(child, Element):
                if child.name in names:
                    yield child
                yield from child.all(*names)

    def text(self):
        return "".join(child if isinstance(child, str) else child.text() for child in self.children)

    def number(self, name):
        return int(self.attributes.get(name, 1))


class Page(html.parser.HTMLParser):
    """The page as the browser understood it, as a tree."""

    def __init__(self, text):
        super().__init__()
        self.root = self.place = Element("page", {}, None)
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        element = Element(tag, attributes, self.place)
        self.place.children.append(element)
        if tag not in VOID:
            self.place = element

    def handle_endtag(self, tag):
        if tag in VOID:
            return
        assert self.place.name == tag, f"</{tag}> ends <{self.place.name}>"
        self.place = self.place.parent

    def handle_data(self, data):
        self.place.children.append(data)


def grid_of(table):
    """Which cell covers each place of a table, row by row; fails where cells overlap."""
    grid = {}
    row = 0
    for line in table.all("tr"):
        column = 0
        for cell in line.children:
            if not isinstance(cell, Element):
                continue
            while (row, column) in grid:
                column += 1
            for below in range(cell.number("rowspan")):
                for beside in range(cell.number("colspan")):
                    assert (row + below, column + beside) not in grid, "cells overlap"
                    grid[row + below, column + beside] = cell
        row += 1
    return grid


def headings_of(grid, row, column):
    """The headings of a data cell, as a reader finds them: to the left of it and above it."""
    found = []
    for place in [(row, left) for left in range(column)] + [(above, column) for above in range(row)]:
        cell = grid[place]
        if cell.name == "th" and cell.text() and cell.text() not in found:
            found.append(cell.text())
    return found


class ReportTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="report_browser_test_"))
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        graphic = cls.folder / "graphic.png"
        graphic.write_bytes(png_of(320, 160, bars))
        (cls.folder / "www").mkdir()
        subprocess.run([options.sample, cls.folder / "www" / "report.html", graphic], check=True, stdout=subprocess.DEVNULL)
        cls.url = cls.serve()
        dom = cls.browse("--dump-dom")
        cls.dom, cls.said = dom.stdout, dom.stderr
        cls.page = Page(cls.dom).root
        cls.tables = list(cls.page.all("table"))

    @classmethod
    def serve(cls):
        class Quiet(http.server.SimpleHTTPRequestHandler):
            def log_message(self, *_):
                pass

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Quiet, directory=cls.folder / "www"))
        threading.Thread(target=server.serve_forever, daemon=True).start()
        cls.addClassCleanup(server.server_close)
        cls.addClassCleanup(server.shutdown)
        return f"http://127.0.0.1:{server.server_address[1]}/report.html"

    @classmethod
    def browse(cls, *arguments):
        command = [BROWSER, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--disable-extensions",
                   "--enable-logging=stderr", "--window-size=1200,1600", f"--user-data-dir={cls.folder}/profile",
                   *arguments, cls.url]
        return subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE, check=True)

    def picture(self, name, *arguments):
        path = self.folder / f"{name}.png"
        self.browse(f"--screenshot={path}", *arguments)
        return path

    def table(self, title):
        return next(table for table in self.tables if title in next(table.all("caption")).text())

    def test_the_console_is_silent(self):
        self.assertEqual([line for line in self.said.splitlines() if "CONSOLE" in line], [])

    def test_the_browser_keeps_the_page_as_it_was_written(self):
        written = Page((self.folder / "www" / "report.html").read_text(encoding="utf-8").removeprefix("<!DOCTYPE html>")).root
        names = [element.name for element in written.all(*"section table caption colgroup thead tbody tr th td".split())]
        kept = [element.name for element in self.page.all(*"section table caption colgroup thead tbody tr th td".split())]
        self.assertEqual(kept, names, "the parser mended the markup")
        self.assertTrue(self.dom.startswith("<!DOCTYPE html>"))

    def test_every_table_has_a_caption_and_a_full_grid(self):
        self.assertEqual(len(self.tables), 4)
        for table in self.tables:
            self.assertEqual(table.children[1].name, "caption", "a caption comes first")
            self.assertNotEqual(next(table.all("caption")).text().strip(), "")
            grid = grid_of(table)
            rows = 1 + max(row for row, _ in grid)
            columns = 1 + max(column for _, column in grid)
            self.assertEqual(len(grid), rows * columns, "no place is left out")
            self.assertEqual(sum(group.number("span") for group in table.all("colgroup")), columns)

    def test_every_heading_tells_its_scope(self):
        for table in self.tables:
            groups = self.column_groups(table)
            for heading in table.all("th"):
                scope = heading.attributes.get("scope")
                inside = heading.parent.parent.name
                self.assertIn(scope, ("col", "colgroup") if inside == "thead" else ("row", "rowgroup"))
                if scope == "rowgroup":
                    self.assertEqual(heading.number("rowspan"), len(list(heading.parent.parent.all("tr"))))
                if scope == "colgroup":
                    first = min(column for (_, column), cell in grid_of(table).items() if cell is heading)
                    self.assertEqual(groups.get(first), heading.number("colspan"))

    @staticmethod
    def column_groups(table):
        groups, first = {}, 0
        for group in table.all("colgroup"):
            groups[first] = group.number("span")
            first += group.number("span")
        return groups

    def test_cells_have_the_headings_that_belong_to_them(self):
        grid = grid_of(self.table("Body mass"))
        place = next(place for place, cell in grid.items() if cell.text() == "4,034.780")
        self.assertEqual(headings_of(grid, *place), ["Adelie", "Torgersen", "Sexb", "Male", "Mean"])
        grid = grid_of(self.table("Bill length"))
        place = next(place for place, cell in grid.items() if cell.text() == "47.623")
        self.assertEqual(headings_of(grid, *place), ["2008", "Gentoo", "Female", "Mean (mm)"])

    def test_texts_come_out_as_they_went_in(self):
        texts = [cell.text() for cell in self.table("Year: 2007").all("th", "td")]
        for text in ('<Name> & "more"', "O'Brien <b>", "\u6771\u4eac", "Zoe\u0308",
                     'Said: "5 < 6 & 7 > 6"\nin two lines'):
            self.assertIn(text, texts)
        self.assertEqual(list(self.page.all("script", "b")), [])

    def test_every_link_leads_somewhere(self):
        everything = [element for element in self.page.all("a", "h2", "li", "section", "caption", "div")]
        ids = [element.attributes["id"] for element in everything if "id" in element.attributes]
        self.assertEqual(len(ids), len(set(ids)), "an id stands once")
        links = [link.attributes["href"] for link in self.page.all("a")]
        self.assertEqual(len(links), 2 + 7 + 6, "contents, marks, ways back")
        for link in links:
            self.assertIn(link.removeprefix("#"), ids)

    def test_the_graphic_is_there(self):
        image = next(self.page.all("img"))
        self.assertEqual(image.attributes["alt"], "Body mass by species")
        self.assertTrue(image.attributes["src"].startswith("data:image/png;base64,"))

    def test_light_and_dark(self):
        pictures = {"light": self.picture("light", "--blink-settings=preferredColorScheme=1"),
                    "dark": self.picture("dark", "--blink-settings=preferredColorScheme=0"),
                    "narrow": self.picture("narrow", "--window-size=500,1600")}
        brightness = {}
        for name in ("light", "dark"):
            rows, size = png_rows(pictures[name])
            corner = rows[2][2 * size:2 * size + 3]
            brightness[name] = sum(corner) / 3
            drawn = {bytes(row[x * size:x * size + 3]) for row in rows[::4] for x in range(0, len(row) // size, 4)}
            self.assertGreater(len(drawn), 20, "something is drawn")
            contrast = max(sum(colour) for colour in drawn) - min(sum(colour) for colour in drawn)
            self.assertGreater(contrast, 500, "text stands out from its ground")
        self.assertGreater(brightness["light"], 240)
        self.assertLess(brightness["dark"], 40)
        if options.keep:
            options.keep.mkdir(parents=True, exist_ok=True)
            for path in [*pictures.values(), self.folder / "www" / "report.html"]:
                shutil.copy(path, options.keep)


def main():
    global options
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("sample", type=pathlib.Path)
    parser.add_argument("--keep", type=pathlib.Path)
    options = parser.parse_args()
    suite = unittest.TestLoader().loadTestsFromTestCase(ReportTest)
    sys.exit(not unittest.TextTestRunner(verbosity=2).run(suite).wasSuccessful())


if __name__ == "__main__":
    main()

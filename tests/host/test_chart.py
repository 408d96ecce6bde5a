"""`orvikhost chart`: its pictures against golden ones, element by element, and what it refuses.

The golden pictures lie in tests/chart/golden; `test_chart.py --host PROGRAM --update` writes them anew, to be looked at before they
are kept. Both homes are held against the same ones: the same chart has the same ticks and labels at the same places.
"""
import argparse
import datetime
import math
import os
import pathlib
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import wine_stderr
from session_writer import context, write_session
from time_limit import limit

options = None
GOLDEN = pathlib.Path(__file__).resolve().parent.parent / "chart" / "golden"
TOLERANCE = 2.0  # pixels: the width of a text differs by so much from home to home
SECOND = 1_000_000
HOUR = 3600 * SECOND


def utc(*fields):
    return int(datetime.datetime(*fields, tzinfo=datetime.timezone.utc).timestamp()) * SECOND


class ChartTest(unittest.TestCase):
    def setUp(self):
        limit(self)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orvik-chart-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def host(self, *words, language="C.UTF-8", code=0):
        errors = self.folder / "stderr.txt"
        command = ([options.wine] if options.wine else []) + [options.host, *map(str, words)]
        # One rule for summer time on both homes: the one that the C run-time of Windows has for a zone named like this.
        zone = "CET-1CEST" if options.wine else "CET-1CEST,M3.2.0/2,M11.1.0/2"
        done = subprocess.run(command, cwd=self.folder, env={**os.environ, "LC_ALL": language, "TZ": zone, "WINE_STDERR": str(errors)}, timeout=120,
                              capture_output=True, encoding="utf-8", errors="replace")
        said = done.stderr + (wine_stderr.take(errors, done.returncode != 0 and not done.stdout) if options.wine else "")
        sentences = [line for line in said.splitlines() if line.startswith("orvikhost:")]
        self.assertEqual(done.returncode, code, said)
        self.assertEqual(len(sentences), 0 if code == 0 else 1, said)
        return sentences[0] if sentences else done.stdout

    def chart(self, *words, **more):
        self.host("chart", "s.odb", "--out", "chart.svg", *words, **more)
        return ElementTree.parse(self.folder / "chart.svg").getroot()

    def session(self, times, channels, **more):
        write_session(self.folder / "s.odb", times, channels, **more)


def waves(count, step, start, *shapes):
    """Times, and for each shape (middle, height, period in readings) a wave with a little noise, the same on every machine."""
    noise = random.Random(11)
    times = [start + i * step for i in range(count)]
    return times, [[m + h * math.sin(2 * math.pi * i / p) + h * 0.05 * (noise.random() - 0.5) for i in range(count)] for m, h, p in shapes]


def texts(root):
    return [element.text for element in root.iter() if element.tag.endswith("text")]


class Golden(ChartTest):
    NUMBER = re.compile(r"[-+]?(?:\d+\.?\d*|\.\d+)(?:e[-+]?\d+)?")

    def held(self, name, *words, size="800x450", **more):
        root = self.chart("--size", size, *words, **more)
        path = GOLDEN / (name + ".svg")
        if options.update:
            path.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(self.folder / "chart.svg", path)
        golden = ElementTree.parse(path).getroot()
        ours, theirs = list(root.iter()), list(golden.iter())
        self.assertEqual([e.tag for e in ours], [e.tag for e in theirs])
        for a, b in zip(ours, theirs):
            self.assertEqual((a.text or "").strip(), (b.text or "").strip())
            self.assertEqual(sorted(a.attrib), sorted(b.attrib))
            for key, value in a.attrib.items():
                self.assertEqual(self.NUMBER.sub("0", value), self.NUMBER.sub("0", b.attrib[key]), f"{a.tag} {key}")
                for x, y in zip(self.NUMBER.findall(value), self.NUMBER.findall(b.attrib[key])):
                    self.assertAlmostEqual(float(x), float(y), delta=TOLERANCE, msg=f"{a.tag} {key}")
        return root

    def test_one_channel(self):
        times, (values,) = waves(72, HOUR, utc(2026, 6, 1, 4), (14, 6, 24))
        self.session(times, [("Lufttemperatur", "°C", values)], logger="Väderstation Åre")
        self.held("one_channel", language="sv_SE.UTF-8")

    def test_four_channels_three_units(self):
        times, (air, soil, humidity, level) = waves(500, HOUR // 2, utc(2026, 5, 1), (12, 7, 48), (9, 2, 48), (70, 20, 46), (1013, 11, 170))
        self.session(times, [("Air", "°C", air), ("Soil", "°C", soil), ("Humidity", "%", humidity), ("Pressure", "hPa", level)])
        self.held("four_channels")

    def test_the_night_that_has_an_hour_twice(self):
        times, (values,) = waves(100, 4 * 60 * SECOND, utc(2026, 10, 31, 21), (3, 2, 80))
        self.session(times, [("Air", "°C", values)])
        labels = texts(self.held("autumn_night"))
        self.assertEqual(sum("UTC" in label for label in labels), 2)

    def test_strange_ranges(self):
        times, (depth, leak, frost, energy) = waves(60, 60 * SECOND, utc(2026, 2, 3, 9), (20, 15, 50), (3e-5, 2e-5, 40), (-25, 9, 30), (3.2e6, 1e6, 35))
        self.session(times, [("Depth", "m", depth), ("Leakage", "A", leak), ("Frost", "°C", frost), ("Energy", "Wh", energy)],
                     Chart={"UnitContexts": {"m": context(40, 0)}})
        self.held("strange_ranges")

    def test_tags(self):
        times, (values,) = waves(200, 60 * SECOND, utc(2026, 6, 15, 6), (50, 30, 150))
        self.session(times, [("Humidity", "%", values)])
        self.held("tags", "--tag", "6/15/2026 8:30:00 AM;75;Door opened; fan on", "--tag", "2026-06-15T08:00:00Z;30;Refilled at the second attempt, by hand",
                  "--tag", "2026-06-15T09:15:00Z;60;Near the edge")

    def test_a_million_readings_with_gaps(self):
        count, start = 1_000_000, utc(2026, 6, 1)
        noise = random.Random(3)
        values = [math.sin(i / 60_000) * 10 + noise.random() * 3 for i in range(count)]
        values[200_000:260_000] = [math.nan] * 60_000
        for i in range(500_000, 900_000, 997):
            values[i] = (math.nan, math.inf, -math.inf)[i % 3]
        self.session([start + i * SECOND for i in range(count)], [("Vibration", "mm/s", values)])
        self.held("million_with_gaps", size="400x300")


class Tags(ChartTest):
    def setUp(self):
        super().setUp()
        times, (one, two) = waves(50, SECOND, utc(2026, 6, 15, 6), (50, 30, 40), (5, 1, 30))
        self.session(times, [("Humidity", "%", one), ("Wind", "m/s", two)])
        self.file = self.folder / "s.odb"

    def test_they_come_back_until_they_are_cleared(self):
        before = self.file.read_bytes()
        self.chart()
        self.assertEqual(self.file.read_bytes(), before)  # looking changes nothing
        listed = self.host("db", "list", "s.odb").splitlines()
        self.chart("--tag", "2026-06-15T06:00:10Z;60;first", "--tag", "2026-06-15T06:00:40Z;40;andra °å")
        kept = self.file.read_bytes()
        now = self.host("db", "list", "s.odb").splitlines()
        self.assertEqual([line for line in now if not line.startswith("Chart.")], listed)
        again = texts(self.chart())
        self.assertIn("first", again)
        self.assertIn("andra °å", again)
        self.assertEqual(self.file.read_bytes(), kept)
        # With a part of the session in view they stay at their times.
        part = texts(self.chart("--from", "2026-06-15T06:00:30Z", "--channel", "Wind"))
        self.assertNotIn("first", part)
        self.assertIn("andra °å", part)
        self.chart("--clear-tags", "--tag", "2026-06-15T06:00:20Z;60;only")
        self.assertNotIn("first", texts(self.chart()))
        self.chart("--clear-tags")
        self.assertNotIn("only", texts(self.chart()))
        cleared = self.file.stat()
        self.chart("--clear-tags")
        self.assertEqual(self.file.stat(), cleared)  # nothing to clear, nothing written

    def test_ranges_come_back(self):
        for key, value in (("rOrg", "0"), ("rExt", "200"), ("Index", "0"), ("sFormat", "#######")):
            kind = {"I": "u32", "s": "str", "r": "r64"}[key[0]]
            self.host("db", "set", "s.odb", "Chart.UnitContexts.%." + key, value, "--kind", kind)
        self.assertIn("200", texts(self.chart()))


class Mistakes(ChartTest):
    def setUp(self):
        super().setUp()
        self.session([utc(2026, 6, 15) + i * SECOND for i in range(3)], [("Air", "°C", [1.0, 2.0, 3.0])])

    def refused(self, *words, code=1):
        return self.host("chart", *words, code=code)

    def test_each_has_its_sentence(self):
        good = ("s.odb", "--out", "c.png")
        self.assertIn("FILE", self.refused("--out", "c.png"))
        for words, told in (("", "--out"), ("--out c.bmp", "c.bmp"), ("--out .png", "name")):
            self.assertIn(told, self.refused("s.odb", *words.split()))
        for told, *more in (
                *(("no size", "--size " + size) for size in ("0x5", "5", "5x", "x5", "5x5x5", "-5x5", "20000x5", "99999999999999999999x1")),
                ("67108864", "--size 16384x16384"), ("Water", "--channel Air --channel Water"), ("yesterday", "--from yesterday"),
                ("before", "--from 6/16/2026 --to 6/15/2026"),
                ("no readings", "--from 2027-01-01T00:00:00Z --to 2028-01-01T00:00:00Z", "--from 2027-01-01T00:00:00Z", "--to 2020-01-01T00:00:00Z"),
                ("TIME;VALUE;text", "--tag x", "--tag 2026-06-15T00:00:01Z;1", "--tag 2026-06-15T00:00:01Z;1;"),
                ("no number", "--tag 2026-06-15T00:00:01Z;high;text"),
                ("outside", "--tag 2026-06-15T00:00:01Z;77;text", "--tag 2026-06-16T00:00:01Z;2;text")):
            for words in more:
                with self.subTest(words):
                    self.assertIn(told, self.refused(*good, *words.split()))
        self.assertIn("none.odb", self.refused("none.odb", "--out", "c.png", code=3))
        self.assertIn("no such folder", self.refused("s.odb", "--out", "no/such/c.png", code=3))
        shutil.copy(self.folder / "s.odb", self.folder / "s.png")
        self.assertIn("same file", self.refused("s.png", "--out", "./s.png"))
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["s.odb", "s.png"])

    def test_strange_sessions_are_drawn(self):
        nan, inf = math.nan, math.inf
        for times, values in (([], []), ([5 * HOUR], [7.0]), ([0, 1], [3.0, 3.0]), ([0, HOUR], [0.0, 0.0]), ([HOUR, 0, HOUR], [1.0, 2.0, 3.0]),
                              ([0, 1, 2], [nan, inf, -inf]), ([0, 1, 2], [-1.7e308, 1.7e308, 5e-324]), ([-2**63, 0, 2**63 - 1], [1.0, nan, 3.0]),
                              ([2**63 - 1], [1.0]), ([HOUR * i for i in range(9)], [-5.0] * 9)):
            self.session(times, [("A", "", values), ("B", "x" * 80, values), ("C", "", values)], logger="")
            for size in ("1x1", "3x2", "40x30", "300x20", "1600x900"):
                self.chart("--size", size)
        self.session([0, 1], [], logger="No channels")
        self.chart()


class Words(ChartTest):
    """What a chart says of what it does not show, by the texts in it."""

    def test_nothing_is_left_out_without_a_word(self):
        times, wave = waves(50, 60 * SECOND, utc(2026, 6, 15, 6), (5, 3, 20))
        units = ("V", "A", "W", "m", "s", "l", "K", "%", "dB", "pH", "N", "J", "lx", "g", "B", "T")
        many = [(f"Sensor {i}", units[i % 16], wave[0]) for i in range(40)]
        self.session(times, many)
        said = texts(self.chart("--size", "800x450"))
        named = sum(text.startswith("Sensor") for text in said)
        self.assertIn(f"and {40 - named} more", said)
        left_out = next(text for text in said if text.startswith("No room for axes of: "))
        self.assertEqual(len(left_out.split(": ")[1].split(", ")) + sum(unit in said for unit in units), 16, said)
        self.assertIn("och", " ".join(texts(self.chart("--size", "800x450", language="sv_SE.UTF-8"))))
        # Too small for that, it is the command that says so.
        for size, small in (("800x450", False), ("200x100", True), ("1x1", True)):
            self.assertEqual("too small" in self.host("chart", "s.odb", "--out", "chart.svg", "--size", size), small, size)
        # A colour comes again with gaps in it: more pieces than the first channel's one.
        lines = [e.attrib["stroke"] for e in self.chart().iter() if e.tag.endswith("polyline") and e.attrib["stroke"] == "#0072b2"]
        self.assertGreater(len(lines), 20)

    def test_sessions_that_show_little(self):
        noon = utc(2026, 6, 15, 10)
        for times, values, wanted, unwanted in (([], [], "There are no readings.", "12:00:00 AM"),
                                                ([noon, noon + SECOND], [math.nan] * 2, "None of the readings has a value.", "There are no readings."),
                                                ([noon], [1.0], "6/15/2026 12:00:00 PM", "There are no readings.")):
            self.session(times, [("Air", "°C", values)])
            said = texts(self.chart())
            self.assertIn(wanted, said)
            self.assertNotIn(unwanted, said)

    def test_each_kind_of_file(self):
        self.session([utc(2026, 6, 15) + i * SECOND for i in range(9)], [("Counter", "Wh", [1234567.0] * 9), ("Leak", "A", [2.4e-6] * 9)])
        said = texts(self.chart())
        for wanted in ("MWh", "\u00b5A", "1.250", "2.4"):  # constants have labels
            self.assertIn(wanted, said)
        for name, begin in (("c.PNG", b"\x89PNG"), ("c.pdf", b"%PDF"), ("c.svg", b"<?xml")):
            self.host("chart", "s.odb", "--out", name, "--size", "500x300")
            data = (self.folder / name).read_bytes()
            self.assertTrue(data.startswith(begin), data[:8])
        self.assertEqual(struct.unpack(">II", (self.folder / "c.PNG").read_bytes()[16:24]), (500, 300))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--host", required=True)
    parser.add_argument("--wine")
    parser.add_argument("--update", action="store_true")
    options, rest = parser.parse_known_args()
    options.host = os.path.abspath(options.host)
    unittest.main(argv=[sys.argv[0], *rest], verbosity=1)

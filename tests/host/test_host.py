"""The reference host's commands, called as a user calls them, on either home."""
import argparse
import csv
import fcntl
import functools
import io
import json
import os
import pathlib
import pty
import random
import re
import resource
import shlex
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import xml.etree.ElementTree as ElementTree

import simulated_line
import wine_stderr
from simulated_line import SimulatedLine
from time_limit import limit

options = None

# What the embedded logger has: one channel of each type, read with a single request.
CHANNELS = ["Air temperature [°C]", "Humidity [%]", "Soil temperature [°C]", "Wind speed [km/h]", "Level [mm]"]
ANSWERS_BEFORE_UNPLUG = 3  # one is to the probe of a line that was just opened


class Result:
    def __init__(self, code, out, err):
        self.code, self.out, self.err = code, out, err
        # Only what the host itself says: Wine may add lines of its own.
        self.sentences = [line for line in self.err.splitlines() if line.startswith("orvikhost:")]


def native(reason):
    """A test of what Wine has not, or has otherwise."""
    def only(test):
        @functools.wraps(test)
        def run(self):
            if options.wine:
                self.skipTest(reason)
            test(self)
        return run
    return only


class HostTest(unittest.TestCase):
    def setUp(self):
        limit(self)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orvik-host-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def command(self, *words):
        return ([options.wine] if options.wine else []) + [options.host, *map(str, words)]

    def environment(self, language="C.UTF-8", **more):
        return {**os.environ, **simulated_line.environment(options), "LC_ALL": language, **more}

    def start(self, *words, before=(), **more):
        """The host beside the test; what it says of failures can be read."""
        return subprocess.Popen([*before, *self.command(*words)], cwd=self.folder, env=self.environment(), stderr=subprocess.PIPE, encoding="utf-8", **more)

    def host(self, *words, language="C.UTF-8", typed=None, **more):
        # wine-run sends the error stream to a file of its own.
        errors = self.folder / "stderr.txt"
        done = subprocess.run(self.command(*words), cwd=self.folder, env=self.environment(language, WINE_STDERR=str(errors), **more), timeout=120,
                              capture_output=True, input=typed, encoding="utf-8", errors="replace")
        # Who fails and has printed nothing has something to say.
        said = done.stderr + (wine_stderr.take(errors, done.returncode != 0 and not done.stdout) if options.wine else "")
        return Result(done.returncode, done.stdout, said)

    def refused(self, code, *words, **more):
        """Ends with this code, says one sentence, and nothing else."""
        result = self.host(*words, **more)
        self.assertEqual(result.code, code, result.err)
        self.assertEqual(len(result.sentences), 1, result.err)
        self.assertEqual(result.out, "")
        return result.sentences[0]

    def refuse(self, *rows):
        """Each row: an exit code, a command line, and what its one sentence holds."""
        for code, line, told in rows:
            with self.subTest(line):
                self.assertIn(told, self.refused(code, *shlex.split(line)))

    def done(self, *words, **more):
        result = self.host(*words, **more)
        self.assertEqual(result.code, 0, result.err)
        return result

    def simulate(self, *words):
        """A native simulated logger; gives the name of its port for the host under test."""
        line = SimulatedLine(options, self.folder, words)
        self.addCleanup(line.stop)
        return line.port

    def readings(self, path):
        return list(csv.reader(io.StringIO(self.done("show", path, "--csv").out)))


class WrongUse(HostTest):
    def test_each_mistake_has_its_sentence(self):
        self.refuse((1, "frobnicate", "frobnicate"), (1, "download --speed 9", "--speed"), (1, "download --out x.odb", "--port"),
                    (1, "download --port COM1 --out", "--out"), (1, "download --port COM1 --out x.odb --count 0", "--count"), (1, "show --csv --csv x", "twice"),
                    (1, "show one more", "more"), (1, "show", "FILE"), (1, "download --port COM1 --out x.odb --hex", "--trace"),
                    (1, "download --port COM1 --out x.odb --trace ./x.odb", "same file"), (1, "demo --out ''", "--out"), (1, "dwnload", "mean download"), (1, "show x --chanel a", "mean --channel"))
        self.assertIn("There is no file \u4e2d.odb", self.refused(3, "show", "\u4e2d.odb"))

    @native("Windows has no device that is always full")
    def test_output_that_cannot_be_written_is_no_success(self):
        with open("/dev/full", "w") as full:
            done = subprocess.run(self.command("--help"), env=self.environment(), stdout=full, stderr=subprocess.PIPE, encoding="utf-8")
        self.assertEqual(done.returncode, 3, done.stderr)
        self.assertEqual(len(done.stderr.splitlines()), 1)

    def test_help_tells_every_option_in_both_languages(self):
        told = {}
        for language in ("C", "sv_SE.UTF-8"):
            overview = self.done("--help", language=language).out
            told[language] = {name: self.done(name, "--help", language=language).out for name in re.findall(r"^  orvikhost (\w+)", overview, re.M)}
            for name, text in [("", overview), *told[language].items()]:
                self.assertEqual([line for line in text.splitlines() if len(line) > 80], [], name)
                self.assertTrue(re.match(f"orvikhost {name}\\b" if name else "orvikhost:", text), text)
        options = {language: {name: set(re.findall(r"^  (--[\w-]+)", text, re.M)) for name, text in texts.items()} for language, texts in told.items()}
        self.assertEqual(options["C"], options["sv_SE.UTF-8"])
        for source in sorted((pathlib.Path(__file__).parents[2] / "host/command_line").glob("*.cpp")):
            text = source.read_text(encoding="utf-8")
            names = [name.lower() for name in re.findall(r"^ExitCode Run(\w+)\(", text, re.M)] or (["show"] if source.stem == "show_options" else [])
            for option in re.findall(r'"(--[\w-]+)"', text) if names else []:
                self.assertTrue(any(option in options["C"][name] for name in names), f"{source.name}: {option} is not in the help of {names}")
        for words in (["show", "x.odb", "--help"], ["help", "show"]):
            self.assertEqual(self.done(*words).out, told["C"]["show"])
        self.assertRegex(self.done("--version").out, r"^orvikhost \d+\.\d+\.\d+$")

    def test_swedish_users_read_swedish(self):
        sentence = self.refused(1, "frobnicate", language="sv_SE.UTF-8")
        self.assertIn("är inget kommando", sentence)
        self.assertIn("Slutkoder", self.host("--help", language="sv_SE.UTF-8").out)
        self.assertIn("Exit codes", self.host("--help", language="C").out)


class Download(HostTest):
    def download(self, port, *words, out="session.odb", count=4):
        return self.host("download", "--port", port, "--out", out, "--count", count, "--interval", 150, *words)

    def test_values_and_trace(self):
        port = self.simulate()
        result = self.download(port, "--trace", "trace.txt", "--hex")
        self.assertEqual((result.code, result.sentences), (0, []), result.err)
        self.assertNotIn("\r", result.err.replace("\r\n", ""))  # a pipe sees no progress
        rows = self.readings("session.odb")
        self.assertEqual(rows[0], ["time"] + CHANNELS)
        self.assertEqual(len(rows), 5)
        times = [row[0] for row in rows[1:]]
        self.assertEqual(times, sorted(set(times)))
        for time_text in times:
            self.assertRegex(time_text, r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z$")
        for row in rows[1:]:
            for index, value in enumerate(map(float, row[1:])):
                self.assertLessEqual(abs(value - 20), 1.6 + index)

        # One line a direction; every request is answered, and each frame's bytes are all there.
        lines = (self.folder / "trace.txt").read_text(encoding="utf-8").splitlines()
        sent = [re.fullmatch(r".+ - " + re.escape(port) + r" > ((?:[0-9A-F]{2} )+)", line) for line in lines]
        got = [re.fullmatch(r".+ - " + re.escape(port) + r" < ((?:[0-9A-F]{2} )*)", line) for line in lines]
        requests = [match.group(1).split() for match in sent if match]
        self.assertEqual(requests.pop(0)[4:6], ["00", "00"], "a probe, since somebody else may have asked before")
        self.assertEqual(requests, [requests[0]] * 4)
        self.assertEqual(requests[0][:6], ["11", "04", "00", "64", "00", "08"])
        answers = [match.group(1).split() for match in got if match and match.group(1)]
        self.assertEqual([len(answer) for answer in answers], [5] + [21] * 4)

    @native("Wine's consoles are no terminals")
    def test_a_terminal_sees_the_progress_and_loses_it_again(self):
        port = self.simulate()
        terminal, far = pty.openpty()
        words = ["download", "--port", port, "--out", "session.odb", "--count", 3, "--interval", 150]
        done = subprocess.run(self.command(*words), cwd=self.folder, env=self.environment(), stdout=subprocess.PIPE, stderr=far, timeout=120)
        os.close(far)
        said = os.read(terminal, 65536).decode()
        os.close(terminal)
        self.assertEqual(done.returncode, 0, said)
        self.assertEqual(re.findall(r"reading (\d) of 3", said), ["1", "2", "3"])
        self.assertRegex(said, r"\r +\r$")  # what stood there is wiped
        self.assertNotIn(b"\r", done.stdout)

    def test_people_read_their_own_format(self):
        self.assertEqual(self.download(self.simulate()).code, 0)
        neutral = self.readings("session.odb")[1:]
        for language, stamp, decimal in [("sv_SE.UTF-8", r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d,\d{3}", ","),
                                         ("de_DE.UTF-8", r"\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d,\d{3}", ","),
                                         ("en_US.UTF-8", r"\d+/\d+/\d{4} \d+:\d\d:\d\d\.\d{3} [AP]M", ".")]:
            lines = self.host("show", "session.odb", language=language).out.splitlines()[1:]
            self.assertEqual(len(lines), len(neutral))
            for line, exact in zip(lines, neutral):
                shown = re.fullmatch(stamp + r"((?: +\S+){5})", line)
                self.assertTrue(shown, line)
                for text, value in zip(shown.group(1).split(), map(float, exact[1:])):
                    self.assertNotIn("." if decimal == "," else ",", text)
                    self.assertAlmostEqual(float(text.replace(decimal, ".")), value, delta=abs(value) * 5e-6)

    def test_a_logger_on_the_network(self):
        port = self.simulate("--port", "rtu://127.0.0.1:0", "--fault", "split=30", "--fault", "noise=10", "--seed", 7)
        self.done("download", "--port", port, "--out", "s.odb", "--count", 12, "--interval", 300, "--timeout", 300, "--trace", "trace.txt")
        self.assertEqual(len(self.readings("s.odb")), 13)
        self.assertIn(f" - {port} > ", (self.folder / "trace.txt").read_text(encoding="utf-8"))
        self.refuse((1, "simulate --port COM3", "is no address to listen at"), (2, "simulate --port " + port, "another program listens there"),
                    (1, "simulate --port tcp://:0 --link x", "--link"))
        # A terminal server.
        port = self.simulate("--port", "rfc2217://127.0.0.1:0", "--fault", "split=50", "--seed", 1)
        self.done("download", "--port", port, "--out", "t.odb", "--count", 5, "--interval", 300)

    @native("the terminal server is a program of Linux")
    def test_a_terminal_server_of_others(self):
        with socket.create_server(("127.0.0.1", 0)) as free:
            number = free.getsockname()[1]
        settings = self.folder / "ser2net.yaml"
        settings.write_text(f"connection: &logger\n  accepter: telnet(rfc2217),tcp,127.0.0.1,{number}\n"
                            f"  connector: serialdev,{self.simulate()},300n81,local\n")
        server = subprocess.Popen(["ser2net", "-n", "-c", settings], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (server.kill(), server.wait()))
        for _ in range(100):
            with socket.socket() as trial:
                if trial.connect_ex(("127.0.0.1", number)) == 0:
                    break
            time.sleep(0.1)
        self.done("download", "--port", f"rfc2217://127.0.0.1:{number}", "--out", "s.odb", "--count", 5, "--interval", 100)
        self.assertEqual(len(self.readings("s.odb")), 6)

    def test_a_network_without_a_logger_is_told(self):
        self.refuse((2, "read --port tcp://nobody.invalid", "nobody.invalid:502: "), (2, "read --port rtu://127.0.0.1:1", "127.0.0.1:1: the connection was refused."),
                    (2, "read --port tcp://:1", "no name of a host"), (2, "read --port udp://x", "not one of tcp://"),
                    (2, "read --port tcp://x:0", "no number from 1 to 65535"))

    def test_a_silent_logger_is_a_gap(self):
        result = self.host("download", "--port", self.simulate("--fault", "silent"), "--out", "s.rec", "--timeout", 100, "--for", "2 s", "--interval", 500)
        self.assertEqual(result.code, 2)
        self.assertIn("Receive timeout; it is tried again", result.sentences[0])
        self.assertRegex(result.sentences[-1], r"0 readings of 5 channels saved to s\.rec.*; 4 are missing: 4 x Receive timeout")
        self.assertEqual(len(self.readings("s.rec")), 2, "the row that marks the hole")
        self.assertIn("Receive timeout", self.host("show", "s.rec", "--gaps").out)
        result = self.host("download", "--port", self.simulate("--fault", "silent"), "--out", "s.odb", "--timeout", 100, "--for", "1 h", "--give-up", "1 s")
        self.assertEqual(result.code, 2)
        self.assertIn("given up", result.sentences[-1])

    def test_a_pulled_plug_costs_what_was_not_there(self):
        port = self.simulate("--fault", "unplug")
        result = self.host("download", "--port", port, "--out", "s.odb", "--for", "2 s", "--interval", 100, "--timeout", 1000)
        self.assertEqual(result.code, 2)
        self.assertIn(f"{ANSWERS_BEFORE_UNPLUG - 1} readings", result.sentences[-1])
        self.assertEqual(len(self.readings("s.odb")), 1 + ANSWERS_BEFORE_UNPLUG - 1 + 1, "and the row that marks the hole")

    @native("a link in a folder is no port's name on Windows")
    def test_a_plug_that_comes_back(self):
        link = self.folder / "line"
        self.simulate("--fault", "unplug", "--link", link)
        self.assertIn("which runs", self.refused(3, "simulate", "--link", link))
        process = self.start("download", "--port", link, "--out", "s.rec", "--for", "5 s", "--interval", 100)
        time.sleep(1.5)
        link.unlink(missing_ok=True)
        self.simulate("--link", link)
        _, said = process.communicate(timeout=20)
        self.assertEqual(process.returncode, 2, said)
        self.assertIn("there again", said)
        self.assertGreater(len(self.readings("s.rec")), 20)

    @native("a link in a folder is no port's name on Windows")
    def test_a_dropped_port_comes_back_by_itself(self):
        link = self.folder / "line"
        self.simulate("--fault", "drop=20", "--seed", 4, "--link", link)
        said = self.host("download", "--port", link, "--out", "s.rec", "--for", "8 s", "--interval", 100).err
        self.assertIn("there again", said)
        self.assertIn("the port is not there", self.host("show", "s.rec", "--gaps").out)

    @native("a file that is open keeps its name on Windows until it is closed")
    def test_a_recording_that_is_taken_away_is_told(self):
        process = self.start("download", "--port", self.simulate(), "--out", "s.rec", "--for", "6 s", "--interval", 100)
        time.sleep(1.5)
        (self.folder / "s.rec").rename(self.folder / "taken.rec")
        time.sleep(2.5)
        os.truncate(self.folder / "s.rec", 700)
        _, said = process.communicate(timeout=20)
        self.assertIn("s.rec was moved or removed", said)
        self.assertIn("s.rec was cut short", said)
        self.assertGreater(len(self.readings("taken.rec")), 5)
        self.assertEqual(self.host("show", "s.rec").code, 3)

    @native("killing Wine's loader says nothing of the program")
    def test_a_killed_download_is_found(self):
        def killed(name):
            process = self.start("download", "--port", port, "--out", name, "--count", 1000, "--interval", 20)
            time.sleep(1)
            process.kill()
            process.communicate()

        port = self.simulate()
        killed("s.odb")
        self.assertFalse((self.folder / "s.odb").exists())
        first = self.readings("s.odb")  # by way of s.odb.rec
        self.assertGreater(len(first), 10)
        self.assertIn("recover", self.refused(3, "download", "--port", port, "--out", "s.odb", "--count", 1))
        self.assertEqual(self.download(port, "--append", out="s.odb", count=2).code, 0)
        again = self.readings("s.odb")
        self.assertEqual(again[:len(first)], first)
        self.assertEqual(len(again), len(first) + 1 + 2, "and the row that marks the time between")
        self.assertIn("did not run", self.host("show", "s.odb", "--gaps").out)
        self.assertFalse((self.folder / "s.odb.rec").exists())
        # A session goes on as well, and with another description it does not.
        self.assertEqual(self.download(port, "--append", out="s.odb", count=2).code, 0)
        self.assertEqual(len(self.readings("s.odb")), len(again) + 1 + 2)
        (self.folder / "other.xml").write_text("<PROPERTYDB><PROPERTY name='sFamily'>Modbus</PROPERTY><PROPERTY name='nSlave'>3</PROPERTY><PATH name='Channels'>"
                                               "<PATH name='a'><PROPERTY name='nRegister'>7</PROPERTY><PROPERTY name='sType'>int16</PROPERTY></PATH></PATH></PROPERTYDB>")
        self.assertIn("another description", self.refused(1, "download", "--port", port, "--logger", "other.xml", "--out", "s.odb", "--append"))
        killed("k.odb")
        kept = self.readings("k.odb")
        self.assertEqual(self.host("recover", "k.odb").code, 0)
        self.assertEqual(self.readings("k.odb"), kept)

    def test_nothing_of_a_users_is_replaced(self):
        port = self.simulate()
        (self.folder / "precious.txt").write_text("precious")
        self.assertIn("no session", self.refused(3, "download", "--port", port, "--out", "precious.txt", "--count", 1))
        self.assertEqual(self.download(port, out="s.odb").code, 0)
        self.assertEqual(self.download(port, out="s.odb", count=2).code, 0, "what a download made goes")
        self.assertEqual(len(self.readings("s.odb")), 3)
        self.host("db", "set", "s.odb", "Chart.Tags.Comment #0.sText", "mine")
        self.assertIn("1 comment", self.refused(3, "download", "--port", port, "--out", "s.odb", "--count", 1))
        self.assertEqual(self.download(port, "--force", out="s.odb", count=1).code, 0)
        self.host("db", "set", "s.odb", "Logger.sName", "Another")
        self.assertIn("another description, \"Demo logger\"", self.refused(3, "download", "--port", port, "--out", "s.odb", "--count", 1))
        self.assertEqual(self.download(port, out="o.rec", count=1).code, 0)
        self.assertIn("heading", self.refused(3, "download", "--port", port, "--out", "o.rec", "--append", "--csv", "precious.txt"))
        for one, other in [("--logger", "--out"), ("--csv", "--out"), ("--trace", "--csv")]:
            words = {"--out": "a.odb", one: "same.xml", other: "same.xml"}
            self.assertIn("same file", self.refused(1, "download", "--port", port, *[word for pair in words.items() for word in pair]))
        self.assertEqual((self.folder / "precious.txt").read_text(), "precious")

    def test_lines_as_they_come_and_files_by_size(self):
        port = self.simulate()
        result = self.download(port, "--csv", "-", out="s.rec", count=5)
        self.assertEqual(result.code, 0, result.err)
        self.assertEqual(list(csv.reader(io.StringIO(result.out))), self.readings("s.rec"))
        self.assertEqual(self.download(port, "--csv", "lines.csv", out="t.odb").code, 0)
        self.assertEqual(list(csv.reader(io.StringIO((self.folder / "lines.csv").read_text(encoding="utf-8")))), self.readings("t.odb"))
        self.assertEqual(self.download(port, "--rotate", "1 s", out="r.odb", count=12).code, 0)
        files = sorted(path.name for path in self.folder.glob("r-*"))
        self.assertGreaterEqual(len(files), 2)
        for name in files:
            self.assertRegex(name, r"^r-\d{8}T\d{6}Z\.odb$")
        self.assertEqual(sum(len(self.readings(name)) - 1 for name in files), 12)

    @native("Wine has no limits on files")
    def test_a_full_disk_is_told_and_keeps_what_was_recorded(self):
        process = self.start("download", "--port", self.simulate(), "--out", "s.rec", "--count", 60, "--interval", 20, restore_signals=False,
                             preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4000, 4000)))
        _, said = process.communicate(timeout=20)
        self.assertEqual(process.returncode, 3, said)
        self.assertIn("cannot be written", said)
        kept = len(self.readings("s.rec")) - 1
        self.assertIn(f"{kept} readings of 5 channels saved", said.splitlines()[-1])
        lost = int(re.search(r"(\d+) readings could not be written", said.splitlines()[-1]).group(1))
        self.assertTrue(kept > 10 and lost > 10 and kept + lost <= 60, said)
        self.assertRegex(said.splitlines()[-1], rf"; (\d+) are missing: .*{lost} x the disk did not take them")

    def test_one_reading(self):
        port = self.simulate()
        result = self.done("read", "--port", port)
        self.assertEqual(len(result.out.splitlines()), 7)
        self.assertRegex(result.out, r"Air temperature +[\d.]+ °C")
        self.assertEqual(len(list(csv.reader(io.StringIO(self.host("read", "--port", port, "--csv").out)))[1]), 6)
        self.assertIsInstance(json.loads(self.host("read", "--port", port, "--json").out)["Air temperature"], float)
        self.assertIn("Receive timeout", self.refused(2, "read", "--port", self.simulate("--fault", "silent"), "--timeout", 100))
        self.assertIn("COM250", self.refused(2, "read", "--port", "COM250"))

    def test_descriptions_of_the_page_read_their_simulators(self):
        page = (pathlib.Path(__file__).parents[2] / "docs" / "modbus.md").read_text(encoding="utf-8")
        found = re.findall(r"`(\w+[.]xml)`:\n\n```xml\n(.*?)```", page, re.S)
        self.assertEqual(len(found), 3)
        for name, text in found:
            (self.folder / name).write_text(text, encoding="utf-8")
            listed = self.done("check", name)
            result = self.done("read", "--port", self.simulate("--logger", name), "--logger", name)
            self.assertEqual(len(result.out.splitlines()), 1 + len(listed.out.splitlines()))
            self.assertNotIn("- (", result.out)

    def test_a_channel_is_set_and_read_back(self):
        channels = {"s": ("Setpoint", "40001", "float32", "<PROPERTY name='bWritable'>1</PROPERTY><PROPERTY name='sUnit'>°C</PROPERTY>"),
                    "p": ("Pump", "1", "bool", "<PROPERTY name='bWritable'>yes</PROPERTY>"), "q": ("Pump", "2", "bool", ""),
                    "t": ("Room", "30001", "int16", ""), "u": ("Total", "40011", "uint64", "<PROPERTY name='bWritable'>1</PROPERTY>")}
        body = "".join(f"<PATH name='{key}'><PROPERTY name='sName'>{name}</PROPERTY><PROPERTY name='nNumber'>{number}</PROPERTY>"
                       f"<PROPERTY name='sType'>{kind}</PROPERTY>{more}</PATH>" for key, (name, number, kind, more) in channels.items())
        (self.folder / "r.xml").write_text("<PROPERTYDB><PROPERTY name='sFamily'>Modbus</PROPERTY><PROPERTY name='nSlave'>3</PROPERTY>"
                                           f"<PATH name='Channels'>{body}</PATH></PROPERTYDB>", encoding="utf-8")
        call = ("write", "--port", self.simulate("--logger", "r.xml"), "--logger", "r.xml", "--channel")
        result = self.host(*call, "Setpoint", "--value", "-21.1")
        self.assertEqual((result.code, result.out.strip()), (0, "Setpoint: wrote -21.1 °C, read back -21.1 °C."), result.err)
        self.assertEqual(self.host(*call, "p", "--value", 1, language="sv_SE.UTF-8").out.strip(), "Pump: skrev 1, läste tillbaka 1.")
        self.assertRegex(self.host("read", *call[1:5]).out, r"Setpoint +-21[.]1 °C")
        result = self.host(*call, "s", "--value", "16777217")
        self.assertEqual((result.code, result.out.strip()), (1, "Setpoint: wrote 16777216 °C, read back 16777216 °C."), result.err)
        self.assertIn("cannot hold 16777217 exactly", result.err)
        result = self.host(*call, "Total", "--value", "9007199254740993")
        self.assertEqual((result.code, result.out.strip()), (0, "Total: wrote 9007199254740993, read back 9007199254740993."), result.err)
        self.assertIn("läste tillbaka 0,5 °C", self.host(*call, "s", "--value", "0,5", language="sv_SE.UTF-8").out)
        self.assertIn("read back 21.5", self.done(*call, "s", "--value", "２１．５").out)
        for language, value, told in [("el_GR.UTF-8", "12.345", "12,345 or 12345"), ("de_DE.UTF-8", "-1.500", "-1,5 or -1500")]:
            self.assertIn(told, self.refused(1, *call, "s", "--value", value, language=language))
            self.assertIn(" 1234,5 ", self.done(*call, "s", "--value", "1.234,5", language=language).out)
        for code, channel, value, told in [(1, "Pump", 1, "p, q"), (1, "q", 1, "does not allow"), (1, "Room", 1, "does not allow"),
                                           (1, "Boiler", 1, "Setpoint"), (1, "Setpoint", "warm", "warm"), (1, "p", 2, "cannot hold 2"),
                                           (1, "Setpoint", "nan", "nan")]:
            self.assertIn(told, self.refused(code, *call, channel, "--value", value))
        silent = self.simulate("--logger", "r.xml", "--fault", "silent")
        self.assertIn("Receive timeout", self.refused(2, "write", "--port", silent, *call[3:], "p", "--value", 1, "--timeout", 100))

    def test_ports_that_cannot_be_opened(self):
        self.assertIn("COM250", self.refused(2, "download", "--port", "COM250", "--out", "s.odb"))
        if not options.wine:  # Wine lets a held port be opened again
            port = self.simulate()
            holder = os.open(port, os.O_RDWR | os.O_NOCTTY)
            self.addCleanup(os.close, holder)
            fcntl.flock(holder, fcntl.LOCK_EX)
            self.assertIn("in use", self.refused(2, "download", "--port", port, "--out", "s.odb"))

    @native("a path of a file is no port's name on Windows")
    def test_what_is_no_port(self):
        plain = self.folder / "plain"
        plain.write_text("a file")
        for name in (plain, self.folder, "/dev/null"):
            sentence = self.refused(2, "download", "--port", name, "--out", "s.odb", "--count", 1)
            self.assertIn(f"{name} is no serial port", sentence)
        self.assertEqual(plain.read_text(), "a file")
        self.assertFalse((self.folder / "s.odb").exists())

    def test_a_place_that_cannot_be_written(self):
        # Known before the first reading: with no logger at the port there is only this to complain about.
        port = "COM250"
        self.assertIn("no such folder", self.refused(3, "download", "--port", port, "--out", "no/such/folder/s.odb", "--count", 1))
        (self.folder / "folder").mkdir()
        self.assertIn("folder", self.refused(3, "download", "--port", port, "--out", "folder", "--count", 1))
        if not options.wine:
            self.assertIn("/dev/full", self.refused(3, "download", "--port", port, "--out", "/dev/full", "--count", 1))
        port = self.simulate()
        self.assertIn("t.txt", self.refused(3, "download", "--port", port, "--out", "s.odb", "--trace", "no/such/t.txt"))

    def test_a_description_is_checked_without_a_device(self):
        body = ("<PROPERTYDB><!-- by hand --><PROPERTY name='SFAMILY'>Modbus</PROPERTY><PROPERTY name='nslave'>3</PROPERTY><PATH name='channels'>"
                "<PATH name='a'><PROPERTY name='nRegister'>7</PROPERTY><PROPERTY name='sType'>uint16</PROPERTY><PROPERTY name='sUnit'>°C</PROPERTY>"
                "<PROPERTY name='rScale'>0.5</PROPERTY></PATH></PATH></PROPERTYDB>")
        path = self.folder / "logger.xml"
        path.write_text(body, encoding="utf-8")
        result = self.host("check", "logger.xml")
        self.assertEqual((result.code, result.out.splitlines()), (0, ["a  a  °C"]), result.err)
        port = self.simulate("--logger", "logger.xml")
        self.assertEqual(self.download(port, "--logger", "logger.xml", count=1).code, 0)
        self.assertEqual(self.readings("session.odb")[0], ["time", "a [°C]"])
        for wrong, right, told in [("rScal", "rScale", "mean rScale"), ("NSLAV", "nslave", "nSlave"), ("0,5", "0.5", "point"), ("256", ">3<", "nSlave"),
                                   ("'nRegister' type='int'", "'nRegister'", "line 1"), ("°\u202eC", "°C", "U+202E"), ("°\u0085", "°C", "U+0085")]:
            path.write_text(body.replace(right, f">{wrong}<" if right == ">3<" else wrong), encoding="utf-8")
            self.assertIn(told, self.refused(3 if "line" in told else 1, "check", "logger.xml"))
        for right, wrong, told in [("rScale", "rScal", "rScal"), ("'sType'", "'sKind'", "Channels.a.sKind"), (">Modbus<", ">Pneumatic<", "Pneumatic")]:
            path.write_text(body.replace(right, wrong), encoding="utf-8")
            self.refuse((1, f"download --port {port} --logger logger.xml --out s.odb", told))
        self.assertFalse((self.folder / "s.odb").exists())

    @native("a signal ends Wine's process from outside; the console's Ctrl+C is what reaches the handler")
    def test_stopping_keeps_what_came_before(self):
        port = self.simulate()
        for wish, count, kept, before in ((signal.SIGINT, 1000, 2, ()), (signal.SIGTERM, 1000, 2, ()), (signal.SIGHUP, 30, 20, ["nohup"])):  # who was told to outlives it
            process = self.start("download", "--port", port, "--out", f"{wish.name}.odb", "--count", count, "--interval", 20 if not before else 100, before=before)
            time.sleep(1)
            process.send_signal(wish)
            _, said = process.communicate(timeout=20 if before else 8)  # at once, and not after the time that a closing terminal is given
            self.assertIn(process.returncode, (0, 2), said)  # 2 where this machine was too busy for all of them
            self.assertGreater(len(self.readings(f"{wish.name}.odb")), kept)
            (self.folder / f"{wish.name}.odb").unlink()
        # Asking again does not interrupt the saving.
        process = self.start("download", "--port", port, "--out", "s.odb", "--count", 100000, "--interval", 0)
        time.sleep(1)
        while process.poll() is None:
            process.send_signal(signal.SIGINT)
            time.sleep(0.002)
        self.assertEqual(process.returncode, 0, process.communicate()[1])
        self.assertGreater(len(self.readings("s.odb")), 2)
        self.assertEqual([path.name for path in self.folder.iterdir()], ["s.odb"])

    @native("Wine opens the streams again by itself")
    def test_closed_streams_leave_the_files_alone(self):
        port = self.simulate()
        call = self.command("download", "--port", port, "--out", "s.odb", "--count", 3, "--interval", 150, "--trace", "t.txt", "--hex")
        script = 'exec "$@" <&- >&- 2>&-'
        done = subprocess.run(["sh", "-c", script, "sh", *call], cwd=self.folder, env=self.environment())
        self.assertEqual(done.returncode, 0)
        self.assertNotIn("saved", (self.folder / "t.txt").read_text(encoding="utf-8"))
        self.assertEqual(len(self.readings("s.odb")), 4)


class Recordings(HostTest):
    def make(self, name, *words):
        done = subprocess.run([*([options.wine] if options.wine else []), options.maker, name, *map(str, words)], cwd=self.folder, env=self.environment(), timeout=120)
        self.assertEqual(done.returncode, 0)

    def keep_open(self, name, *words):
        """A recording that grows by a reading for every line written to the process that this gives."""
        maker = subprocess.Popen([*([options.wine] if options.wine else []), options.maker, name, *map(str, words), "more"], cwd=self.folder,
                                 env=self.environment(), stdin=subprocess.PIPE, stdout=subprocess.PIPE, encoding="utf-8")
        self.addCleanup(maker.stdout.close)
        self.addCleanup(maker.communicate, "end\n")
        self.grow(maker)
        return maker

    def grow(self, maker):
        maker.stdin.write("one\n")
        maker.stdin.flush()
        self.assertEqual(maker.stdout.readline().strip(), "made")

    def test_every_form_holds_the_same(self):
        self.make("a.rec", 120, 3, "gap", 60, 20, "ended")
        rows, gaps = self.readings("a.rec"), self.done("show", "a.rec", "--gaps").out
        self.assertEqual(rows[0], ["time", "Channel 0 [°C]", "Channel 1 [%]", "Channel 2 [°C]"])
        self.assertEqual(len(rows), 102)  # the gap's row stands for 20
        self.assertEqual([row[1:] for row in rows if row[0].endswith("20:27:40.000000Z")], [["", "", ""]])
        self.assertEqual(rows[1][2], "")
        self.assertEqual(len(gaps.splitlines()), 3)
        self.assertRegex(gaps, r"missing: 20 readings, attempts: 60, Receive timeout \(no answer; none\)")
        # By way of each other; a ";" would part a text of the XML form.
        for origin, target in [("a.rec", "b.odb"), ("b.odb", "c.xml"), ("c.xml", "d.rec"), ("d.rec", "e.xml"), ("e.xml", "f.odb"), ("a.rec", "g.rec")]:
            self.done("convert", origin, target)
            self.assertEqual(self.readings(target), rows, target)
            self.assertEqual(self.done("show", target, "--gaps").out, gaps if target == "g.rec" else gaps.replace("; none", ", none"))
        self.assertEqual(self.host("db", "list", "b.odb").out, self.host("db", "list", "f.odb").out)
        self.done("convert", "d.rec", "h.csv")
        self.done("convert", "h.csv", "i.odb")
        self.assertEqual(self.readings("i.odb"), rows)
        local = self.done("show", "a.rec", "--csv", "--local", language="sv_SE.UTF-8").out
        self.assertEqual(local.splitlines()[3].split(";")[1:], ["0,25", "0,375", "0,5"])
        (self.folder / "l.csv").write_text(local, encoding="utf-8")
        self.done("convert", "l.csv", "m.odb")
        self.assertEqual(self.readings("m.odb"), rows)
        # As an editor leaves it, without the mark and with a minus of print.
        (self.folder / "n.csv").write_text(local.lstrip("\ufeff").replace(";0,375;", ";\u22120,375;", 1), encoding="utf-8")
        self.done("convert", "n.csv", "n.odb")
        self.assertEqual([row[:2] for row in self.readings("n.odb")], [row[:2] for row in rows])
        self.assertEqual(self.readings("n.odb")[3][2], "-0.375")
        (self.folder / "n.csv").write_text("time;a\n2026-05-28 20:26:40,000;1,5x\n", encoding="utf-8")
        self.assertIn('"1,5x"', self.refused(3, "convert", "n.csv", "p.odb"))
        before = (self.folder / "b.odb").read_bytes()
        self.assertIn("--force", self.refused(3, "convert", "a.rec", "b.odb"))
        self.assertIn("same file", self.refused(1, "convert", "a.rec", "./a.rec"))
        self.assertIn(".xml", self.refused(1, "convert", "a.rec", "a.txt"))
        self.assertEqual((self.folder / "b.odb").read_bytes(), before)
        self.done("convert", "h.csv", "b.odb", "--force")

    def test_faults_in_text_have_their_line(self):
        head = "time,a [b]\n2026-05-28T20:26:40.000000Z,1\n"
        for text, line in [("", 0), ("x,y\n", 1), (head + "2026-05-28T20:26:41Z,1,2\n", 3), (head + "2026-05-28,1\n", 3), (head + "2026-05-28T20:26:39Z,1\n", 3),
                           (head + "\n2026-05-28T20:26:41Z,1;2\n", 4), (head + '2026-05-28T20:26:41Z,"1\n', 3), ("time,\udcce\n", 1)]:
            (self.folder / "a.csv").write_bytes(text.encode(errors="surrogateescape"))
            self.assertIn(f"line {line}:", self.refused(3, "convert", "a.csv", "a.odb"))
            self.assertFalse((self.folder / "a.odb").exists())

    def test_recover_folds_what_a_killed_download_left(self):
        self.make("a.odb.rec", 50, 2, "gap", 20, 5)
        with open(self.folder / "a.odb.rec", "ab") as file:
            file.write(b"\xD7\x4F\x02\0\x1A")  # a block that was being written
        result = self.done("show", "a.odb", "--csv")
        self.assertIn("opened a.odb.rec", result.err)
        self.make("b.rec", 10, 2)
        said = self.done("recover", "a.odb").out
        self.assertIn("45 readings and 1 gap ", said)
        self.assertIn("5 bytes", said)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["a.odb", "b.rec"])
        self.assertEqual(self.done("show", "a.odb", "--csv").out, result.out)
        self.assertIn("no recording", self.refused(3, "recover", "a.odb"))
        self.done("recover", "b.rec")
        self.assertTrue((self.folder / "b.rec").exists())
        self.assertIn("--force", self.refused(3, "recover", "b.rec"))
        self.make("a.odb.rec", 3, 2)
        self.assertIn("`orvikhost recover a.odb`", self.done("show", "a.odb").err)
        self.done("recover", "a.odb.rec", "--force")
        self.assertEqual(len(self.readings("a.odb")), 4)
        maker = self.keep_open("c.odb.rec", 2, 1)
        self.assertIn("stop it", self.refused(3, "recover", "c.odb"))
        self.assertIn("another name", self.host("chart", "c.odb", "--out", "c.svg", "--clear-tags", "--tag", "2026-05-28T20:26:41Z;0.1;x").err)
        self.grow(maker)
        self.assertFalse((self.folder / "c.odb").exists())

    def test_parts_of_a_session(self):
        self.make("a.rec", 100, 2, "gap", 90, 5)
        self.done("convert", "a.rec", "a.odb")
        for name in ("a.rec", "a.odb"):
            def rows(*words):
                return self.done("show", name, "--csv", *words).out.splitlines()[1:]
            self.assertEqual(len(rows("--from", "2026-05-28T20:27:00Z")), 76)
            self.assertEqual(len(rows("--from", "2026-05-28T20:27:00Z", "--to", "2026-05-28T20:27:09Z")), 10)
            self.assertEqual(len(rows("--last", "9.5 s")), 6)
            self.assertEqual([row.count(",") for row in rows("--channel", "c1", "--every", "40")][0], 1)
            self.assertEqual(len(rows("--every", "40", "--to", "2026-05-28T20:28:00Z")), 3)
            self.assertIn("5 readings are missing", self.host("show", name).err)
            lines = [json.loads(line) for line in self.done("show", name, "--json").out.splitlines()]
            self.assertEqual(lines[0], {"time": "2026-05-28T20:26:40.000000Z", "Channel 0": 0, "Channel 1": None})
            line = self.done("show", name, "--influx", "--channel", "c1").out.splitlines()[1]
            self.assertEqual(line, "orvik,logger=Inlet,channel=Channel\\ 1,id=c1,unit=% value=0.375 1780000002000000")
            self.assertEqual(self.done("show", name, "--csv", "--separator", "tab").out.splitlines()[0], "time\tChannel 0 [°C]\tChannel 1 [%]")
            table = self.done("show", name).out.splitlines()
            self.assertEqual({len(cell.split(".")[1]) for line in table[2:80] for cell in line.split()[3:]}, {4})
        for words in [("--csv", "--json"), ("--gaps", "--picture", "#"), ("--last", "1 s", "--to", "2026-05-28T20:28:00Z"), ("--separator", ";"), ("--local",),
                      ("--csv", "--separator", "ab"), ("--csv", "--separator", "."), ("--last", "soon"), ("--every", "0"), ("--channel", "x"), ("--follow", "--gaps")]:
            self.refused(1, "show", "a.rec", *words)
        self.assertIn("does not grow", self.refused(1, "show", "a.odb", "--follow"))

    def test_following_goes_on_into_the_next_file(self):
        self.make("a.rec", 2, 1, "next", "b.rec")
        maker = self.keep_open("b.rec", 2, 1)
        follower = subprocess.Popen(self.command("show", "a.rec", "--csv", "--follow"), cwd=self.folder, env=self.environment(), stdout=subprocess.PIPE, encoding="utf-8")
        self.addCleanup(follower.stdout.close)
        lines = [follower.stdout.readline() for _ in range(6)]
        self.grow(maker)
        lines.append(follower.stdout.readline())
        self.assertEqual([line.split(",")[1].strip() for line in lines[1:]], ["0", "0.125", "0", "0.125", "0.25", "0.375"])
        maker.stdin.write("end\n")
        maker.stdin.flush()
        self.assertEqual(follower.wait(timeout=20), 0)

    def test_damage_is_told_and_costs_no_more(self):
        self.make("a.rec", 5000, 2)
        data = bytearray((self.folder / "a.rec").read_bytes())
        for at in (2000, 60000):
            data[at] ^= 1
        (self.folder / "a.rec").write_bytes(data)
        for words in (("show", "a.rec", "--csv"), ("convert", "a.rec", "a.odb")):
            result = self.host(*words)
            self.assertEqual(result.code, 3)
            self.assertIn("bytes of a.rec are damaged", result.err)
        self.assertEqual(len(self.readings("a.odb")), 1 + 5000, "two are lost, and rows mark their places")
        self.assertRegex(self.done("show", "a.odb", "--gaps").out, "(missing: 1 reading, .*damaged.*\n.*){2}")
        # Bytes that were taken out: the rest is kept, and told, also by who goes on behind it.
        self.make("c.rec", 500, 2)
        data = (self.folder / "c.rec").read_bytes()
        (self.folder / "d.odb.rec").write_bytes(data[:9000] + data[9003:])
        result = self.host("recover", "d.odb")
        self.assertEqual(result.code, 3)
        self.assertIn("d.odb.damaged.rec", result.err)
        self.assertEqual((self.folder / "d.odb.damaged.rec").read_bytes(), data[:9000] + data[9003:])
        (self.folder / "b.rec").write_bytes(b"ORVIKREC" + bytes(100))
        for words in (("show", "b.rec"), ("convert", "b.rec", "c.odb"), ("recover", "b.rec"), ("chart", "b.rec", "--out", "b.png")):
            self.assertIn("b.rec", self.refused(3, *words))


class TextLoggers(HostTest):
    PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "text-loggers.md"

    def test_each_description_of_the_page_is_read_from_its_simulator(self):
        descriptions = re.findall(r"```xml\n(.*?)```", self.PAGE.read_text(encoding="utf-8"), re.S)
        self.assertEqual(len(descriptions), 4)
        for description in descriptions:
            (self.folder / "device.xml").write_text(description, encoding="utf-8")
            count = len(self.done("check", "device.xml").out.splitlines())
            port = self.simulate("--logger", "device.xml")
            self.done("download", "--port", port, "--logger", "device.xml", "--interval", 0, "--count", 2, "--out", "s.odb", "--force")
            for row in self.readings("s.odb")[1:]:
                self.assertEqual([15 < float(value) < 25 for value in row[1:]], [True] * count, row)
            if "sAsk" in description:
                self.assertIn("sAsk", self.learn(port, "--time", "1 s", "--force").err)
            else:
                self.learn_and_read(port, count)

    def learn(self, port, *words):
        return self.host("learn", "--port", port, "--out", "learnt.xml", *words)

    def learn_and_read(self, port, count):
        learnt = self.learn(port, "--force")
        self.assertEqual(learnt.code, 0, learnt.err)
        self.assertIn("lines such as", learnt.out)
        self.assertGreaterEqual(len(self.host("check", "learnt.xml").out.splitlines()), count)
        # The command that it proposes.
        words = re.search(r"orvikhost (download.*)$", learnt.out, re.M)[1].replace("1 min", "2 s").replace("session.odb", "l.odb --force")
        self.assertEqual(self.host(*shlex.split(words)).code, 0)
        self.assertGreaterEqual(len(self.readings("l.odb")), 2)
        self.assertEqual(self.host("chart", "l.odb", "--out", "l.png").code, 0)
        self.assertIn("there already", self.refused(3, "learn", "--port", port, "--out", "learnt.xml"))

    def talk(self, text, every=0.3):
        """A device on the network that says this time after time, each time at once."""
        server = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(server.close)
        said = [0]

        def serve():
            while True:
                try:
                    with server.accept()[0] as line:
                        while True:
                            line.sendall(text(said[0]).encode())
                            said[0] += 1
                            time.sleep(every)
                except OSError:
                    if server.fileno() < 0:
                        return
        threading.Thread(target=serve, daemon=True).start()
        return f"tcp://127.0.0.1:{server.getsockname()[1]}"

    def test_each_line_is_a_reading_and_a_damaged_one_is_told(self):
        body = "".join(f"<PROPERTY name='{key}'>{value}</PROPERTY>" for key, value in
                       {"sFamily": "Text", "sStart": "$A,", "sChecksum": "xor", "sSeparator": "comma"}.items())
        (self.folder / "d.xml").write_text(f"<PROPERTYDB>{body}<PATH name='Channels'><PATH name='1'><PROPERTY name='nField'>2</PROPERTY></PATH></PATH></PROPERTYDB>")

        def lines(first):
            said = ""
            for number in range(5 * first, 5 * first + 5):
                digits = functools.reduce(lambda a, b: a ^ ord(b), f"A,{number}", 0) ^ (1 if number % 3 == 0 else 0)
                said += f"$A,{number}*{digits:02X}\r\n$B,1\r\n"
            return said
        port = self.talk(lines)
        done = self.host("download", "--port", port, "--logger", "d.xml", "--interval", 0, "--count", 30, "--out", "s.odb")
        self.assertEqual(done.code, 2, done.err)
        self.assertIn("checksum", done.err)
        got = [int(float(row[1])) for row in self.readings("s.odb")[1:] if row[1]]
        self.assertEqual(got, [n for n in range(got[0], got[-1] + 1) if n % 3 != 0])
        self.assertEqual(len(got), 20)

    def test_what_waited_before_is_not_learnt_from(self):
        # A device that says three lines at once when somebody comes, and then one every 700 ms.
        said = iter(["5 mV\r\n" * 3])
        learnt = self.learn(self.talk(lambda n: next(said, f"{n} mV\r\n"), 0.7))
        self.assertEqual(learnt.code, 0, learnt.err)
        self.assertRegex((self.folder / "learnt.xml").read_text(encoding="utf-8"), r'nEvery"[^>]*>(600|700|800)<')

    def test_a_device_that_cannot_be_learnt_is_told(self):
        self.assertIn("NOPORT", self.learn("NOPORT").err)
        self.assertIn("ftp://x", self.refused(1, "learn", "--port", "ftp://x", "--out", "learnt.xml"))
        said = self.learn(self.simulate(), "--time", "500 ms")  # a Modbus logger waits to be asked
        self.assertEqual((said.code, len(said.sentences)), (2, 1), said.err)
        self.assertIn("said nothing", said.err)
        self.assertFalse((self.folder / "learnt.xml").exists())


class Plugins(HostTest):
    def test_another_version_is_refused_by_name_and_version(self):
        folder = self.folder / "plugins"
        folder.mkdir()
        source = next((pathlib.Path(options.host).parent / "plugins").glob("*.dll" if options.wine else "*.so"))
        data = source.read_bytes()
        at = data.index(b"\x7fOrvikPlugin\x01\n") + 16
        self.assertTrue(data[at:].startswith(b"1.0.0\0"))
        # Of another family too, since the host finds its own plug-in of this one.
        (folder / source.name).write_bytes(data[:at] + b"0.9.7" + data[at + 5:at + 16] + b"Modbux" + data[at + 22:])
        name = "Z:" + str(folder) if options.wine else str(folder)
        self.host("db", "set", "modbux.xml", "sFamily", "Modbux")
        sentence = self.refused(1, "check", "modbux.xml", ORVIK_PLUGINS=name)
        for word in (source.name, "0.9.7", "1.0.0"):
            self.assertIn(word, sentence)
        # One that is cut short behind its stamp is damaged, whatever the loader would make of it.
        (folder / source.name).write_bytes(data[:max(at + 64, len(data) // 2)])
        self.assertIn("cannot be loaded", self.refused(1, "download", "--port", "COM9", "--out", "s.odb", ORVIK_PLUGINS=name))
        # One that is missing is told with all folders and the families that are there.
        (folder / source.name).write_bytes(b"no plug-in at all")
        sentence = self.refused(1, "check", "modbux.xml", ORVIK_PLUGINS=name)
        for word in ("Modbux", self.folder.name, pathlib.Path(options.host).parent.name, "found Modbus"):
            self.assertIn(word, sentence)


class Databases(HostTest):
    def test_names_of_any_letters_go_through_every_form(self):
        chosen = random.Random(20261122)
        scripts = ((0x21, 0x7E), (0xA1, 0x17F), (0x300, 0x30F), (0x370, 0x377), (0x5D0, 0x5EA), (0x621, 0x64A), (0x905, 0x939), (0x4E00, 0x4E80), (0x1F300, 0x1F380))
        names = []
        self.done("download", "--port", self.simulate(), "--count", 2, "--interval", 50, "--out", "s.odb")
        for channel in range(1, 6):
            letters = [chr(chosen.randint(*chosen.choice(scripts))) for _ in range(12)]
            names.append("n" + "".join(letters).replace(";", ",").replace("[", "(") + "n")
            for key, text in (("sName", names[-1]), ("sUnit", "Ω" + letters[0] if letters[0] not in ";[]" else "kΩ")):
                self.done("db", "set", "--", "s.odb", f"Channels.{channel}.{key}", text)
        forms = ("s.odb", "t.xml", "t.csv", "t.rec", "u.odb")
        for before, form in zip(forms, forms[1:]):
            self.done("convert", before, form)
            if form != "t.csv":
                self.assertEqual(list(json.loads(self.done("show", form, "--json").out.splitlines()[0]))[1:], names, form)
        self.assertEqual([p.text for p in ElementTree.parse(self.folder / "t.xml").iter("PROPERTY") if p.get("name") == "sName"][:5], names)

    def test_values_of_every_kind_come_back(self):
        for name in ("a.xml", "a.odb"):
            for key, kind, value in [("Text.s", "str", "mätvärde °C"), ("n.w", "u16", "1;2;65535"), ("n.d", "u32", "4294967295"),
                                     ("n.i", "i64", "-9223372036854775808"), ("n.f", "r32", "1.5"), ("n.r", "r64", "0.25;-1e+300")]:
                self.assertEqual(self.host("db", "set", name, key, value, "--kind", kind).code, 0)
                self.assertEqual(self.host("db", "get", name, key).out.rstrip("\r\n"), value)
            listed = self.host("db", "list", name).out.splitlines()
            self.assertEqual(len(listed), 6)
            self.assertIn("Text.s  str  mätvärde °C", listed)
            self.assertIn("6 values in 2 folders", self.host("db", "check", name).out)
            self.assertEqual(self.host("db", "remove", name, "n").code, 0)
            self.assertIn("1 value in 1 folder", self.host("db", "check", name).out)

    def test_reals_may_be_typed_in_the_users_format(self):
        for typed, stored in [("1,5;-2,5e3;1.5", "1.5;-2500;1.5"), ("1.234,5", "1234.5"), ("12.34,5", None), ("1,5x", None), ("-", None)]:
            result = self.host("db", "set", "a.odb", "k", typed, "--kind", "r64", language="de_DE.UTF-8")
            self.assertEqual(result.code, 1 if stored is None else 0, result.err)
            if stored is not None:
                self.assertEqual(self.host("db", "get", "a.odb", "k", language="de_DE.UTF-8").out.rstrip("\r\n"), stored)

    def test_what_the_xml_form_cannot_hold_is_told(self):
        self.host("db", "set", "a.odb", "bytes", "1;2", "--kind", "u8")
        self.host("db", "set", "a.odb", "third", "0.3333333333333333", "--kind", "r64")
        self.host("db", "set", "a.odb", "parts", "one;two")
        self.host("db", "set", "a.odb", "letters", "Ã¤kΩ温e\u0301")
        result = self.host("db", "convert", "a.odb", "a.xml")
        self.assertEqual(result.code, 0)
        self.assertEqual([sentence.split(":")[1].strip() for sentence in result.sentences], ["bytes", "parts"])
        self.assertEqual(self.host("db", "get", "a.xml", "letters").out.strip(), "Ã¤kΩ温e\u0301")
        self.assertEqual(self.host("db", "get", "a.xml", "third").out.strip(), "0.3333333333333333")
        self.assertIn("same file", self.refused(1, "db", "convert", "a.xml", "./a.xml"))
        self.assertIn("--all", self.refused(1, "db", "get", "a.xml", "third", "--all"))

    def test_mistakes(self):
        self.host("db", "set", "a.xml", "k", "1", "--kind", "u16")
        self.refuse((1, "db set a.xml k x", "u16"), (1, "db set a.xml k 70000", "u16"), (1, "db set a.xml k 1 --kind r32", "keeps its kind"),
                    (1, "db set a.xml k.deeper 1", "k.deeper"), (1, "db get a.xml nothing", "nothing"), (1, "db set a.xml z 1 --kind zap", "zap"),
                    (3, "db list none.xml", "none.xml"))
        before = (self.folder / "a.xml").read_bytes()
        for kind in ("u8", "i32"):
            self.assertIn("XML", self.refused(1, "db", "set", "a.xml", "bytes", "1", "--kind", kind))
        self.assertEqual((self.folder / "a.xml").read_bytes(), before)
        result = self.host("db", "set", "a.xml", "parts", "one;two")
        self.assertEqual((result.code, len(result.sentences)), (0, 1), result.err)
        (self.folder / "folder").mkdir()
        self.refuse((3, "db list folder", "folder"), (3, "db convert a.xml folder", "access denied"))

    def test_lists_are_cut_short(self):
        self.host("db", "set", "l.odb", "a.many", ";".join(map(str, range(1000))), "--kind", "u16")
        self.host("db", "set", "l.odb", "a.text", "å" * 201)
        self.host("db", "set", "l.odb", "ab", "x")
        listed = self.host("db", "list", "l.odb", "a").out.splitlines()
        self.assertEqual(listed, ["a.many  u16  0;1;2;3;4;5;6;7 ... (1000 elements)", "a.text  str  " + "å" * 200 + " ... (201 characters)"])
        self.assertTrue(self.host("db", "list", "l.odb", "--all").out.splitlines()[0].endswith(";998;999"))
        self.assertTrue(self.host("db", "get", "l.odb", "a.many").out.strip().endswith(";998;999"))
        self.assertIn("zz", self.refused(1, "db", "list", "l.odb", "zz"))

    def test_files_of_other_editors(self):
        text = "<?xml version='1.0'?>\n<!-- by hand -->\n<PROPERTYDB>\n<PROPERTY name='s'>Mätare</PROPERTY>\n</PROPERTYDB>\n"
        (self.folder / "a.xml").write_text(text, encoding="utf-8")
        self.assertEqual(self.host("db", "list", "a.xml").out.splitlines(), ["s  str  Mätare"])
        (self.folder / "b.xml").write_text(text.replace("</PROPERTY>", "</PROP>"), encoding="utf-8")
        for words in (["list", "b.xml"], ["set", "b.xml", "k", "v"]):
            self.assertIn("line 4", self.refused(3, "db", *words))
        if not options.wine:  # whose library keeps such a thing as text
            (self.folder / "c.xml").write_text(text.replace("Mätare", "a&nbsp;b"), encoding="utf-8")
            self.assertIn("line 4", self.refused(3, "db", "list", "c.xml"))
        self.assertIn("rad 4", self.refused(3, "db", "list", "b.xml", language="sv_SE.UTF-8"))

    def test_names_that_no_key_leads_to(self):
        node = b"\0\xff\xff\0\0\x0e\0CMapStringToOb\1\0\0\1\x80\0\0"  # a folder without a name, in it another
        (self.folder / "n.odb").write_bytes(b"\0\0\1\0" + node)
        self.assertIn("0 values in 2 folders", self.host("db", "check", "n.odb").out)

    def test_a_damaged_file_is_refused_and_left_alone(self):
        self.host("db", "set", "a.odb", "k", "some text")
        for name, data in [("cut.odb", (self.folder / "a.odb").read_bytes()[:-3]), ("cut.xml", b"<?xml version=\"1.0\"?>\r\n<PROPERTYDB>")]:
            (self.folder / name).write_bytes(data)
            self.refuse((3, "db list " + name, name), (3, f"db set {name} k2 x", name), (3, "show " + name, name))
            self.assertEqual((self.folder / name).read_bytes(), data)
        self.assertIn("session", self.refused(3, "show", "a.odb"))


class Editing(HostTest):
    def test_sessions(self):
        """What is typed, how many sentences that brings, and what is kept then; the next session goes on with it."""
        words = ["a.b  str  two words", "a.m  u16  5"]
        for name, typed, sentences, kept in [
                ("e.odb", 'set a.b "two words"|set a.n 5 u16|set a.n 6|undo|save|quit', 0, ["a.b  str  two words", "a.n  u16  5"]),
                ("e.odb", "remove a|undo|rename a.n m|undo|redo|save", 0, words),
                # A new folder goes with the step that made it, and undone steps are forgotten by a new one.
                ("e.odb", "set x.y.z 1|undo|set k 2|redo|save", 1, [*words, "k  str  2"]),
                ("group.odb", "begin|set a 1|set b 2|end|set c 3|undo|undo|redo|save", 0, ["a  str  1", "b  str  2"]),
                ("e.xml", "set a 1 i32|set b 2 u16|save|quit", 1, ["b  u16  2"]),  # XML does not hold the one
                ("open.odb", "set a 1|begin|set b 2|begin|set c 3|undo|end|undo|redo|save|quit", 1, ["a  str  1"]),  # undo ends an open group
                # Names may hold quoted separators.
                ("q.odb", "set k 1|set \"'p.q'.r\" 2|undo|set \"s.'t.u'\" 3|rename \"s.'t.u'\" v|undo|save|quit", 0, ["k  str  1", "s.'t.u'  str  3"]),
                ("q.odb", "rename k x.y|rename \"s.'t.u'\" \"'w.x'\"|save|quit", 1, ["k  str  1", "s.'w.x'  str  3"]),
                ("v.odb", "set k v|quit|safe|quit|save|quit", 3, ["k  str  v"]),  # a mistake is no confirmation
                ("v.odb", "set n 1 u16|set n x|remove nothing|rename nothing y|undo|undo|end|fly|set k|set k v|save|quit", 7, ["k  str  v"]),
                ("v.odb", "set k w|quit|quit", 1, ["k  str  v"]),
                ("v.odb", "set k w", -1, ["k  str  v"])]:  # not saved
            with self.subTest(typed):
                result = self.host("db", "edit", name, typed=typed.replace("|", "\n") + "\n")
                self.assertEqual((result.code, len(result.sentences)), (1, 1) if sentences < 0 else (0, sentences), result.err)
                self.assertTrue(sentences >= 0 or "not saved" in result.err, result.err)
                self.assertEqual(self.host("db", "list", name).out.splitlines(), kept)


class Regional(HostTest):
    def test_the_settings_are_shown_with_samples(self):
        swedish = self.host("locale", language="sv_SE.UTF-8").out.splitlines()
        self.assertIn("decimal: \",\"", swedish)
        self.assertIn("short date: 2026-07-04", swedish)
        american = self.host("locale", language="en_US.UTF-8").out.splitlines()
        for line in ("morning: \"AM\"", "afternoon: \"PM\"", "leading zero: 1", "real: -1,234,567.89", "short date: 7/4/2026", "clock: 3:06:07 PM", "words: 1 weeks 1 days"):
            self.assertIn(line, american)

    def test_what_is_read_from_the_right_keeps_its_column(self):
        (self.folder / "a.csv").write_text("time,رطوبة [%],b,ab Ω\n2026-05-28T20:26:40Z,1,2,3\n", encoding="utf-8")
        self.done("convert", "a.csv", "a.odb")
        table = self.done("show", "a.odb").out
        self.assertRegex(table, "^Time +\u2068رطوبة \\[%\\]\u2069\u200e +b +ab Ω\n")
        heading, row = (re.sub("[\u2068\u2069\u200e]", "", line) for line in table.splitlines())
        self.assertEqual(len(heading), len(row))
        for words in (("show", "a.odb", "--csv"), ("show", "a.odb", "--json")):
            self.assertNotIn("\u2068", self.done(*words).out)
        if not options.wine:
            picture = self.done("show", "a.odb", "--picture", "#.#", language="ar_EG.UTF-8").out.splitlines()[1]
            self.assertRegex(picture, "^\u2068[^\u2069]+م\u2069\u200e +\u2068١٫٠\u2069\u200e +\u2068٢٫٠\u2069\u200e +\u2068٣٫٠\u2069\u200e$")

    def test_what_looks_the_same_is_the_same(self):
        (self.folder / "a.csv").write_text("time,e\u0301 [\u2126],b [\u03a9],c [\u00b5A],d [\u03bcA]\n2026-05-28T20:26:40Z,1,2,3,4\n", encoding="utf-8")
        self.done("convert", "a.csv", "a.odb")
        self.assertEqual(self.done("show", "a.odb", "--csv", "--channel", "\u00e9").out.splitlines()[1].split(",")[1], "1")
        self.done("chart", "a.odb", "--out", "a.svg")
        said = [text.text for text in ElementTree.parse(self.folder / "a.svg").iter() if text.tag.endswith("text")]
        self.assertEqual([sum(unit in said for unit in units) for units in ("\u2126\u03a9", ("\u00b5A", "\u03bcA"))], [1, 1], said)
        if not options.wine:  # Windows does not tell
            self.done("db", "set", "a.odb", "Channels.1.sName", "b\u0378")
            self.assertIn(": \u0378; Debian", self.host("chart", "a.odb", "--out", "a.svg").sentences[0])
        (self.folder / "a.xml").write_text("<PROPERTYDB><PROPERTY name='sFamily'>Modbus</PROPERTY><PATH name='Channels'>" + "".join(
            f"<PATH name='{key}'><PROPERTY name='sName'>{name}</PROPERTY><PROPERTY name='nNumber'>30001</PROPERTY></PATH>" for key, name in (("1", "\u00c5"), ("2", "\u212b")))
            + "</PATH></PROPERTYDB>", encoding="utf-8")
        self.refuse((1, "check a.xml", "channels 1 and 2 have names that look the same"))

    def test_orders_to_a_terminal_are_not_passed_on(self):
        (self.folder / "a.csv").write_text("time,a\x1b[31m\u202e\u0085 [k\uffff],\u2067b\u2069\n2026-05-28T20:26:40Z,1,2\n", encoding="utf-8")
        self.done("convert", "a.csv", "a.odb")
        self.assertRegex(self.done("show", "a.odb").out, " a\ufffd\\[31m\ufffd\ufffd \\[k\ufffd\\] +\u2067b\u2069\n")
        self.assertIn("a\x1b[31m", self.done("show", "a.odb", "--csv").out)
        self.done("convert", "a.odb", "a.xml")
        self.assertIn("a\ufffd[31m\u202e\u0085", [value.text for value in ElementTree.parse(self.folder / "a.xml").iter("PROPERTY")])
        self.assertEqual(self.host("show", "a.odb", "--channel", "\x1b").sentences[0].count("\x1b"), 0)

    @native("another shell, and names of other bytes")
    def test_commands_to_be_copied_have_their_quotes(self):
        for name in (b"a b.odb", b"it's.odb", b"na\xefve.odb", "μέτρηση.odb".encode(), b"-x.odb", b"a\x1b$(x).odb"):
            with self.subTest(name):
                (self.folder / "made.rec").unlink(missing_ok=True)
                Recordings.make(self, "made.rec", 3, 2)
                os.rename(self.folder / "made.rec", os.fsencode(self.folder) + b"/" + name + b".rec")
                said = self.host("download", "--port", "COM250", "--out=" + os.fsdecode(name), "--count", 1).sentences[0]
                command = re.search("`(.*)` makes", said).group(1).replace("orvikhost", self.command()[0])
                done = subprocess.run(["bash", "-c", command], cwd=self.folder, env=self.environment(), capture_output=True, timeout=120)
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertIn(name, os.listdir(os.fsencode(self.folder)))

    def test_spans_and_pictures(self):
        port = self.simulate()
        self.done("download", "--port", port, "--out", "s.odb", "--interval", "0.2 s", "--for", "800 ms", "--timeout", "1 s")
        self.assertEqual(len(self.readings("s.odb")), 1 + 4)
        rows = self.host("show", "s.odb", "--picture", "###.#").out.splitlines()
        self.assertRegex(rows[1], r" 2\d\.\d ")
        self.refuse((1, f"download --port {port} --out s.odb --interval '5 parsec'", "--interval"),
                    (1, f"download --port {port} --out s.odb --for '1 s' --count 3", "--count"), (1, "show s.odb --picture '#x'", "#x"))


class Version(HostTest):
    def test_of_its_own_files_in_both_languages(self):
        home = pathlib.Path(options.host).parent
        ending = "dll" if options.wine else "so"
        for file, name, english, swedish in [
                (options.host, "orvikhost", "Reference host", "Referensvärd"),
                (home / ("OrvikShared.dll" if options.wine else "libOrvikShared.so"), "OrvikShared", "System module", "Systemmodul"),
                (home / "plugins" / f"orvik_modbus.{ending}", "Modbus", "Loggers", "Loggrar")]:
            for language, what in [("en_US.UTF-8", english), ("sv_SE.UTF-8", swedish)]:
                out = self.host("version", ("Z:" if options.wine else "") + str(file), language=language).out
                self.assertIn("FileVersion: 1.0.0.0", out)
                self.assertIn(f"InternalName: {name}", out)
                self.assertIn(f"FileDescription: {what}", out)

    def test_of_other_files(self):
        self.assertIn("no version", self.refused(3, "version", "Z:/etc/passwd" if options.wine else "/etc/passwd"))
        self.assertIn("nothing.dll", self.refused(3, "version", "nothing.dll"))


class Ports(HostTest):
    def test_json_is_json(self):
        for port in json.loads(self.done("ports", "--json").out):
            self.assertEqual(set(port), {"name", "description", "holder"})

    @native("Windows does not tell who holds a port")
    def test_a_held_port_names_its_holder(self):
        ports = self.folder / "ports"
        ports.mkdir()
        line = SimulatedLine(options, self.folder, ["--link", str(ports / "com44")])
        self.addCleanup(line.stop)
        download = self.start("download", "--port", ports / "com44", "--out", "s.odb", "--count", 100, "--interval", 100)
        try:
            time.sleep(1)
            listed = json.loads(self.host("ports", "--json", ORVIK_PORTS_DIR=str(ports)).out)
            self.assertIn(str(download.pid), {port["name"]: port["holder"] for port in listed}.get("COM44", ""))
        finally:
            download.send_signal(signal.SIGINT)
            download.communicate(timeout=20)


class Demo(HostTest):
    def test_the_main_job(self):
        if options.wine:
            self.assertIn("--port", self.refused(1, "demo"))
            self.assertIn("simulate needs", self.refused(1, "simulate"))
            result = self.host("demo", "--port", self.simulate())
        else:
            result = self.host()
        self.assertEqual(result.code, 0, result.err)
        self.assertEqual(len(re.findall(r"^\d+/\d+/\d{4} \d+:\d\d:\d\d\.\d{3} [AP]M  ", result.out, re.M)), 12)
        for name in ("chart.png", "session.odb", "session.xml", "trace.txt"):
            self.assertGreater((self.folder / "out" / name).stat().st_size, 500)
            self.assertIn("out/" + name, result.out)
        rows = self.readings("out/session.odb")
        self.assertEqual(len(rows), 81)
        # The comment where the first channel is lowest, as the chart shows it and the session keeps it.
        comments = [line for line in self.host("db", "list", "out/session.odb").out.splitlines() if "Lowest: " in line and "Tags" in line]
        self.assertEqual(len(comments), 1)
        # It may be done again, but not over what a user wrote, or over what came there otherwise.
        words = ["demo"] + (["--port", self.simulate()] if options.wine else [])
        self.assertEqual(self.host(*words).code, 0)
        self.assertEqual(self.host("db", "set", "out/session.odb", "Chart.Tags.Comment #7.sText", "mine").code, 0)
        self.assertIn("1 comment", self.refused(3, *words))
        self.assertEqual(self.host(*words, "--force").code, 0)
        (self.folder / "out" / "session.odb").unlink()
        self.assertIn("session.xml is there already", self.refused(3, *words).replace("\\", "/"))
        self.assertIn("Lowest: %.6g °C" % min(float(row[1]) for row in rows[1:]), comments[0])
        ElementTree.parse(self.folder / "out" / "session.xml")


def main():
    global options
    parser = argparse.ArgumentParser()
    parser.add_argument("--host", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--wine")
    parser.add_argument("--preload")
    parser.add_argument("--maker")
    options, rest = parser.parse_known_args()
    options.host, options.simulator = os.path.abspath(options.host), os.path.abspath(options.simulator)
    with tempfile.TemporaryDirectory(prefix="orvik-records-") as options.records:
        unittest.main(argv=[sys.argv[0], *rest], verbosity=1)


if __name__ == "__main__":
    main()

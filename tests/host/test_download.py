"""Readings from the wire into a file, on either home: download and learn, ports and their plugs, loggers that speak in text."""
import csv
import fcntl
import functools
import io
import json
import os
import pathlib
import pty
import re
import resource
import shlex
import signal
import socket
import subprocess
import threading
import time

import host_calls
from host_calls import HostTest, native
from simulated_line import SimulatedLine

# What the embedded logger has: one channel of each type, read with a single request.
CHANNELS = ["Air temperature [°C]", "Humidity [%]", "Soil temperature [°C]", "Wind speed [km/h]", "Level [mm]"]
ANSWERS_BEFORE_UNPLUG = 3  # one is to the probe of a line that was just opened


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
        if not host_calls.options.wine:  # Wine lets a held port be opened again
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
        if not host_calls.options.wine:
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


class Ports(HostTest):
    def test_json_is_json(self):
        for port in json.loads(self.done("ports", "--json").out):
            self.assertEqual(set(port), {"name", "description", "holder"})

    @native("Windows does not tell who holds a port")
    def test_a_held_port_names_its_holder(self):
        ports = self.folder / "ports"
        ports.mkdir()
        line = SimulatedLine(host_calls.options, self.folder, ["--link", str(ports / "com44")])
        self.addCleanup(line.stop)
        download = self.start("download", "--port", ports / "com44", "--out", "s.odb", "--count", 100, "--interval", 100)
        try:
            time.sleep(1)
            listed = json.loads(self.host("ports", "--json", ORVIK_PORTS_DIR=str(ports)).out)
            self.assertIn(str(download.pid), {port["name"]: port["holder"] for port in listed}.get("COM44", ""))
        finally:
            download.send_signal(signal.SIGINT)
            download.communicate(timeout=20)


if __name__ == "__main__":
    host_calls.main()

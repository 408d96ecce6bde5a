"""The loggers of a station side by side: record, status and reload as a user calls them, on either home."""
import json
import signal
import socket
import subprocess
import time

import host_calls
from host_calls import HostTest, native

METER = """<PROPERTYDB>
 <PROPERTY name="sFamily">Modbus</PROPERTY><PROPERTY name="sName">Meter</PROPERTY><PROPERTY name="nSlave">17</PROPERTY>
 <PATH name="Line"><PROPERTY name="nBaud">19200</PROPERTY></PATH>
 <PATH name="Channels">
  <PATH name="1"><PROPERTY name="sName">Air</PROPERTY><PROPERTY name="nFunction">4</PROPERTY>
   <PROPERTY name="nRegister">100</PROPERTY><PROPERTY name="sType">float32</PROPERTY></PATH>
  <PATH name="2"><PROPERTY name="sName">Humidity</PROPERTY><PROPERTY name="nFunction">4</PROPERTY><PROPERTY name="sGroup">slow</PROPERTY>
   <PROPERTY name="nRegister">102</PROPERTY><PROPERTY name="sType">uint16</PROPERTY></PATH>
 </PATH>
 <PATH name="Groups"><PATH name="slow"><PROPERTY name="rInterval">1</PROPERTY></PATH></PATH>
</PROPERTYDB>"""
NOWHERE = "COM99"


class Stations(HostTest):
    def setUp(self):
        super().setUp()
        (self.folder / "meter.xml").write_text(METER)

    def station(self, loggers, name="st.xml"):
        """`loggers`: for each key its port, and what else is to stand there."""
        text = ""
        for key, (port, more) in loggers.items():
            values = {"sPort": port, "sLogger": "meter.xml", "rInterval": 0.2, "nTimeout": 300, "sOut": f"{key}.rec", **more}
            text += f'<PATH name="{key}">' + "".join(f'<PROPERTY name="{k}">{v}</PROPERTY>' for k, v in values.items()) + "</PATH>"
        (self.folder / name).write_text(f'<PROPERTYDB><PROPERTY name="sName">Test</PROPERTY><PATH name="Loggers">{text}</PATH></PROPERTYDB>')

    def record(self, **more):
        errors = self.folder / "recorder.txt"
        with open(errors, "w") as said:
            process = subprocess.Popen(self.command("record", "st.xml"), cwd=self.folder, stdout=subprocess.DEVNULL, stderr=said,
                                       env=self.environment(WINE_STDERR=str(errors), **more))
        self.addCleanup(lambda: (process.kill(), process.wait()))
        return process

    def status(self):
        said = self.host("status", "st.xml", "--json")
        return said.code, json.loads(said.out) if said.out else None

    def until(self, reached):
        """The status, once that is so of it: by its loggers."""
        while True:
            code, status = self.status()
            loggers = {logger["key"]: logger for logger in status["loggers"]} if status and status["running"] else {}
            if loggers and reached(loggers):
                return code, loggers
            time.sleep(0.1)

    def test_mistakes_are_named_before_anything_is_begun(self):
        self.station({"a": (NOWHERE, {"rIntervall": 1}), "b": ("", {"nTimeout": 0}), "c": ("COM98", {"sOut": "a.rec"}),
                      "d": ("COM97", {"sOut": "d.odb"}), "e": ("COM96", {"sLogger": "none.xml"}), "f": ("COM95", {"rInterval": 0.3})})
        for words, last in ((["check", "st.xml"], None), (["record", "st.xml"], "nothing was started")):
            result = self.host(*words)
            self.assertEqual(result.code, 1)
            for part in ("Loggers.a.rIntervall", "Logger b: Loggers.b.sPort", "Loggers.b.nTimeout", "Logger c: a.rec", "Logger d: Loggers.d.sOut",
                         "Logger e: ", "Logger f: The interval of channel 2, 1 s"):
                self.assertEqual(len([line for line in result.sentences if part in line]), 1, (part, result.err))
            if last:
                self.assertIn(last, result.sentences[-1])
        self.assertFalse((self.folder / "a.rec").exists())
        # What stands in their places; a recorder that runs is in nobody's way.
        self.assertEqual(self.host("download", "--port", self.simulate(), "--out", "demo.rec", "--count", 1).code, 0)
        (self.folder / "notes.txt").write_text("notes")
        (self.folder / "notes.csv").write_text("time,Air,Humidity\n")
        self.station({"a": ("tcp://x:99999", {})})
        self.assertIn("Logger a: Loggers.a.sPort: ", self.refused(1, "check", "st.xml"))
        self.station({"b": (NOWHERE, {"sOut": "nowhere/b.rec"}), "c": ("COM98", {"sOut": "demo.rec"}),
                      "d": ("COM97", {"sCsv": "notes.txt"}), "e": ("COM96", {"sOut": "notes.rec", "sCsv": "notes.csv"})})
        for command in ("check", "record"):
            result = self.host(command, "st.xml")
            self.assertEqual(result.code, 1)
            for part in ("Logger b: ", "Logger c: demo.rec was recorded with another", "Logger d: notes.txt"):
                self.assertEqual(len([line for line in result.sentences if part in line]), 1, (part, result.err))
            self.assertNotIn("Logger e", result.err)
        self.assertEqual((self.folder / "notes.txt").read_text(), "notes")
        (self.folder / "none.xml").write_text("<PROPERTYDB><PATH name='Loggers'/></PROPERTYDB>")
        self.assertIn("names no loggers", self.refused(1, "record", "none.xml"))
        self.station({"a": (NOWHERE, {})})
        self.assertEqual(self.host("check", "st.xml").code, 0)
        self.assertIn("does not run", self.refused(3, "status", "st.xml"))
        self.assertIn("does not run", self.refused(3, "reload", "st.xml"))

    def test_a_dead_logger_slows_nobody(self):
        ends = {"sFor": "12 s"}
        self.station({"one": (self.simulate(), ends), "two": (self.simulate(), ends), "dead": (NOWHERE, ends)})
        recorder = self.record()
        code, loggers = self.until(lambda l: l["one"]["made"] > 4 and l["two"]["made"] > 4 and l["dead"]["missing"] > 4)
        self.assertEqual(code, 2)
        self.assertEqual([loggers[key]["state"] for key in ("one", "two", "dead")], ["reads", "reads", "silent"])
        self.assertGreater(loggers["one"]["channels"][0]["value"], -100)
        self.assertEqual(loggers["dead"]["channels"][0]["value"], None)
        self.assertIn("dead: gives nothing", self.host("status", "st.xml").out)
        self.assertEqual(recorder.wait(timeout=60), 2)
        for key in ("one", "two"):
            rows = self.readings(f"{key}.rec")[1:]
            made = [row for row in rows if row[1]]
            self.assertGreater(len(made), 20, self.host("show", f"{key}.rec", "--gaps").out)
            slow = [row for row in rows if row[2]]
            self.assertTrue(len(made) / 8 < len(slow) < len(made) / 2, "about every fifth")
        self.assertIn("missing", self.host("show", "dead.rec", "--gaps").out)
        code, status = self.status()
        self.assertEqual((code, status["running"]), (3, False))
        self.assertIn("ended at", self.host("status", "st.xml").out)

    def test_reading_the_station_again_leaves_the_others_alone(self):
        stays = (self.simulate(), {})
        port = self.simulate()
        self.station({"stays": stays, "changes": (port, {}), "goes": (NOWHERE, {})})
        recorder = self.record()
        self.until(lambda l: l["stays"]["made"] > 3 and l["changes"]["made"] > 3)
        self.station({"stays": stays, "changes": (port, {"rInterval": 0.5}), "comes": (NOWHERE, {})})
        result = self.host("reload", "st.xml")
        self.assertEqual(result.code, 0, result.err)
        self.assertIn("2 started, 2 ended, 1 go on", result.out)
        _, before = self.until(lambda l: "comes" in l and "goes" not in l and l["changes"]["state"] == "reads")
        # A station with a mistake changes nothing.
        (self.folder / "st.xml").write_text((self.folder / "st.xml").read_text().replace("rInterval", "rIntervall"))
        self.assertIn("goes on as it was", self.refused(1, "reload", "st.xml"))
        self.until(lambda l: l["stays"]["made"] > before["stays"]["made"] + 5)
        self.assertIsNone(recorder.poll())
        if not host_calls.options.wine:
            recorder.send_signal(signal.SIGTERM)
            self.assertEqual(recorder.wait(timeout=30), 2)
        else:
            recorder.kill()
        gaps = self.host("show", "stays.rec", "--gaps").out
        self.assertEqual(gaps.count("began"), 1)
        self.assertNotIn("did not run", gaps)
        self.assertIn("recording ended", self.host("show", "goes.rec", "--gaps").out)
        self.assertIn("did not run", self.host("show", "changes.rec", "--gaps").out)

    @native("a signal ends Wine's process from outside")
    def test_a_service_tells_its_manager(self):
        self.station({"one": (self.simulate(), {})})
        path = str(self.folder / "notify")
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as manager:
            manager.bind(path)
            manager.settimeout(20)
            recorder = self.record(NOTIFY_SOCKET=path, WATCHDOG_USEC="3000000")
            told = []

            def hear(word):
                while not any(line.startswith(word) for line in told):
                    told.extend(manager.recv(4096).decode().splitlines())
                told.clear()

            hear("READY=1")
            hear("STATUS=1 of 1")
            for _ in range(2):
                hear("WATCHDOG=1")
            self.station({"one": (self.folder / "none", {}), "more": (NOWHERE, {})})
            recorder.send_signal(signal.SIGHUP)
            hear("RELOADING=1")
            hear("READY=1")
            hear("STATUS=0 of 2")
            recorder.send_signal(signal.SIGTERM)
            hear("STOPPING=1")
        self.assertEqual(recorder.wait(timeout=30), 2)

    @native("a signal ends Wine's process from outside")
    def test_a_killed_recorder_is_seen_and_its_recordings_go_on(self):
        self.station({"one": (self.simulate(), {})})
        recorder = self.record()
        self.until(lambda l: l["one"]["made"] > 3)
        recorder.kill()
        recorder.wait()
        while self.status()[0] != 3:
            time.sleep(0.2)
        self.assertIn("sign of life", self.host("status", "st.xml").out)
        kept = self.readings("one.rec")
        recorder = self.record()
        self.until(lambda l: l["one"]["made"] > 3)
        recorder.send_signal(signal.SIGINT)
        self.assertEqual(recorder.wait(timeout=30), 0)
        self.assertEqual(self.readings("one.rec")[:len(kept)], kept)
        self.assertIn("did not run", self.host("show", "one.rec", "--gaps").out)

    @native("only there the recorder ends by a signal")
    def test_two_do_not_record_into_one_file(self):
        self.station({"one": (self.simulate(), {})})
        recorder = self.record()
        self.until(lambda l: l["one"]["made"] > 0)
        result = self.host("record", "st.xml")
        self.assertEqual(result.code, 1)
        self.assertIn("another program", result.err)
        recorder.send_signal(signal.SIGTERM)
        self.assertEqual(recorder.wait(timeout=30), 0)


if __name__ == "__main__":
    host_calls.main()

"""A station that records while everything between it and its servers fails: at the end nothing is missing there.

  test_chaos.py --host orvikhost [--seconds 40] [--kills 15] [--seed N]

Three loggers at 20 readings a second go to PostgreSQL and MQTT, both through a proxy that drops, stalls and delays, and to SQLite. The
recorder is killed again and again, and so are the servers; they are stopped for seconds, and PostgreSQL's disk is full for a while where
the test may mount one. Then all is well, the station ends in order, and what the servers hold is compared with the recordings: each
reading once in the databases, at least once at a subscriber, with its own time and value.
"""
import argparse
import calendar
import collections
import json
import os
import pathlib
import pwd
import random
import select
import shutil
import signal
import socket
import sqlite3
import struct
import subprocess
import tempfile
import threading
import time

LOGGER = """<PROPERTYDB>
 <PROPERTY name="sFamily">Modbus</PROPERTY><PROPERTY name="sName">Meter</PROPERTY><PROPERTY name="nSlave">17</PROPERTY>
 <PATH name="Channels">
  <PATH name="1"><PROPERTY name="sName">Flow</PROPERTY><PROPERTY name="sUnit">l/s</PROPERTY>
   <PROPERTY name="nRegister">100</PROPERTY><PROPERTY name="sType">uint16</PROPERTY></PATH>
  <PATH name="2"><PROPERTY name="sName">Resistance</PROPERTY><PROPERTY name="sUnit">k\N{OHM SIGN}</PROPERTY>
   <PROPERTY name="nRegister">102</PROPERTY><PROPERTY name="sType">float32</PROPERTY></PATH>
 </PATH>
</PROPERTYDB>"""
LOGGERS = ("inlet", "outlet", "tank")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def until(condition, what, seconds=60):
    end = time.monotonic() + seconds
    while True:
        found = condition()
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError("waited in vain for " + what)
        time.sleep(0.05)


def listens(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


class Proxy(threading.Thread):
    """A network between a client and a server: `mode` is what it does to all connections."""

    def __init__(self, to):
        super().__init__(daemon=True)
        self.to, self.mode, self.connections = to, "pass", []
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.start()

    def run(self):
        while True:
            client, _ = self.listener.accept()
            if self.mode == "drop":
                client.close()
                continue
            try:
                server = socket.create_connection(("127.0.0.1", self.to))
            except OSError:
                client.close()
                continue
            self.connections += [client, server]
            for one, other in ((client, server), (server, client)):
                threading.Thread(target=self.pump, args=(one, other), daemon=True).start()

    def pump(self, source, sink):
        try:
            while True:
                while self.mode == "stall":
                    time.sleep(0.02)
                if not select.select([source], [], [], 0.2)[0]:
                    continue
                got = source.recv(65536)
                if not got:
                    break
                if self.mode == "delay":
                    time.sleep(0.1)
                if self.mode == "cut":  # in the middle of something
                    sink.sendall(got[:len(got) // 2])
                    break
                sink.sendall(got)
        except (OSError, ValueError):  # closed by the other direction
            pass
        for end in (source, sink):
            try:
                end.shutdown(socket.SHUT_RDWR)
                end.close()
            except OSError:
                pass

    def set(self, mode):
        self.mode = mode
        if mode == "drop":
            for end in self.connections:
                try:
                    end.shutdown(socket.SHUT_RDWR)
                except OSError:
                    pass
            self.connections = []


class Server:
    """A process that can be killed, stopped and started again."""

    def __init__(self, words, port, log, user=None):
        self.words, self.port, self.log, self.user = words, port, log, user
        self.process = None
        self.start()

    def start(self):
        become = None
        if self.user:
            who = pwd.getpwnam(self.user)

            def become():
                os.setgroups([])
                os.setgid(who.pw_gid)
                os.setuid(who.pw_uid)
        with open(self.log, "a") as log:
            self.process = subprocess.Popen(self.words, stdout=log, stderr=log, start_new_session=True, preexec_fn=become, cwd="/")
        until(lambda: listens(self.port), self.words[0])

    def signal(self, number):
        try:
            os.killpg(self.process.pid, number)
        except ProcessLookupError:
            pass

    def kill(self):
        self.signal(signal.SIGKILL)
        self.process.wait()

    def again(self):
        if self.process.poll() is not None:
            self.start()


class Postgres(Server):
    def __init__(self, folder):
        binaries = sorted(pathlib.Path("/usr/lib/postgresql").glob("*/bin"))[-1]
        self.folder, self.binaries = folder / "postgres", binaries
        self.folder.mkdir()
        user = "postgres" if os.geteuid() == 0 else None
        self.full = None
        if user:
            # A disk of its own, which can be full.
            if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=400m", "tmpfs", str(self.folder)], capture_output=True).returncode == 0:
                self.full = self.folder / "filler"
            shutil.chown(self.folder, user)
        port = free_port()
        data = self.folder / "data"
        run = ["runuser", "-u", "postgres", "--"] if user else []
        subprocess.run([*run, binaries / "initdb", "-D", data, "-U", "orvik", "-A", "trust", "-E", "UTF8", "--locale", "C", "-N"], check=True,
                       stdout=subprocess.DEVNULL, cwd="/")
        # A kill must not cost what was committed; a power cut is not played here.
        super().__init__([str(binaries / "postgres"), "-D", str(data), "-p", str(port), "-h", "127.0.0.1", "-k", str(self.folder),
                          "-c", "fsync=off", "-c", "max_wal_size=64MB"], port, folder / "postgres.log", user)

    def kill(self):
        super().kill()
        # Its shared memory is let go with the last of its children.
        time.sleep(0.2)

    def ask(self, question):
        said = subprocess.run([self.binaries / "psql", "-h", "127.0.0.1", "-p", str(self.port), "-U", "orvik", "-d", "postgres", "-X", "-A", "-t", "-F", "|",
                               "-c", question], capture_output=True, encoding="utf-8")
        assert said.returncode == 0, said.stderr
        return [line.split("|") for line in said.stdout.splitlines()]

    def fill(self):
        if self.full is None:
            return
        left = shutil.disk_usage(self.folder).free
        try:
            with open(self.full, "wb") as filler:
                filler.write(bytes(left))
        except OSError:
            pass

    def clear(self):
        if self.full is not None:
            self.full.unlink(missing_ok=True)

    def end(self):
        self.kill()
        if self.full is not None:
            subprocess.run(["umount", "-l", str(self.folder)])


class Broker(Server):
    # What it has taken is on the disk each time: it is killed, too.
    def __init__(self, folder, settings="autosave_on_changes true\nautosave_interval 1\nmax_inflight_messages 0"):
        port = free_port()
        (folder / "broker").mkdir()
        if os.geteuid() == 0:
            shutil.chown(folder / "broker", "mosquitto")
        (folder / "mosquitto.conf").write_text(f"listener {port} 127.0.0.1\nallow_anonymous true\npersistence true\npersistence_location {folder}/broker/\n"
                                               f"max_queued_messages 0\n{settings}\n")
        super().__init__(["mosquitto", "-c", str(folder / "mosquitto.conf")], port, folder / "mosquitto.log")


class Subscriber:
    """Keeps its session at the broker, and comes again when that was gone."""

    def __init__(self, port, log):
        self.lines, self.ending = [], False
        self.words = ["mosquitto_sub", "-h", "127.0.0.1", "-p", str(port), "-q", "1", "-c", "-i", "witness", "-t", "orvik/#", "-F", "%t %p"]
        self.log = open(log, "a")
        self.thread = threading.Thread(target=self.run, daemon=True)
        self.thread.start()

    def run(self):
        while not self.ending:
            self.process = subprocess.Popen(self.words, stdout=subprocess.PIPE, stderr=self.log, encoding="utf-8")
            for line in self.process.stdout:
                self.lines.append(line.rstrip("\n"))
            self.process.wait()
            time.sleep(0.1)

    def comes_again(self):
        """Waits until it is there: a broker that is killed keeps nothing that it has not passed on."""
        word = str(random.random())

        def heard():
            subprocess.run(["mosquitto_pub", *self.words[1:5], "-q", "1", "-t", "orvik/probe", "-m", word], stderr=self.log)
            time.sleep(0.1)
            return any(line == "orvik/probe " + word for line in self.lines[-200:])

        until(heard, "the subscriber")

    def readings(self):
        found = set()
        for line in list(self.lines):
            topic, _, payload = line.partition(" ")
            if topic.endswith("/readings"):
                said = json.loads(payload)
                stamp = said["time"]
                whole = time.strptime(stamp[:19], "%Y-%m-%dT%H:%M:%S")
                micros = calendar.timegm(whole) * 1_000_000 + int(stamp[20:26])
                for channel, value in said["values"].items():
                    found.add((topic.split("/")[-2], channel, micros, value))
        return found

    def end(self):
        self.ending = True
        self.process.kill()


def recorded(folder):
    """Readings of all recordings by (logger, channel, time, value), from their bytes (docs/formats.md)."""
    found = collections.Counter()
    for path in sorted(folder.glob("*.rec")):
        data = path.read_bytes()
        channels = struct.unpack_from("<H", data, 10)[0]
        at = 20
        while at + 16 <= len(data) and data[at:at + 2] == b"\xd7\x4f":
            kind, size = data[at + 2], struct.unpack_from("<I", data, at + 4)[0]
            if at + 16 + size > len(data):
                break
            if kind == 2:
                moment = struct.unpack_from("<q", data, at + 16)[0]
                values = struct.unpack_from(f"<{channels}d", data, at + 24)
                flags = data[at + 24 + 8 * channels:at + 24 + 9 * channels]
                for i in range(channels):
                    if flags[i] == 0:
                        found[(path.name.split(".")[0].split("-")[0], str(i + 1), moment, values[i])] += 1
            at += 16 + size
    return found


class Chaos:
    def __init__(self, options):
        self.options = options
        self.random = random.Random(options.seed)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orvik-chaos-"))
        os.chmod(self.folder, 0o755)
        self.ends = []
        self.recorder = None

    def run_recorder(self):
        self.begun = time.strftime("%Y-%m-%dT%H:%M:%S", time.gmtime())
        # The other suites look for leaks. Here the search itself, which reads the memory of threads of four libraries while the process
        # ends, broke once ("Tracer caught signal 11") and gave a recorder that had ended well another code.
        calm = dict(os.environ, ASAN_OPTIONS=":".join(filter(None, [os.environ.get("ASAN_OPTIONS"), "detect_leaks=0"])))
        with open(self.folder / "recorder.log", "a") as log:
            self.recorder = subprocess.Popen([self.options.host, "record", "station.xml"], cwd=self.folder, stdout=log, stderr=log, env=calm)

    def prepare(self):
        self.postgres = Postgres(self.folder)
        self.ends.append(self.postgres.end)
        self.broker = Broker(self.folder)
        self.ends.append(self.broker.kill)
        self.subscriber = Subscriber(self.broker.port, self.folder / "subscriber.log")
        self.ends.append(self.subscriber.end)
        self.networks = {"database": Proxy(self.postgres.port), "broker": Proxy(self.broker.port)}
        (self.folder / "logger.xml").write_text(LOGGER)
        loggers = ""
        for key in LOGGERS:
            port = free_port()
            line = subprocess.Popen([self.options.host, "simulate", "--logger", self.folder / "logger.xml", "--port", f"tcp://127.0.0.1:{port}"],
                                    stdout=subprocess.DEVNULL)
            self.ends.append(lambda line=line: (line.kill(), line.wait()))
            rotate = '<PROPERTY name="sRotate">5 s</PROPERTY>' if key == "tank" else ""
            loggers += (f'<PATH name="{key}"><PROPERTY name="sPort">tcp://127.0.0.1:{port}</PROPERTY><PROPERTY name="sLogger">logger.xml</PROPERTY>'
                        f'<PROPERTY name="rInterval">0.05</PROPERTY><PROPERTY name="sOut">{key}.rec</PROPERTY>{rotate}</PATH>')
        (self.folder / "station.xml").write_text(f"""<PROPERTYDB><PROPERTY name="sName">Plant</PROPERTY><PATH name="Loggers">{loggers}</PATH><PATH name="Sinks">
 <PATH name="database"><PROPERTY name="sSink">PostgreSQL</PROPERTY>
  <PROPERTY name="sAddress">postgresql://orvik@127.0.0.1:{self.networks["database"].port}/postgres</PROPERTY></PATH>
 <PATH name="broker"><PROPERTY name="sSink">MQTT</PROPERTY><PROPERTY name="sAddress">mqtt://127.0.0.1:{self.networks["broker"].port}</PROPERTY></PATH>
 <PATH name="file"><PROPERTY name="sSink">SQLite</PROPERTY><PROPERTY name="sFile">plant.sqlite</PROPERTY></PATH>
</PATH></PROPERTYDB>""", encoding="utf-8")

    def trouble(self):
        """Something goes wrong with a server or the network, and is mended after a while; both at moments of their own."""
        kind = self.random.choice(["kill database", "kill broker", "stop database", "stop broker", "drop", "stall", "delay", "cut", "full"])
        lasts = self.random.uniform(0.2, 3)
        network = self.networks[self.random.choice(["database", "broker"])]
        if kind == "kill database":
            self.postgres.kill()
        elif kind == "kill broker":
            self.networks["broker"].set("drop")
            self.broker.kill()
        elif kind.startswith("stop"):
            (self.postgres if "database" in kind else self.broker).signal(signal.SIGSTOP)
        elif kind == "full":
            self.postgres.fill()
        else:
            network.set(kind)
        time.sleep(lasts)
        self.mend()

    def mend(self):
        self.postgres.clear()
        killed = self.broker.process.poll() is not None
        for server in (self.postgres, self.broker):
            server.signal(signal.SIGCONT)
            server.again()
        if killed:
            self.subscriber.comes_again()
        for network in self.networks.values():
            network.set("pass")

    def play(self):
        self.run_recorder()
        end, kills = time.monotonic() + self.options.seconds, 0
        pause = self.options.seconds / max(self.options.kills, 1)
        worker = threading.Thread(target=self.troubles, args=(end,))
        worker.start()
        while time.monotonic() < end and kills < self.options.kills:
            time.sleep(self.random.uniform(0.3, 1.7) * pause)
            self.recorder.kill()
            self.recorder.wait()
            kills += 1
            self.run_recorder()
        worker.join()
        return kills

    def troubles(self, end):
        while time.monotonic() < end:
            self.trouble()
            time.sleep(self.random.uniform(0, 1.5))

    def settle(self):
        self.mend()

        def caught_up():
            said = subprocess.run([self.options.host, "status", "station.xml", "--json"], cwd=self.folder, capture_output=True)
            status = json.loads(said.stdout) if said.stdout else {}
            # That of the recorder that was killed last may still look alive.
            if not status.get("running") or status["started"] < self.begun or not status["sinks"]:
                return False
            return all(sink["reached"] and sink["behind_bytes"] < 20_000 for sink in status["sinks"])

        until(caught_up, "the sinks to catch up", 180)
        self.recorder.send_signal(signal.SIGINT)
        code = self.recorder.wait(timeout=60)
        # Readings may be missing where a kill came between; nothing else may be wrong.
        assert code in (0, 2), f"the recorder ended with {code}:\n" + (self.folder / "recorder.log").read_text()[-4000:]

    def compare(self):
        wanted = recorded(self.folder)
        assert all(count == 1 for count in wanted.values()), "a recording holds a reading twice"
        wanted = set(wanted)
        print(f"{len(wanted)} values recorded")
        found = self.postgres.ask("select s.logger, c.key, (extract(epoch from r.time) * 1000000)::bigint, r.value from orvik.reading r "
                                  "join orvik.session s on s.session = r.session join orvik.channel c on c.session = r.session and c.place = r.channel")
        rows = [(logger, channel, int(moment), float(value)) for logger, channel, moment, value in found]
        self.same("PostgreSQL", wanted, rows, once=True)
        with sqlite3.connect(self.folder / "plant.sqlite") as file:
            rows = file.execute("select s.logger, c.key, r.time, r.value from reading r join session s on s.session = r.session "
                                "join channel c on c.session = r.session and c.place = r.channel").fetchall()
        self.same("SQLite", wanted, rows, once=True)
        end = time.monotonic() + 20
        while time.monotonic() < end and not wanted <= self.subscriber.readings():
            time.sleep(0.5)
        (self.folder / "subscriber.txt").write_text("\n".join(self.subscriber.lines), encoding="utf-8")
        self.same("MQTT", wanted, list(self.subscriber.readings()), once=False)
        times = sum(1 for line in self.subscriber.lines if line.split(" ")[0].endswith("/readings"))
        print(f"MQTT: {times} messages for {len({(one[0], one[2]) for one in wanted})} readings")

    def same(self, name, wanted, rows, once):
        found = set(rows)
        print(f"{name}: {len(rows)} values")
        assert not wanted - found, f"{name} lacks {len(wanted - found)}: {sorted(wanted - found)[:3]}"
        assert not found - wanted, f"{name} has {len(found - wanted)} that nobody recorded: {sorted(found - wanted)[:3]}"
        assert not once or len(rows) == len(found), f"{name} has some twice"

    def end(self, keep):
        if self.recorder is not None:
            self.recorder.kill()
            self.recorder.wait()
        for end in reversed(self.ends):
            end()
        if keep:
            print("what is left:", self.folder)
        else:
            shutil.rmtree(self.folder, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--host", required=True)
    parser.add_argument("--seconds", type=float, default=40)
    parser.add_argument("--kills", type=int, default=15)
    parser.add_argument("--seed", type=int, default=random.randrange(10**6))
    options = parser.parse_args()
    options.host = os.path.abspath(options.host)
    os.environ["PATH"] += ":/usr/sbin"  # where servers are, and not everybody looks
    print("seed", options.seed)
    chaos = Chaos(options)
    fine = False
    try:
        chaos.prepare()
        print("killed", chaos.play(), "times")
        chaos.settle()
        chaos.compare()
        fine = True
    finally:
        chaos.end(keep=not fine)


if __name__ == "__main__":
    main()

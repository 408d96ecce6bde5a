"""Many loggers through one station to each server, and what a server that is not well costs them.

  many_loggers_to_servers.py --host orvikhost --farm logger_farm [--loggers 1000] [--rate 1] [--seconds 30]

For each case (no sinks; all well; database and broker stopped; both killed; both behind a slow network) prints how late readings are
(the loggers' median of medians, of 99 in 100, and the worst), the recorder's part of a core, its memory, and for each sink how far it
is behind at the middle and at the end, in bytes, and the age of the latest reading that arrived.
"""
import argparse
import calendar
import json
import os
import pathlib
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "host"))
from many_loggers import LOGGER, station, used  # noqa: E402
from test_chaos import Broker, Postgres, Proxy  # noqa: E402

SINKS = """<PROPERTY name="sName">Plant</PROPERTY><PATH name="Sinks">
 <PATH name="database"><PROPERTY name="sSink">PostgreSQL</PROPERTY><PROPERTY name="sAddress">postgresql://orvik@127.0.0.1:{0}/postgres</PROPERTY></PATH>
 <PATH name="broker"><PROPERTY name="sSink">MQTT</PROPERTY><PROPERTY name="sAddress">mqtt://127.0.0.1:{1}</PROPERTY></PATH>
 <PATH name="file"><PROPERTY name="sSink">SQLite</PROPERTY><PROPERTY name="sFile">plant.sqlite</PROPERTY></PATH>
</PATH>"""


def status(options, folder):
    said = subprocess.run([options.host, "status", "station.xml", "--json"], cwd=folder, capture_output=True, check=False)
    return json.loads(said.stdout)


def age(sink):
    stamp = sink.get("up_to")
    return "-" if not stamp else f"{time.time() - calendar.timegm(time.strptime(stamp[:19], '%Y-%m-%dT%H:%M:%S')):.0f} s"


def run(options, ports, case, trouble, mend, servers):
    folder = pathlib.Path(tempfile.mkdtemp(prefix="orvik-many-"))
    recorder = None
    try:
        (folder / "logger.xml").write_text(LOGGER)
        text = station(ports, options.rate)
        if servers:
            text = text.replace("<PROPERTYDB>", "<PROPERTYDB>" + SINKS.format(*servers), 1)
        (folder / "station.xml").write_text(text)
        with open(folder / "log", "w") as log:
            recorder = subprocess.Popen([options.host, "record", "station.xml"], cwd=folder, stdout=log, stderr=log)
        time.sleep(8)  # in which ports are opened and files made
        trouble()
        begun, (cpu, _) = time.monotonic(), used(recorder.pid)
        time.sleep(options.seconds / 2)
        middle = status(options, folder)
        time.sleep(options.seconds / 2)
        (cpu_after, memory), took = used(recorder.pid), time.monotonic() - begun
        end = status(options, folder)
        mend()
        recorder.send_signal(signal.SIGTERM)
        recorder.wait(timeout=60)
        loggers = end["loggers"]
        late = [statistics.median(logger["late_ms"][name] for logger in loggers) for name in ("p50", "p99")]
        worst = max(logger["late_ms"]["max"] for logger in loggers)
        made, missing = sum(logger["made"] for logger in loggers), sum(logger["missing"] for logger in loggers)
        print(f"{case}: {made} readings, {missing} missing; late {late[0]:.2f} ms, 99 % {late[1]:.2f} ms, worst {worst:.1f} ms; "
              f"{100 * (cpu_after - cpu) / took:.0f} % of a core, {memory / 2**20:.0f} MiB")
        for before, sink in zip(middle.get("sinks", []), end.get("sinks", [])):
            print(f"  {sink['key']}: behind {before['behind_bytes']}, then {sink['behind_bytes']} bytes; "
                  f"sent {sink['sent']}; latest {age(sink)} old")
    finally:
        if recorder is not None and recorder.poll() is None:
            recorder.kill()
            recorder.wait()
        shutil.rmtree(folder, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--host", required=True)
    parser.add_argument("--farm", required=True)
    parser.add_argument("--loggers", type=int, default=1000)
    parser.add_argument("--rate", type=float, default=1)
    parser.add_argument("--seconds", type=float, default=30)
    options = parser.parse_args()
    options.host, options.farm = os.path.abspath(options.host), os.path.abspath(options.farm)
    folder = pathlib.Path(tempfile.mkdtemp(prefix="orvik-servers-"))
    os.chmod(folder, 0o755)
    ends = [lambda: shutil.rmtree(folder, ignore_errors=True)]
    try:
        farm = subprocess.Popen([options.farm, str(options.loggers)], stdout=subprocess.PIPE, encoding="utf-8")
        ends.append(lambda: (farm.kill(), farm.wait()))
        ports = [farm.stdout.readline().strip() for _ in range(options.loggers)]
        postgres = Postgres(folder)
        ends.append(postgres.end)
        broker = Broker(folder, "max_inflight_messages 1000")
        ends.append(broker.kill)
        networks = [Proxy(postgres.port), Proxy(broker.port)]
        direct, slow = (postgres.port, broker.port), [network.port for network in networks]

        def both(number):
            return lambda: (postgres.signal(number), broker.signal(number))

        def delay(mode):
            return lambda: [network.set(mode) for network in networks]

        nothing = lambda: None  # noqa: E731
        run(options, ports, "no sinks", nothing, nothing, None)
        run(options, ports, "all well", nothing, nothing, direct)
        run(options, ports, "stopped", both(signal.SIGSTOP), both(signal.SIGCONT), direct)
        run(options, ports, "a slow network", delay("delay"), delay("pass"), slow)
        run(options, ports, "killed", lambda: (postgres.kill(), broker.kill()), nothing, direct)
    finally:
        for end in reversed(ends):
            end()


if __name__ == "__main__":
    main()

"""A station of many loggers under load: how late its readings are, and what it costs.

  many_loggers.py --host orvikhost --farm logger_farm [--loggers 200] [--rate 10] [--seconds 60] [--check]

Prints the lateness that 50, 99 and all of 100 readings did not pass (the loggers' median and worst), the recorder's processor time
as a part of one core, and its memory near the beginning and at the end. With --check it fails where a reading is missing.
"""
import argparse
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

LOGGER = """<PROPERTYDB>
 <PROPERTY name="sFamily">Modbus</PROPERTY><PROPERTY name="nSlave">17</PROPERTY>
 <PATH name="Line"><PROPERTY name="nBaud">115200</PROPERTY></PATH>
 <PATH name="Channels">
  <PATH name="1"><PROPERTY name="nRegister">100</PROPERTY><PROPERTY name="sType">uint16</PROPERTY></PATH>
  <PATH name="2"><PROPERTY name="nRegister">101</PROPERTY><PROPERTY name="sType">uint32</PROPERTY></PATH>
 </PATH>
</PROPERTYDB>"""


def station(ports, rate):
    loggers = "".join(
        f'<PATH name="{i:03}"><PROPERTY name="sPort">{port}</PROPERTY><PROPERTY name="sLogger">logger.xml</PROPERTY>'
        f'<PROPERTY name="rInterval">{1 / rate}</PROPERTY><PROPERTY name="sOut">{i:03}.rec</PROPERTY></PATH>'
        for i, port in enumerate(ports))
    return f'<PROPERTYDB><PATH name="Loggers">{loggers}</PATH></PROPERTYDB>'


def used(process):
    """Processor seconds and resident bytes."""
    fields = pathlib.Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK"), int(fields[21]) * os.sysconf("SC_PAGE_SIZE")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--host", required=True)
    parser.add_argument("--farm", required=True)
    parser.add_argument("--loggers", type=int, default=200)
    parser.add_argument("--rate", type=float, default=10)
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--check", action="store_true")
    options = parser.parse_args()
    options.host, options.farm = os.path.abspath(options.host), os.path.abspath(options.farm)
    folder = pathlib.Path(tempfile.mkdtemp(prefix="orvik-many-"))
    farm = subprocess.Popen([options.farm, str(options.loggers)], stdout=subprocess.PIPE, encoding="utf-8")
    recorder = None
    try:
        ports = [farm.stdout.readline().strip() for _ in range(options.loggers)]
        (folder / "logger.xml").write_text(LOGGER)
        (folder / "station.xml").write_text(station(ports, options.rate))
        recorder = subprocess.Popen([options.host, "record", "station.xml"], cwd=folder, stdout=subprocess.DEVNULL)
        # The beginning, in which files are made and ports opened, is not what a month is made of.
        time.sleep(min(5, options.seconds / 2))
        begun, (cpu, memory) = time.monotonic(), used(recorder.pid)
        time.sleep(options.seconds)
        ended, (cpu_after, memory_after) = time.monotonic(), used(recorder.pid)
        said = subprocess.run([options.host, "status", "station.xml", "--json"], cwd=folder, capture_output=True, check=False)
        recorder.send_signal(signal.SIGTERM)
        code = recorder.wait(timeout=60)
    finally:
        if recorder is not None and recorder.poll() is None:
            recorder.kill()
        farm.kill()
        farm.wait()
        shutil.rmtree(folder)
    loggers = json.loads(said.stdout)["loggers"]
    late = {name: [logger["late_ms"][name] for logger in loggers] for name in ("p50", "p99", "max")}
    for name, values in late.items():
        print(f"lateness {name}: {statistics.median(values):.2f} ms, worst logger {max(values):.2f} ms")
    made, missing = sum(logger["made"] for logger in loggers), sum(logger["missing"] for logger in loggers)
    print(f"readings: {made}, missing: {missing}")
    print(f"processor: {100 * (cpu_after - cpu) / (ended - begun):.1f} % of a core")
    print(f"memory: {memory / 2**20:.1f} MiB, at the end {memory_after / 2**20:.1f} MiB")
    if options.check and (said.returncode != 0 or code != 0 or missing > 0 or made < options.loggers * options.rate):
        sys.exit(f"status said {said.returncode}, record {code}")


if __name__ == "__main__":
    main()

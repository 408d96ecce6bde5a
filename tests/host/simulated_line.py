"""A simulated logger on a line, `orvikhost simulate`, and under Wine the link by which a program finds its port.

`options` are those of the test: `simulator` is the native host; under Wine `wine` is set, `preload` is the library of
tests/support/ports that answers for the modem lines that a pseudo-terminal lacks, and `records` the folder where it finds them.
"""
import os
import pathlib
import signal
import subprocess


def environment(options):
    """What a program needs to use such a line."""
    return {"LD_PRELOAD": options.preload, "ORVIK_PTYSIM_DIR": options.records} if options.wine else {}


class SimulatedLine:
    _next_com = 31

    def __init__(self, options, folder, words):
        self.link = None
        self.process = subprocess.Popen([options.simulator, "simulate", *map(str, words)], cwd=folder, stdout=subprocess.PIPE, encoding="utf-8")
        self.port = self.process.stdout.readline().strip()
        network = "://" in self.port
        if not network and not self.port.startswith("/dev/"):
            raise RuntimeError("the simulator did not start: " + self.port)
        if options.wine and not network:
            _describe(self.port, options.records)
            number, SimulatedLine._next_com = SimulatedLine._next_com, SimulatedLine._next_com + 1
            prefix = os.environ.get("WINEPREFIX") or os.path.join(os.environ.get("XDG_CACHE_HOME") or os.path.expanduser("~/.cache"), "orvik/wine")
            self.link = pathlib.Path(prefix) / "dosdevices" / f"com{number}"
            self.link.unlink(missing_ok=True)
            self.link.symlink_to(self.port)
            self.port = f"COM{number}"

    def stop(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGINT)
        self.process.wait(timeout=20)
        self.process.stdout.close()
        if self.link:
            self.link.unlink(missing_ok=True)


def _describe(device, records):
    """The record of a device, as tests/support/ports/pty_sim.cpp reads it."""
    magic = 0x4D495350
    (pathlib.Path(records) / ("pts" + device.rsplit("/", 1)[1])).write_bytes(magic.to_bytes(4, "little") + bytes(4092))

"""A download whose adapter is pulled and plugged in again, over and over: plug_cycles.py --host ORVIKHOST [--cycles 1000]

Each time a new pseudo-terminal stands under the same name. Tells how long the download took to go on after each return, and
whether files, threads or memory of its process grew.
"""
import argparse
import os
import pathlib
import pty
import random
import select
import signal
import subprocess
import tempfile
import time
import tty


def crc(frame):
    value = 0xFFFF
    for byte in frame:
        value ^= byte
        for _ in range(8):
            value = value >> 1 ^ 0xA001 if value & 1 else value >> 1
    return bytes((value & 0xFF, value >> 8))


def serve(line, answers):
    """Answers so many requests for registers; gives the time of the first request of any kind."""
    received, first = b"", None
    end = time.monotonic() + 10
    while answers and time.monotonic() < end:
        if not select.select([line], [], [], 0.05)[0]:
            continue
        try:
            received += os.read(line, 256)
        except OSError:
            continue  # nobody has it open
        while len(received) >= 8 and answers:
            request, received = received[:8], received[8:]
            first = first or time.monotonic()
            count = request[4] << 8 | request[5]
            if count == 0:  # refused, as by every logger: it shows the host that the line is clear
                refusal = bytes((request[0], request[1] | 0x80, 3))
                os.write(line, refusal + crc(refusal))
                continue
            reply = request[:2] + bytes((2 * count,)) + bytes(range(2 * count))
            os.write(line, reply + crc(reply))
            answers -= 1
    return first


def state(process):
    folder = pathlib.Path("/proc") / str(process.pid)
    resident = int((folder / "statm").read_text().split()[1]) * 4096
    return len(list((folder / "fd").iterdir())), len(list((folder / "task").iterdir())), resident


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--host", required=True)
    parser.add_argument("--cycles", type=int, default=1000)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        link, process, delays, states = folder / "line", None, [], []
        for cycle in range(options.cycles):
            line, far = pty.openpty()
            tty.setraw(far)
            link.symlink_to(os.ttyname(far))
            os.close(far)
            plugged = time.monotonic()
            if process is None:
                process = subprocess.Popen([options.host, "download", "--port", str(link), "--out", str(folder / "s.rec"), "--for", "1 week", "--interval", "50 ms"],
                                           stderr=subprocess.DEVNULL)
            first = serve(line, random.randint(1, 8))
            delays.append(first - plugged if first else float("inf"))
            if first is None:
                print(f"cycle {cycle}: nothing was asked", flush=True)
            states.append(state(process))
            link.unlink()
            os.close(line)
            time.sleep(random.choice((0.01, 0.1, 0.5, 1.2)))
        process.send_signal(signal.SIGINT)
        code = process.wait(timeout=20)
        shown = subprocess.run([options.host, "show", str(folder / "s.rec"), "--csv"], capture_output=True, text=True, check=True).stdout
    early = states[min(10, len(states) - 1)]
    print(f"{options.cycles} cycles, {len(shown.splitlines()) - 1} rows, exit code {code}")
    late = [(cycle, round(delay, 1)) for cycle, delay in enumerate(delays) if cycle and delay > 2]
    if late:
        print(f"later than 2 s: {late}")
    print(f"went on after at most {max(delays[1:]):.2f} s, on average {sum(delays[1:]) / len(delays[1:]):.2f} s")
    print(f"handles {early[0]} then {states[-1][0]}, threads {early[1]} then {states[-1][1]}, resident {early[2] >> 10} KiB then {states[-1][2] >> 10} KiB")
    return 0 if max(delays[1:]) <= 2 and states[-1][:2] <= early[:2] else 1


if __name__ == "__main__":
    raise SystemExit(main())

"""What suites share that call the reference host as a user calls it: the command line of one home or the other, and its answers."""
import argparse
import csv
import functools
import io
import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

import simulated_line
import wine_stderr
from simulated_line import SimulatedLine
from time_limit import limit

options = None


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

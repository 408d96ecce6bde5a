#!/usr/bin/env python3
"""The programs of docs/guide.md, compiled and run as the guide tells its reader to.

  snippets.py check PREFIX    everything, against the copy installed at PREFIX
  snippets.py tasks FOLDER    only writes the tasks there, <name>.cpp each, and their names to the output
  snippets.py run FOLDER EMULATOR...    runs those Windows can do, built as FOLDER/guide_<name>.exe

In the guide, a block of C++ that holds main and has no name is a task: a whole program, named after its section. A block behind a
line that ends in "`name`:" is the file of that name; a "sh" block is run where these files are. A "text" block next to a
task or a "sh" block is what it prints.
"""
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

GUIDE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "guide.md"
# The user whose settings the guide's results show.
USER = {"LC_ALL": "en_US.UTF-8", "TZ": "Europe/Stockholm"}
# No virtual ports there, and no zones by name.
NOT_ON_WINDOWS = {"serial_port", "times_and_spans"}


def blocks():
    """(kind, name, text, line) of each fenced block, in order."""
    section, before, kind, body = "", "", None, []
    for number, line in enumerate(GUIDE.read_text(encoding="utf-8").splitlines(), 1):
        if kind is None:
            fence = re.fullmatch(r"```(\w+)", line)
            if fence:
                named = re.search(r"`([\w.]+)`:$", before)
                kind, name, start, body = fence[1], named[1] if named else section, number, []
            elif line.startswith("## "):
                section = re.sub(r"\W+", "_", line[3:].strip().lower())
            if line.strip():
                before = line
        elif line == "```":
            yield kind, name, bool(named), "\n".join(body) + "\n", start
            kind, before = None, ""
        else:
            body.append(line)


def steps():
    """What the guide asks for, in order: ("file"|"task"|"sh", name, text, expected or None, line)."""
    found = []
    for kind, name, named, text, line in blocks():
        if kind == "text":
            assert found and found[-1][3] is None and found[-1][0] != "file", f"{GUIDE}:{line}: the result of what?"
            found[-1] = found[-1][:3] + (text,) + found[-1][4:]
        elif kind == "sh":
            found.append(("sh", name, text, None, line))
        elif named:
            found.append(("file", name, text, None, line))
        elif kind == "cpp":
            while any(step[:2] == ("task", name) for step in found):
                name += "_again"
            assert "int main(" in text, f"{GUIDE}:{line}: neither a task nor a named file"
            found.append(("task", name, text, None, line))
    assert found, f"{GUIDE} shows nothing"
    return found


def write_tasks(folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    for kind, name, text, _, _ in steps():
        if kind == "task":
            path = folder / f"{name}.cpp"
            if not path.exists() or path.read_text(encoding="utf-8") != text:
                path.write_text(text, encoding="utf-8")
            print(name)


def run(command, folder, environment):
    limit = ["timeout", "--kill-after=5", "120"]  # ends the whole group that a script may have started
    done = subprocess.run(limit + command, cwd=folder, env=environment, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.returncode, done.stdout


def check(prefix):
    prefix = pathlib.Path(prefix).resolve()
    libraries = next(prefix.glob("**/pkgconfig"))
    environment = dict(os.environ, **USER, ORVIK=str(prefix), PKG_CONFIG_PATH=str(libraries), LD_LIBRARY_PATH=str(libraries.parent))
    environment.pop("ORVIK_PLUGINS", None)
    scripted = dict(environment, LC_ALL="C.UTF-8")  # the same to the programs, and a shell does not ask for a locale to be installed
    flags = run(["pkg-config", "--cflags", "--libs", "orvikshared"], None, environment)[1].split()
    work = pathlib.Path(tempfile.mkdtemp())
    failures = []

    def expect(step, code, output):
        _, name, _, expected, line = step
        if code != 0 or (expected is not None and output != expected):
            failures.append(f"{GUIDE}:{line}: {name} ended with {code} and said\n{output}instead of\n{expected}")

    def task(step):
        _, name, text, _, _ = step
        folder = work / name
        folder.mkdir()
        (folder / "task.cpp").write_text(text, encoding="utf-8")
        warnings = ["-Wall", "-Wextra", "-Werror"]
        code, output = run(["g++", "-std=c++20", *warnings, "task.cpp", *flags, "-o", "task"], folder, environment)
        if code == 0:
            code, output = run(["./task"], folder, environment)
        expect(step, code, output)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        tasks = pool.map(task, [step for step in steps() if step[0] == "task"])
        project = work / "project"
        project.mkdir()
        for step in steps():
            if step[0] == "file":
                (project / step[1]).write_text(step[2], encoding="utf-8")
            elif step[0] == "sh":
                script = "trap 'kill $(jobs -p) 2>/dev/null || true' EXIT\n" + step[2]
                code, output = run(["bash", "-e", "-c", script], project, scripted)
                expect(step, code, output)
                if code != 0:
                    break  # what follows needs what this should have made
        list(tasks)
    if failures:
        sys.exit("\n".join(failures) + f"\n(kept in {work})")
    shutil.rmtree(work)
    print(f"guide: {sum(step[0] == 'task' for step in steps())} tasks and a project do what they show")


def run_built(folder, emulator):
    failures = []
    for kind, name, text, expected, line in steps():
        if kind == "task" and name not in NOT_ON_WINDOWS:
            with tempfile.TemporaryDirectory() as work:
                pathlib.Path(work, "task.cpp").write_text(text, encoding="utf-8")
                program = pathlib.Path(folder, f"guide_{name}.exe").resolve()
                code, output = run([*emulator, str(program)], work, dict(os.environ, **USER))
            if code != 0 or output != expected:
                failures.append(f"{GUIDE}:{line}: {name} ended with {code} and said\n{output}instead of\n{expected}")
    sys.exit("\n".join(failures) or 0)


if __name__ == "__main__":
    if len(sys.argv) == 3 and sys.argv[1] == "check":
        check(sys.argv[2])
    elif len(sys.argv) == 3 and sys.argv[1] == "tasks":
        write_tasks(sys.argv[2])
    elif len(sys.argv) > 3 and sys.argv[1] == "run":
        run_built(sys.argv[2], sys.argv[3:])
    else:
        sys.exit(__doc__)

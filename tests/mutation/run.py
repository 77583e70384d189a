"""Breaks random lines of the code, one at a time, and counts how many of them the tests notice.

It works on a copy of the tree in build/mutate, where the build is kept for the next run.
Usage: run.py COUNT SEED; the same seed breaks the same lines as long as the code is the same.
"""

import contextlib
import os
import random
import re
import resource
import signal
import subprocess
import sys
import time
from pathlib import Path

from mutations import Mutation, mutations

ROOT = Path(__file__).resolve().parents[2]
COPY = ROOT / "build" / "mutate"
BUILD = COPY / "build" / "dev"
FOLDERS = ("app", "canvas", "document", "layers", "platform", "territories", "tool", "ui")
LEAST_CAUGHT = 0.9
# A broken line may loop, allocate or write forever.
BUILD_SECONDS = 3600
LEAST_TEST_SECONDS = 120
LIMITS = {resource.RLIMIT_AS: 8 << 30, resource.RLIMIT_FSIZE: 16 << 30}


def copy_tree() -> None:
    """Updates the copy of the tree. Equal files are not touched, so they are not rebuilt."""
    listed = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        cwd=ROOT, check=True, capture_output=True).stdout
    names = {Path(os.fsdecode(name)) for name in listed.split(b"\0") if name}
    names = {name for name in names if (ROOT / name).is_file()}
    for folder, folders, files in os.walk(COPY):
        if Path(folder) == COPY and "build" in folders:
            folders.remove("build")
        for file in files:
            if (Path(folder) / file).relative_to(COPY) not in names:
                (Path(folder) / file).unlink()
    for name in names:
        source, target = ROOT / name, COPY / name
        content = source.read_bytes()
        if not target.is_file() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
        target.chmod(source.stat().st_mode)


def limit() -> None:
    for kind, most in LIMITS.items():
        resource.setrlimit(kind, (most, most))


def run(command: list, seconds: float) -> tuple:
    """Returns the exit code (None after a timeout) and the output. Kills all of its processes."""
    process = subprocess.Popen(
        command, cwd=COPY, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT, text=True, errors="replace", start_new_session=True,
        preexec_fn=limit)
    code = None
    try:
        output, _ = process.communicate(timeout=seconds)
        code = process.returncode
    except subprocess.TimeoutExpired:
        output = ""
    finally:
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()
    return code, output


def build(targets: list) -> bool:
    """Whether the targets build; no targets mean all."""
    command = ["cmake", "--build", str(BUILD)] + (["--target"] + targets if targets else [])
    code, _ = run(command, BUILD_SECONDS)
    return code == 0


def failed_test(pattern: str, seconds: float) -> str:
    """The name of a test that fails, "" if all pass."""
    code, output = run(
        ["ctest", "--test-dir", str(BUILD), "--no-tests=error", "--stop-on-failure",
         "-j", str(os.cpu_count()), "-R", pattern], seconds)
    if code is None:
        return "too long"
    if code == 0:
        return ""
    found = re.search(r"^\s*\d+ - (\S+) \(", output, re.MULTILINE)
    return found[1] if found else "ctest"


def test_names() -> list:
    _, output = run(["ctest", "--test-dir", str(BUILD), "-N"], BUILD_SECONDS)
    return re.findall(r"Test +#\d+: (\S+)", output)


def prepare() -> tuple:
    """Builds the copy and runs its tests. Returns the tests' names and the time for all of them."""
    COPY.mkdir(parents=True, exist_ok=True)
    copy_tree()
    # Warnings are no errors here, because a test has to notice the mistake. There is no debug
    # information, because linking is much faster without it.
    code, output = run(
        ["cmake", "--preset", "dev", "-DQUILLMAP_WERROR=OFF", "-DQUILLMAP_CHECK_HEADERS=OFF",
         "-DCMAKE_CXX_FLAGS_DEBUG="], BUILD_SECONDS)
    if code != 0 or not build([]):
        sys.exit(f"The unbroken code does not build.\n{output}")
    start = time.monotonic()
    failed = failed_test(".", BUILD_SECONDS)
    if failed:
        sys.exit(f"The unbroken code does not pass {failed}.")
    return test_names(), max(LEAST_TEST_SECONDS, 3 * (time.monotonic() - start))


def candidates() -> list:
    """All lines that can be broken, as file and index, always in the same order."""
    result = []
    for folder in FOLDERS:
        for file in sorted((COPY / folder).rglob("*")):
            if file.suffix in (".cpp", ".h"):
                lines = file.read_text(encoding="utf-8").split("\n")
                result += [(file, i) for i, line in enumerate(lines) if mutations(line)]
    return result


def near_tests(file: Path, tests: list) -> list:
    """The test programs named after the file, or those of its folder if there are none."""
    named = [name for name in tests if re.fullmatch(f"tst_{file.stem}[A-Za-z]*", name)]
    if named:
        return named
    folder = COPY / "tests" / file.relative_to(COPY).parent
    beside = {program.stem for program in folder.glob("tst_*.cpp")}
    return [name for name in tests if name in beside]


def verdict(file: Path, tests: list, seconds: float) -> str:
    """Tests the broken file. Returns the test that fails, "" if none does."""
    near = near_tests(file, tests)
    if near:
        # These tests notice most mistakes, without linking all other programs.
        if not build(near):
            return "does not compile"
        failed = failed_test(f"^({'|'.join(near)})$", seconds)
        if failed:
            return failed
    if not build([]):
        return "does not compile"
    return failed_test(".", seconds)


def break_line(file: Path, index: int, chance: random.Random, tests: list, seconds: float) -> tuple:
    original = file.read_text(encoding="utf-8")
    lines = original.split("\n")
    mutation: Mutation = chance.choice(mutations(lines[index]))
    before = lines[index].strip()
    lines[index] = mutation.line
    try:
        file.write_text("\n".join(lines), encoding="utf-8")
        return before, mutation, verdict(file, tests, seconds)
    finally:
        file.write_text(original, encoding="utf-8")


def main() -> int:
    count, seed = int(sys.argv[1]), int(sys.argv[2])
    tests, seconds = prepare()
    chance = random.Random(seed)
    lines = candidates()
    chance.shuffle(lines)
    caught = tried = left_out = 0
    for file, index in lines:
        if tried == count:
            break
        before, mutation, noticed = break_line(file, index, chance, tests, seconds)
        if noticed == "does not compile":
            left_out += 1
            continue
        tried += 1
        caught += bool(noticed)
        print(f"{file.relative_to(COPY)}:{index + 1}: {before}\n"
              f"    {mutation.name}: {mutation.line.strip()}\n"
              f"    {'caught by ' + noticed if noticed else 'SURVIVED'}", flush=True)
    print(f"{caught} of {tried} broken lines were caught; "
          f"{left_out} others did not compile and do not count.")
    return 0 if tried and caught >= LEAST_CAUGHT * tried else 1


sys.exit(main())

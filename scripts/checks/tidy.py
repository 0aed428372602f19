#!/usr/bin/env python3
"""Runs clang-tidy over the library's and the tools' sources, headers included.

Most of the linter's time goes into the headers of others, so sources of one target are linted
together, merged into one. Where two of them use one name for two things they are linted one by one.
What did not change since it was last found clean is passed over; the record lies in the build folder.
"""
import argparse
import concurrent.futures
import hashlib
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LEFT_OUT = re.compile(r"(^|/)(\w+_Tests|Tests|Fuzz|Benchmarks|build|cmake)/")
TARGET = re.compile(r" -o (\S+?/CMakeFiles/\S+?\.dir)/")
# A precompiled header of another state of the tree gives errors that are none.
PRECOMPILED = re.compile(r"-Xclang -include(-pch)? -Xclang \S+|-Winvalid-pch|-fpch-instantiate-templates")
GROUP_SIZE = 64


def headers_digest():
    digest = hashlib.sha256((ROOT / ".clang-tidy").read_bytes())
    listed = subprocess.run(["git", "ls-files", "-z", "*.h"], cwd=ROOT, check=True, capture_output=True).stdout
    for name in sorted(filter(None, listed.split(b"\0"))):
        digest.update(name)
        digest.update((ROOT / name.decode()).read_bytes())
    return digest


def groups_of(build):
    """Lists of sources with one command line, in the order of their names."""
    targets = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if not path.is_relative_to(ROOT) or path.suffix != ".cpp":
            continue
        if LEFT_OUT.search(str(path.relative_to(ROOT))):
            continue
        target = TARGET.search(entry["command"])
        flags = PRECOMPILED.sub("", entry["command"].split(" -o ")[0])
        targets.setdefault((target[1], flags), set()).add(path)
    seen = set()
    for (_, flags), paths in sorted(targets.items()):
        paths = sorted(paths - seen)
        seen.update(paths)
        for begin in range(0, len(paths), GROUP_SIZE):
            yield flags, paths[begin:begin + GROUP_SIZE]


class Linter:
    def __init__(self, build):
        self.build = build
        self.place = build / "tidy"
        self.place.mkdir(exist_ok=True)

    def _run(self, path, flags, *more):
        return subprocess.run(["clang-tidy", "--quiet", *more, str(path), "--", *flags.split()[1:]],
                              cwd=self.build, capture_output=True, text=True)

    @staticmethod
    def _said(result):
        return result.stdout + "\n".join(
            line for line in result.stderr.splitlines()
            if "warnings generated" not in line and "treated as error" not in line and "Suppressed" not in line)

    def lint(self, number, flags, paths):
        """Whether the sources are clean, and what the linter said."""
        merged = self.place / f"{number}.cpp"
        merged.write_text("".join(f'#include "{path}"  // NOLINT(bugprone-suspicious-include)\n' for path in paths))
        result = self._run(merged, flags + " -Wno-shadow", f"--config-file={ROOT / '.clang-tidy'}")
        if result.returncode and "clang-diagnostic-error" in result.stdout:
            results = [self._run(path, flags) for path in paths]
            return not any(each.returncode for each in results), "\n".join(
                self._said(each) for each in results if each.returncode)
        return result.returncode == 0, self._said(result)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True)
    parser.add_argument("--jobs", type=int, default=2)
    arguments = parser.parse_args()
    build = ROOT / arguments.build

    groups = list(groups_of(build))
    if not groups:
        sys.exit("tidy: found no sources to look at")
    shared = headers_digest()

    def key(flags, paths):
        digest = shared.copy()
        digest.update(flags.encode())
        for path in paths:
            digest.update(str(path).encode())
            digest.update(path.read_bytes())
        return digest.hexdigest()

    record_path = build / "tidy-clean.json"
    clean = set(json.loads(record_path.read_text())) if record_path.exists() else set()
    keys = [key(*group) for group in groups]
    todo = [number for number, name in enumerate(keys) if name not in clean]
    print(f"tidy: {sum(len(paths) for _, paths in groups)} sources, "
          f"{sum(len(groups[number][1]) for number in todo)} to look at", flush=True)
    linter = Linter(build)
    failed = False
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        results = pool.map(lambda number: linter.lint(number, *groups[number]), todo)
        for number, (good, said) in zip(todo, results):
            if good:
                clean.add(keys[number])
            else:
                failed = True
                print(said, flush=True)
            record_path.write_text(json.dumps(sorted(clean.intersection(keys))))
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

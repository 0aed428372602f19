#!/usr/bin/env python3
"""Runs clang-tidy over the library's and the tools' sources, side by side.

A source whose text, headers and configuration did not change since it was last found clean is
passed over; the record lies in the build folder.
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


def headers_digest():
    digest = hashlib.sha256((ROOT / ".clang-tidy").read_bytes())
    listed = subprocess.run(["git", "ls-files", "-z", "*.h"], cwd=ROOT, check=True, capture_output=True).stdout
    for name in sorted(filter(None, listed.split(b"\0"))):
        digest.update(name)
        digest.update((ROOT / name.decode()).read_bytes())
    return digest


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True)
    parser.add_argument("--jobs", type=int, default=2)
    arguments = parser.parse_args()
    build = ROOT / arguments.build

    commands = json.loads((build / "compile_commands.json").read_text())
    files = sorted({str(pathlib.Path(entry["file"]).relative_to(ROOT)) for entry in commands
                    if pathlib.Path(entry["file"]).is_relative_to(ROOT)})
    files = [name for name in files if name.endswith(".cpp") and not LEFT_OUT.search(name)]

    record_path = build / "tidy-clean.json"
    record = json.loads(record_path.read_text()) if record_path.exists() else {}
    shared = headers_digest()

    def key(name):
        digest = shared.copy()
        digest.update((ROOT / name).read_bytes())
        return digest.hexdigest()

    def lint(name):
        # The compile commands name a precompiled header made by another front end setting.
        result = subprocess.run(["clang-tidy", "--quiet", "-p", str(build), str(ROOT / name)],
                                capture_output=True, text=True)
        return name, result.returncode, result.stdout + "\n".join(
            line for line in result.stderr.splitlines() if "warnings generated" not in line and "Suppressed" not in line)

    todo = [name for name in files if record.get(name) != key(name)]
    print(f"tidy: {len(files)} sources, {len(todo)} to look at", flush=True)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for done, (name, status, output) in enumerate(pool.map(lint, todo), 1):
            if status == 0:
                record[name] = key(name)
            else:
                failed += 1
                print(output, flush=True)
            if done % 20 == 0:
                print(f"tidy: {done}/{len(todo)}", flush=True)
    record_path.write_text(json.dumps(record))
    if not files:
        sys.exit("tidy: found no sources to look at")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Kills a reporting host at random moments with SIGKILL and compares what it reported with what its store holds.

What must hold whatever the machine's load: the store opens, nothing that the library called stored is missing, and
nothing is there that was not reported. With --timed also: at 100 events a second nothing is missing but the last report,
and flat out nothing that was reported more than 50 ms before the kill.
"""
import argparse
import base64
import gzip
import json
import mmap
import pathlib
import random
import shutil
import socket
import sqlite3
import statistics
import struct
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
MODEL = ROOT / "ZRMStatistics/Resources/ZRMStatisticsResources.bundle"
LIMIT_SECONDS = 60
WINDOW_SECONDS = 0.050
FLAT_OUT_SECONDS = 0.3  # in a second, a quick machine overflows the store, which then empties itself


class Book:
    """What a reporter wrote down, read from its shared memory."""

    def __init__(self, path):
        self._path = path

    def _word(self, index):
        with open(self._path, "rb") as file, mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ) as memory:
            return struct.unpack_from("=Q", memory, 8 * index)[0]

    def reported(self):
        return self._word(0) if self._path.exists() and self._path.stat().st_size else 0

    def stored(self):
        return self._word(1)

    def nanoseconds(self, number):
        return self._word(2 + number)


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


def events_in_store(home):
    """How many events the store holds, and the numbers of the logins among them, each as often as it is there."""
    stores = [path for path in home.rglob("ZRMStatisticsStorage") if path.is_file()]
    numbers, events = [], 0
    for store in stores:
        with sqlite3.connect(store) as database:
            assert database.execute("PRAGMA integrity_check").fetchall() == [("ok",)], store
            for (jws,) in database.execute("SELECT jws FROM ZRMStatisticEntity"):
                events += 1
                payload = json.loads(gzip.decompress(jws))["payload"]
                event = json.loads(base64.urlsafe_b64decode(payload + "=" * (-len(payload) % 4)))["array"][0]
                if "UserLoginEvent" in event:
                    numbers.append(int(event["UserLoginEvent"]["userId"].removeprefix("user-")))
        database.close()
    return events, numbers


class Trial:
    def __init__(self, reporter, directory, per_second):
        self.home = directory / "home"
        self.home.mkdir()
        self.book = Book(directory / "book")
        self._log = open(directory / "log", "wb")
        resources = directory / "resources"
        shutil.copytree(MODEL, resources / MODEL.name)
        self._command = [reporter, self.home, resources, str(free_port())]
        self._per_second = per_second

    def live(self, chance, longest):
        """One life of the host, killed so long after its start, or after its first report."""
        before = self.book.reported()
        process = subprocess.Popen([*self._command, self.book._path, str(self._per_second)], stderr=self._log)
        try:
            end = time.monotonic() + LIMIT_SECONDS
            while longest > 0.1 and self.book.reported() == before and time.monotonic() < end:
                time.sleep(0.0005)
            time.sleep(chance.uniform(0, longest))
        finally:
            killed_at = time.clock_gettime_ns(time.CLOCK_MONOTONIC)
            process.kill()
            process.wait()
        return killed_at

    def pending(self):
        run = subprocess.run(self._command, stdout=subprocess.PIPE, stderr=self._log, timeout=LIMIT_SECONDS, check=True)
        return int(run.stdout)

    def judge(self, killed_at, timed):
        """Problems, the reports lost, the lost ones that are not the last, the age of the oldest lost one in seconds."""
        pending = self.pending()
        events, found = events_in_store(self.home)
        there = set(found)
        # The report under way at the kill has no place in the book's count yet.
        reported, stored = self.book.reported(), self.book.stored()
        missing = [number for number in range(reported) if number not in there]
        oldest = (killed_at - self.book.nanoseconds(missing[0])) / 1e9 if missing else 0.0
        problems = []
        if len(found) != len(there):
            problems.append("a report is stored twice")
        if there and max(there) > reported:
            problems.append("the store holds what was not reported")
        if missing and missing[0] < stored:
            problems.append(f"report {missing[0]} is lost, and was called stored")
        if pending != events:
            problems.append(f"the library counts {pending} events, the store holds {events}")
        but_last = [number for number in missing if number != reported - 1]
        if timed and self._per_second and but_last:
            problems.append(f"{len(missing)} reports are lost at {self._per_second} a second: {missing[:5]}")
        if timed and not self._per_second and oldest > WINDOW_SECONDS:
            problems.append(f"a report is lost {oldest * 1000:.1f} ms after its call")
        return problems, len(missing), len(but_last), oldest


def run_trials(arguments, per_second, chance):
    lost, but_last, ages, reports, failed = [], [], [], 0, 0
    for number in range(arguments.trials):
        with tempfile.TemporaryDirectory(prefix="zrm-crash-") as name:
            trial = Trial(arguments.reporter, pathlib.Path(name), per_second)
            killed_at = trial.live(chance, 1.0 if per_second else FLAT_OUT_SECONDS)
            missing_at_first = trial.judge(killed_at, arguments.timed)
            if chance.random() < 0.5:
                trial.live(chance, 0.1)  # within its opening, too
                trial.pending()
            problems, count, count_but_last, oldest = missing_at_first
            lost.append(count)
            but_last.append(count_but_last)
            ages.append(oldest)
            reports += trial.book.reported()
            if problems:
                failed += 1
                print(f"trial {number} at {per_second or 'full speed'}: {'; '.join(problems)}", flush=True, file=sys.stderr)
    if arguments.json:
        print(json.dumps({"perSecond": per_second, "kills": arguments.trials, "reports": reports, "mostLost": max(lost),
                          "mostLostButLast": max(but_last), "oldestLostSeconds": max(ages)}), flush=True)
        return failed
    label = f"{per_second} events a second" if per_second else "flat out"
    print(f"{label}: {arguments.trials} kills, {reports} reports; lost per kill: median {statistics.median(lost)}, "
          f"most {max(lost)}; oldest lost report {max(ages) * 1000:.1f} ms before the kill; failed trials: {failed}")
    return failed


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--reporter", required=True)
    parser.add_argument("--trials", type=int, default=200, help="kills at each speed")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--timed", action="store_true", help="hold the losses to their bounds in time")
    parser.add_argument("--json", action="store_true", help="print the losses at each speed as a line of JSON")
    arguments = parser.parse_args()
    chance = random.Random(arguments.seed)
    failed = run_trials(arguments, 100, chance) + run_trials(arguments, 0, chance)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

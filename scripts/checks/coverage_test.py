#!/usr/bin/env python3
"""Tests that the coverage check fails below each of its bounds."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import coverage


def entry(name, covered, total):
    return {"filename": name, "line_covered": covered, "line_total": total}


def summary(lines=95, branches=85, files=None):
    return {"line_covered": lines, "line_total": 100, "line_percent": lines,
            "branch_covered": branches, "branch_total": 100, "branch_percent": branches,
            "files": [entry(name, 10, 10) for name in coverage.PARSERS] if files is None else files}


class CoverageTest(unittest.TestCase):
    def problems(self, **changes):
        return coverage.problems_of(summary(**changes), coverage.PARSERS)

    def test_the_bounds_themselves_pass(self):
        self.assertEqual(self.problems(), [])

    def test_fewer_lines_fail(self):
        self.assertIn("94 of 100 lines", *self.problems(lines=94))

    def test_fewer_branches_fail(self):
        self.assertIn("84 of 100 branches", *self.problems(branches=84))

    def test_one_line_of_a_parser_fails(self):
        files = summary()["files"]
        files[3]["line_covered"] -= 1
        self.assertIn(f"{coverage.PARSERS[3]}: a parser with 1 lines", *self.problems(files=files))

    def test_a_parser_that_was_not_measured_fails(self):
        self.assertIn(f"{coverage.PARSERS[0]}: a parser of which nothing", *self.problems(files=summary()["files"][1:]))

    def test_an_empty_summary_fails(self):
        empty = summary() | {"line_total": 0, "branch_total": 0}
        self.assertEqual(coverage.problems_of(empty, []), ["nothing was measured"])

    def test_every_parser_is_a_source(self):
        for parser in coverage.PARSERS:
            self.assertTrue((coverage.ROOT / parser).is_file(), parser)

    def test_the_command_says_so_by_its_status(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory) / "summary.json"
            for lines, status in ((95, 0), (94, 1)):
                path.write_text(json.dumps(summary(lines=lines)), encoding="utf-8")
                run = subprocess.run([sys.executable, coverage.__file__, "--summary", path], capture_output=True)
                self.assertEqual(run.returncode, status)


if __name__ == "__main__":
    unittest.main()

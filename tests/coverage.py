#!/usr/bin/env python3
"""Prints the line coverage of src/, a line a folder; fails below the wanted share.

usage: coverage.py BUILD_FOLDER [PERCENT]
"""
import collections
import json
import os
import subprocess
import sys


def read_files(build):
    """File of src/ -> (covered, all) lines, as gcovr counts them."""
    report = subprocess.run(
        ["gcovr", "--root", ".", "--filter", "src/", "--exclude-unreachable-branches",
         "--exclude-throw-branches", "--gcov-ignore-parse-errors", "--json-summary", "-",
         "-j", str(os.cpu_count()), build],
        check=True, stdout=subprocess.PIPE).stdout
    return {file["filename"]: (file["line_covered"], file["line_total"])
            for file in json.loads(report)["files"]}


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    wanted = float(sys.argv[2]) if len(sys.argv) > 2 else 90.0
    folders = collections.defaultdict(lambda: [0, 0])
    for name, (covered, total) in read_files(sys.argv[1]).items():
        for folder in (os.path.dirname(name), "src"):
            folders[folder][0] += covered
            folders[folder][1] += total
    if folders["src"][1] == 0:
        sys.exit("nothing was measured")
    for folder in sorted(folders):
        covered, total = folders[folder]
        print(f"{folder:<28}{covered:>7} of {total:>6} lines {100.0 * covered / total:6.1f} %")
    share = 100.0 * folders["src"][0] / folders["src"][1]
    if share < wanted:
        sys.exit(f"line coverage of src/ is {share:.1f} %, wanted {wanted:.0f} %")


if __name__ == "__main__":
    main()

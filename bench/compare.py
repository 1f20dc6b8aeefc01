#!/usr/bin/env python3
"""Says which ratios moved by more than a tenth since a kept measurement, and which miss their bounds.

compare.py MEASURED KEPT [--save]: with --save, MEASURED becomes KEPT. The status is 1 where something moved or missed.
"""

import json
import os
import sys

TENTH = 1.1


def main():
    measured_path, kept_path = sys.argv[1:3]
    with open(measured_path, encoding="utf-8") as file:
        measured = json.load(file)
    is_busy = max(measured["load"]) > os.cpu_count() / 2

    def is_judged(row):
        return not (row.get("needsIdleMachine") and is_busy)

    if "--save" in sys.argv[3:]:
        ratios = {key: float(f"{row['ratio']:.3g}") for key, row in measured["rows"].items() if is_judged(row)}
        with open(kept_path, "w", encoding="utf-8") as file:
            json.dump({"ffmpeg": measured["ffmpeg"], "ratios": ratios}, file, indent=2)
            file.write("\n")
    with open(kept_path, encoding="utf-8") as file:
        kept = json.load(file)

    if kept["ffmpeg"] != measured["ffmpeg"]:
        print(f"kept with FFmpeg {kept['ffmpeg']}, measured with {measured['ffmpeg']}")
    failed = False
    print()
    for key, row in measured["rows"].items():
        if not is_judged(row):
            print(f"{key}: not judged, the machine was busy")
            continue
        if row["ratio"] > row["bound"]:
            failed = True
            print(f"{key}: misses its bound, {row['ratio']:.3g} over {row['bound']:.3g}")
        before = kept["ratios"].get(key)
        if before is None:
            print(f"{key}: is new, {row['ratio']:.3g}")
        elif not 1 / TENTH <= row["ratio"] / before <= TENTH:
            failed = True
            print(f"{key}: moved from {before:.3g} to {row['ratio']:.3g}")
    for key in kept["ratios"].keys() - measured["rows"].keys():
        failed = True
        print(f"{key}: is gone")
    if not failed:
        print("every ratio is where it was, within its bound")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

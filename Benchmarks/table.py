#!/usr/bin/env python3
"""Makes the table of README.md from what the benchmarks print with --benchmark_format=json.

    table.py RESULT.json...        medians where runs were repeated, beside a memcpy or a read of the same bytes

A run that moves other bytes than the memcpy of its line is compared by bytes a second, not by time. Results of `peers.py`
stand beside the runs whose names they have, in milliseconds, with our time as a share of theirs.
"""
import json
import sys

medians, bytes_of, peers = {}, {}, {}
for path in sys.argv[1:]:
    with open(path) as file:
        for run in json.load(file)["benchmarks"]:
            if run.get("aggregate_name", "median") != "median":
                continue
            name = run["run_name"].removesuffix("/real_time")
            if "peer" in run:
                peers.setdefault(name, []).append((run["real_time"], run["peer"]))
                continue
            medians[name] = run["real_time"]
            bytes_of[name] = run.get("bytes_per_second", 0)

heads = ["run", "ms", "GB/s", "time for these bytes / plain"]
if peers:
    heads.append("others, ms (ours / theirs)")
print("| " + " | ".join(heads) + " |")
print("|---" * len(heads) + "|")
for name, time in medians.items():
    family, *rest = name.split("/")
    plain = None
    for reference in ("memcpy", "read"):
        candidate = next((f"{reference}/{rest[0]}/{part}" for part in rest if f"{reference}/{rest[0]}/{part}" in medians), None)
        uses_read = family.startswith("Intensity")
        if candidate and (reference == "read") == uses_read:
            plain = candidate
    if family in ("memcpy", "read"):
        ratio = ""
    elif plain is None:
        ratio = "-"
    else:
        ratio = f"{bytes_of[plain] / bytes_of[name]:.2f} x {plain.split('/')[0]}"
    cells = [name, f"{time:.3f}", f"{bytes_of[name] / 1e9:.1f}", ratio]
    if peers:
        others = sorted(peers.get(name, []))
        cells.append(", ".join(f"{peer} {theirs:.1f} ({time / theirs:.2f})" for theirs, peer in others))
    print("| " + " | ".join(cells) + " |")

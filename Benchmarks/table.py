#!/usr/bin/env python3
"""Makes the table of README.md from what the benchmarks print with --benchmark_format=json.

    table.py RESULT.json...        medians where runs were repeated, beside a memcpy or a read of the same bytes

A run is compared with the memcpy or read on the same shape that moves about as many bytes as it does, by bytes a second. Results of `peers.py`
stand beside the runs whose names they have, in milliseconds, with our time as a share of theirs.
"""
import json
import math
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
    # What fits the caches is faster: so as many bytes.
    reference = "read" if family.startswith("Intensity") else "memcpy"
    candidates = [c for c in medians if c.startswith(reference + "/") and c.split("/")[-1] in rest]
    moved = lambda run: medians[run] * bytes_of[run]
    plain = min(candidates, key=lambda c: abs(math.log(moved(c) / moved(name))), default=None)
    if family in ("memcpy", "read"):
        ratio = ""
    elif plain is None:
        ratio = "-"
    else:
        ratio = f"{bytes_of[plain] / bytes_of[name]:.2f} x {plain}"
    cells = [name, f"{time:.3f}", f"{bytes_of[name] / 1e9:.1f}", ratio]
    if peers:
        others = sorted(peers.get(name, []))
        cells.append(", ".join(f"{peer} {theirs:.1f} ({time / theirs:.2f})" for theirs, peer in others))
    print("| " + " | ".join(cells) + " |")

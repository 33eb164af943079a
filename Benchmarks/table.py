#!/usr/bin/env python3
"""Makes the table of README.md from what the benchmarks print with --benchmark_format=json.

    table.py RESULT.json...        medians where runs were repeated, beside a memcpy or a read of the same bytes

A run that moves other bytes than the memcpy of its line is compared by bytes a second, not by time.
"""
import json
import sys

medians, bytes_of = {}, {}
for path in sys.argv[1:]:
    with open(path) as file:
        for run in json.load(file)["benchmarks"]:
            if run.get("aggregate_name", "median") != "median":
                continue
            name = run["run_name"].removesuffix("/real_time")
            medians[name] = run["real_time"]
            bytes_of[name] = run.get("bytes_per_second", 0)

print("| run | ms | GB/s | time for these bytes / plain |")
print("|---|---|---|---|")
for name, time in medians.items():
    family, *rest = name.split("/")
    plain = None
    for reference in ("memcpy", "read"):
        candidate = f"{reference}/{rest[0]}/{rest[-1]}"
        uses_read = family.startswith("Intensity")
        if candidate in medians and (reference == "read") == uses_read:
            plain = candidate
    if family in ("memcpy", "read"):
        ratio = ""
    elif plain is None:
        ratio = "-"
    else:
        ratio = f"{bytes_of[plain] / bytes_of[name]:.2f} x {plain.split('/')[0]}"
    print(f"| {name} | {time:.3f} | {bytes_of[name] / 1e9:.1f} | {ratio} |")

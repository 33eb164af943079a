"""measure_memory.py FOLDER BYTES LIMIT: a volume of so many bytes in a file of the FOLDER through a Gaussian, a threshold and
statistics. Prints what memory was resident at most; fails beyond LIMIT bytes."""
import os
import pathlib
import sys
import threading
import time

import numpy as np

import quelide as qel

folder, size, limit = pathlib.Path(sys.argv[1]), int(float(sys.argv[2])), int(float(sys.argv[3]))
if os.statvfs(folder).f_bavail * os.statvfs(folder).f_frsize < 3.5 * size:
    print("There is no room on the disk for it.")
    sys.exit(77)
columns = rows = 1024 if size >= 1 << 30 else 256


def resident():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


peak, step, steps = 0, "", {}


def watch():
    global peak
    while True:
        now = resident()
        peak = max(peak, now)
        steps[step] = max(steps.get(step, 0), now)
        time.sleep(0.002)


threading.Thread(target=watch, daemon=True).start()


def timed(name, call):
    global step
    step = name
    begin = time.perf_counter()
    result = call()
    print(f"{name}: {time.perf_counter() - begin:.1f} s, resident {steps.get(name, resident()) / 2 ** 20:.0f} MiB", flush=True)
    return result


dtype = np.dtype("uint8")
shape = (size // (columns * rows), rows, columns)
paths = [folder / name for name in ("volume.qeli", "smooth.qeli", "mask.qeli")]


def make():
    volume = qel.open(paths[0], "w+", shape=shape, dtype=dtype, spacing=(2, 1, 1), unit="um")
    plan = (np.add.outer(np.arange(rows), np.arange(columns)) % 251).astype(dtype)
    for z in range(shape[0]):
        volume.array[z] = np.roll(plan, 3 * z, axis=1)
        if z % 64 == 0:
            volume.give_back()


try:
    step = "make"
    timed("make", make)
    volume = qel.open(paths[0])
    smooth = qel.open(paths[1], "w+", like=volume)
    mask = qel.open(paths[2], "w+", like=volume, dtype="uint8")
    timed("GaussianFilter3D", lambda: qel.blockwise("GaussianFilter3D", volume, sigmaX=1, sigmaY=1, sigmaZ=1, out=smooth))
    timed("Threshold", lambda: qel.Threshold(smooth, 100, 250, out=mask))
    print(timed("IntensityStatistics", lambda: qel.IntensityStatistics(mask)))
finally:
    for path in paths:
        path.unlink(missing_ok=True)
print(f"{shape[0]} plans of {rows} x {columns} {dtype}: at most {peak / 2 ** 20:.0f} MiB resident")
sys.exit(peak > limit)

"""Nothing grows with the number of calls."""
import gc
import os

import numpy as np
import pytest

import quelide as qel
from support import LUT, POINTS

IMAGE = np.random.default_rng(0).integers(0, 255, (64, 64)).astype(np.uint8)
MASK = (IMAGE > 128).astype(np.uint8)
VOLUME = np.zeros((5, 9, 12), np.uint8)
VOLUME[1:4, 2:7, 2:10] = 1


def resident():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def fail():
    try:
        qel.BoxFilter2D(IMAGE, out=np.empty((2, 2), np.uint8))
    except qel.RuleException:
        pass


def refuse():
    try:
        qel.BoxFilter2D(IMAGE, boxsize=2)
    except qel.PropertyError:
        pass


def objects():
    algorithm = qel.create("Threshold")
    algorithm.input = IMAGE
    algorithm.run()


@pytest.mark.parametrize("call, calls", [
    (lambda: qel.Threshold(IMAGE, 10, 20), 10000),
    (lambda: qel.BoxFilter2D(qel.Image(IMAGE[::2, ::-1], unit="mm")), 10000),
    (lambda: qel.IntensityStatistics(IMAGE), 10000),
    (lambda: qel.FiniteImpulseResponseFilter2D(IMAGE, np.ones((3, 3))), 3000),
    (lambda: qel.ApplyMorphologicalLut2D(MASK, LUT), 3000),
    (lambda: qel.LandmarkRegistration3D(POINTS, POINTS), 3000),
    (lambda: qel.CenterLine3D(VOLUME).outputLineSet.lines, 500),
    (lambda: qel.TextureClassificationCreate(textureFeaturesGroup=["HISTO_Mean"]), 3000),
    (objects, 10000),
    (fail, 2000),
    (refuse, 1000),
], ids=["array", "image", "numbers", "kernel", "table", "points", "lines", "model", "object", "error", "refusal"])
def test_memory_does_not_grow(call, calls):
    for _ in range(calls // 10):
        call()
    gc.collect()
    before = resident()
    for _ in range(calls):
        call()
    gc.collect()
    # Each leaked image would be 4 KiB, each leaked object some hundred bytes: 1 MiB and more over all calls.
    assert resident() - before < 1 << 20

"""Measures how thick the bones of a head are, everywhere in a CT.

    skull_thickness.py [PICTURE]    writes the picture (default skull_thickness.png)
"""
import pathlib
import sys

import matplotlib
import numpy as np

import quelide as qel

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402

data = pathlib.Path(__file__).parents[1] / "data"
ct = qel.open(data / "head_ct.qeli")  # an image with calibration: voxels of 3.2 x 3.2 x 1.5 mm
bone = qel.Threshold(ct, lowLevel=1300, highLevel=4095)

# At each voxel, the diameter of the largest ball that holds it and lies within the bone, in millimetres.
thickness = np.asarray(qel.LocalThicknessMap(bone))
inside = thickness[np.asarray(bone) > 0]
plans, rows, columns = ct.spacing
print(f"bone of {inside.size * plans * rows * columns / 1000:.0f} ml, {np.median(inside):.1f} mm thick (median)")

figure, axes = pyplot.subplots(2, 4, figsize=(12, 6.5), layout="constrained")
for place, plan in zip(axes.ravel(), np.linspace(6, len(thickness) - 8, 8).astype(int)):
    place.imshow(ct.array[plan], cmap="gray", vmax=2000)
    shown = place.imshow(np.ma.masked_equal(thickness[plan], 0), cmap="inferno", vmin=0, vmax=np.percentile(inside, 99))
    place.set_title(f"{plan * plans:.0f} mm")
    place.set_axis_off()
figure.colorbar(shown, ax=axes, label="thickness of the bone (mm)")
figure.savefig(sys.argv[1] if len(sys.argv) > 1 else "skull_thickness.png", dpi=120)

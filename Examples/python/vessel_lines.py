"""Draws the centre lines of the vessels of a neck.

    vessel_lines.py [PICTURE]       writes the picture (default vessel_lines.png)
"""
import pathlib
import sys

import matplotlib
import numpy as np

import quelide as qel

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402

data = pathlib.Path(__file__).parents[1] / "data"
angiography = qel.open(data / "carotid.qeli")
vessels = qel.ThresholdByCriterion(angiography, "GREATER_THAN", 220).array
# What is only noise, an opening takes away. What it leaves grows back to the whole vessel.
seeds = qel.Opening3D(vessels, nbIter=1)
vessels = qel.Reconstruction3D(vessels, seeds)


def label_objects(mask):
    """A label for each object in space, the largest first: Labeling is for planes."""
    left, labels = mask.copy(), np.zeros(mask.shape, np.uint16)
    objects = []
    while left.any():
        seed = np.zeros_like(left)
        seed[np.unravel_index(left.argmax(), left.shape)] = 1
        objects.append(qel.Reconstruction3D(left, seed))
        left -= objects[-1]
    for label, each in enumerate(sorted(objects, key=np.sum, reverse=True)[:5], 1):
        labels[each > 0] = label
    return labels


labels = label_objects(vessels)
found = qel.CenterLine3D(qel.Image(labels, interpretation="label"), newBranchSensibility=4)
lines = found.outputLineSet.lines
length = sum(np.linalg.norm(np.diff(line, axis=0), axis=1).sum() for line in lines)
print(f"{len(lines)} lines, {length:.0f} voxels long")

figure = pyplot.figure(figsize=(12, 6), layout="constrained")
left = figure.add_subplot(1, 2, 1)
left.imshow(angiography.array.max(0), cmap="gray")
for line in lines:
    left.plot(line[:, 0], line[:, 1], linewidth=2)
left.set_title("Brightest voxels along the plans, and the lines")
left.set_axis_off()
right = figure.add_subplot(1, 2, 2, projection="3d")
plans, rows, columns = np.nonzero(labels)
right.scatter(columns[::7], rows[::7], plans[::7], s=1, c="0.7", alpha=0.3)
for line in lines:
    right.plot(*line.T, linewidth=2)
right.set_box_aspect(labels.shape[::-1])
right.set_title(f"{len(lines)} lines in {labels.max()} vessels")
figure.savefig(sys.argv[1] if len(sys.argv) > 1 else "vessel_lines.png", dpi=120)

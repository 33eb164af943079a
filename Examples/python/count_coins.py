"""Counts the coins of a photograph, and measures them.

    count_coins.py [PICTURE]        writes the picture (default count_coins.png)
"""
import pathlib
import sys

import matplotlib
import numpy as np

import quelide as qel

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402

DATA = pathlib.Path(__file__).parents[1] / "data"


def load():
    return (pyplot.imread(DATA / "coins.png") * 255).round().astype(np.uint8)


def find_coins(photograph):
    """Labels of the coins. The light falls off to one side: no grey level tells a coin from the table, but its edge does."""
    smooth = qel.MedianFilter2D(photograph, neighborhoodSize=2)
    slope = qel.Dilation2D(smooth, nbIter=1) - qel.Erosion2D(smooth, nbIter=1)
    edges = qel.ClosingDisk2D(qel.ThresholdByCriterion(slope, "GREATER_THAN", 25), elementSize=3)
    # What cannot be reached from the edge of the picture is inside of a coin.
    free = 1 - edges
    border = free.copy()
    border[1:-1, 1:-1] = 0
    outside = qel.Reconstruction2D(free, border, "QEL_NEIGHBORHOOD2D_4")
    return qel.Labeling(qel.OpeningDisk2D(1 - outside, elementSize=10))


def main(picture="count_coins.png"):
    photograph = load()
    labels = find_coins(photograph)
    areas = np.bincount(labels.ravel())[1:]
    areas = areas[areas > 0]
    print(f"{areas.size} coins of {areas.min()} to {areas.max()} pixels")

    figure, (left, right) = pyplot.subplots(1, 2, figsize=(12, 5), layout="constrained")
    left.imshow(photograph, cmap="gray")
    left.contour(labels > 0, levels=[0.5], colors="tab:orange", linewidths=1.5)
    left.set_title("Photograph, with the outlines")
    right.imshow(np.ma.masked_equal(labels, 0), cmap="tab20")
    for label in np.unique(labels[labels > 0]):
        row, column = np.argwhere(labels == label).mean(0)
        right.text(column, row, f"{np.count_nonzero(labels == label)}", ha="center", va="center")
    right.set_title(f"{areas.size} coins, in pixels")
    for axes in (left, right):
        axes.set_axis_off()
    figure.savefig(picture, dpi=120)


if __name__ == "__main__":
    main(*sys.argv[1:])

"""Tells brick, grass and gravel apart in a mosaic of the three, by their texture alone.

    texture_map.py [PICTURE]        writes the picture (default texture_map.png)
"""
import pathlib
import sys

import matplotlib
import numpy as np

import quelide as qel

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402

data = pathlib.Path(__file__).parents[1] / "data"
NAMES = ("brick", "grass", "gravel")
pictures = [(pyplot.imread(data / f"{name}.png") * 255).round().astype(np.uint8) for name in NAMES]
# Half the resolution, and the same mean: neither size nor brightness is to tell them.
pictures = [qel.Decimate2D(picture) for picture in pictures]
pictures = [np.clip(picture - picture.mean() + 128, 0, 255).astype(np.uint8) for picture in pictures]

# The left halves teach, the right ones are laid out in a mosaic.
lesson = np.hstack([picture[:, :128] for picture in pictures])
teacher = np.repeat([1, 2, 3], 128)[None].repeat(256, 0).astype(np.uint16)
teacher[:, np.arange(384) % 128 < 12] = teacher[:, np.arange(384) % 128 >= 116] = 0  # windows across the seams teach nothing
teacher[np.indices(teacher.shape).sum(0) % 7 != 0] = 0  # a seventh of the voxels is enough
y, x = np.indices((128, 384))
truth = 1 + (x // 96 + (y > 64) * 2) % 3
mosaic = np.choose(truth - 1, [np.hstack([picture[64:192, 128:]] * 3) for picture in pictures]).astype(np.uint8)

steps = [(1, 0), (0, 1), (1, 1), (1, -1)]
model = qel.TextureClassificationCreate(
    numOfClasses=3, radius=9, direction2DCollection=steps, binSizeCooccurrence=16,
    textureFeaturesGroup=["HISTO_Stddev", "HISTO_Skewness", "COOC_ContrastMean", "COOC_CorrelationMean", "COOC_EntropyMean",
                          "COOC_AngularSecondMomentMean", "COOC_ContrastStddev"])
qel.TextureClassificationTrain(lesson, teacher, classificationModel=model)
found = qel.TextureClassificationApply(mosaic, model, rejection=20.0)
# Single voxels among others are noise.
smooth = qel.MedianFilter2D(found, neighborhoodSize=6)
print(model.report)
for name, labels in (("as classified", found), ("smoothed", smooth)):
    print(f"{name}: {100 * (labels == truth).mean():.1f} % of the voxels right")

figure, axes = pyplot.subplots(3, 1, figsize=(8, 9), layout="constrained")
axes[0].imshow(mosaic, cmap="gray")
axes[0].set_title("Mosaic")
colours = matplotlib.colors.ListedColormap(["black", "tab:red", "tab:green", "tab:blue"])
for place, labels, title in ((axes[1], smooth, "Found"), (axes[2], truth, "True")):
    shown = place.imshow(labels, cmap=colours, vmin=-0.5, vmax=3.5)
    place.set_title(title)
bar = figure.colorbar(shown, ax=axes[1:], ticks=range(4))
bar.ax.set_yticklabels(["rejected", *NAMES])
for place in axes:
    place.set_axis_off()
figure.savefig(sys.argv[1] if len(sys.argv) > 1 else "texture_map.png", dpi=120)

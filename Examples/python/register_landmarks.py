"""Finds how a photograph was moved from landmarks in it, of which some are paired wrongly.

    register_landmarks.py [PICTURE] writes the picture (default register_landmarks.png)
"""
import sys

import numpy as np
from matplotlib import pyplot

import quelide as qel
from count_coins import find_coins, load

photograph = load()
rows, columns = photograph.shape

# The same coins, seen from elsewhere: turned, smaller and sheared a little.
angle = np.radians(14)
true = np.array([[0.82 * np.cos(angle), -0.8 * np.sin(angle), 70], [0.8 * np.sin(angle), 0.86 * np.cos(angle), -10], [0, 0, 1]])


def seen_through(matrix, image):
    """The image whose voxel at p is the one at matrix(p); 0 beyond the edges."""
    y, x = np.indices(image.shape)
    at = np.rint(np.tensordot(matrix[:2, :2], [x, y], 1) + matrix[:2, 2, None, None]).astype(int)
    inside = (at[0] >= 0) & (at[0] < columns) & (at[1] >= 0) & (at[1] < rows)
    return np.where(inside, image[at[1].clip(0, rows - 1), at[0].clip(0, columns - 1)], 0).astype(image.dtype)


moved = seen_through(np.linalg.inv(true), photograph)

# Landmarks are the centres of the coins. In the moved picture they are found anew, with noise of a pixel; a fifth of the
# pairs is wrong.
labels = find_coins(photograph)
model = np.array([np.argwhere(labels == label).mean(0)[::-1] for label in np.unique(labels[labels > 0])])
rng = np.random.default_rng(1)
landmarks = model @ true[:2, :2].T + true[:2, 2] + rng.normal(0, 0.7, model.shape)
wrong = rng.choice(len(model), len(model) // 5, replace=False)
landmarks[wrong] = rng.uniform((0, 0), (columns, rows), (len(wrong), 2))

plain = qel.LandmarkRegistration2D(landmarks, model, "AFFINE")
robust = qel.LandmarkRegistration2D(landmarks, model, "AFFINE", robustEstimation=True, outlierRatio=0.25)
right = np.setdiff1d(np.arange(len(model)), wrong)
for name, found in (("plain", plain), ("robust", robust)):
    error = np.linalg.norm(found(model[right]) - (model[right] @ true[:2, :2].T + true[:2, 2]), axis=1)
    print(f"{name}: {len(wrong)} of {len(model)} pairs wrong, the others {error.mean():.2f} pixels off")

figure, axes = pyplot.subplots(1, 3, figsize=(15, 4.3), layout="constrained")
axes[0].imshow(photograph, cmap="gray")
axes[0].plot(*model.T, "o", color="tab:orange")
axes[0].set_title("Landmarks")
axes[1].imshow(moved, cmap="gray")
axes[1].plot(*landmarks[right].T, "o", color="tab:orange", label="paired rightly")
axes[1].plot(*landmarks[wrong].T, "x", color="red", label="paired wrongly")
axes[1].legend()
axes[1].set_title("The moved picture")
for found, colour, name in ((plain, "tab:blue", "plain"), (robust, "tab:green", "robust")):
    axes[2].plot(*found(model).T, "+", color=colour, markersize=12, label=name)
axes[2].imshow(moved, cmap="gray")
axes[2].legend()
axes[2].set_title("Landmarks, mapped by what was found")
for place in axes:
    place.set_axis_off()
figure.savefig(sys.argv[1] if len(sys.argv) > 1 else "register_landmarks.png", dpi=120)

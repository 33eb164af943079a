"""What the tests share: a call of any algorithm by introspection alone."""
import numpy as np

import quelide as qel
from quelide import _registry

TYPES = ("uint8", "uint16", "uint32", "uint64", "int8", "int16", "int32", "int64", "float32", "float64")

# What defaults cannot be: a rule refuses them.
NEEDED = {
    "Anamorphosis": {"lut": [0.0, 128.0, 255.0], "step": 127.5},
    "BorderConditionExtrapole": {"output": np.zeros((7, 21, 19), np.uint8)},
    "FiniteImpulseResponseFilter2D": {"kernel2D": np.full((3, 3), 1 / 9)},
    "FiniteImpulseResponseFilter3D": {"kernel3D": np.full((3, 3, 3), 1 / 27)},
    "NonLocalMeanFilter2D": {"similarity": 5.0},
    "NonLocalMeanFilter3D": {"similarity": 5.0, "patchSize": 1, "searchWindowSize": 2},
}

# Outputs that these make are no voxels of the input, and what they do besides is a file.
FILES = ("LoadQelRawImage", "SaveQelRawImage", "ReadTextureClassificationModel")


def image_names(name):
    return [each["name"] for each in _registry.algorithms[name]["properties"] if each["isImage"] and not each["isOutput"]]


def input_kind(name):
    """What an image for this algorithm has to be: "binary" or "value"."""
    binary = ("Labeling", "Reconstruction2D", "Reconstruction3D", "EuclideanDistanceMap", "LocalThicknessMap", "EndPoints2D",
              "EndPoints3D", "CenterLine3D")
    return "binary" if name in binary else "value"


def small_image(name, dtype="uint8", shape=(5, 13, 11), seed=0):
    rng = np.random.default_rng(seed)
    if input_kind(name) == "binary":
        return (rng.random(shape) < 0.6).astype(dtype)
    if np.issubdtype(dtype, np.floating):
        return (rng.random(shape) * 200).astype(dtype)
    return rng.integers(0, 120, shape).astype(dtype)


def images_for(name, **named):
    return {image: small_image(name, seed=i, **named) for i, image in enumerate(image_names(name))}


def same(a, b):
    """The same bits, whatever they mean."""
    if isinstance(a, np.ndarray):
        return (isinstance(b, np.ndarray) and a.dtype == b.dtype and a.shape == b.shape and
                np.ascontiguousarray(a).tobytes() == np.ascontiguousarray(b).tobytes())
    if isinstance(a, tuple):
        return len(a) == len(b) and all(same(x, y) for x, y in zip(a, b))
    if isinstance(a, float) and a != a:
        return b != b
    return a == b

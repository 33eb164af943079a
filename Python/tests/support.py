"""What the tests share: a call of any algorithm by introspection alone."""
import pathlib
import tempfile

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

POINTS = np.random.default_rng(5).random((12, 3)) * 100
LUT = np.zeros(512, np.uint8)
LUT[1::2] = 1  # the centre itself
NEEDED.update({
    "ApplyMorphologicalLut2D": {"morphologicalLut": LUT},
    "ApplyMorphologicalLut3D": {"morphologicalLut": np.where(np.arange(27).reshape(3, 3, 3) == 13, 1, 2)},
    "LandmarkRegistration2D": {"data": POINTS[:, :2] + 3, "model": POINTS[:, :2]},
    "LandmarkRegistration3D": {"data": POINTS + 3, "model": POINTS},
    "TextureFeatureExtraction2D": {"textureFeaturesGroup": ["HISTO_Mean", "COOC_ContrastMean"], "radius": 2,
                                   "directionCollection": [(1, 0)]},
    "TextureFeatureExtraction3D": {"textureFeaturesGroup": ["HISTO_Mean"], "radius": 1},
    "TextureClassificationCreate": {"textureFeaturesGroup": ["HISTO_Mean", "HISTO_Stddev"]},
})



def trained_model():
    model = qel.TextureClassificationCreate(textureFeaturesGroup=["HISTO_Mean"], radius=2)
    image = np.zeros((20, 20), np.uint8)
    image[:, 10:] = 100
    labels = np.zeros((20, 20), np.uint16)
    labels[:, 2:7], labels[:, 13:18] = 1, 2
    image += (np.indices(image.shape).sum(0) % 3).astype(np.uint8)
    qel.TextureClassificationTrain(image, labels, classificationModel=model)
    return model


NEEDED.update({
    "TextureClassificationApply": {"classificationModel": trained_model()},
    "TextureClassificationTrain": {"classificationModel": trained_model(), "mask": np.eye(13, 11, dtype=np.uint16)[None].repeat(5, 0)},
    "TextureClassificationStandalone": {"labelImg": (np.arange(5 * 13 * 11).reshape(5, 13, 11) % 3).astype(np.uint8), "radius": 2},
})

# Outputs that these make are no voxels of the input, and what they do besides is a file.
FILES = ("LoadQelRawImage", "SaveQelRawImage", "ReadTextureClassificationModel")


def image_names(name):
    return [each["name"] for each in _registry.algorithms[name]["properties"] if each["isImage"] and not each["isOutput"]]


def input_kind(name):
    """What an image for this algorithm has to be: "binary" or "value"."""
    binary = ("Labeling", "Reconstruction2D", "Reconstruction3D", "EuclideanDistanceMap", "LocalThicknessMap", "EndPoints2D",
              "EndPoints3D", "CenterLine3D", "ApplyMorphologicalLut2D", "ApplyMorphologicalLut3D")
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
    if isinstance(a, qel.TextureClassificationModel):
        return type(b) is type(a) and file_of(a) == file_of(b)
    if isinstance(a, qel.LineSet3D):
        return type(b) is type(a) and a == b
    if isinstance(a, (qel.Transformation2D, qel.Transformation3D)):
        return type(b) is type(a) and a.kind == b.kind and same(a(POINTS[:, :2] if a.dimensions == 2 else POINTS),
                                                                b(POINTS[:, :2] if a.dimensions == 2 else POINTS))
    if isinstance(a, float) and a != a:
        return b != b
    return a == b


def file_of(model):
    with tempfile.TemporaryDirectory() as folder:
        model.write(f"{folder}/model.qelo")
        return pathlib.Path(folder, "model.qelo").read_bytes()

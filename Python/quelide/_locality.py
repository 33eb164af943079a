"""Which algorithms may be run on a part of an image, and how much more of the image the part needs.

The influence that an algorithm declares does not tell that alone. It is the reach of one step, where an opening takes two; the
larger one of patch and window for non-local means, which read their sum; and nothing along plans, or nothing at all, for
algorithms that look at the whole image. So here each has its entry.
"""
from . import _errors, _registry

# A whole image is needed, because ...
_CONNECTED = "what is connected may reach through every part of the image"
_FARTHEST = "the nearest voxel of the background may be anywhere in the image"
_LEARNS = "it learns from all voxels at once"
_GEOMETRY = "its results are places in the image"
_FILES = "it reads or writes one file as a whole"
_RESIZES = "its output has other sizes than its input"
_NO_IMAGE = "it takes no image"

WHOLE = {
    "BorderConditionExtrapole": _RESIZES,
    "CenterLine3D": _CONNECTED,
    "EuclideanDistanceMap": _FARTHEST,
    "GrayScaleReconstruction2D": _CONNECTED,
    "GrayScaleReconstruction3D": _CONNECTED,
    "KMeansClassification": _LEARNS,
    "Labeling": _CONNECTED,
    "LandmarkRegistration2D": _NO_IMAGE,
    "LandmarkRegistration3D": _NO_IMAGE,
    "LoadQelRawImage": _FILES,
    "LocalThicknessMap": _FARTHEST,
    "ReadTextureClassificationModel": _NO_IMAGE,
    "Reconstruction2D": _CONNECTED,
    "Reconstruction3D": _CONNECTED,
    "SaveQelRawImage": _FILES,
    "ShapeBasedMatching2D": _GEOMETRY,
    "SphereSampling": _NO_IMAGE,
    "TextureClassificationApply": _LEARNS,
    "TextureClassificationCreate": _NO_IMAGE,
    "TextureClassificationStandalone": _LEARNS,
    "TextureClassificationTrain": _LEARNS,
    "TextureFeatureExtraction2D": _RESIZES,
    "TextureFeatureExtraction3D": _RESIZES,
}

# Measurements, whose parts are joined.
REDUCTIONS = ("IntensityExtrema", "IntensityStatistics")


def _once(reach, properties):
    return reach


def _twice(reach, properties):
    # Each of two steps, the second one with the element reflected.
    return [before + behind for before, behind in reach]


def _patch_and_window(reach, properties):
    total = properties["patchSize"] + properties["searchWindowSize"]
    return [total if side else 0 for side in reach]


def _both(reach):
    # At the edge of an image its mirror is read, which lies on the other side.
    return [max(pair) for pair in reach]


def _no_grid(properties):
    return 1, 1, 1


def _pairs(properties):
    return 2, 2, 1


def _power_near_root(size):
    length = 1
    while length * length < size and 2 * length < size:
        length *= 2
    return length


def _segments_of_box(sides):
    # The sums of a box are made of segments that begin at multiples of a length, counted from the image's own begin:
    # a part that begins elsewhere would round in other places.
    sides = (*sides, 1, 1)
    return sides[0], _power_near_root(sides[1]), _power_near_root(sides[2])


def _box(properties):
    sides = properties["boxSize"]
    return _segments_of_box(sides if hasattr(sides, "__len__") else (sides,) * 3)


def _patches(properties):
    return _segments_of_box((2 * properties["patchSize"] + 1,) * 3)


# Algorithms of which a part of the result needs a part of the image: the reach, from the declared one and the properties, and the
# grid on which parts have to begin, columns first.
_POINT = ("Anamorphosis", "ArithmeticImageProcessing", "ArithmeticValueProcessing", "BitShift", "CopyImage",
          "GradientMagnitude2D", "GradientMagnitude3D", "InvertImage", "LogicalImageProcessing", "LogicalNotProcessing",
          "LogicalValueProcessing", "MaskImageProcessing", "Threshold", "ThresholdByCriterion")
_ELEMENTS = ("2D", "3D", "Ball3D", "Disk2D", "Disk3D", "Line2D", "Line3D")
LOCAL = {
    **{name: (_once, _no_grid) for name in _POINT},
    **{name + form: (_once, _no_grid) for name in ("Dilation", "Erosion") for form in _ELEMENTS},
    **{name + form: (_twice, _no_grid) for name in ("Closing", "Opening") for form in _ELEMENTS},
    **{name + form: (_once, _no_grid) for form in ("2D", "3D")
       for name in ("ApplyMorphologicalLut", "EndPoints", "FiniteImpulseResponseFilter", "GaussianFilter", "MedianFilter")},
    "Decimate2D": (_once, _pairs),
    **{name: (_once, _box) for name in ("BoxFilter2D", "BoxFilter3D")},
    **{name: (_patch_and_window, _patches) for name in ("NonLocalMeanFilter2D", "NonLocalMeanFilter3D")},
}


# How many voxels become one, where it is not one for one; columns first.
SHRINKS = {"Decimate2D": (2, 2, 1)}


def shrink(name, dimensions):
    """How many voxels become one, for each axis of an array, in the order of its shape."""
    return (*SHRINKS.get(name, (1, 1, 1)), 1, 1)[:dimensions][::-1]


def kind(name):
    """How an algorithm depends on its image: "local", "reduction" or "whole"."""
    if name not in _registry.algorithms:
        raise _errors.PropertyError(f"there is no algorithm {name!r}: the nearest is "
                                    f"{_errors.nearest(name, _registry.algorithms)!r}")
    return "local" if name in LOCAL else "reduction" if name in REDUCTIONS else "whole"


def refuse_whole(name):
    reason = WHOLE.get(name, "it is not known how far it reads")
    raise _errors.PropertyError(f"{name} does not run on parts of an image: {reason}")._locate(
        name, None, "run it on the whole image, as an array or a mapped file (quelide.open)")


def depth_and_grid(name, properties, dimensions):
    """For a local algorithm with these properties: how many voxels beyond a part it reads, and at multiples of which numbers
    parts have to begin; for each axis of an array, in the order of its shape."""
    each = {entry["name"]: entry["default"] for entry in _registry.algorithms[name]["properties"]}
    each.update(properties)
    declared = _registry.functions[name].reach(**properties)
    widen, grid_of = LOCAL[name]
    if widen is _twice:
        depth = _twice(declared, each)
    else:
        depth = widen(_both(declared), each)
    grid = (*grid_of(each), 1, 1)
    return tuple(int(side) for side in depth[:dimensions][::-1]), tuple(int(side) for side in grid[:dimensions][::-1])


def split_arguments(name, positional, named):
    """Image inputs and other properties, each by name; options of the run are no properties."""
    entries = _registry.algorithms[name]["properties"]
    if len(positional) > len(entries):
        raise TypeError(f"{name} has {len(entries)} properties, but {len(positional)} values were given")
    given = dict(zip((each["name"] for each in entries), positional))
    for key, value in named.items():
        if key in given:
            raise TypeError(f"{name} got two values for the property {key}")
        given[key] = value
    known = {each["name"]: each for each in entries}
    for key in given:
        if key not in known and key not in _registry.OPTIONS:
            raise _errors.refuse(name, key, None, None)
    images = {key: value for key, value in given.items() if key in known and known[key]["isImage"] and value is not None}
    others = {key: value for key, value in given.items() if key not in images and key in known and not known[key]["isImage"]}
    options = {key: value for key, value in given.items() if key in _registry.OPTIONS}
    return images, others, options


def join(name, parts):
    """One result of a reduction, from those of parts: pairs of a result and how many voxels it is of."""
    import math

    parts = [(result, count) for result, count in parts if count]
    lowest = min(result.outputMinimum for result, _ in parts)
    highest = max(result.outputMaximum for result, _ in parts)
    made = type(parts[0][0])
    if name == "IntensityExtrema":
        return made(lowest, highest)
    # fsum adds without rounding on the way.
    count = sum(count for _, count in parts)
    total = math.fsum(result.outputSumOfIntensityValues for result, _ in parts)
    squares = math.fsum(result.outputSumOfSquaredIntensityValues for result, _ in parts)
    mean = total / count
    variance = squares / count - mean * mean
    return made(lowest, highest, mean, total, squares, math.sqrt(variance) if variance >= 0 else math.nan)

#!/usr/bin/env python3
"""Times OpenCV, SciPy and scikit-image, whichever is there, on the images of the benchmarks.

    peers.py IMAGES RESULT.json [--benchmark_filter=REGEX] [other options are not for here]

IMAGES is the folder that QUELIDE_BENCH_IMAGES named when the benchmarks ran (see Support.h), RESULT.json gets the times
under the names of the benchmarks: `table.py` puts them side by side. OpenCV gets both cores, the others have one.

To add a line: a function, in the section of its library, that gets the parameters of the name and returns what is timed.
"""
import itertools
import json
import re
import statistics
import sys
import time
from importlib import import_module
from pathlib import Path

import numpy as np


def optional(module):
    try:
        return import_module(module)
    except ImportError:
        print(f"no {module} here", file=sys.stderr)
        return None


cv2 = optional("cv2")
ndimage = optional("scipy.ndimage")
measure, restoration = optional("skimage.measure"), optional("skimage.restoration")
feature = optional("skimage.feature")
rank, morphology = optional("skimage.filters.rank"), optional("skimage.morphology")
names = {}
if cv2:
    cv2.setNumThreads(2)
    names[cv2] = f"OpenCV {cv2.__version__}"
if ndimage:
    names[ndimage] = f"SciPy {import_module('scipy').__version__}"
for module in (measure, restoration, rank, morphology, feature):
    if module:
        names[module] = f"scikit-image {import_module('skimage').__version__}"

SHAPES = {"4096": (4096, 4096), "2048": (2048, 2048), "1024": (1024, 1024), "512": (512, 512), "256^3": (256, 256, 256)}
TYPES = ("uint8", "uint16", "float32")
folder = Path(sys.argv[1])


def picture(letter, shape, type="uint8"):
    """n: noise, g: grey, b: blobs, r: real, m: marker, o: objects, s: seeds."""
    return np.fromfile(folder / f"{letter}_{shape}_{type}.raw", type).reshape(SHAPES[shape])


runs = []


def peer(module, name, **parameters):
    """Registers the function for each combination of the parameters, where the library is there."""

    def register(prepare):
        for values in itertools.product(*parameters.values()) if module else ():
            chosen = dict(zip(parameters, values))
            runs.append((name.format(**chosen), names[module], lambda prepare=prepare, chosen=chosen: prepare(**chosen)))
        return prepare

    return register


# Point operations


@peer(cv2, "ArithmeticImageProcessing:add/{type}/scalar/4096", type=TYPES)
def _(type):
    a = picture("n", "4096", type)
    wider = {"uint8": "int16", "uint16": "int32", "float32": "float32"}[type]
    out, depth = np.zeros(a.shape, wider), {"uint8": cv2.CV_16S, "uint16": cv2.CV_32S, "float32": cv2.CV_32F}[type]
    return lambda: cv2.add(a, a, out, dtype=depth)


@peer(cv2, "Threshold/{type}/scalar/4096", type=TYPES)
def _(type):
    a = picture("n", "4096", type)
    out = np.zeros(a.shape, "uint8")
    return lambda: cv2.inRange(a, 64, 191.5, out)


# Analysis


@peer(cv2, "IntensityExtrema/{type}/sse/4096", type=TYPES)
def _(type):
    a = picture("n", "4096", type)
    return lambda: cv2.minMaxLoc(a)


# Filters


@peer(cv2, "BoxFilter2D/{type}/scalar/4096/side:{side}", type=TYPES, side=(3, 7, 31, 101))
def _(type, side):
    a = picture("n", "4096", type)
    out = np.zeros_like(a)
    return lambda: cv2.blur(a, (side, side), out, borderType=cv2.BORDER_REFLECT)


@peer(ndimage, "BoxFilter2D/{type}/scalar/4096/side:{side}", type=TYPES, side=(31,))
def _(type, side):
    a = picture("n", "4096", type)
    out = np.zeros_like(a)
    return lambda: ndimage.uniform_filter(a, side, out)


@peer(ndimage, "BoxFilter3D/{type}/scalar/256^3/side:{side}", type=TYPES, side=(31,))
def _(type, side):
    a = picture("n", "256^3", type)
    out = np.zeros_like(a)
    return lambda: ndimage.uniform_filter(a, side, out)


@peer(restoration, "NonLocalMeanFilter2D/float32/scalar/1024/patch:{patch}/window:6", patch=(1, 3, 10))
def _(patch):
    a = picture("n", "1024", "float32")
    return lambda: restoration.denoise_nl_means(a, 2 * patch + 1, 6, 60, fast_mode=True)


@peer(cv2, "FiniteImpulseResponseFilter2D/{type}/sse/4096/square:{side}", type=TYPES, side=(3, 7))
def _(type, side):
    a = picture("n", "4096", type)
    out = np.zeros_like(a)
    weights = np.random.default_rng(7).random((side, side)).astype("float32")
    weights /= weights.sum()
    return lambda: cv2.filter2D(a, -1, weights, out, borderType=cv2.BORDER_REFLECT)


@peer(cv2, "FiniteImpulseResponseFilter2D/{type}/sse/4096/{line}:13", type=TYPES, line=("row", "column"))
def _(type, line):
    a = picture("n", "4096", type)
    out = np.zeros_like(a)
    weights, one = cv2.getGaussianKernel(13, 2, cv2.CV_32F), np.ones(1, "float32")
    kernels = (weights, one) if line == "row" else (one, weights)
    return lambda: cv2.sepFilter2D(a, -1, *kernels, out, borderType=cv2.BORDER_REFLECT)


@peer(ndimage, "FiniteImpulseResponseFilter3D/{type}/sse/256^3/{line}:13", type=TYPES, line=("row", "column", "plans"))
def _(type, line):
    a = picture("n", "256^3", type)
    out = np.zeros_like(a)
    axis = ("plans", "column", "row").index(line)
    return lambda: ndimage.gaussian_filter1d(a, 2, axis, output=out, truncate=3)


@peer(cv2, "GaussianFilter2D/{type}/scalar/4096/sigma:2", type=TYPES)
def _(type):
    a = picture("n", "4096", type)
    out = np.zeros_like(a)
    return lambda: cv2.GaussianBlur(a, (13, 13), 2, out, borderType=cv2.BORDER_REFLECT)


@peer(ndimage, "GaussianFilter3D/{type}/scalar/256^3/sigma:2", type=TYPES)
def _(type):
    a = picture("n", "256^3", type)
    out = np.zeros_like(a)
    return lambda: ndimage.gaussian_filter(a, 2, output=out, truncate=3)


# Median filters. OpenCV has 8 bits of any radius, and other types up to radius 2; scikit-image has integers.


@peer(cv2, "MedianFilter2D/{type}/scalar/4096/square/radius:{radius}", type=TYPES, radius=(1, 2, 3, 10))
def _(type, radius):
    a = picture("n", "4096", type)
    out = np.zeros_like(a)
    return lambda: cv2.medianBlur(a, 2 * radius + 1, out)


@peer(ndimage, "MedianFilter2D/{type}/scalar/4096/square/radius:{radius}", type=TYPES, radius=(1, 3))  # 10 takes minutes
def _(type, radius):
    a = picture("n", "4096", type)
    out = np.zeros_like(a)
    return lambda: ndimage.median_filter(a, 2 * radius + 1, output=out)


@peer(ndimage, "MedianFilter3D/{type}/scalar/256^3/cube/radius:{radius}", type=TYPES, radius=(1,))
def _(type, radius):
    a = picture("n", "256^3", type)
    out = np.zeros_like(a)
    return lambda: ndimage.median_filter(a, 2 * radius + 1, output=out)


@peer(rank, "MedianFilter2D/{type}/scalar/4096/{form}/radius:{radius}", type=TYPES[:2], form=("square", "disk"), radius=(1, 3, 10))
def _(type, form, radius):
    a = picture("n", "4096", type)
    out = np.zeros_like(a)
    window = morphology.disk(radius) if form == "disk" else np.ones((2 * radius + 1,) * 2, "uint8")
    return lambda: rank.median(a, window, out=out)


# Morphology


def disk(radius):
    y, x = np.ogrid[-radius : radius + 1, -radius : radius + 1]
    return (x * x + y * y <= radius * radius).astype("uint8")


@peer(cv2, "Erosion2D:{neighbours}/{type}/sse/4096/iterations:{iterations}", neighbours=(4, 8), type=TYPES,
      iterations=(1, 10))
def _(neighbours, type, iterations):
    a = picture("g", "4096", type)
    out = np.zeros_like(a)
    element = cv2.getStructuringElement(cv2.MORPH_CROSS if neighbours == 4 else cv2.MORPH_RECT, (3, 3))
    return lambda: cv2.erode(a, element, out, iterations=iterations)


@peer(ndimage, "Erosion2D:8/{type}/sse/4096/iterations:1", type=TYPES)
def _(type):
    a = picture("g", "4096", type)
    out = np.zeros_like(a)
    return lambda: ndimage.grey_erosion(a, (3, 3), output=out)


@peer(ndimage, "Erosion3D:26/{type}/sse/256^3/iterations:{iterations}", type=TYPES, iterations=(1, 10))
def _(type, iterations):
    a = picture("g", "256^3", type)
    out = np.zeros_like(a)
    side = 2 * iterations + 1
    return lambda: ndimage.grey_erosion(a, (side, side, side), output=out)


@peer(cv2, "ErosionDisk2D:precise/{type}/sse/4096/radius:{radius}", type=TYPES, radius=(3, 10))
def _(type, radius):
    a = picture("g", "4096", type)
    out = np.zeros_like(a)
    return lambda: cv2.erode(a, disk(radius), out)


@peer(cv2, "OpeningDisk2D:precise/{type}/scalar/4096/radius:10", type=TYPES)
def _(type):
    a = picture("g", "4096", type)
    out = np.zeros_like(a)
    return lambda: cv2.morphologyEx(a, cv2.MORPH_OPEN, disk(10), out)


@peer(cv2, "ErosionLine2D:{angle}/{type}/sse/4096/size:{size}", angle=(0, 10), type=TYPES, size=(15, 101))
def _(angle, type, size):
    a = picture("g", "4096", type)
    out = np.zeros_like(a)
    rows = np.floor(np.arange(size) * np.tan(np.radians(angle)) + 0.5).astype(int)
    element = np.zeros((rows[-1] + 1, size), "uint8")
    element[rows, np.arange(size)] = 1
    return lambda: cv2.erode(a, element, out, anchor=(0, 0))


# scikit-image's reconstruction compares whole neighbourhoods by their footprint. The binary one is grey reconstruction on
# two values there, and marking the parts that a seed touches in SciPy.


def footprint(neighbours, dimensions):
    return ndimage.generate_binary_structure(dimensions, {4: 1, 8: 2, 6: 1, 18: 2, 26: 3}[neighbours])


# The volumes take half a minute each.
PLANE = dict(neighbours=(4, 8), d=(2,), shape=("2048",), type=TYPES)
SPACE = dict(neighbours=(26,), d=(3,), shape=("256^3",), type=("uint8",))


def reconstruct(shape, type, neighbours, marker, image):
    seed, mask = picture(marker, shape, type), picture(image, shape, type)
    return lambda: morphology.reconstruction(seed, mask, footprint=footprint(neighbours, mask.ndim))


def propagate(shape, neighbours):
    seed, mask = picture("s", shape), picture("o", shape)
    return lambda: ndimage.binary_propagation(seed, footprint(neighbours, mask.ndim), mask)


for space in (PLANE, SPACE):

    @peer(morphology, "Reconstruction{d}D:{neighbours}/{type}/scalar/{shape}", **{**space, "type": ("uint8",)})
    def _(neighbours, type, d, shape):
        return reconstruct(shape, type, neighbours, "s", "o")

    @peer(ndimage, "Reconstruction{d}D:{neighbours}/{type}/scalar/{shape}", **{**space, "type": ("uint8",)})
    def _(neighbours, type, d, shape):
        return propagate(shape, neighbours)

    @peer(morphology, "GrayScaleReconstruction{d}D:{neighbours}/{type}/scalar/{shape}", **space)
    def _(neighbours, type, d, shape):
        return reconstruct(shape, type, neighbours, "m", "r")


# Segmentation


def binary(kind, shape):
    return picture("b", shape) if kind == "blobs" else picture("n", shape) & 1


KINDS = ("blobs", "noise")


@peer(cv2, "Labeling/{kind}/uint32/scalar/4096", kind=KINDS)
def _(kind):
    a = binary(kind, "4096")
    out = np.zeros(a.shape, "int32")
    return lambda: cv2.connectedComponents(a, out, 8, cv2.CV_32S)


@peer(ndimage, "Labeling/{kind}/uint32/scalar/{shape}", kind=KINDS, shape=("4096", "256^3"))
def _(kind, shape):
    a = binary(kind, shape)
    out = np.zeros(a.shape, "int32")
    return lambda: ndimage.label(a, np.ones((3,) * a.ndim), out)


@peer(measure, "Labeling/{kind}/uint32/scalar/{shape}", kind=KINDS, shape=("4096", "256^3"))
def _(kind, shape):
    a = binary(kind, shape)
    return lambda: measure.label(a, connectivity=a.ndim)


@peer(feature, "TextureFeatureExtraction2D:all52/uint8/scalar/512/radius:{radius}/bins:{bins}", radius=(5,), bins=(16,))
def _(radius, bins):
    """All six properties that it has, of a matrix for each window; a part of the image stands for all of it."""
    side = 32
    a = np.pad(picture("g", "512")[:side, :side] // (256 // bins), radius, "symmetric")
    angles = [0, np.pi / 4, np.pi / 2, 3 * np.pi / 4]
    properties = ("contrast", "dissimilarity", "homogeneity", "ASM", "energy", "correlation")

    def run():
        for y in range(side):
            for x in range(side):
                window = a[y : y + 2 * radius + 1, x : x + 2 * radius + 1]
                matrix = feature.graycomatrix(window, [1], angles, levels=bins, symmetric=True, normed=True)
                for name in properties:
                    feature.graycoprops(matrix, name)

    run.parts = 512 * 512 / (side * side)
    return run


# Classification


@peer(cv2, "KMeansClassification4/{type}/scalar/4096", type=TYPES)
def _(type):
    a = picture("n", "4096", type).astype(np.float32).reshape(-1, 1)
    ten = (cv2.TERM_CRITERIA_MAX_ITER, 10, 0)
    return lambda: cv2.kmeans(a, 4, None, ten, 1, cv2.KMEANS_RANDOM_CENTERS)


# Registration


@peer(cv2, "LandmarkRegistration2D:{type}/robust/1000points", type=("AFFINE", "PROJECTIVE"))
def _(type):
    random = np.random.default_rng(1)
    model = random.uniform(-100, 100, (1000, 2))
    noise = random.uniform(-0.1, 0.1, (1000, 2))
    noise[::5] *= 3000
    data = model + (5, 6) + noise
    if type == "AFFINE":
        return lambda: cv2.estimateAffine2D(model, data, method=cv2.LMEDS)
    return lambda: cv2.findHomography(model, data, method=cv2.LMEDS)


def median(run):
    """Milliseconds: of one run where that takes seconds, and else of as many as half a second has, but three at least."""
    times, end = [], 0
    while not times or times[0] < 2000 and (len(times) < 4 or time.perf_counter() < end):
        begin = time.perf_counter()
        run()
        times.append(1000 * (time.perf_counter() - begin))
        end = end or time.perf_counter() + 0.5
    return statistics.median(times[1:] or times)


wanted = "".join(a.split("=", 1)[1] for a in sys.argv[3:] if a.startswith("--benchmark_filter="))
results = []
for name, library, prepare in runs:
    if not re.search(wanted, name):
        continue
    try:
        run = prepare()
        # A run that takes minutes is timed on a part of its image.
        time_of_run = median(run) * getattr(run, "parts", 1)
        results.append({"run_name": name, "peer": library, "real_time": time_of_run})
    except FileNotFoundError as missing:
        print(f"{name}: the benchmarks left no {Path(missing.filename).name}", file=sys.stderr)
    except Exception as error:  # a type that the library does not take
        print(f"{name}: {library}: {str(error).splitlines()[-1]}", file=sys.stderr)
with open(sys.argv[2], "w") as file:
    json.dump({"benchmarks": results}, file, indent=1)

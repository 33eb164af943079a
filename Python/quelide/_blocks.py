"""Images that are larger than memory, on one machine."""
import itertools
import math

import numpy

from . import _errors, _locality, _progress, _registry
from ._image import Image


def blockwise(name, *positional, out=None, memory=256 << 20, progress=None, dtype=None, threads=None, level=None, **named):
    """Runs a local algorithm part by part, so that its temporary images are small, too.

    name        of the algorithm. What follows is its properties, as for the function of that name
    out         array or image for the result, such as quelide.open(path, "w+", ...); made anew where there is none. It shares no
                memory with the images that are read
    memory      how many bytes a part may take, about (default 256 MiB)

    The result is that of the function, bit for bit. Every run on a mapped file keeps a bounded part of the file in memory;
    this is for algorithms that need temporary images as large as the whole, such as a Gaussian filter of integers, or an opening.
    Measurements need none, and are run as they are. What needs the whole image is refused.

        volume = quelide.open("volume.qeli")
        smooth = quelide.open("smooth.qeli", "w+", like=volume)
        quelide.blockwise("GaussianFilter3D", volume, sigmaX=1, sigmaY=1, sigmaZ=1, out=smooth)
    """
    kind = _locality.kind(name)
    if kind == "whole":
        _locality.refuse_whole(name)
    images, properties, _ = _locality.split_arguments(name, positional, named)
    if not images:
        raise TypeError(f"{name} needs an image")
    function = _registry.functions[name]
    options = {"threads": threads, "level": level}
    if kind == "reduction":
        return function(**images, **properties, **options, progress=progress)
    output = next(each["name"] for each in _registry.algorithms[name]["properties"] if each["isOutput"])
    if output in images:
        out = images.pop(output)
    if len({image.shape for image in images.values()}) != 1:
        raise ValueError(f"the images of {name} must have the same shape")

    # A few voxels tell type and calibration of the result, and whether the parameters are right.
    sample = function(**{key: _part(image, (slice(0, 1),) * image.ndim) for key, image in images.items()}, **properties,
                      dtype=dtype, **options)
    first = next(iter(images.values()))
    size_in, shrink = first.shape, _locality.shrink(name, first.ndim)
    shape = tuple(-(-size // step) for size, step in zip(size_in, shrink))
    if out is None:
        result = numpy.empty(shape, sample.dtype)
        out = _calibrated(result, sample) if isinstance(sample, Image) else result
    target = out.array if isinstance(out, Image) else out
    if target.shape != shape or target.dtype != sample.dtype:
        raise _errors.PropertyError(
            f"{name}: {output}: the result has the shape {shape} and voxels of type {sample.dtype}, but out has the shape "
            f"{target.shape} and voxels of type {target.dtype}")._locate(name, output, None)
    for key, image in images.items():
        if numpy.may_share_memory(_array(image), target):
            raise _errors.PropertyError(f"{name}: {output}: its memory overlaps with that of {key}")._locate(
                name, output, "give another array: parts are read again after their neighbours are written")

    depth, grid = _locality.depth_and_grid(name, properties, len(shape))
    # A part is read and written, and has a temporary image of 8 bytes a voxel at worst.
    voxel = sum(_array(image).itemsize for image in images.values()) + 2 * target.itemsize + 8
    blocks = [range(0, size, step) for size, step in zip(size_in, _block_shape(size_in, depth, grid, memory // voxel))]
    show = _progress.as_function(progress) if progress else None
    total = math.prod(len(begins) for begins in blocks)
    for done, begins in enumerate(itertools.product(*blocks)):
        inner, outer, trim = [], [], []
        for begin, starts, reach, step, size, less in zip(begins, blocks, depth, grid, size_in, shrink):
            end = min(begin + starts.step, size)
            low = max(0, begin - reach) // step * step
            outer.append(slice(low, min(end + reach, size)))
            inner.append(slice(begin // less, -(-end // less)))
            trim.append(slice((begin - low) // less, -(-(end - low) // less)))
        parts = {key: _array(_part(image, tuple(outer))) for key, image in images.items()}
        result = function(**parts, **properties, dtype=dtype, **options)
        _registry.functions["CopyImage"](result[tuple(trim)], out=target[tuple(inner)])
        if show:
            show(100 * (done + 1) / total)
    if isinstance(out, Image) and isinstance(sample, Image):
        out._take(sample.spacing, sample.origin, sample.unit, sample.interpretation, sample.time_unit)
    return out


def _array(image):
    return image.array if isinstance(image, Image) else image


def _part(image, slices):
    if isinstance(image, Image):
        return Image(image.array[slices], image.spacing, image.origin, image.unit, image.interpretation, image.time_unit)
    return image[slices]


def _calibrated(array, like):
    return Image(array, like.spacing, like.origin, like.unit, like.interpretation, like.time_unit)


def _block_shape(shape, depth, grid, voxels):
    """As few parts as there may be, cut along the first axes: there a part is one piece of a file."""
    block = list(shape)
    for axis in range(len(shape)):
        rest = math.prod(min(shape[i], block[i] + 2 * depth[i]) for i in range(len(shape)) if i != axis)
        fits = voxels // rest - 2 * depth[axis]
        if fits >= shape[axis]:
            break
        block[axis] = max(fits // grid[axis] * grid[axis], grid[axis])
        if fits > 0:
            break
    return block

"""Algorithms on chunked arrays, on one machine or on many.

    import dask.array as da
    import quelide as qel
    smooth = qel.dask.map("MedianFilter3D", array, neighborhoodSize=2)      # nothing is computed yet
    smooth.compute()

Chunked equals whole, bit for bit.
"""
import functools

import numpy
from dask import array as _da
from dask import delayed as _delayed

from . import _locality, _registry

__all__ = ["kind", "map"]

kind = _locality.kind


def map(name, *positional, threads=1, level=None, **named):
    """Runs an algorithm on arrays of Dask, chunk by chunk.

    name        of the algorithm. What follows is its properties, as for the function of that name; its images are arrays of
                Dask, or arrays that become such
    threads     how many threads a chunk may use (default 1: Dask runs several chunks at once)

    A local algorithm gives an array of Dask: each chunk is computed with as much around it as the algorithm reads. A reduction
    (statistics, extrema) gives a delayed result, of which compute() makes the named tuple; extrema, and sums of integers, are
    those of the whole; sums of reals are those of the parts, added without rounding. An algorithm that needs the whole image is
    refused. kind(name) tells which is which.
    """
    if kind(name) == "whole":
        _locality.refuse_whole(name)
    images, properties, options = _locality.split_arguments(name, positional, named)
    if options:
        raise TypeError(f"quelide.dask.map takes no {', '.join(sorted(options))}")
    options = {"threads": threads, **({"level": level} if level else {})}
    if not images:
        raise TypeError(f"{name} needs an image")
    names = list(images)
    arrays = [each if isinstance(each, _da.Array) else _da.from_array(numpy.asarray(each)) for each in images.values()]
    if kind(name) == "reduction":
        return _reduce(name, arrays[0], options)
    if len({array.shape for array in arrays}) != 1:
        raise ValueError(f"the images of {name} must have the same shape")
    # Parameters are checked here, and not on another machine: with an image of a few voxels.
    sample = _run(name, names, properties, options, *[numpy.zeros((1,) * array.ndim, array.dtype) for array in arrays])
    depth, grid = _locality.depth_and_grid(name, properties, arrays[0].ndim)
    depth = tuple(min(-(-reach // step) * step, size) if reach else 0
                  for reach, step, size in zip(depth, grid, arrays[0].shape))
    first = arrays[0].rechunk(tuple(_chunks_on_grid(chunks, step, reach)
                                    for chunks, step, reach in zip(arrays[0].chunks, grid, depth)))
    arrays = [first] + [array.rechunk(first.chunks) for array in arrays[1:]]
    run = functools.partial(_run, name, names, properties, options)
    settings = dict(dtype=sample.dtype, meta=numpy.empty((0,) * sample.ndim, sample.dtype))
    if not any(depth):
        chunks = tuple(tuple(-(-chunk // step) for chunk in axis)
                       for axis, step in zip(first.chunks, _locality.shrink(name, first.ndim)))
        return _da.map_blocks(run, *arrays, chunks=chunks, **settings)
    return _da.map_overlap(run, *arrays, depth=dict(enumerate(depth)), boundary="none", trim=True, allow_rechunk=False,
                           align_arrays=False, **settings)


def _run(name, names, properties, options, *arrays):
    if 0 in arrays[0].shape:
        return arrays[0]
    return _registry.functions[name](**dict(zip(names, arrays)), **properties, **options)


def _chunks_on_grid(chunks, step, depth):
    """Chunks that begin at multiples of `step` and are not shorter than `depth`, close to those that are given."""
    size = sum(chunks)
    begins, at = [0], 0
    for chunk in chunks:
        at += chunk
        begin = at // step * step
        if begin - begins[-1] >= max(depth, 1) and size - begin >= max(depth, 1):
            begins.append(begin)
    return tuple(end - begin for begin, end in zip(begins, begins[1:] + [size]))


def _reduce(name, array, options):
    parts = [_delayed(_part)(name, block, options) for block in array.to_delayed().ravel()]
    # Not all at once: a scheduler moves few results to one place.
    while len(parts) > 1:
        parts = [_delayed(_join)(name, parts[i:i + 16]) for i in range(0, len(parts), 16)]
    return _delayed(_result)(name, parts[0])


def _part(name, array, options):
    array = numpy.asarray(array)
    return [(tuple(_registry.functions[name](array, **options)), array.size)] if array.size else []


def _join(name, parts):
    return [each for part in parts for each in part]


def _result(name, parts):
    made = _registry.result_type(f"{name}Result")
    return _locality.join(name, [(made(*values), count) for values, count in parts])

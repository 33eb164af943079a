"""Arrays are images over their own memory: of any strides, never copied, never gone too early."""
import gc
import pathlib
import subprocess
import sys
import weakref

import hypothesis
import numpy as np
import pytest
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

import quelide as qel
from support import TYPES, same


@st.composite
def strided(draw, dtype=None):
    """An array of any strides, and a contiguous copy of it."""
    dtype = dtype or draw(st.sampled_from(TYPES))
    dimensions = draw(st.integers(1, 5))
    base_shape = draw(hnp.array_shapes(min_dims=dimensions, max_dims=dimensions, min_side=1, max_side=9 if dimensions < 4 else 4))
    rng = np.random.default_rng(draw(st.integers(0, 1000)))
    base = rng.integers(0, 100, base_shape).astype(dtype)
    view = base.transpose(draw(st.permutations(range(dimensions))))
    slices = []
    for side in view.shape:
        step = draw(st.sampled_from((1, 1, 2, -1, -2, 3)))
        start = draw(st.integers(0, side - 1))
        slices.append(slice(start, None, step))
    view = view[tuple(slices)]
    if draw(st.booleans()):  # not aligned
        raw = np.zeros(view.size * view.itemsize + 1, np.uint8)
        shifted = raw[1:].view(dtype).reshape(view.shape)
        shifted[...] = view
        view = shifted
    return view, np.ascontiguousarray(view)


@hypothesis.given(strided())
def test_strides_change_no_result(both):
    view, copy = both
    before = copy.copy()
    for name, named in (("LogicalValueProcessing", {"inputValue": 5}), ("BoxFilter2D", {"boxSize": (3, 2)}), ("IntensityExtrema", {}),
                        ("CopyImage", {}), ("MedianFilter3D", {"neighborhoodSize": 1}), ("Erosion2D", {"nbIter": 1})):
        if name == "LogicalValueProcessing" and view.dtype.kind == "f":
            continue
        assert same(getattr(qel, name)(view, **named), getattr(qel, name)(copy, **named)), name
    assert same(np.ascontiguousarray(view), before)


@hypothesis.given(strided(), st.data())
def test_writes_where_the_array_is(both, data):
    view, copy = both
    expected = qel.BoxFilter2D(copy, boxSize=3)
    surroundings = np.full([side * 2 + 1 for side in copy.shape], 77, copy.dtype)
    inside = tuple(slice(data.draw(st.integers(0, 1)), data.draw(st.just(2 * side)), 2) for side in copy.shape)
    inside = tuple(slice(part.start, part.start + 2 * side - 1, 2) for part, side in zip(inside, copy.shape))
    out = surroundings[inside]
    assert qel.BoxFilter2D(view, boxSize=3, out=out) is out
    assert same(np.ascontiguousarray(out), expected)
    untouched = surroundings.copy()
    untouched[inside] = 77
    assert (untouched == 77).all()


@hypothesis.given(strided())
def test_runs_in_place_in_any_strides(both):
    view, copy = both
    expected = qel.MedianFilter2D(copy, neighborhoodSize=1)
    assert qel.MedianFilter2D(view, neighborhoodSize=1, out=view) is view
    assert same(np.ascontiguousarray(view), expected)


def test_copies_neither_inputs_nor_outputs():
    image = np.zeros((64, 64), np.uint8)
    out = np.empty_like(image)
    result = qel.CopyImage(image, out=out)
    assert np.shares_memory(result, out) and result is out and not np.shares_memory(result, image)
    part = image[::2, ::-2]
    wrapped = qel.MedianFilter2D(qel.Image(image), out=qel.Image(image))
    assert np.shares_memory(wrapped.array, image)
    assert np.shares_memory(np.asarray(wrapped), image)
    assert np.shares_memory(qel.InvertImage(part, numOfBits=8, out=part), image)
    assert image[0, -1] == 255 and image[1].max() == 0
    fresh = qel.CopyImage(image)
    assert fresh.base is None and fresh.flags.owndata and fresh.flags.c_contiguous and fresh.flags.writeable


def test_counts_axes_from_the_last():
    five = np.arange(2 * 3 * 2 * 4 * 5, dtype=np.uint16).reshape(2, 3, 2, 4, 5)
    # What 2D filters do, they do in each plan, point in time and series alone.
    whole = qel.BoxFilter2D(five)
    for index in np.ndindex(2, 3, 2):
        assert same(np.ascontiguousarray(whole[index]), qel.BoxFilter2D(five[index]))
    volume = qel.BoxFilter3D(five)
    for index in np.ndindex(2, 3):
        assert same(np.ascontiguousarray(volume[index]), qel.BoxFilter3D(five[index]))
    assert qel.BoxFilter2D(five[0, 0, 0, 0]).shape == (5,)
    assert qel.Decimate2D(five).shape == (2, 3, 2, 2, 3)


@pytest.mark.parametrize("dtype", TYPES)
def test_takes_all_ten_types(dtype):
    image = np.arange(12).reshape(3, 4).astype(dtype)
    assert same(qel.CopyImage(image), image)
    assert qel.IntensityExtrema(image).outputMaximum == 11


def test_refuses_what_is_no_image():
    with pytest.raises(qel.PropertyError, match="swapped") as caught:
        qel.CopyImage(np.zeros((2, 2), ">i4"))
    assert 'newbyteorder("=")' in caught.value.remedy
    for dtype in ("complex64", "float16", "U3", "datetime64[s]", object):
        with pytest.raises(qel.PropertyError, match="no voxels of type"):
            qel.CopyImage(np.zeros((2, 2)).astype(dtype))
    for shape in ((), (1,) * 6):
        with pytest.raises(qel.PropertyError, match="one to five axes"):
            qel.CopyImage(np.zeros(shape))
    with pytest.raises(qel.PropertyError, match="numpy array or a quelide.Image") as caught:
        qel.CopyImage([[1, 2], [3, 4]])
    assert "asarray" in caught.value.remedy
    with pytest.raises(qel.PropertyError, match="mask would be lost"):
        qel.CopyImage(np.ma.masked_equal(np.zeros((2, 2)), 0))
    constant = np.zeros((2, 2))
    constant.flags.writeable = False
    assert same(qel.CopyImage(constant), constant)
    with pytest.raises(qel.PropertyError, match="read-only"):
        qel.CopyImage(np.ones((2, 2)), out=constant)
    with pytest.raises(qel.PropertyError, match="share memory"):
        qel.CopyImage(np.ones((2, 2)), out=np.lib.stride_tricks.as_strided(np.zeros(2), (2, 2), (0, 8)))
    image = np.zeros((8, 8))
    with pytest.raises(qel.PropertyError, match="overlaps") as caught:
        qel.CopyImage(image[:4], out=image[1:5])
    assert caught.value.property == "output" and "copy" in caught.value.remedy
    assert qel.CopyImage(image[::2], out=image[1::2]).base is image  # between each other, and no overlap


def test_takes_other_buffers_and_bools():
    import array

    assert qel.IntensityExtrema(array.array("H", [3, 1, 2])).outputMaximum == 3
    mask = np.array([[True, False], [False, True]])
    assert qel.Labeling(mask).max() >= 1
    assert qel.EuclideanDistanceMap(mask).shape == (2, 2)
    assert qel.GaussianFilter2D(mask).dtype == np.uint8
    with pytest.raises(qel.PropertyError, match="no array of bool"):
        qel.CopyImage(mask, out=mask)


def test_plain_arrays_are_taken_for_what_an_algorithm_asks_for():
    image = np.random.default_rng(0).integers(0, 255, (20, 20)).astype(np.uint8)
    mask = qel.Threshold(image, 100, 255)
    assert type(mask) is np.ndarray
    assert qel.Labeling(mask).max() > 0
    assert qel.EuclideanDistanceMap(mask).max() > 0
    assert qel.Reconstruction2D(mask, mask).tolist() == mask.tolist()
    # An image that says what it is, is no other.
    with pytest.raises(qel.RuleException) as caught:
        qel.EuclideanDistanceMap(qel.Image(mask, interpretation="value"))
    assert "interpretation='binary'" in caught.value.remedy
    assert qel.EuclideanDistanceMap(qel.Image(mask, interpretation="binary")).array.max() > 0


def test_images_carry_calibration_through_a_run():
    array = np.zeros((2, 3, 4), np.uint8)
    image = qel.Image(array, spacing=(2.5, 0.5, 0.25), origin=(1, 2, 3), unit="mm", time_unit="s")
    assert image.array is array and image.spacing == (2.5, 0.5, 0.25) and image.interpretation is None
    result = qel.Threshold(image, 0, 1)
    assert type(result) is qel.Image and result.spacing == image.spacing and result.origin == (1, 2, 3)
    assert result.interpretation == "binary" and result.array.all()
    out = qel.Image(np.zeros_like(array))
    assert qel.Threshold(image, 0, 1, out=out) is out
    assert out.spacing == image.spacing and out.interpretation == "binary"
    assert type(qel.Threshold(array, 0, 1)) is np.ndarray
    assert type(qel.ArithmeticImageProcessing(array, image)) is qel.Image
    # The order is that of the axes: columns last, in the library first.
    algorithm = qel.create("EuclideanDistanceMap")
    algorithm.input = qel.Image(np.pad(np.ones((1, 1), np.uint8), 1), spacing=(5, 3), interpretation="binary")
    assert algorithm.run().array[1, 1] > 0


def test_in_place_the_calibration_is_that_of_the_input():
    array = np.zeros((3, 5), np.uint8)
    image = qel.Image(array, spacing=(3, 2), interpretation="value")
    out = qel.Image(array)
    assert qel.MedianFilter2D(image, out=out) is out and out.spacing == (3, 2)
    algorithm = qel.create("MedianFilter2D")
    algorithm.output = array
    algorithm.input = image
    algorithm.run()
    image.spacing = 7
    algorithm.output = fresh = qel.Image(np.empty_like(array))
    algorithm.run()
    assert fresh.spacing == (7, 7)  # as it is when the run begins
    algorithm = qel.create("NonLocalMeanFilter2D")
    algorithm.input = image
    algorithm.run()
    image.interpretation = "label"
    with pytest.raises(qel.RuleException, match="QEL_LABEL"):
        algorithm.run()


def test_image_checks_what_it_is_given():
    array = np.zeros((3, 4))
    assert qel.Image(array, spacing=2).spacing == (2.0, 2.0)
    assert qel.Image(array, spacing=(3,)).spacing == (1.0, 3.0)
    with pytest.raises(ValueError, match="3 numbers, but the array has 2 axes"):
        qel.Image(array, spacing=(1, 2, 3))
    with pytest.raises(ValueError, match="no interpretation 'mask'"):
        qel.Image(array, interpretation="mask")
    assert "3 x 4 float64" in repr(qel.Image(array, unit="um"))
    assert np.asarray(qel.Image(array)) is array
    assert np.array(qel.Image(array)) is not array
    assert np.asarray(qel.Image(array), dtype="uint8").dtype == np.uint8


def test_nothing_outlives_its_memory():
    image = np.ones((4, 4), np.uint8)
    base = weakref.ref(image)
    algorithm = qel.create("CopyImage")
    algorithm.input = image[1:, ::2]
    del image
    gc.collect()
    assert base() is not None and algorithm.run().sum() == 6
    result = algorithm.output
    del algorithm
    gc.collect()
    assert base() is None and result.sum() == 6


def test_holds_no_reference_after_a_call():
    image, out = np.ones((4, 4), np.uint8), np.empty((4, 4), np.uint8)
    wrapped = qel.Image(image)
    counts = [sys.getrefcount(each) for each in (image, out, wrapped)]
    for _ in range(3):
        qel.BoxFilter2D(image, out=out)
        qel.BoxFilter2D(wrapped, out=out)
        with pytest.raises(qel.RuleException):
            qel.BoxFilter2D(image, out=np.empty((2, 2), np.uint8))
        with pytest.raises(qel.PropertyError):
            qel.BoxFilter2D(image, out=out, boxSize="wrong")
    gc.collect()
    assert [sys.getrefcount(each) for each in (image, out, wrapped)] == counts


def test_takes_no_memory_but_that_of_the_result():
    # The first run of a class tries its rules, with wider types.
    code = ("import sys; sys.path.insert(0, sys.argv[1])\nimport resource, numpy as np, quelide as qel\n"
            "image = np.zeros((4096, 4096), np.uint8)\nout = np.zeros_like(image)\n"
            "limit = int(open('/proc/self/statm').read().split()[0]) * 4096 + (96 << 20)\n"
            "resource.setrlimit(resource.RLIMIT_AS, (limit, limit))\nqel.Threshold(image, 0, 1, out=out, threads=1)\n"
            "assert out.all()")
    subprocess.run([sys.executable, "-c", code, str(pathlib.Path(qel.__file__).parents[1])], check=True)

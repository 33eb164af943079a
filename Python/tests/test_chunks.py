"""Parts of an image give the parts of the result, bit for bit: in chunks of Dask, and block by block."""
import os
import pathlib

import hypothesis
import numpy as np
import pytest
from hypothesis import strategies as st

import quelide as qel
from quelide import _locality, _registry
from support import NEEDED, image_names, same, small_image

dask = pytest.importorskip("dask")
da = pytest.importorskip("dask.array")

LOCAL = sorted(set(_locality.LOCAL) & set(_registry.algorithms))
ANGLES = ("thetaAngle", "phiAngle", "orientationAngle")
# What makes a result depend on more of the image than defaults do.
OTHERS = {
    "BoxFilter2D": lambda draw: {"boxSize": tuple(draw(st.integers(1, 12)) for _ in range(2))},
    "BoxFilter3D": lambda draw: {"boxSize": tuple(draw(st.integers(1, 12)) for _ in range(3))},
    "FiniteImpulseResponseFilter2D": lambda draw: {"kernel2D": [(draw(st.integers(-4, 4)), draw(st.integers(-4, 4)), 0.3)
                                                                for _ in range(5)]},
    "FiniteImpulseResponseFilter3D": lambda draw: {"kernel3D": [(*(draw(st.integers(-4, 4)) for _ in range(3)), 0.3)
                                                                for _ in range(5)]},
    "GaussianFilter3D": lambda draw: {"sigmaX": draw(st.floats(0.5, 3)), "accurate": draw(st.booleans())},
    "MedianFilter2D": lambda draw: {"neighborhoodSize": draw(st.integers(1, 5)),
                                    "neighborhoodShape": draw(st.sampled_from(("QEL_SQUARE", "QEL_DISK")))},
    "NonLocalMeanFilter2D": lambda draw: {"patchSize": draw(st.integers(0, 4)), "searchWindowSize": draw(st.integers(1, 4)),
                                          "similarity": 20.0},
}


@st.composite
def chunked(draw, name, dtypes):
    dtype = draw(st.sampled_from(dtypes))
    shape = tuple(draw(st.integers(1, side)) for side in (15, 40, 45))
    images = {key: small_image(name, dtype, shape, seed=draw(st.integers(0, 99))) for key in image_names(name)}
    named = dict(NEEDED.get(name, {}))
    if name in OTHERS:
        named.update(OTHERS[name](draw))
    for each in _registry.algorithms[name]["properties"]:
        if each["name"] in ANGLES:
            named[each["name"]] = draw(st.floats(-200, 200))
        if each["name"] == "elementSize":
            named[each["name"]] = draw(st.integers(1, 8))
    chunks = []
    for side in shape:
        cuts = sorted({draw(st.integers(1, side)) for _ in range(draw(st.integers(0, 3)))} | {0, side})
        chunks.append(tuple(b - a for a, b in zip(cuts, cuts[1:])))
    return images, named, tuple(chunks)


def types_of(name):
    """Those of a narrow integer, and of real numbers where the algorithm takes them: sums of these depend on their order."""
    try:
        getattr(qel, name)(**{key: small_image(name, "float64") for key in image_names(name)}, **NEEDED.get(name, {}))
        return ("uint8", "int16", "float64")
    except qel.RuleException:
        return ("uint8",)


def test_the_table_knows_every_algorithm_once():
    lists = [set(_locality.LOCAL), set(_locality.REDUCTIONS), set(_locality.WHOLE)]
    assert len(set.union(*lists)) == sum(map(len, lists))
    assert not set(_registry.algorithms) - set.union(*lists)
    assert qel.dask.kind("Threshold") == "local" and qel.dask.kind("IntensityExtrema") == "reduction"
    assert qel.dask.kind("Labeling") == "whole"


@pytest.mark.parametrize("name", LOCAL)
def test_chunks_give_the_whole(name):
    dtypes = types_of(name)

    @hypothesis.settings(max_examples=max(4, hypothesis.settings.default.max_examples // 10))
    @hypothesis.given(chunked(name, dtypes))
    def check(case):
        images, named, chunks = case
        whole = getattr(qel, name)(**images, **named)
        lazy = qel.dask.map(name, **{key: da.from_array(image, chunks) for key, image in images.items()}, **named)
        assert isinstance(lazy, da.Array) and lazy.shape == whole.shape and lazy.dtype == whole.dtype
        assert same(lazy.compute(scheduler="sync"), whole)
        # A budget that makes many small blocks.
        assert same(qel.blockwise(name, **images, **named, memory=40 * 20 * 20 * 20), whole)

    check()


def test_blocks_of_non_local_means_begin_on_the_grid_of_their_sums():
    # Beyond the 256 x 64 voxels that the filter takes at once.
    image = np.random.default_rng(0).random((150, 600)) * 200
    named = dict(similarity=20.0, patchSize=2, searchWindowSize=3)
    array = da.from_array(image, ((40, 33, 77), (101, 333, 166)))
    assert same(qel.dask.map("NonLocalMeanFilter2D", array, **named).compute(scheduler="sync"),
                qel.NonLocalMeanFilter2D(image, **named))


@hypothesis.given(chunked("IntensityStatistics", ("uint8", "int16", "uint32", "float32", "float64")))
def test_reductions_join_exactly(case):
    images, _, chunks = case
    image = images["input"]
    array = da.from_array(image, chunks)
    for name in _locality.REDUCTIONS:
        lazy = qel.dask.map(name, array)
        result, whole = lazy.compute(scheduler="sync"), getattr(qel, name)(image)
        assert type(result) is type(whole)
        assert result.outputMinimum == whole.outputMinimum and result.outputMaximum == whole.outputMaximum
        assert type(result.outputMinimum) is type(whole.outputMinimum)
        if image.dtype.kind != "f":
            assert result == whole or image.size == 1 or np.isnan(whole.outputStandardDeviation)
        elif name == "IntensityStatistics":
            for a, b in zip(result, whole):
                assert a == pytest.approx(b, rel=1e-12, abs=1e-4)


@pytest.mark.parametrize("name", sorted(_locality.WHOLE))
def test_what_needs_the_whole_image_is_refused(name):
    if name not in _registry.algorithms:
        pytest.skip("not there")
    for run in (qel.dask.map, qel.blockwise):
        with pytest.raises(qel.PropertyError, match="does not run on parts of an image: it|does not run on parts") as caught:
            run(name, da.zeros((4, 4)))
        assert _locality.WHOLE[name] in str(caught.value) and caught.value.algorithm == name


def test_mistakes_are_found_before_anything_is_computed():
    array = da.zeros((10, 10), chunks=5)
    with pytest.raises(qel.PropertyError, match="no property"):
        qel.dask.map("MedianFilter2D", array, neighbourhoodSize=2)
    with pytest.raises(qel.PropertyError, match="there is no algorithm"):
        qel.dask.map("MedianFilter4D", array)
    with pytest.raises(qel.RuleException):
        qel.dask.map("ApplyMorphologicalLut2D", array, NEEDED["ApplyMorphologicalLut2D"]["morphologicalLut"])
    with pytest.raises(TypeError, match="needs an image"):
        qel.dask.map("MedianFilter2D")
    with pytest.raises(TypeError, match="takes no out"):
        qel.dask.map("MedianFilter2D", array, out=1)
    with pytest.raises(ValueError, match="same shape"):
        qel.dask.map("ArithmeticImageProcessing", array, array[:5])
    with pytest.raises(qel.PropertyError) as caught:
        qel.MedianFilter2D(array)
    assert "quelide.dask.map" in caught.value.remedy
    image = np.zeros((10, 10))
    with pytest.raises(qel.PropertyError, match="overlaps"):
        qel.blockwise("MedianFilter2D", image, out=image)
    with pytest.raises(qel.PropertyError, match="voxels of type uint8"):
        qel.blockwise("MedianFilter2D", image, out=np.zeros((10, 10), np.uint8))


def test_blockwise_carries_calibration_and_shows_progress():
    image = qel.Image(np.random.default_rng(0).random((30, 20, 10)), spacing=(3, 2, 1), origin=(7, 0, 0))
    seen = []
    result = qel.blockwise("GaussianFilter3D", image, memory=100_000, progress=seen.append)
    whole = qel.GaussianFilter3D(image)
    assert same(result.array, whole.array) and result.spacing == (3, 2, 1) and result.origin == (7, 0, 0)
    assert seen == sorted(seen) and len(seen) > 2 and seen[-1] == 100
    out = np.empty((30, 20, 10))
    assert qel.blockwise("GaussianFilter3D", image.array, out=out, memory=100_000) is out and same(out, whole.array)
    assert qel.blockwise("IntensityExtrema", image) == qel.IntensityExtrema(image)


def test_runs_on_a_cluster_of_processes():
    distributed = pytest.importorskip("distributed")
    image = np.random.default_rng(0).integers(0, 1000, (24, 60, 60)).astype(np.uint16)
    array = da.from_array(image, chunks=(10, 25, 40))
    package = str(pathlib.Path(qel.__file__).parents[0].parent)
    os.environ["PYTHONPATH"] = os.pathsep.join([package, os.environ.get("PYTHONPATH", "")])
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            assert same(qel.dask.map("MedianFilter3D", array, neighborhoodSize=2).compute(), qel.MedianFilter3D(image, 2))
            assert qel.dask.map("IntensityStatistics", array).compute() == qel.IntensityStatistics(image)
            pids = client.run(lambda: __import__("os").getpid())
            assert len(set(pids.values())) == 2 and os.getpid() not in pids.values()
            # An error of a worker is the error that it would be here.
            future = client.submit(lambda: qel.Threshold(np.zeros((2, 2)), level="gpu"))
            with pytest.raises(qel.UnexpectedError) as caught:
                future.result()
            assert caught.value.algorithm == "Threshold" and caught.value.remedy

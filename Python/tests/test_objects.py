"""Models, look-up tables and other objects behind properties."""
import gc
import pickle

import numpy as np
import pytest

import quelide as qel
from support import LUT, POINTS, file_of, same, trained_model


def test_tables_come_from_files_arrays_and_neighbourhoods(tmp_path):
    image = (np.random.default_rng(0).random((20, 30)) < 0.4).astype(np.uint8)
    lonely = np.zeros(512, np.uint8)
    lonely[1] = 1  # a voxel without neighbours
    (tmp_path / "lonely.lut").write_bytes(bytes(4) + lonely.tobytes())
    expected = qel.ApplyMorphologicalLut2D(image, lonely)
    padded = np.pad(image, 1)
    neighbours = sum(np.roll(padded, (y, x), (0, 1)) for y in (-1, 0, 1) for x in (-1, 0, 1))[1:-1, 1:-1] - image
    inside = (slice(1, -1),) * 2
    assert same(np.ascontiguousarray(expected[inside]),
                np.ascontiguousarray(((image == 1) & (neighbours == 0)).astype(np.uint8)[inside]))
    path = tmp_path / "lonely.lut"
    kernel = [[0, 0, 0], [0, 1, 0], [0, 0, 0]]
    for table in (path, str(path), f"@path:{path}", lonely.tolist(), lonely.astype(bool), kernel, [kernel, kernel]):
        assert same(qel.ApplyMorphologicalLut2D(image, table), expected), table
    # Which neighbour is which: a voxel with one in the row below it, and whatever else.
    below = [[2, 2, 2], [2, 1, 2], [2, 1, 2]]
    assert same(qel.ApplyMorphologicalLut2D(image, below)[:-1], image[:-1] & image[1:])
    right = np.full((3, 3, 3), 2)
    right[1, 1, 1:] = 1
    assert same(np.ascontiguousarray(qel.ApplyMorphologicalLut3D(image, right)[:, :-1]),
                np.ascontiguousarray(image[:, :-1] & image[:, 1:]))
    for wrong, text in (([1, 2, 3], "it takes a path of a table"), (3.5, "it takes a path"), (tmp_path / "none", "none")):
        with pytest.raises(qel.PropertyError, match=text):
            qel.ApplyMorphologicalLut2D(image, wrong)


def test_a_table_lives_as_long_as_its_algorithm():
    algorithm = qel.create("ApplyMorphologicalLut2D")
    algorithm.input = image = np.eye(9, dtype=np.uint8)
    algorithm.morphologicalLut = LUT.copy()
    gc.collect()
    assert same(algorithm.run(), image)


def test_models_are_made_written_and_read(tmp_path):
    model = qel.TextureClassificationCreate(textureFeaturesGroup=["HISTO_Mean", "HISTO_Stddev"], radius=2)
    assert type(model) is qel.TextureClassificationModel
    with pytest.raises(qel.InvalidCall):
        model.report  # it was not trained
    model.write(tmp_path / "model.qelo")
    with pytest.raises(qel.SerializationException, match="already exists"):
        model.write(tmp_path / "model.qelo")
    model.write(tmp_path / "model.qelo", overwrite=True)
    read = qel.ReadTextureClassificationModel(tmp_path / "model.qelo")
    again = qel.TextureClassificationModel(tmp_path / "model.qelo")
    for other in (read, again):
        other.write(tmp_path / "other.qelo", overwrite=True)
        assert (tmp_path / "other.qelo").read_bytes() == (tmp_path / "model.qelo").read_bytes()
    with pytest.raises(qel.SerializationException):
        qel.TextureClassificationModel(tmp_path / "none.qelo")
    algorithm = qel.create("TextureClassificationCreate")
    algorithm.textureFeaturesGroup = ("HISTO_Mean", 53)
    assert len(algorithm.textureFeaturesGroup) == 2 and algorithm.textureFeaturesGroup[0] == "HISTO_Mean"
    first = algorithm.run()
    assert algorithm.classificationModel is first and algorithm.run() is not first
    with pytest.raises(qel.PropertyError, match="none of its labels") as caught:
        algorithm.textureFeaturesGroup = ["HISTO_Meen"]
    assert "'HISTO_Mean'" in caught.value.remedy


@pytest.mark.parametrize("kind, parameters", [("TRANSLATION", 2), ("RIGID", 3), ("AFFINE", 6), ("PROJECTIVE", 8),
                                              ("POLYNOMIAL_2", 12), ("POLYNOMIAL_3", 20)])
def test_transformations_map_points(kind, parameters):
    model = POINTS[:, :2]
    data = model + (5, -3)
    found = qel.LandmarkRegistration2D(data, model, kind)
    assert type(found) is qel.Transformation2D and found.dimensions == 2
    assert len(found.parameters) == parameters
    assert found(model) == pytest.approx(data, abs=1e-5)
    assert found(model[0].tolist()) == pytest.approx(data[0], abs=1e-5)
    if kind in ("TRANSLATION", "RIGID", "AFFINE"):
        assert found.matrix == pytest.approx(np.array([[1, 0, 5], [0, 1, -3], [0, 0, 1]]), abs=1e-6)
    else:
        assert found.matrix is None
    assert found.kind.endswith("2D") and found.kind in repr(found)
    with pytest.raises(ValueError, match="n x 2"):
        found(POINTS)


def test_transformations_of_space_are_matrices():
    turn = np.array([[0, -1, 0], [1, 0, 0], [0, 0, 1.0]])
    data = POINTS @ turn.T + (1, 2, 3)
    found = qel.LandmarkRegistration3D(list(map(tuple, data)), POINTS.tolist(), "RIGID")
    assert found.kind == "RigidTransformation3D" and found.parameters == ()
    assert found.matrix[:3, :3] == pytest.approx(turn, abs=1e-9) and found.matrix[:3, 3] == pytest.approx((1, 2, 3), abs=1e-6)
    assert found(POINTS) == pytest.approx(data, abs=1e-6)
    algorithm = qel.create("LandmarkRegistration3D")
    algorithm.data, algorithm.model = POINTS[1:], POINTS[1:]
    first = algorithm.run()
    algorithm.data = POINTS[1:] + 1
    second = algorithm.run()
    del algorithm
    gc.collect()
    assert first.matrix[0, 3] == pytest.approx(0) and second.matrix[0, 3] == pytest.approx(1)
    with pytest.raises(qel.RuntimeError):
        qel.LandmarkRegistration3D(POINTS[:0], POINTS[:0])
    with pytest.raises(qel.PropertyError, match="n x 3"):
        qel.LandmarkRegistration3D(7, POINTS)
    with pytest.raises(qel.PropertyError, match="3 numbers, and not 2"):
        qel.LandmarkRegistration3D(POINTS[:, :2], POINTS)


def test_models_are_trained_and_applied(tmp_path):
    model = trained_model()
    assert "HISTO_Mean" in model.report
    image = np.zeros((30, 40), np.uint8)
    image[:, 20:] = 100
    image += (np.indices(image.shape).sum(0) % 3).astype(np.uint8)
    found = qel.TextureClassificationApply(image, model, 10.0)
    assert found.dtype == np.uint16
    assert (found[:, :17] == 1).all() and (found[:, 24:] == 2).all()
    model.write(tmp_path / "model.qelo")
    assert same(qel.TextureClassificationApply(image, tmp_path / "model.qelo", 10.0), found)
    loaded = qel.load(tmp_path / "model.qelo")
    assert type(loaded) is qel.TextureClassificationModel and file_of(loaded) == file_of(model)
    algorithm = qel.create("TextureClassificationApply")
    algorithm.classificationModel = model
    assert algorithm.classificationModel is model
    with pytest.raises(qel.PropertyError, match="a model or the path of one"):
        algorithm.classificationModel = 3


def test_line_sets_are_points_and_runs(tmp_path):
    volume = np.zeros((9, 20, 30), np.uint8)
    volume[3:6, 8:12, 3:27] = 1
    result = qel.CenterLine3D(qel.Image(volume, spacing=(3, 2, 1), origin=(100, 0, 0), interpretation="binary"),
                              autoMode=False, numberOfBranches=1)
    lines = result.outputLineSet
    assert type(result.outputImage) is qel.Image and type(lines) is qel.LineSet3D
    assert len(lines) == 1 and len(lines.lines) == 1
    points = lines.lines[0]
    assert points.shape[1] == 3 and len(points) > 15
    assert 2 <= points[:, 0].min() and points[:, 0].max() <= 27  # columns
    assert (points[:, 1] >= 16).all() and (points[:, 1] <= 22).all()  # rows of 2
    assert (points[:, 2] >= 109).all() and (points[:, 2] <= 115).all()  # plans of 3, from 100 on
    assert lines.indices[-1] == -1 and lines.indices[:-1].max() < len(lines.points)
    lines.write(tmp_path / "lines.qelo")
    assert qel.load(tmp_path / "lines.qelo") == lines == qel.LineSet3D(tmp_path / "lines.qelo")
    assert pickle.loads(pickle.dumps(lines)) == lines
    lines.export(tmp_path / "lines.txt")
    assert (tmp_path / "lines.txt").read_text().startswith("# ")
    made = qel.LineSet3D([(0, 0, 0), (1, 0, 0), (1, 1, 0)], [0, 1, -1, 1, 2, -1])
    assert [line.tolist() for line in made.lines] == [[[0, 0, 0], [1, 0, 0]], [[1, 0, 0], [1, 1, 0]]]
    assert made != lines and made == qel.LineSet3D(made.points, made.indices) and "2 lines of 3 points" in repr(made)
    with pytest.raises(ValueError, match="from -1 to 2"):
        qel.LineSet3D(made.points, [0, 3])
    with pytest.raises(qel.SerializationException):
        qel.load(tmp_path / "none.qelo")


def test_labels_in_plain_arrays_stay_labels():
    volume = np.zeros((7, 24, 30), np.uint32)
    volume[2:5, 2:6, 2:28], volume[2:5, 14:18, 2:28] = 5, 9
    one = dict(autoMode=False, numberOfBranches=1)
    plain = qel.CenterLine3D(volume, **one)
    assert len(plain.outputLineSet) == 2 and set(np.unique(plain.outputImage)) == {0, 5, 9}
    told = qel.CenterLine3D(qel.Image(volume, interpretation="label"), **one)
    assert told.outputLineSet == plain.outputLineSet
    assert len(qel.CenterLine3D(volume > 0, **one).outputLineSet) == 1


def test_results_that_are_points_are_arrays():
    directions = qel.SphereSampling(50)
    assert directions.ndim == 2 and directions.shape[1] == 2 and len(directions) > 20 and directions.dtype == np.float64

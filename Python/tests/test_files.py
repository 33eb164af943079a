"""Raw image files as arrays: mapped, calibrated, and never in memory as a whole."""
import gc
import pickle

import numpy as np
import pytest

import quelide as qel
from support import TYPES, same


@pytest.mark.parametrize("dtype", TYPES)
def test_reads_and_writes_what_the_library_does(dtype, tmp_path):
    five = np.random.default_rng(0).integers(0, 100, (2, 3, 4, 5, 6)).astype(dtype)
    image = qel.Image(five, spacing=(1, 2, 3, 4, 5), unit="mm", time_unit="s", interpretation="label")
    qel.SaveQelRawImage(image, tmp_path / "saved.qeli")
    opened = qel.open(tmp_path / "saved.qeli")
    assert same(np.ascontiguousarray(opened.array), five)
    assert opened.spacing == image.spacing and opened.unit == "mm" and opened.time_unit == "s"
    assert opened.interpretation == "label" and not opened.array.flags.writeable
    made = qel.open(tmp_path / "made.qeli", "w+", like=opened)
    made.array[...] = opened.array
    made.flush()
    assert (tmp_path / "made.qeli").read_bytes() == (tmp_path / "saved.qeli").read_bytes()
    assert same(qel.LoadQelRawImage(tmp_path / "made.qeli"), five)


def test_has_as_many_axes_as_it_needs(tmp_path):
    for shape in ((4, 5), (3, 4, 5), (2, 1, 4, 5), (1, 7)):
        qel.SaveQelRawImage(np.zeros(shape, np.uint8), tmp_path / "a.qeli", True)
        assert qel.open(tmp_path / "a.qeli").shape == shape
    qel.SaveQelRawImage(np.zeros((1, 4, 5), np.uint8), tmp_path / "a.qeli", True)
    assert qel.open(tmp_path / "a.qeli").shape == (4, 5)


def test_algorithms_run_on_files_as_on_arrays(tmp_path):
    array = np.random.default_rng(0).integers(0, 1000, (5, 40, 30)).astype(np.uint16)
    qel.SaveQelRawImage(qel.Image(array, spacing=(3, 2, 1), unit="um"), tmp_path / "in.qeli")
    image = qel.open(tmp_path / "in.qeli")
    out = qel.open(tmp_path / "out.qeli", "w+", like=image)
    assert qel.MedianFilter3D(image, 1, out=out) is out
    expected = qel.MedianFilter3D(array, 1)
    assert same(np.ascontiguousarray(out.array), expected) and out.spacing == (3.0, 2.0, 1.0)
    mask = qel.open(tmp_path / "mask.qeli", "w+", like=image, dtype="uint8")
    qel.Threshold(out, 0, 500, out=mask)
    assert mask.interpretation == "binary"
    del out, mask
    gc.collect()
    # What the run gave to the image is in the file.
    again = qel.open(tmp_path / "mask.qeli")
    assert again.interpretation == "binary" and again.spacing == (3.0, 2.0, 1.0)
    assert same(np.ascontiguousarray(again.array), qel.Threshold(expected, 0, 500))
    assert qel.IntensityStatistics(again) == qel.IntensityStatistics(np.ascontiguousarray(again.array))
    writable = qel.open(tmp_path / "in.qeli", "r+")
    qel.MedianFilter3D(writable, 1, out=writable)
    assert same(np.ascontiguousarray(qel.open(tmp_path / "in.qeli").array), expected)
    with pytest.raises(qel.PropertyError, match="read-only"):
        qel.MedianFilter3D(image, 1, out=image)


def test_an_array_keeps_its_file(tmp_path):
    qel.SaveQelRawImage(np.arange(12, dtype=np.uint8).reshape(3, 4), tmp_path / "a.qeli")
    part = qel.open(tmp_path / "a.qeli").array[1:, ::2]
    gc.collect()
    (tmp_path / "a.qeli").unlink()
    assert part.tolist() == [[4, 6], [8, 10]] and qel.IntensityExtrema(part).outputMaximum == 10


def test_another_process_opens_the_file_for_itself(tmp_path):
    qel.SaveQelRawImage(np.arange(12, dtype=np.uint8).reshape(3, 4), tmp_path / "a.qeli")
    image = qel.open(tmp_path / "a.qeli")
    packed = pickle.dumps(image)
    assert len(packed) < 1000
    assert same(np.ascontiguousarray(pickle.loads(packed).array), np.ascontiguousarray(image.array))


def test_refuses_what_is_no_such_file(tmp_path):
    with pytest.raises(FileNotFoundError):
        qel.open(tmp_path / "none.qeli")
    path = tmp_path / "wrong.qeli"
    path.write_bytes(b"QELO" + bytes(400))
    with pytest.raises(ValueError, match="no raw image file"):
        qel.open(path)
    qel.SaveQelRawImage(np.zeros((3, 4), np.uint8), path, True)
    whole = path.read_bytes()
    path.write_bytes(whole[:-1])
    with pytest.raises(ValueError, match="ends before its last voxel"):
        qel.open(path)
    path.write_bytes(whole[:100])
    with pytest.raises(ValueError, match="ends within its header"):
        qel.open(path)
    path.write_bytes(whole[:4] + b"\2" + whole[5:])
    with pytest.raises(ValueError, match="version 2"):
        qel.open(path)
    with pytest.raises(ValueError, match="no mode"):
        qel.open(path, "w")
    with pytest.raises(ValueError, match="for new files"):
        qel.open(path, shape=(1, 2))
    with pytest.raises(ValueError, match="no raw image file holds"):
        qel.open(path, "w+", shape=(3, 4), dtype="complex64")
    with pytest.raises(OSError):
        qel.open(tmp_path / "no" / "folder.qeli", "w+", shape=(3, 4), dtype="uint8")

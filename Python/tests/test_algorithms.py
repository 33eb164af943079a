"""Every algorithm is there, by introspection of the registry, and tells what it is."""
import ast
import inspect
import json
import os
import pathlib
import pickle
import pydoc
import subprocess
import sys

import numpy as np
import pytest

import quelide as qel
from quelide import _registry
from support import FILES, NEEDED, images_for, same

ALL = sorted(_registry.algorithms)
PACKAGE = pathlib.Path(qel.__file__).parent


def test_has_the_algorithms_that_the_library_has():
    host = os.environ.get("QUELIDE")
    if not host:
        pytest.skip("the command-line host is not built")
    listed = json.loads(subprocess.check_output([host, "list", "--json"]))
    assert ALL == sorted(entry["name"] for entry in listed)
    assert qel.algorithms() == ALL
    assert set(ALL) <= set(dir(qel)) and set(ALL) <= set(qel.__all__)


@pytest.mark.parametrize("name", [name for name in ALL if name not in FILES])
def test_runs_each_algorithm_by_introspection(name):
    algorithm = qel.create(name)
    entry = _registry.algorithms[name]
    named = {**images_for(name), **NEEDED.get(name, {})}
    result = getattr(qel, name)(**named)
    for key, value in named.items():
        setattr(algorithm, key, value)
    assert same(algorithm.run(), result)
    outputs = [each for each in entry["properties"] if each["isOutput"]]
    if not outputs:  # what it is for is an input, too
        assert result is None
        return
    results = result if len(outputs) > 1 else (result,)
    assert len(results) == len(outputs)
    for each, value in zip(outputs, results):
        assert value is not None
        if each["isImage"]:
            assert type(value) is np.ndarray and value.size > 0
            assert same(getattr(algorithm, each["name"]), value)
        if len(outputs) > 1:
            assert getattr(result, each["name"]) is value
            assert type(result).__name__ == name + "Result"


@pytest.mark.parametrize("name", ALL)
def test_tells_properties_defaults_labels_and_errors(name):
    function = getattr(qel, name)
    entry = _registry.algorithms[name]
    parameters = inspect.signature(function).parameters
    listed = [each["name"] for each in entry["properties"] if each["isImage"] or not each["isOutput"]]
    assert list(parameters) == listed + list(_registry.OPTIONS)
    for each in entry["properties"]:
        if not each["isImage"] and not each["isOutput"]:
            assert parameters[each["name"]].default == each["default"]
    text = pydoc.render_doc(function, renderer=pydoc.plaintext)
    assert name + "(" in text
    for each in entry["properties"]:
        assert each["name"] in text
        for label in each["labels"]:
            assert label in text
    assert "RuleException" in text and "PropertyError" in text
    # What the header says of the class, and not only a list.
    assert len(function.__doc__.split("\nProperties\n")[0]) > 60


def test_takes_properties_in_declaration_order_and_by_name():
    image = np.arange(64, dtype=np.uint8).reshape(8, 8)
    expected = ((image >= 10) & (image <= 20)).astype(np.uint8)
    out = np.empty_like(expected)
    assert same(qel.Threshold(image, 10, 20), expected)
    assert same(qel.Threshold(input=image, highLevel=20, lowLevel=10), expected)
    assert qel.Threshold(image, 10, 20, out) is out and same(out, expected)
    assert qel.Threshold(image, 10, 20, output=out) is out


def test_takes_what_the_property_is():
    image = np.random.default_rng(1).integers(0, 255, (9, 14)).astype(np.uint8)
    box = qel.BoxFilter2D(image, boxSize=(5, 5))
    for size in ([5, 5], np.array([5, 5]), np.array([5, 5], np.uint16), 5, "@v2:5_5", (np.int64(5), 5), iter((5, 5))):
        assert same(qel.BoxFilter2D(image, boxSize=size), box), size
    assert not same(qel.BoxFilter2D(image, boxSize=(5, 1)), box)
    by_label = qel.ThresholdByCriterion(image, "GREATER_THAN", 100)
    assert same(by_label, (image > 100).astype(np.uint8))
    assert same(qel.ThresholdByCriterion(image, 4, 100.0), by_label)
    assert same(qel.ThresholdByCriterion(image, np.int8(4), np.uint8(100)), by_label)
    assert same(qel.BoxFilter2D(image, 5, np.bool_(True)), box)
    weights = np.array([[0, 0, 0], [0, 0, 1], [0, 0, 0]])
    shifted = np.roll(image, -1, 1)[:, :-1]
    assert same(qel.FiniteImpulseResponseFilter2D(image, weights)[:, :-1].astype(np.uint8), shifted)
    for kernel in (weights.tolist(), [(1, 0, 1)], "@kernel2D:1_0_1"):
        assert same(qel.FiniteImpulseResponseFilter2D(image, kernel)[:, :-1].astype(np.uint8), shifted)
    lut = np.array([0.0, 128.0, 255.0])
    assert same(qel.Anamorphosis(image, step=127.5, lut=lut), qel.Anamorphosis(image, step=127.5, lut=lut.tolist()))


def test_has_the_object_form():
    image = np.arange(64, dtype=np.int16).reshape(8, 8)
    algorithm = qel.create("Threshold")
    assert isinstance(algorithm, qel.Algorithm)
    algorithm.input = image
    algorithm.lowLevel = 5
    algorithm.highLevel = 9
    assert algorithm.input is image and algorithm.lowLevel == 5.0 and algorithm.output is None
    first = algorithm.run()
    assert algorithm.output is first and first.sum() == 5
    algorithm.highLevel = 10
    second = algorithm.run()
    assert second.sum() == 6 and first.sum() == 5  # a run leaves the results of earlier ones alone
    out = np.zeros((8, 8), np.uint8)
    algorithm.output = out
    assert algorithm.run() is out and algorithm.output is out
    assert {"input", "lowLevel", "output", "run", "cancel"} <= set(dir(algorithm))
    assert "lowLevel=5.0" in repr(algorithm)
    assert algorithm.progress == 100 and not algorithm.running and not algorithm.cancel()
    box = qel.create("BoxFilter3D")
    box.boxSize = (5, 7, 3)
    assert box.boxSize == (5, 7, 3) and box.reach[:3] == ((2, 2), (3, 3), (1, 1))


def test_gives_names_to_several_results_and_pickles_them():
    result = qel.IntensityStatistics(np.array([[1, 2], [3, 6]], np.uint8))
    assert result.outputMinimum == 1 and result.outputMaximum == 6 and result.outputMean == 3.0
    assert isinstance(result.outputMinimum, int) and isinstance(result.outputMean, float)
    assert pickle.loads(pickle.dumps(result)) == result
    assert pickle.loads(pickle.dumps(qel.Threshold)) is qel.Threshold
    with pytest.raises(AttributeError):
        qel.ThresholdResult


def test_keeps_members_that_are_no_listed_properties():
    image = np.array([[0, 1, 255]], np.uint8)
    assert qel.InvertImage(image, numOfBits=8).tolist() == [[255, 254, 0]]
    assert qel.BitShift(image, shiftCount=1, shiftRight=True).tolist() == [[0, 0, 127]]


@pytest.mark.parametrize("dtype", ("uint8", "uint16", "int64", "float32", "float64"))
def test_new_outputs_have_a_type_that_the_rules_take(dtype):
    image = np.arange(64).reshape(8, 8).astype(dtype)
    assert qel.Threshold(image, 5, 9).dtype == np.uint8
    assert qel.Labeling(image).dtype == np.uint32  # of labels there may be many
    assert qel.CopyImage(image).dtype == image.dtype
    assert qel.Threshold(image, 5, 9, dtype="int16").dtype == np.int16
    assert qel.Labeling(image, dtype=np.uint16).dtype == np.uint16
    with pytest.raises(qel.RuleException, match="output"):
        qel.Threshold(image, 5, 9, dtype="float32")
    with pytest.raises(qel.PropertyError, match="no voxels"):
        qel.Threshold(image, 5, 9, dtype="complex64")


def test_the_stub_knows_every_algorithm_and_its_properties():
    tree = ast.parse((PACKAGE / "__init__.pyi").read_text())
    functions = {node.name: [each.arg for each in node.args.args + node.args.kwonlyargs]
                 for node in tree.body if isinstance(node, ast.FunctionDef)}
    for name in ALL:
        assert functions[name] == list(inspect.signature(getattr(qel, name)).parameters)
    assert (PACKAGE / "py.typed").exists()


def test_import_loads_nothing_that_is_not_needed_and_hides_nothing_of_python():
    code = ("import sys, quelide; late = [m for m in ('dask', 'tqdm', 'difflib', 'scipy', 'matplotlib') if m in sys.modules]; "
            "assert not late, late\nfrom quelide import *\nassert Exception is __builtins__.Exception\n"
            "assert open is __builtins__.open and Threshold")
    subprocess.run([sys.executable, "-c", code], check=True, env={**os.environ, "PYTHONPATH": str(PACKAGE.parent)})

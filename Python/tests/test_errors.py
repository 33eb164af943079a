"""Errors of the library are Python exceptions with its own words, and a note that tells what to do."""
import builtins
import pickle
import traceback

import numpy as np
import pytest

import quelide as qel

IMAGE = np.arange(16, dtype=np.uint8).reshape(4, 4)


def raised(kind, call):
    with pytest.raises(kind) as caught:
        call()
    return caught.value


def test_the_tree_is_that_of_the_library():
    for name in ("BadIndex", "UnexpectedError", "FileSystemError", "MemoryError", "RuntimeError", "InvalidCall"):
        assert issubclass(getattr(qel, name), qel.ProcessingException)
    for name in ("RuleException", "SerializationException", "ProcessingException"):
        assert issubclass(getattr(qel, name), qel.Exception)
        assert name == "ProcessingException" or not issubclass(getattr(qel, name), qel.ProcessingException)
    assert issubclass(qel.RuleException, ValueError)
    assert issubclass(qel.MemoryError, builtins.MemoryError) and issubclass(qel.RuntimeError, builtins.RuntimeError)
    assert issubclass(qel.BadIndex, IndexError)
    assert not issubclass(qel.Cancelled, qel.Exception)


def test_keeps_the_words_and_tells_algorithm_and_property():
    error = raised(qel.RuleException, lambda: qel.Threshold(IMAGE, 1, 2, out=np.zeros((4, 4), np.float32)))
    assert str(error).rstrip() == (
        'Rule exception :\n#1 Error : The parameter "output" supports only data type(s): uint8, uint16, int8, int16. '
        'Current data type is float32. \n#2 From Rule error in property output \n#3 From Threshold')
    assert error.algorithm == "Threshold" and error.property == "output"
    assert [algorithm for _, algorithm in error.levels] == ["", "", "Threshold"]
    assert error.levels[1][0] == "Rule error in property output"


def test_tells_the_remedy_in_a_note():
    error = raised(qel.RuleException, lambda: qel.Reconstruction2D(IMAGE.astype(np.float32), IMAGE))
    assert error.remedy.startswith("float32 is not supported here; convert with astype('")
    assert error.__notes__ == [error.remedy]
    assert error.remedy in "".join(traceback.format_exception(error))
    error = raised(qel.RuleException, lambda: qel.BoxFilter2D())
    assert error.remedy.startswith("give input=")
    error = raised(qel.RuleException, lambda: qel.BoxFilter2D(IMAGE, out=np.zeros((2, 2), np.uint8)))
    assert "shape and type of the result" in error.remedy
    error = raised(qel.RuleException, lambda: qel.ArithmeticValueProcessing(IMAGE, 1000, out=IMAGE))
    assert "without out=" in error.remedy
    error = raised(qel.UnexpectedError, lambda: qel.Threshold(IMAGE, level="avx"))
    assert "level='auto'" in error.remedy and error.algorithm == "Threshold"
    error = raised(qel.RuleException, lambda: qel.ArithmeticImageProcessing(IMAGE, IMAGE[:2]))
    assert "counted from the last" in error.remedy


def test_tells_the_nearest_name():
    error = raised(qel.PropertyError, lambda: qel.BoxFilter2D(IMAGE, boxsize=3))
    assert error.algorithm == "BoxFilter2D" and error.property == "boxsize"
    assert "'boxSize'" in error.remedy and "normalize" in error.remedy
    assert isinstance(error, TypeError)
    assert "'threads'" in raised(qel.PropertyError, lambda: qel.BoxFilter2D(IMAGE, thread=3)).remedy
    algorithm = qel.create("BoxFilter2D")
    assert "'normalize'" in raised(AttributeError, lambda: setattr(algorithm, "normalise", True)).remedy
    assert not hasattr(algorithm, "nothing")
    assert "'BoxFilter2D'" in raised(AttributeError, lambda: qel.BoxFilter2d).__notes__[0]
    assert "'BoxFilter2D'" in raised(qel.PropertyError, lambda: qel.create("boxfilter2D")).__notes__[0]
    error = raised(qel.PropertyError, lambda: qel.ThresholdByCriterion(IMAGE, "GREATER", 1))
    assert "'GREATER_THAN'" in error.remedy and error.property == "criterion"


@pytest.mark.parametrize("call, text", [
    (lambda: qel.BoxFilter2D(IMAGE, boxSize=(1, 2, 3)), "it takes 2 numbers, and not 3"),
    (lambda: qel.BoxFilter2D(IMAGE, boxSize=(1, -2)), "whole number from 0 to 4294967295, and not -2"),
    (lambda: qel.BoxFilter2D(IMAGE, boxSize=2.5), "a whole number, and not a value of type float"),
    (lambda: qel.BoxFilter2D(IMAGE, boxSize={}), "it takes 2 numbers, and not 0"),
    (lambda: qel.BoxFilter2D(IMAGE, boxSize=None), "2 numbers, and not a value of type NoneType"),
    (lambda: qel.BoxFilter2D(IMAGE, boxSize="5x5"), 'the text "5x5" is no value'),
    (lambda: qel.BoxFilter2D(IMAGE, normalize="yes"), 'the text "yes" is no value'),
    (lambda: qel.BoxFilter2D(IMAGE, normalize=2), "True or False, and not 2"),
    (lambda: qel.Threshold(IMAGE, [1]), "it takes a number, and not a value of type list"),
    (lambda: qel.Threshold(IMAGE, lowLevel=None), "it takes a number, and not a value of type NoneType"),
    (lambda: qel.MedianFilter2D(IMAGE, 2 ** 40), "whole number from 0 to"),
    (lambda: qel.ThresholdByCriterion(IMAGE, 77, 1), "the number 77 has no label"),
    (lambda: qel.ThresholdByCriterion(IMAGE, "LESS_THAN", 2 ** 70), "whole number from 0 to 18446744073709551615"),
    (lambda: qel.FiniteImpulseResponseFilter2D(IMAGE, np.ones((2, 3))), "must have odd sides"),
    (lambda: qel.FiniteImpulseResponseFilter2D(IMAGE, [1, 2, 3]), "of 2 dimensions, and not of 1"),
    (lambda: qel.FiniteImpulseResponseFilter2D(IMAGE, [(1, 2)]), "a point is 2 offsets and a weight"),
    (lambda: qel.SaveQelRawImage(IMAGE, 7), "a text or a path"),
    (lambda: qel.Threshold(IMAGE, level="mmx"), 'there is no level "mmx"'),
    (lambda: qel.Threshold(IMAGE, threads=0), "from 1 to 4096"),
    (lambda: qel.IntensityExtrema(IMAGE, out=IMAGE), "there is not one output image but 0"),
    (lambda: setattr(qel.create("IntensityExtrema"), "outputMinimum", 3), "a result, which takes no value"),
])
def test_refuses_values_that_do_not_suit(call, text):
    error = raised(qel.PropertyError, call)
    assert text in str(error) and error.algorithm
    assert isinstance(error, ValueError) and isinstance(error, TypeError)


def test_refuses_too_many_or_double_values():
    with pytest.raises(TypeError, match="4 properties, but 5 values"):
        qel.Threshold(IMAGE, 1, 2, None, 3)
    with pytest.raises(TypeError, match="two values for the property lowLevel"):
        qel.Threshold(IMAGE, 1, lowLevel=2)
    with pytest.raises(TypeError, match="no argument"):
        qel.create("Threshold").run(nothing=1)


def test_errors_can_be_pickled():
    for call in (lambda: qel.Threshold(), lambda: qel.Threshold(IMAGE, "x")):
        error = raised(Exception, call)
        copy = pickle.loads(pickle.dumps(error))
        assert type(copy) is type(error) and str(copy) == str(error) and copy.remedy == error.remedy
        assert copy.algorithm == "Threshold"


def test_runs_again_after_an_error():
    algorithm = qel.create("Threshold")
    raised(qel.RuleException, algorithm.run)
    algorithm.input = IMAGE
    assert algorithm.run().all()


def test_files_that_cannot_be_read_are_errors_of_the_library():
    error = raised(qel.RuntimeError, lambda: qel.LoadQelRawImage("nowhere.qeli"))
    assert "Cannot read the file: nowhere.qeli" in str(error) and error.algorithm == "LoadQelRawImage"

"""Image processing for 2D and 3D images, on numpy arrays where they are.

    import quelide as qel
    smooth = qel.BoxFilter2D(image, boxSize=(5, 5))

Each algorithm is a function of its own name: help(qel.BoxFilter2D) tells its properties, dir(qel) lists all. Positional
arguments are the properties in declaration order, keywords are their names. Arrays of one to five axes are read and written
in place, never copied; the last axis is columns, before it come rows, plans, time series and spectral series. Plain arrays
give plain arrays; qel.Image carries a calibration.
"""
import importlib

try:
    import _quelide
except ImportError as error:
    raise ImportError(f"the extension _quelide, which stands beside the package quelide, cannot be loaded: {error}") from error
import sys as _sys

_sys.modules[__name__ + "._quelide"] = _quelide

from . import _errors, _image, _progress, _registry
from ._errors import (BadIndex, Cancelled, Exception, FileSystemError, InvalidCall, MemoryError, ProcessingException,
                      PropertyError, RuleException, RuntimeError, SerializationException, UnexpectedError)
from ._image import Image

Algorithm = _quelide.Algorithm
LineSet3D = _quelide.LineSet3D
load = _quelide.load
TextureClassificationModel = _quelide.TextureClassificationModel
Transformation2D, Transformation3D = _quelide.Transformation2D, _quelide.Transformation3D
_quelide.connect(Image, _registry.make_result_type, _errors.refuse, _errors.cancelled, _errors.from_library,
                 _progress.as_function)
globals().update(_registry.functions)

# Names that would hide those of Python stay behind.
__all__ = sorted([*_registry.functions, "Algorithm", "BadIndex", "Cancelled", "FileSystemError", "Image", "InvalidCall",
                  "LineSet3D", "ProcessingException", "PropertyError", "RuleException", "SerializationException",
                  "TextureClassificationModel", "Transformation2D", "Transformation3D", "UnexpectedError",
                  "algorithms", "create", "load"])


def create(name):
    """An algorithm object: its properties are its attributes, and run() runs it.

        a = quelide.create("Threshold")
        a.input = image
        a.lowLevel = 100
        mask = a.run()
    """
    if name not in _registry.algorithms:
        _no_algorithm(name, PropertyError)
    return Algorithm(name)


def algorithms():
    """The names of all algorithms."""
    return sorted(_registry.algorithms)


def _no_algorithm(name, kind):
    close = _errors.nearest(name, _registry.algorithms)
    text = f"module 'quelide' has no attribute {name!r}" if kind is AttributeError else f"there is no algorithm {name!r}"
    error = kind(text)
    if hasattr(error, "add_note"):
        error.add_note(f"the nearest algorithm is {close!r}")
    raise error


# What is not always needed is loaded when it is asked for: chunked arrays, and files.
_LATER = {"dask": "dask", "open": "_files", "MappedImage": "_files", "blockwise": "_blocks"}


def __getattr__(name):
    if name in _LATER:
        module = importlib.import_module(f".{_LATER[name]}", __name__)
        value = module if name == "dask" else getattr(module, name)
        globals()[name] = value
        return value
    if name.endswith("Result"):
        return _registry.result_type(name)
    if name.startswith("_"):
        raise AttributeError(f"module 'quelide' has no attribute {name!r}")
    _no_algorithm(name, AttributeError)


def __dir__():
    return sorted({*globals(), *_LATER})

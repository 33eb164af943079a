"""Writes the stub of the package, from which editors know the properties of all algorithms.

Arguments: the folder of the built package, the stub to write.
"""
import pathlib
import re
import sys

sys.path.insert(0, sys.argv[1])
import quelide  # noqa: E402
from quelide import _registry  # noqa: E402

HEAD = '''"""What editors know of quelide. Generated."""
import builtins
import os
from typing import Any as _Any, Callable, Iterable, Literal, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as _numpy

from . import dask as dask
from ._blocks import blockwise as blockwise
from ._errors import (BadIndex as BadIndex, Cancelled as Cancelled, Exception as Exception,
                      FileSystemError as FileSystemError, InvalidCall as InvalidCall, MemoryError as MemoryError,
                      ProcessingException as ProcessingException, PropertyError as PropertyError,
                      RuleException as RuleException, RuntimeError as RuntimeError,
                      SerializationException as SerializationException, UnexpectedError as UnexpectedError)
from ._files import MappedImage as MappedImage, open as open
from ._image import Image as Image

_Image = Union[_numpy.ndarray, Image]
_Integer = Union[int, _numpy.integer]
_Number = Union[float, int, _numpy.number]
_Numbers = Union[Sequence[_Number], _numpy.ndarray, str]
_Integers2 = Union[Tuple[_Integer, _Integer], Sequence[_Integer], _numpy.ndarray, _Integer, str]
_Integers3 = Union[Tuple[_Integer, _Integer, _Integer], Sequence[_Integer], _numpy.ndarray, _Integer, str]
_Integers4 = Union[Tuple[_Integer, _Integer, _Integer, _Integer], Sequence[_Integer], _numpy.ndarray, _Integer, str]
_Numbers2 = Union[Tuple[_Number, _Number], Sequence[_Number], _numpy.ndarray, _Number, str]
_Numbers3 = Union[Tuple[_Number, _Number, _Number], Sequence[_Number], _numpy.ndarray, _Number, str]
_Numbers4 = Union[Tuple[_Number, _Number, _Number, _Number], Sequence[_Number], _numpy.ndarray, _Number, str]
_Points = Union[Sequence[Sequence[_Number]], _numpy.ndarray, str]
_Kernel = Union[Sequence[Any], _numpy.ndarray, str]
_Matrix = Union[Sequence[Sequence[_Number]], _numpy.ndarray]
_Label = Union[str, int]
_Labels = Union[Sequence[_Label], str]
_Model = Union["TextureClassificationModel", str, os.PathLike[str]]
_Table = Union[str, os.PathLike[str], _numpy.ndarray, Sequence[_Any]]
_LineSet = Union["LineSet3D", str, os.PathLike[str]]
_Transformation2D = "Transformation2D"
_Transformation3D = "Transformation3D"
_Path = Union[str, os.PathLike[str]]
_Progress = Union[Callable[[float], _Any], bool, _Any]
_Level = Literal["auto", "scalar", "sse", "avx", "gpu"]

class Algorithm:
    """An algorithm object: its properties are its attributes."""
    running: bool
    progress: float
    reach: Tuple[Tuple[int, int], ...]
    def __init__(self, name: str) -> None: ...
    def run(self, *, out: Optional[_Image] = ..., dtype: _Any = ..., progress: _Progress = ..., threads: Optional[int] = ...,
            level: _Level = ..., extra_memory: Optional[int] = ...) -> _Any: ...
    def cancel(self) -> bool: ...
    def __getattr__(self, name: str) -> _Any: ...
    def __setattr__(self, name: str, value: _Any) -> None: ...

class TextureClassificationModel:
    """A classifier of textures."""
    report: str
    def __init__(self, path: _Path) -> None: ...
    def write(self, path: _Path, overwrite: bool = ...) -> None: ...

class LineSet3D:
    """Polylines in space."""
    points: _numpy.ndarray
    indices: _numpy.ndarray
    lines: list[_numpy.ndarray]
    def __init__(self, points: _Points, indices: _Numbers) -> None: ...
    def __len__(self) -> int: ...
    def write(self, path: _Path, overwrite: bool = ...) -> None: ...
    def export(self, path: _Path) -> None: ...

def load(path: _Path) -> Union[TextureClassificationModel, LineSet3D]: ...

class Transformation2D:
    """A mapping of points of the plane."""
    dimensions: int
    kind: str
    parameters: Tuple[float, ...]
    matrix: Optional[_numpy.ndarray]
    def __call__(self, points: _Points) -> _numpy.ndarray: ...

class Transformation3D:
    """A mapping of points of space."""
    dimensions: int
    kind: str
    parameters: Tuple[float, ...]
    matrix: Optional[_numpy.ndarray]
    def __call__(self, points: _Points) -> _numpy.ndarray: ...

def create(name: _Name) -> Algorithm: ...
def algorithms() -> list[str]: ...
'''

RESULTS = {"image": "_numpy.ndarray", "number": "float", "integer": "int", "unsigned integer": "int", "bool": "bool",
           "text or path": "str", "model": "TextureClassificationModel", "transformation": "_Any",
           "line set": "LineSet3D"}
OPTIONS = ("*, out: Optional[_Image] = ..., dtype: _Any = ..., progress: _Progress = ..., threads: Optional[int] = ..., "
           "level: _Level = ..., extra_memory: Optional[int] = ...")


def hint(each):
    if each["labels"] and each["hint"] == "_Label":
        return f'Union[Literal[{", ".join(map(repr, each["labels"]))}], int]'
    return each["hint"]


def result(each):
    return RESULTS.get(each["kind"], "_Any")


lines = [HEAD.replace("Sequence[Any]", "Sequence[_Any]")]
names = sorted(_registry.algorithms)
lines.insert(1, "_Name = Literal[" + ", ".join(map(repr, names)) + "]\n")
for name in names:
    entry = _registry.algorithms[name]
    parameters = []
    for i, each in enumerate(entry["properties"]):
        if each["isOutput"] and not each["isImage"]:
            continue
        isRequired = i == 0 and each["isImage"] and not each["isOutput"]
        optional = each["isImage"] and not isRequired
        text = f"Optional[{hint(each)}]" if optional else hint(each)
        parameters.append(f'{each["name"]}: {text}' + ("" if isRequired else " = ..."))
    outputs = [each for each in entry["properties"] if each["isOutput"]]
    if len(outputs) > 1:
        lines.append(f"class {name}Result(NamedTuple):")
        lines += [f'    {each["name"]}: {result(each)}' for each in outputs]
        returned = f"{name}Result"
    else:
        returned = result(outputs[0]) if outputs else "None"
    first = re.split(r"(?<=\.)\s", quelide.__dict__[name].__doc__.strip().replace("\n", " "))[0].replace('"', "'")
    lines.append(f'def {name}({", ".join(parameters)}, {OPTIONS}) -> {returned}:\n    """{first}"""\n    ...')
pathlib.Path(sys.argv[2]).write_text("\n".join(lines) + "\n")

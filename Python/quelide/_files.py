"""Raw image files as arrays."""
import builtins
import os
import struct

import numpy

import _quelide

from ._image import Image

_TYPES = ("uint8", "uint16", "uint32", "uint64", "int8", "int16", "int32", "int64", "float32", "float64")
_MAGIC = b"QELI"
_HEADER = 326
_VOXELS = 12 + _HEADER
# Of each size and calibration in the header, the axis, columns being 0.
_FILE_AXES = (0, 1, 4, 2, 3)


class MappedImage(Image):
    """An image in a raw image file (.qeli): its array is the voxels in the file, mapped into memory.

    Runs read and write it row by row and keep a bounded part of it in memory, however large the file is. What is written
    is in the file at once for other programs, and on the disk after flush() at the latest. The file is closed when no
    array of it is left.
    """

    __slots__ = ("path", "_file")

    def __init__(self, path, file, array, **calibration):
        self.path = path
        self._file = file
        super().__init__(array, **calibration)

    def flush(self):
        """Writes what is not yet on the disk."""
        self._write_header()
        self._file.flush()

    def give_back(self):
        """Gives the memory of what was read or written back to the system; runs do so by themselves."""
        self._file.give_back()

    def __reduce__(self):
        # Another process opens the file for itself.
        return _reopened, (self.path, "r+" if self.array.flags.writeable else "r")

    def _take(self, *calibration):
        super()._take(*calibration)
        self._write_header()

    def _write_header(self):
        if not self.array.flags.writeable:
            return
        header = numpy.ndarray(_VOXELS, numpy.uint8, buffer=self._file)
        header[:] = numpy.frombuffer(_header(self), numpy.uint8)


def _reopened(path, mode):
    return open(path, mode)


def _five(values, default):
    return tuple(values[::-1]) + (default,) * (5 - len(values))


def _header(image):
    sizes, spacings = _five(image.shape, 1), _five(image.spacing, 1.0)
    units = [image.unit, image.unit, "", image.unit, image.time_unit]
    packed = _MAGIC + struct.pack("<III", 1, _HEADER, _TYPES.index(image.dtype.name))
    packed += struct.pack("<??", image.interpretation == "binary", image.interpretation == "label")
    packed += struct.pack("<5I", *(sizes[axis] for axis in _FILE_AXES))
    for axis, unit in zip(_FILE_AXES, units):
        packed += struct.pack("<Id48s", 1, spacings[axis], unit.encode()[:48])
    return packed


def _read_header(path):
    with builtins.open(path, "rb") as file:
        packed = file.read(_VOXELS)
    if packed[:4] != _MAGIC:
        raise ValueError(f"{path} is no raw image file: it does not begin with {_MAGIC.decode()}")
    if len(packed) < _VOXELS:
        raise ValueError(f"{path} ends within its header")
    version, _, number = struct.unpack_from("<III", packed, 4)
    if version != 1 or number >= len(_TYPES):
        raise ValueError(f"{path} has version {version} and voxel type {number}, which cannot be read")
    is_binary, is_label = struct.unpack_from("<??", packed, 16)
    sizes, spacings, units = [0] * 5, [1.0] * 5, [""] * 5
    for place, axis in enumerate(_FILE_AXES):
        sizes[axis], = struct.unpack_from("<I", packed, 18 + 4 * place)
        divisor, value, unit = struct.unpack_from("<Id48s", packed, 38 + 60 * place)
        spacings[axis] = value / divisor if divisor else value
        units[axis] = unit.split(b"\0")[0].decode(errors="replace")
    interpretation = "binary" if is_binary else "label" if is_label else "value"
    return _TYPES[number], sizes, spacings, units[0], units[3], interpretation


def open(path, mode="r", *, shape=None, dtype=None, like=None, spacing=None, unit="", interpretation="value", time_unit=""):
    """Opens a raw image file (.qeli) as an image, without reading it.

    mode  "r": to read. "r+": to write voxels, too. "w+": a new file, which replaces an old one, of `shape` and `dtype` and this
          calibration, or of those of the image or array `like`, where they are not given. New voxels are 0.

    Gives a MappedImage, which is an Image. The array has as many axes as are longer than 1, and two at least. Origins have no
    place in such a file.

        volume = quelide.open("volume.qeli")
        smooth = quelide.open("smooth.qeli", "w+", like=volume)
        quelide.GaussianFilter2D(volume, sigmaX=1, sigmaY=1, out=smooth)

    Raises OSError where the file cannot be opened, and ValueError where it is no such file.
    """
    path = os.fspath(path)
    if mode not in ("r", "r+", "w+"):
        raise ValueError(f"there is no mode {mode!r}: it is 'r', 'r+' or 'w+'")
    if mode == "w+":
        if isinstance(like, Image):
            spacing = like.spacing if spacing is None and shape is None else spacing
            unit, time_unit = unit or like.unit, time_unit or like.time_unit
            interpretation = like.interpretation or interpretation
        shape = tuple(like.shape if shape is None else shape)
        dtype = numpy.dtype(like.dtype if dtype is None else dtype)
        if dtype.name not in _TYPES or not 1 <= len(shape) <= 5 or 0 in shape:
            raise ValueError(f"no raw image file holds voxels of {dtype} in the shape {shape}")
        sizes = _five(shape, 1)
        file = _quelide.MappedFile(path, True, _VOXELS + int(numpy.prod(sizes, dtype=object)) * dtype.itemsize)
        image = MappedImage(path, file, _array(file, dtype, sizes, len(shape)), spacing=spacing, unit=unit,
                            interpretation=interpretation, time_unit=time_unit)
        image._write_header()
        return image
    if shape is not None or dtype is not None or like is not None:
        raise ValueError("shape, dtype and like are for new files: mode 'w+'")
    type_name, sizes, spacings, unit, time_unit, interpretation = _read_header(path)
    dtype = numpy.dtype(type_name)
    needed = _VOXELS + int(numpy.prod(sizes, dtype=object)) * dtype.itemsize
    if os.path.getsize(path) < needed:
        raise ValueError(f"{path} ends before its last voxel")
    file = _quelide.MappedFile(path, mode == "r+")
    dimensions = max([axis + 1 for axis in range(5) if sizes[axis] != 1] + [2])
    return MappedImage(path, file, _array(file, dtype, sizes, dimensions), spacing=spacings[:dimensions][::-1], unit=unit,
                       interpretation=interpretation, time_unit=time_unit)


def _array(file, dtype, sizes, dimensions):
    columns, rows, plans, times, spectra = sizes
    # In the file a plan's spectral series follow each other.
    stored = numpy.ndarray((times, plans, spectra, rows, columns), dtype, buffer=file, offset=_VOXELS)
    return stored.transpose(2, 0, 1, 3, 4)[(0,) * (5 - dimensions)]


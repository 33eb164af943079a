"""An array with its calibration."""
import numpy

_INTERPRETATIONS = (None, "binary", "label", "value")


def _per_axis(values, dimensions, default, name):
    if values is None:
        return (default,) * dimensions
    if numpy.ndim(values) == 0:
        values = (values,) * dimensions
    values = tuple(float(value) for value in values)
    if len(values) > dimensions:
        raise ValueError(f"{name} has {len(values)} numbers, but the array has {dimensions} axes")
    # As shapes do in numpy: what is missing belongs to the first axes.
    return (default,) * (dimensions - len(values)) + values


class Image:
    """An array with calibration and interpretation.

    array           a numpy array of one to five axes, which is used where it is: the last axis is columns, before it come
                    rows, plans, time series, spectral series
    spacing         distance of voxels along each axis of the array, in the order of its shape: (plans, rows, columns) for a
                    volume. One number stands for all axes. Default 1
    origin          coordinates of the first voxel, in the same order. Default 0
    unit            the unit of columns, rows and plans, such as "mm"
    interpretation  "binary" (0 and 1), "label" (0 is unlabelled), "value", or None: whatever an algorithm asks for
    time_unit       the unit of the time series

    Where an input of a run is an Image, so are its outputs, with what the run gave them. numpy.asarray(image) is the array.
    """

    __slots__ = ("_array", "_spacing", "_origin", "unit", "_interpretation", "time_unit", "__weakref__")

    def __init__(self, array, spacing=None, origin=None, unit="", interpretation=None, time_unit=""):
        if isinstance(array, Image):
            array = array.array
        self._array = numpy.asarray(array)
        self.spacing = spacing
        self.origin = origin
        self.unit = unit
        self.interpretation = interpretation
        self.time_unit = time_unit

    @property
    def array(self):
        """The voxels. Not a copy."""
        return self._array

    @property
    def spacing(self):
        return self._spacing

    @spacing.setter
    def spacing(self, values):
        self._spacing = _per_axis(values, self._array.ndim, 1.0, "spacing")

    @property
    def origin(self):
        return self._origin

    @origin.setter
    def origin(self, values):
        self._origin = _per_axis(values, self._array.ndim, 0.0, "origin")

    @property
    def interpretation(self):
        return self._interpretation

    @interpretation.setter
    def interpretation(self, name):
        if name not in _INTERPRETATIONS:
            raise ValueError(f"an image has no interpretation {name!r}: it is binary, label or value")
        self._interpretation = name

    shape = property(lambda self: self._array.shape, doc="The shape of the array.")
    dtype = property(lambda self: self._array.dtype, doc="The type of the voxels.")
    ndim = property(lambda self: self._array.ndim, doc="How many axes the array has.")

    def __array__(self, dtype=None, copy=None):
        if copy:
            return numpy.array(self._array, dtype=dtype)
        return self._array if dtype is None else self._array.astype(dtype, copy=False)

    def __len__(self):
        return len(self._array)

    def __repr__(self):
        shape = " x ".join(map(str, self.shape))
        parts = [f"{shape} {self.dtype}", f"spacing {self.spacing}"]
        if self.unit:
            parts[-1] += f" {self.unit}"
        if any(self.origin):
            parts.append(f"origin {self.origin}")
        if self.interpretation:
            parts.append(self.interpretation)
        return f"<quelide.{type(self).__name__}: {', '.join(parts)}>"

    def __reduce__(self):
        return Image, (self._array, self._spacing, self._origin, self.unit, self._interpretation, self.time_unit)

    def _take(self, spacing, origin, unit, interpretation, time_unit):
        # After a run that wrote this image.
        self._spacing, self._origin, self.unit = spacing, origin, unit
        self._interpretation, self.time_unit = interpretation, time_unit

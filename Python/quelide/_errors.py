"""The errors of the library as Python classes, with a remedy where one is known."""
import builtins
import re

__all__ = ["BadIndex", "Cancelled", "Exception", "FileSystemError", "InvalidCall", "MemoryError", "ProcessingException",
           "PropertyError", "RuleException", "RuntimeError", "SerializationException", "UnexpectedError"]


class _Located(builtins.Exception):
    """What all errors have: `algorithm` and `property` (names, or None) and `remedy` (a text, or None), which is a note
    of the exception, too."""

    algorithm = None
    property = None
    remedy = None

    def _locate(self, algorithm, property, remedy):
        self.algorithm = algorithm
        self.property = property
        self.remedy = remedy
        if remedy:
            if hasattr(self, "add_note"):
                self.add_note(remedy)
            else:  # before Python 3.11, which shows it
                self.__notes__ = [remedy]
        return self

    def __reduce__(self):
        return _restored, (type(self), self.args, self.__dict__)


def _restored(cls, args, state):
    error = cls(*args)
    error.__dict__.update(state)
    return error


class Exception(_Located):
    """Root of the library's own errors. The text is the library's, unchanged; `levels` are pairs of message and algorithm,
    the deepest first."""

    levels = ()


class ProcessingException(Exception):
    """Base of the errors that happen while the library works."""


class BadIndex(ProcessingException, IndexError):
    """An index or a direction is out of its range."""


class UnexpectedError(ProcessingException):
    """Something went wrong that should not, or there is no runner for the level that was asked for."""


class FileSystemError(ProcessingException):
    """A file cannot be found, opened, read or written."""


class MemoryError(ProcessingException, builtins.MemoryError):
    """Memory was refused."""


class RuntimeError(ProcessingException, builtins.RuntimeError):
    """An operation met a state in which it cannot work."""


class InvalidCall(ProcessingException):
    """An operation was called that does not suit the object or its arguments."""


class RuleException(Exception, ValueError):
    """A property breaks one of its rules. Raised before any voxel changes."""


class SerializationException(Exception):
    """An object file cannot be read or written."""


class PropertyError(_Located, TypeError, ValueError):
    """A name is no property of the algorithm, or a value does not suit it."""


class Cancelled(_Located):
    """The run was cancelled. Its outputs are half-written, and no result."""


def cancelled(algorithm):
    return Cancelled(f"{algorithm} was cancelled: its outputs are half-written")._locate(algorithm, None, None)


def nearest(name, candidates):
    """The candidate that was probably meant."""
    import difflib

    lower = {candidate.lower(): candidate for candidate in reversed(candidates)}
    found = difflib.get_close_matches(str(name).lower(), lower, n=1, cutoff=0)
    return lower[found[0]] if found else None


def refuse(algorithm, property, reason, remedy):
    """The exception for a value that does not suit; for a name that is no property where there is no reason."""
    if reason is None:
        from . import _registry

        names = [entry["name"] for entry in _registry.algorithms[algorithm]["properties"]] + list(_registry.OPTIONS)
        text = f"{algorithm} has no property {property!r}"
        remedy = f"the nearest is {nearest(property, names)!r}; it has {', '.join(names)}"
        return _NoProperty(text)._locate(algorithm, str(property), remedy)
    if reason.endswith("is none of its labels"):
        from . import _registry

        labels = next(entry["labels"] for entry in _registry.algorithms[algorithm]["properties"]
                      if entry["name"] == property)
        given = reason.split('"')[1]
        remedy = f"the nearest is {nearest(given, labels)!r}; it takes {', '.join(labels)}"
    subject = f"{algorithm}: {property}" if property else algorithm
    return PropertyError(f"{subject}: {reason}")._locate(algorithm, property, remedy or None)


class _NoProperty(PropertyError, AttributeError):
    __name__ = __qualname__ = "PropertyError"


def from_library(name, text, levels):
    """The exception for an error of the library."""
    property = None
    for message, _ in levels:
        found = re.fullmatch(r"Rule error in property (.*)", message)
        if found:
            property = found[1]
    algorithms = [algorithm for _, algorithm in levels if algorithm]
    error = globals()[name](text)
    error.levels = tuple(levels)
    return error._locate(algorithms[-1] if algorithms else None, property, _remedy(levels[0][0], property))


def _remedy(message, property):
    found = re.search(r'supports only data type\(s\): (.*)\. Current data type is (.*)\.', message)
    if found:
        types = found[1].split(", ")
        return (f"{found[2]} is not supported here; convert with astype({_nearest_type(found[2], types)!r}), "
                f"or another of {', '.join(types)}")
    found = re.search(r'supports ([A-Z_, ]*)\. Current image is (\w*)', message)
    if found:
        wanted = [_INTERPRETATIONS.get(label, label) for label in found[1].split(", ")]
        return (f"an image of interpretation {_INTERPRETATIONS.get(found[2], found[2])!r} is not supported here; "
                f"give quelide.Image(array, interpretation={wanted[0]!r})")
    found = re.search(r'"(.*)" must be set', message)
    if found:
        return f"give {found[1]}=..."
    if "cannot be used as output image if it must be retyped" in message:
        return "the result has another type than the input: let it be made anew, without out="
    found = re.search(r'"(.*)" cannot be (re\w+)', message)
    if found:
        return (f"the array that was given for {found[1]} has not the shape and type of the result, and arrays are not "
                "resized: let it be made anew, or give one that fits")
    if "must have the same size" in message:
        return "axes are counted from the last one: columns, rows, plans, time series, spectral series"
    if message == "no runner found for algorithm":
        return "this algorithm has no such level, or not for this processor or these images; level='auto' takes one that runs"
    return None


_INTERPRETATIONS = {"QEL_BINARY": "binary", "QEL_LABEL": "label", "QEL_VALUE": "value"}


def _nearest_type(given, types):
    import numpy

    def badness(candidate):
        try:
            safe = numpy.can_cast(given, candidate)
            return not safe, numpy.dtype(candidate).kind != numpy.dtype(given).kind, numpy.dtype(candidate).itemsize
        except TypeError:
            return True, True, 0

    return min(types, key=badness)

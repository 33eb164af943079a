"""Functions, one for each registered algorithm, and what they say of themselves."""
import inspect
import sys

from . import _quelide
from ._documentation import TEXTS

# Arguments of every function that are no properties.
OPTIONS = {
    "out": "array or quelide.Image for the one output image, written in place; may be the input itself",
    "dtype": "type of a new output image, where the algorithm leaves a choice",
    "progress": "a function of the percentage, a tqdm bar, or True for a bar of its own",
    "threads": "how many threads the run may use (default: all)",
    "level": '"auto", "scalar", "sse", "avx" or "gpu": the instruction set; results have the same bits at each',
    "extra_memory": "percent of the machine's memory that temporary images may take (default 100)",
}

algorithms = {entry["name"]: entry for entry in _quelide.describe()}
for _entry in algorithms.values():
    for _each in _entry["properties"]:
        if hasattr(_each["default"], "tolist"):
            _each["default"] = tuple(_each["default"].tolist())

_KEYWORD = inspect.Parameter.KEYWORD_ONLY
_EITHER = inspect.Parameter.POSITIONAL_OR_KEYWORD


def _signature(entry):
    parameters = [inspect.Parameter(each["name"], _EITHER, default=each["default"])
                  for each in entry["properties"] if each["isImage"] or not each["isOutput"]]
    first = parameters[0]
    if entry["properties"][0]["isImage"] and first.default is None:
        parameters[0] = first.replace(default=inspect.Parameter.empty)
    parameters += [inspect.Parameter(name, _KEYWORD, default=None) for name in OPTIONS]
    return inspect.Signature(parameters)


def _documentation(entry):
    lines = [TEXTS.get(f'{entry["namespace"]}::{entry["name"]}', ""), "", "Properties"]
    for each in entry["properties"]:
        if each["isOutput"]:
            continue
        text = f'    {each["name"]}: {each["kind"]}'
        if not each["isImage"]:
            text += f' (default {each["default"]!r})'
        lines.append(text)
        if each["labels"] and each["labels"][0] not in each["kind"]:
            lines.append(f'        labels: {", ".join(each["labels"])}')
    lines += ["", "Results"]
    lines += [f'    {each["name"]}: {each["kind"]}' for each in entry["properties"] if each["isOutput"]] or ["    none"]
    lines += ["", "Options"]
    lines += [f"    {name}: {text}" for name, text in OPTIONS.items()]
    lines += ["", f'Levels: {", ".join(entry["levels"])}. Also: a = quelide.create("{entry["name"]}").',
              "Raises PropertyError for a name or a value that does not suit, RuleException where the algorithm refuses it before "
              "any voxel", "changes, ProcessingException for what fails later, Cancelled for a run that was cancelled."]
    return "\n".join(lines)


def _function(entry):
    call = _quelide.Function(entry["name"])

    def function(*properties, **named):
        return call(*properties, **named)

    function.__name__ = function.__qualname__ = entry["name"]
    function.__module__ = "quelide"
    function.__signature__ = _signature(entry)
    function.__doc__ = _documentation(entry)
    function.reach = call.reach
    return function


functions = {name: _function(entry) for name, entry in algorithms.items()}


def make_result_type(algorithm, fields):
    """The class of the results of an algorithm that has several."""
    from collections import namedtuple

    name = f"{algorithm}Result"
    package = sys.modules["quelide"].__dict__  # where pickle looks for it
    if name not in package:
        package[name] = namedtuple(name, fields, module="quelide")
    return package[name]


def result_type(name):
    """The same by its own name, before any run has made it."""
    algorithm = name[:-len("Result")]
    entry = algorithms.get(algorithm)
    fields = [each["name"] for each in entry["properties"] if each["isOutput"]] if entry else []
    if not name.endswith("Result") or len(fields) < 2:
        raise AttributeError(f"module 'quelide' has no attribute {name!r}")
    return make_result_type(algorithm, fields)

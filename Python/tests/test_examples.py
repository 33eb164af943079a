"""The example scripts find in the images what is there, and draw it."""
import os
import pathlib
import re
import subprocess
import sys

import pytest

import quelide as qel

EXAMPLES = pathlib.Path(__file__).parents[2] / "Examples" / "python"
pytest.importorskip("matplotlib")

# What a script prints, and what its numbers are to be.
EXPECTED = {
    "count_coins": (r"(\d+) coins of (\d+) to (\d+) pixels", lambda count, least, most: count == 24 and 1000 < least < most < 5000),
    "register_landmarks": (r"plain: .* others ([\d.]+) pixels off\nrobust: .* others ([\d.]+) pixels off",
                           lambda plain, robust: plain > 5 and robust < 1),
    "skull_thickness": (r"bone of (\d+) ml, ([\d.]+) mm thick", lambda volume, median: 300 < volume < 600 and 2 < median < 8),
    "texture_map": (r"smoothed: ([\d.]+) % of the voxels right", lambda right: right > 75),
    "vessel_lines": (r"(\d+) lines, ([\d.]+) voxels long", lambda lines, length: lines >= 3 and length > 60),
}


def test_every_example_is_looked_at():
    assert {path.stem for path in EXAMPLES.glob("*.py")} <= set(EXPECTED)


@pytest.mark.parametrize("name", [name for name in sorted(EXPECTED) if (EXAMPLES / f"{name}.py").exists()])
def test_an_example_finds_what_is_there(name, tmp_path):
    picture = tmp_path / "picture.png"
    environment = {**os.environ, "PYTHONPATH": str(pathlib.Path(qel.__file__).parents[1]), "MPLCONFIGDIR": str(tmp_path)}
    done = subprocess.run([sys.executable, "-B", EXAMPLES / f"{name}.py", picture], cwd=tmp_path, env=environment, text=True,
                          stdout=subprocess.PIPE, check=True)
    pattern, is_right = EXPECTED[name]
    found = re.search(pattern, done.stdout)
    assert found and is_right(*map(float, found.groups())), done.stdout
    assert picture.read_bytes()[:4] == b"\x89PNG" and picture.stat().st_size > 20000

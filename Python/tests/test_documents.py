"""The Python of the documents runs as it stands, block after block."""
import contextlib
import io
import os
import pathlib
import re

import pytest

ROOT = pathlib.Path(__file__).parents[2]


@pytest.mark.parametrize("document", ["README.md", "Documentation/Python.md"])
def test_the_python_of_a_document_runs(document, tmp_path, monkeypatch):
    text = (ROOT / document).read_text()
    (tmp_path / "Examples").symlink_to(ROOT / "Examples")
    monkeypatch.chdir(tmp_path)
    blocks = re.findall(r"^```python\n(.*?)^```$(?:\n\n^```text\n(.*?)^```$)?", text, re.M | re.S)
    assert blocks
    names = {"__name__": "__main__"}
    for code, expected in blocks:
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            exec(compile(code, document, "exec"), names)
        if expected:
            assert printed.getvalue() == expected, code


def test_the_readme_shows_what_it_prints(tmp_path, monkeypatch):
    text = (ROOT / "README.md").read_text()
    block = re.search(r"^```python\n(.*?)^```$", text, re.M | re.S)[1]
    assert len(block.strip().splitlines()) == 6
    (tmp_path / "Examples").symlink_to(ROOT / "Examples")
    monkeypatch.chdir(tmp_path)
    printed = io.StringIO()
    with contextlib.redirect_stdout(printed):
        exec(block, {})
    assert f"`{printed.getvalue().strip()}`" in text
    assert os.getcwd() == str(tmp_path)

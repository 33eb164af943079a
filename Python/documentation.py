"""Writes the module with what the public headers say of each algorithm, for docstrings.

Arguments: the module to write, then the include folders.
"""
import pathlib
import re
import sys
import textwrap

target, folders = pathlib.Path(sys.argv[1]), sys.argv[2:]
texts = {}
for folder in folders:
    for path in sorted(pathlib.Path(folder).rglob("*.h")):
        found = re.search(r"((?:^///.*\n)+)class QEL_API (\w+) : public BaseAlgorithm$", path.read_text(), re.M)
        if not found or found[2] != path.stem:
            continue
        namespace = "::".join(path.relative_to(folder).parts[1:-1])
        paragraphs = re.sub(r"^/// ?", "", found[1], flags=re.M).strip().split("\n\n")
        # Lists stay as they are; running text is filled anew.
        filled = [paragraph if re.search(r"^\s*[-|]", paragraph, re.M) else
                  textwrap.fill(" ".join(paragraph.split()), 110) for paragraph in paragraphs]
        texts[f"{namespace}::{path.stem}"] = "\n\n".join(filled)
lines = ['"""What the headers say of each algorithm. Generated."""', "", "TEXTS = {"]
lines += [f"    {name!r}:\n        {text!r}," for name, text in sorted(texts.items())]
target.write_text("\n".join(lines + ["}", ""]))

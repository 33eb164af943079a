"""The demo draws what it says: its counts are those of a plain count over the files, and its page has all its pictures.

Arguments: the demo script, the host, an empty folder to write to.
"""
import array
import pathlib
import re
import struct
import subprocess
import sys

script, host, folder = sys.argv[1:]
folder = pathlib.Path(folder).resolve()
data = pathlib.Path(script).parent / "data"


def voxels(name):
    file = (data / name).read_bytes()
    assert file[:4] == b"QELI"
    kind = {0: "B", 1: "H", 8: "f"}[struct.unpack_from("<I", file, 12)[0]]
    return array.array(kind, file[338:])


for old in folder.glob("*"):
    old.unlink()
output = subprocess.run([script, host, folder], check=True, capture_output=True, text=True).stdout
print(output)

counts = dict(re.findall(r"^(.*?): (\d+) voxels selected", output, re.M))
expected = {
    "Gold grains in glass": sum(v < 100 for v in voxels("cermet.qeli")),
    "Bone in a CT of a head, 93 plans": sum(1300 <= v <= 4095 for v in voxels("head_ct.qeli")),
    "Vessels in an MR angiography of the neck, 45 plans": sum(v > 200 for v in voxels("carotid.qeli")),
}
for title, count in expected.items():
    assert int(counts[title]) == count, (title, counts[title], count)
assert len(counts) == 4, counts

assert output.splitlines()[-1] == str(folder)
pictures = re.findall(r'src="([^"]*)"', (folder / "index.html").read_text())
assert len(pictures) == len(set(pictures)) == 16, pictures
assert set(pictures) == {path.name for path in folder.glob("*.png")}
for picture in pictures:
    report = subprocess.run([host, "show", folder / picture], check=True, capture_output=True, text=True).stdout
    assert "sizes = " in report and "_1_1_3\n" in report, report
    # A picture for the eye reaches from near black to near white, or to the full tint.
    extrema = {key: int(value) for key, value in re.findall(r"^(m.nimum|maximum) = (\d+)$", report, re.M)}
    assert extrema["minimum"] < 20 and extrema["maximum"] > 235, (picture, report)

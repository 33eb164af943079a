"""The demo draws what it says: its counts are those of a plain count over the files, and its page has all its pictures.

Arguments: the demo script, the host, an empty folder to write to.
"""
import array
import math
import pathlib
import re
import statistics
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


def number(pattern):
    return float(re.search(pattern, output)[1])


def parts_that_touch(inside, columns):
    """How many there are among the indices inside, by sides and corners."""
    left, parts = set(inside), 0
    while left:
        parts += 1
        front = [left.pop()]
        while front:
            at = front.pop()
            x = at % columns
            for near in (at + dy * columns + dx for dy in (-1, 0, 1) for dx in (-1, 0, 1) if 0 <= x + dx < columns):
                if near in left:
                    left.remove(near)
                    front.append(near)
    return parts


grains = voxels("cermet.qeli")
parts = parts_that_touch((i for i, v in enumerate(grains) if v < 100), 256)
assert number(r"counted: (\d+) connected parts") == parts, parts

# The trees of vessels, without the specks of a few voxels.
carotid = {i for i, v in enumerate(voxels("carotid.qeli")) if v > 200}
sizes = []
while carotid:
    front, size = [carotid.pop()], 1
    while front:
        at = front.pop()
        x, y = at % 76, at // 76 % 49
        for dx, dy, dz in ((dx, dy, dz) for dx in (-1, 0, 1) for dy in (-1, 0, 1) for dz in (-1, 0, 1)):
            near = at + (dz * 49 + dy) * 76 + dx
            if 0 <= x + dx < 76 and 0 <= y + dy < 49 and near in carotid:
                carotid.remove(near)
                front.append(near)
                size += 1
    sizes.append(size)
trees = sum(size >= 100 for size in sizes)
assert number(r"vertices along (\d+) trees") == trees, sizes
assert trees <= number(r"traced: (\d+) lines") <= 20
# Vessels cross most of the plans, and are several voxels wide.
assert 25 * trees < number(r"lines with (\d+) vertices") < sum(sizes) / 5

# An opening: first the smallest under the disk, then the largest; what lies outside never wins.
def under_disk(image, radius, chosen, outside):
    steps = [(x, y) for y in range(-radius, radius + 1) for x in range(-radius, radius + 1) if x * x + y * y <= radius * radius]
    wide = [[outside] * (256 + 2 * radius)] * radius
    rows = wide + [[outside] * radius + image[y * 256:y * 256 + 256] + [outside] * radius for y in range(256)] + wide
    return [chosen(column) for y in range(radius, 256 + radius)
            for column in zip(*(rows[y + dy][radius + dx:radius + dx + 256] for dx, dy in steps))]


opened = [[255 - v for v in grains]]
for radius in (1, 2, 3):
    opened.append(under_disk(under_disk(opened[0], radius, min, 255), radius, max, 0))
taken = [int(voxels) for voxels in re.findall(r"^radius +\d+ takes +(\d+),", output, re.M)]
assert len(taken) == 12 and taken[:3] == [sum(a) - sum(b) for a, b in zip(opened, opened[1:])], taken
assert int(number(r"most is taken at radius (\d+)")) == 1 + taken.index(max(taken))

# Voxels beyond an edge are those of the mirror image: of the next one, the edge itself.
clamped = [max(i - 1, 0) for i in range(256)], range(256), [min(i + 1, 255) for i in range(256)]
taken = [grains[y * 256 + x] - sum(grains[rows[y] * 256 + columns[x]] for rows in clamped for columns in clamped) // 9
         for y in range(256) for x in range(256)]
assert abs(number(r"a box of 3 x 3 takes away ([\d.]+)") - statistics.pstdev(taken)) < 0.006, statistics.pstdev(taken)
assert 0 < number(r"non-local means take away ([\d.]+)") < 10

subprocess.run([host, "convert", data / "cell.png", folder / "cell.qeli"], check=True)
cell = voxels(folder / "cell.qeli")
(folder / "cell.qeli").unlink()
above = [sum(column) for column in zip(cell, cell[550:], cell[1100:])]  # three rows, from the first on
beside = [sum(row) for row in zip(cell, cell[1:], cell[2:])]
steepest = max(math.hypot(above[y * 550 + x + 3] - above[y * 550 + x], beside[at] - beside[at - 1650])
               for y in range(1, 658 - 1) for x in range(547) for at in [(y + 2) * 550 + x + 1]) / 9
assert abs(number(r"steepest edge ([\d.]+)") - steepest) < 0.06, steepest

# Classes of nearest centres are intervals: in ascending order, each class follows the one below.
classes = [(int(count), float(mean)) for count, mean in re.findall(r"label \d: (\d+) voxels of mean intensity (.*)", output)]
ascending, begin = sorted(voxels("head_ct.qeli")), 0
assert len(classes) == 4
for count, mean in classes:
    assert count > 0 and abs(sum(ascending[begin:begin + count]) / count - mean) < 0.051, classes
    begin += count
assert begin == len(ascending)

# Neighbours are alike on bricks and in grains, and not in grass.
measures = {(measure, texture): float(mean) for measure, texture, mean
            in re.findall(r"^(\w+) of (bricks|grass|grains): (.*)$", output, re.M)}
assert len(measures) == 9, measures
assert measures["contrast", "grass"] > 4 * measures["contrast", "bricks"] > 0, measures
assert measures["entropy", "grass"] > max(measures["entropy", other] for other in ("bricks", "grains")), measures
assert 1 > measures["correlation", "grains"] > 0.85 > 0.8 > measures["correlation", "grass"] > 0, measures

# The thickest bone is twice the largest distance from a voxel of bone to the nearest other one, less up to half a step.
deepest, thickest = (float(length) for length in re.search(
    r"deepest voxel ([\d.]+) mm below the surface, thickest bone ([\d.]+) mm", output).groups())
bone = {i for i, v in enumerate(voxels("head_ct.qeli")) if 1300 <= v <= 4095}
around = sorted((math.hypot(3.2 * x, 3.2 * y, 1.5 * z), x, y, z) for x in range(-5, 6) for y in range(-5, 6)
                for z in range(-11, 12))


def distance_to_others(i):
    column, row, plan = i % 64, i // 64 % 64, i // 4096
    return next(d for d, x, y, z in around if not (0 <= column + x < 64 and 0 <= row + y < 64 and 0 <= plan + z < 93)
                or i + x + 64 * y + 4096 * z not in bone)


reach = max(map(distance_to_others, bone))
assert 2 * (reach - 2.8) <= thickest <= 2 * reach + 0.1, (reach, thickest)
assert 20 < deepest < 100, deepest  # the head is 150 mm wide

# Textures, learnt from one mosaic and recognised in another.
accepted, right = (float(share) for share in re.search(
    r"texture: ([\d.]+) % of the voxels recognised, ([\d.]+) % of these rightly", output).groups())
assert accepted > 80 and right > 90, (accepted, right)

# A view is found where it was taken from, within half a pixel or so of the image.
assert math.dist((number(r"found again: first pixel at \(([\d.]+)"), number(r"found again: first pixel at \([\d.]+, ([\d.]+)")),
                 (178, 92)) < 1
assert number(r"planted at \(178, 92\); turned by ([\d.]+) degrees") == 130 and number(r"scaled by ([\d.]+)") == 1.2
off = {name: math.dist((float(x), float(y)), (30, 60))
       for name, x, y in re.findall(r"^(least-\w+) +first pixel at \(([\d.]+), ([\d.]+)\)", output, re.M)}
assert off["least-median"] < 1 < 5 < off["least-squares"], off

assert output.splitlines()[-1] == str(folder)
pictures = re.findall(r'src="([^"]*)"', (folder / "index.html").read_text())
assert len(pictures) == len(set(pictures)) == 52, pictures
assert set(pictures) == {path.name for path in folder.glob("*.png")}
for picture in pictures:
    report = subprocess.run([host, "show", folder / picture], check=True, capture_output=True, text=True).stdout
    assert "sizes = " in report and "_1_1_3\n" in report, report
    # A picture for the eye reaches from near black to near white, or to the full tint.
    extrema = {key: int(value) for key, value in re.findall(r"^(m.nimum|maximum) = (\d+)$", report, re.M)}
    assert extrema["minimum"] < 20 and extrema["maximum"] > 235, (picture, report)

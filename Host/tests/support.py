"""What the tests of the host share: image files made by hand, and runs of the real program."""

import json
import os
import shutil
import struct
import subprocess
import tempfile
import unittest

QUELIDE = os.environ.get("QUELIDE", "quelide")

# name: (number in a raw image file, code of the struct module)
TYPES = {
    "uint8": (0, "B"), "uint16": (1, "H"), "uint32": (2, "I"), "uint64": (3, "Q"),
    "int8": (4, "b"), "int16": (5, "h"), "int32": (6, "i"), "int64": (7, "q"),
    "float32": (8, "f"), "float64": (9, "d"),
}


class Image:
    """Five sizes (columns, rows, plans, times, spectra), and the voxels with the columns fastest."""

    def __init__(self, voxel_type, sizes, voxels, interpretation="value", spacing=(1, 1, 1, 1, 1), units=("", "")):
        self.type = voxel_type
        self.sizes = tuple(sizes)
        self.voxels = list(voxels)
        self.interpretation = interpretation
        self.spacing = tuple(spacing)
        self.units = units

    def count(self):
        total = 1
        for size in self.sizes:
            total *= size
        return total

    def _rows(self):
        """The first voxel of each row, in the order of the file: times, plans, spectra, rows."""
        c, r, p, t, s = self.sizes
        for time in range(t):
            for plan in range(p):
                for spectrum in range(s):
                    for row in range(r):
                        yield (((spectrum * t + time) * p + plan) * r + row) * c

    def header(self):
        number, _ = TYPES[self.type]
        c, r, p, t, s = self.sizes
        head = b"QELI" + struct.pack("<II", 1, 326)
        head += struct.pack("<IBB", number, self.interpretation == "binary", self.interpretation == "label")
        head += struct.pack("<IIIII", c, r, s, p, t)
        for axis, unit in ((0, self.units[0]), (1, self.units[0]), (4, ""), (2, self.units[0]), (3, self.units[1])):
            head += struct.pack("<Id48s", 1, self.spacing[axis], unit.encode())
        return head

    def write_raw(self, path):
        _, code = TYPES[self.type]
        columns = self.sizes[0]
        with open(path, "wb") as file:
            file.write(self.header())
            for start in self._rows():
                file.write(struct.pack("<%d%s" % (columns, code), *self.voxels[start:start + columns]))
        return path

    @staticmethod
    def read_raw(path):
        with open(path, "rb") as file:
            data = file.read()
        assert data[:4] == b"QELI", data[:4]
        number, binary, label, c, r, s, p, t = struct.unpack_from("<IBBIIIII", data, 12)
        names = {value[0]: name for name, value in TYPES.items()}
        code = TYPES[names[number]][1]
        calibrations = [struct.unpack_from("<Id48s", data, 38 + 60 * i) for i in range(5)]
        spacing = [value / divisor for divisor, value, _ in calibrations]
        image = Image(names[number], (c, r, p, t, s), [None] * (c * r * p * t * s),
                      "binary" if binary else "label" if label else "value",
                      (spacing[0], spacing[1], spacing[3], spacing[4], spacing[2]),
                      (calibrations[0][2].rstrip(b"\0").decode(), calibrations[4][2].rstrip(b"\0").decode()))
        offset = 338
        for start in image._rows():
            image.voxels[start:start + c] = struct.unpack_from("<%d%s" % (c, code), data, offset)
            offset += struct.calcsize(code) * c
        assert offset == len(data), "the file has another length than its header says"
        return image


def write_pgm(path, columns, rows, voxels):
    with open(path, "wb") as file:
        file.write(b"P5\n%d %d\n255\n" % (columns, rows) + bytes(voxels))
    return path


def write_ppm(path, columns, rows, voxels):
    """`voxels`: red, green, blue of the first pixel, and so on."""
    with open(path, "wb") as file:
        file.write(b"P6\n%d %d\n255\n" % (columns, rows) + bytes(voxels))
    return path


def extremes(voxel_type):
    """A few voxels that a wrong conversion changes."""
    if voxel_type == "float32":
        return [0.0, -1.5, 0.5, 300.75, 3.4028234663852886e38, -16777216.0]
    if voxel_type == "float64":
        return [0.0, -1.5, 0.1, 300.7, 1.7976931348623157e308, 9007199254740993.0]
    bits = int(voxel_type.lstrip("uint"))
    low, high = (0, 2 ** bits - 1) if voxel_type[0] == "u" else (-2 ** (bits - 1), 2 ** (bits - 1) - 1)
    return [low, high, 0, 1, high - 1, high // 3]


class Finished:
    def __init__(self, status, out, err):
        self.status = status
        self.out = out
        self.err = err

    def json(self):
        return json.loads(self.out)


class HostTest(unittest.TestCase):
    """Each test works in a folder of its own."""

    maxDiff = None

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="quelide-test-")
        self.addCleanup(shutil.rmtree, self.folder)

    def path(self, name):
        return os.path.join(self.folder, name)

    def call(self, *arguments, **options):
        options.setdefault("cwd", self.folder)
        finished = subprocess.run([QUELIDE, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120,
                                  **options)
        return Finished(finished.returncode, finished.stdout.decode(), finished.stderr.decode())

    def good(self, *arguments, **options):
        """A call that must succeed without a word on standard error."""
        finished = self.call(*arguments, **options)
        self.assertEqual((0, ""), (finished.status, finished.err), arguments)
        return finished

    def refused(self, *arguments):
        """A call that must end with status 2, one line on standard error and nothing on standard output."""
        finished = self.call(*arguments)
        self.assertEqual(2, finished.status, (arguments, finished.err))
        self.assertEqual("", finished.out)
        self.assertEqual(1, finished.err.count("\n"), finished.err)
        self.assertTrue(finished.err.endswith("\n"))
        return finished.err

    def failed(self, *arguments, **options):
        """A call that must end with status 1 and nothing on standard output."""
        finished = self.call(*arguments, **options)
        self.assertEqual((1, ""), (finished.status, finished.out), (arguments, finished.err))
        self.assertNotEqual("", finished.err)
        return finished.err

    def raw(self, name):
        """The voxels of any image file that the program can read."""
        if not name.endswith(".qeli"):
            self.good("convert", name, "probe-of-test.qeli")
            image = Image.read_raw(self.path("probe-of-test.qeli"))
            os.remove(self.path("probe-of-test.qeli"))
            return image
        return Image.read_raw(self.path(name))

    def files(self):
        return sorted(os.listdir(self.folder))


def main():
    unittest.main(verbosity=2)

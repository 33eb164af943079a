"""quelide convert and show: image files in and out."""

import math
import os
import random
import resource
import struct
import subprocess
import unittest

from support import QUELIDE, TYPES, HostTest, Image, extremes, main, write_pgm, write_ppm

# What the formats can hold without loss, and what they cannot (some writers would change it without a word).
HELD = {
    "tif": ("uint8", "uint16", "uint32", "int8", "int16", "int32", "float32", "float64"),
    "png": ("uint8", "uint16"),
    "exr": ("uint32", "float32"),
    "pgm": ("uint8",),
    "fits": ("int32",),
}
NOT_HELD = {
    "tif": ("uint64", "int64"),
    "png": ("uint32", "uint64", "int8", "int64", "float32"),
    "exr": ("uint8", "uint64", "float64"),
    "pgm": ("uint16",),
    "fits": ("int8", "uint16", "int64"),
}


class ConvertTest(HostTest):
    def write_extremes(self, voxel_type):
        voxels = extremes(voxel_type)
        Image(voxel_type, (3, 2, 1, 1, 1), voxels).write_raw(self.path("in.qeli"))
        return voxels

    def test_a_type_that_the_format_holds_comes_back_as_it_was(self):
        for extension, types in HELD.items():
            for voxel_type in types:
                with self.subTest(extension, type=voxel_type):
                    voxels = self.write_extremes(voxel_type)
                    self.assertEqual("", self.good("convert", "in.qeli", "out." + extension).out)
                    back = self.raw("out." + extension)
                    self.assertEqual((voxel_type, (3, 2, 1, 1, 1), voxels), (back.type, back.sizes, back.voxels))

    def test_a_type_that_the_format_cannot_hold_is_refused(self):
        for extension, types in NOT_HELD.items():
            for voxel_type in types:
                with self.subTest(extension, type=voxel_type):
                    self.write_extremes(voxel_type)
                    error = self.failed("convert", "in.qeli", "out." + extension)
                    self.assertIn(voxel_type, error)
                    self.assertIn("type=", error)
                    self.assertEqual(["in.qeli"], self.files())

    def test_raw_images_keep_everything(self):
        for voxel_type in TYPES:
            for interpretation in ("binary", "label", "value"):
                voxels = extremes(voxel_type) * 10
                Image(voxel_type, (3, 2, 2, 1, 5), voxels, interpretation, (0.5, 2, 3, 4, 5), ("mm", "s")).write_raw(
                    self.path("in.qeli"))
                self.good("convert", "in.qeli", "out.qeli")
                with open(self.path("in.qeli"), "rb") as a, open(self.path("out.qeli"), "rb") as b:
                    self.assertEqual(a.read(), b.read())

    def test_the_output_is_cast_by_a_plain_cast(self):
        Image("float64", (4, 1, 1, 1, 1), [300.7, -1.5, math.nan, 1e10]).write_raw(self.path("in.qeli"))
        self.good("convert", "in.qeli", "out.png,type=uint8")
        self.assertEqual([44, 255, 0, 0], self.raw("out.png").voxels)
        self.good("convert", "in.qeli", "out.tif,type=int32")
        self.assertEqual([300, -1, -2 ** 31, -2 ** 31], self.raw("out.tif").voxels)
        self.good("convert", "in.qeli,type=int16", "out.qeli,type=float32,interpretation=label")
        back = self.raw("out.qeli")
        self.assertEqual(("float32", "label", [300, -1, 0, 0]), (back.type, back.interpretation, back.voxels))

    def test_channels_are_spectral_series(self):
        for extension, channels in (("ppm", (3,)), ("png", (2, 3, 4)), ("tif", (2, 4, 11)), ("tga", (4,)),
                                    ("exr", (2, 4, 11))):
            for count in channels:
                with self.subTest(extension, channels=count):
                    voxel_type = "float32" if extension == "exr" else "uint8"
                    # The last channel of four is no alpha that the others are multiplied by.
                    image = Image(voxel_type, (4, 3, 1, 1, count), [(i * 5) % 251 for i in range(12 * count)])
                    image.write_raw(self.path("in.qeli"))
                    self.good("convert", "in.qeli", "out." + extension)
                    back = self.raw("out." + extension)
                    self.assertEqual(image.sizes, back.sizes)
                    self.assertEqual(image.voxels, back.voxels)

    def test_a_shape_that_the_format_lacks_is_refused(self):
        Image("uint8", (2, 2, 1, 1, 5), range(20)).write_raw(self.path("in.qeli"))
        self.assertIn("png", self.failed("convert", "in.qeli", "out.png"))
        Image("uint8", (2, 2, 3, 1, 1), range(12)).write_raw(self.path("in.qeli"))
        self.assertIn("one page, and the image has 3", self.failed("convert", "in.qeli", "out.png"))
        Image("uint8", (0, 2, 3, 1, 1), []).write_raw(self.path("in.qeli"))
        self.assertIn("empty", self.failed("convert", "in.qeli", "out.png"))
        self.assertEqual(["in.qeli"], self.files())

    def test_plans_are_pages(self):
        for extension, voxel_type, channels in (("tif", "int16", 1), ("tif", "uint16", 3), ("exr", "float32", 1)):
            with self.subTest(extension, channels=channels):
                count = 5 * 4 * 7 * channels
                image = Image(voxel_type, (5, 4, 7, 1, channels), [i * 3 for i in range(count)])
                image.write_raw(self.path("in.qeli"))
                self.good("convert", "in.qeli", "out." + extension)
                back = self.raw("out." + extension)
                self.assertEqual((image.sizes, image.voxels), (back.sizes, back.voxels))

    def test_time_series_follow_each_other_as_pages(self):
        image = Image("uint8", (3, 2, 2, 2, 1), range(24))
        image.write_raw(self.path("in.qeli"))
        self.good("convert", "in.qeli", "out.tif")
        back = self.raw("out.tif")
        self.assertEqual(((3, 2, 4, 1, 1), image.voxels), (back.sizes, back.voxels))

    def test_many_rows_and_wide_rows_arrive_in_their_place(self):
        random.seed(3)
        for columns, rows in ((1, 5000), (5000, 3), (1031, 1025)):
            voxels = random.choices(range(65536), k=columns * rows)
            Image("uint16", (columns, rows, 1, 1, 1), voxels).write_raw(self.path("in.qeli"))
            for extension in ("png", "tif"):
                self.good("convert", "in.qeli", "out." + extension)
                self.assertEqual(voxels, self.raw("out." + extension).voxels)

    def test_half_floats_become_float32(self):
        self.write_half_tiff("half.tif", [0x3c00, 0xc000, 0x7bff, 0x0001])
        back = self.raw("half.tif")
        self.assertEqual(("float32", [1.0, -2.0, 65504.0, 2.0 ** -24]), (back.type, back.voxels))

    def test_pages_of_different_sizes_are_refused(self):
        self.write_tiff("odd.tif", [(2, 2, bytes(4)), (3, 1, bytes(3))])
        self.assertIn("page 2", self.failed("convert", "odd.tif", "out.qeli"))

    def test_a_voxel_spacing_that_nobody_told_is_one(self):
        write_pgm(self.path("in.pgm"), 2, 1, [1, 2])
        self.assertEqual((1, 1, 1, 1, 1), self.raw("in.pgm").spacing)

    def test_keys_of_both_sides_are_checked(self):
        write_pgm(self.path("in.pgm"), 2, 1, [1, 2])
        self.assertIn('"type"', self.refused("convert", "in.pgm", "out.png,tpe=uint8"))
        self.assertIn('"int16"', self.refused("convert", "in.pgm", "out.png,type=in16"))
        self.refused("convert", "in.pgm", "out.png,size=1_1_1_1_1")
        self.refused("convert", "in.pgm", "out.png,spacing=1_1_1")
        self.assertIn("writable", self.refused("convert", "in.pgm", "out"))
        self.assertIn('"tiff"', self.refused("convert", "in.pgm", "out.tifff"))
        self.refused("convert", "null", "out.png")

    def test_broken_files_are_told_and_leave_nothing(self):
        write_pgm(self.path("in.pgm"), 50, 50, [i % 256 for i in range(2500)])
        self.good("convert", "in.pgm", "good.png")
        self.good("convert", "in.pgm", "good.tif")
        self.good("convert", "in.pgm", "good.qeli")
        for name in ("good.png", "good.tif", "good.qeli", "in.pgm"):
            with open(self.path(name), "rb") as file:
                data = file.read()
            for length in (0, 3, 10, len(data) // 2, len(data) - 2):
                broken = "broken" + os.path.splitext(name)[1]
                with open(self.path(broken), "wb") as file:
                    file.write(data[:length])
                before = self.files()
                with self.subTest(name, length=length):
                    finished = self.call("convert", broken, "out.qeli")
                    self.assertIn(finished.status, (0, 1) if name.endswith(("png", "pgm", "tif")) else (1,))
                    if finished.status == 1:
                        self.assertNotEqual("", finished.err)
                        self.assertEqual(before, self.files())
                    else:
                        # Cut in its trailer only: the voxels were all there.
                        self.assertEqual(len(data) - 2, length)
                        os.remove(self.path("out.qeli"))

    def test_a_raw_image_that_cannot_be_read_is_told_in_the_words_of_the_library(self):
        error = self.failed("convert", "missing.qeli", "out.png")
        self.assertRegex(error, '^Runtime error :\n#1 Error : Cannot read the file: missing.qeli[.]\t System error: '
                         "No such file or directory \n#2 From LoadQelRawImage \n$")
        self.assertIn("missing.png", self.failed("convert", "missing.png", "out.png"))

    @unittest.skipIf(os.environ.get("QUELIDE_SANITIZE"), "sanitizers keep freed memory for a while")
    def test_a_volume_is_in_memory_once(self):
        columns, rows, plans = 4096, 1024, 32
        header = Image("uint8", (columns, rows, plans, 1, 1), []).header()
        with open(self.path("large.qeli"), "wb") as file:
            file.write(header)
            file.truncate(len(header) + columns * rows * plans)
        for source, target in (("large.qeli", "large.tif"), ("large.tif", "copy.qeli,type=uint8"),
                               ("large.tif", "copy.tif,type=int8")):
            peak = self.peak_memory("convert", source, target)
            self.assertLess(peak, 1.5 * columns * rows * plans + (80 << 20), (source, target))

    def peak_memory(self, *arguments):
        process = subprocess.Popen([QUELIDE, *arguments], cwd=self.folder)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = status
        self.assertEqual(0, status)
        return usage.ru_maxrss * 1024

    def write_tiff(self, name, pages, bits=8, sample_format=1):
        """Grey pages of (columns, rows, bytes), without compression."""
        data = b"II*\0"
        offset = 8
        body = b""
        for index, (columns, rows, voxels) in enumerate(pages):
            entries = [(256, 4, columns), (257, 4, rows), (258, 3, bits), (259, 3, 1), (262, 3, 1),
                       (273, 4, offset), (277, 3, 1), (278, 4, rows), (279, 4, len(voxels)), (339, 3, sample_format)]
            directory = offset + len(voxels)
            following = directory + 2 + 12 * len(entries) + 4
            if index == 0:
                data += struct.pack("<I", directory)
            body += voxels + struct.pack("<H", len(entries))
            for tag, kind, value in entries:
                body += struct.pack("<HHII", tag, kind, 1, value)
            last = index + 1 == len(pages)
            next_directory = 0 if last else following + len(pages[index + 1][2])
            body += struct.pack("<I", next_directory)
            offset = following
        with open(self.path(name), "wb") as file:
            file.write(data + body)

    def write_half_tiff(self, name, halves):
        self.write_tiff(name, [(len(halves), 1, struct.pack("<%dH" % len(halves), *halves))], 16, 3)


class ShowTest(HostTest):
    def test_an_image_is_shown_with_its_calibration_and_extrema(self):
        Image("int16", (3, 2, 1, 1, 1), [5, -7, 0, 1, 2, 300], "label", (0.5, 0.25, 2, 1, 1), ("mm", "s")).write_raw(
            self.path("in.qeli"))
        self.assertEqual(
            "kind = image\n"
            "sizes = 3_2_1_1_1\n"
            "type = int16\n"
            "interpretation = label\n"
            "spacing = 0.5_0.25_2_1_1\n"
            "origin = 0_0_0_0_0\n"
            "spatialUnit = mm\n"
            "temporalUnit = s\n"
            "minimum = -7\n"
            "maximum = 300\n", self.good("show", "in.qeli").out)

    def test_json_says_the_same(self):
        Image("float32", (2, 1, 1, 1, 1), [-0.1, math.inf]).write_raw(self.path("in.qeli"))
        shown = self.good("show", "in.qeli", "--json").json()
        self.assertEqual({"kind": "image", "sizes": [2, 1, 1, 1, 1], "type": "float32", "interpretation": "value",
                          "spacing": [1, 1, 1, 1, 1], "origin": [0, 0, 0, 0, 0], "spatialUnit": "",
                          "temporalUnit": "", "minimum": -0.10000000149011612, "maximum": "Infinity"}, shown)

    def test_a_picture_is_shown(self):
        write_ppm(self.path("in.ppm"), 2, 1, [1, 2, 3, 4, 5, 6])
        shown = self.good("show", "in.ppm", "--json").json()
        self.assertEqual([2, 1, 1, 1, 3], shown["sizes"])
        self.assertEqual((1, 6), (shown["minimum"], shown["maximum"]))

    def test_an_empty_image_has_no_extrema(self):
        Image("uint8", (0, 4, 1, 1, 1), []).write_raw(self.path("in.qeli"))
        shown = self.good("show", "in.qeli", "--json").json()
        self.assertEqual([0, 4, 1, 1, 1], shown["sizes"])
        self.assertNotIn("minimum", shown)

    def test_an_object_file_is_shown_with_its_kind(self):
        with open(self.path("model.qelo"), "wb") as file:
            file.write(b"QELO" + struct.pack("<Q", 9) + b"SomeClass" + bytes(20))
        self.assertEqual("kind = SomeClass\n", self.good("show", "model.qelo").out)
        self.assertEqual({"kind": "SomeClass"}, self.good("show", "model.qelo", "--json").json())

    def test_broken_object_files_are_errors(self):
        for content in (b"QELO", b"QELO" + struct.pack("<Q", 2 ** 63) + b"x", b"QELO" + struct.pack("<Q", 9) + b"Some",
                        b"QELO" + struct.pack("<Q", 0)):
            with open(self.path("model.qelo"), "wb") as file:
                file.write(content)
            self.assertIn("damaged", self.failed("show", "model.qelo"))

    def test_what_is_no_image_is_an_error(self):
        with open(self.path("text.png"), "w") as file:
            file.write("no image")
        self.assertIn("text.png", self.failed("show", "text.png"))
        self.assertIn("missing.png", self.failed("show", "missing.png"))
        self.failed("show", self.folder)

    def test_a_header_that_promises_too_much_takes_no_memory(self):
        with open(self.path("huge.qeli"), "wb") as file:
            file.write(Image("float64", (2 ** 31, 2 ** 31, 2 ** 20, 1, 1), []).header() + bytes(100))
        self.assertIn("huge.qeli", self.failed("show", "huge.qeli"))


class AtomicTest(HostTest):
    """An older file stays as it was until a run has succeeded, and no temporary file is left."""

    def setUp(self):
        super().setUp()
        random.seed(4)
        self.voxels = random.choices(range(256), k=300 * 300)
        write_pgm(self.path("in.pgm"), 300, 300, self.voxels)

    def older(self, name):
        with open(self.path(name), "wb") as file:
            file.write(b"older")

    def assert_older(self, *names):
        for name in names:
            with open(self.path(name), "rb") as file:
                self.assertEqual(b"older", file.read(), name)
        self.assertEqual([], [name for name in self.files() if name.startswith(".")])

    def test_a_successful_run_replaces_the_older_file(self):
        self.older("out.png")
        os.chmod(self.path("out.png"), 0o640)
        self.good("run", "CopyImage", "input=in.pgm", "output=out.png")
        self.assertEqual(self.voxels, self.raw("out.png").voxels)
        self.assertEqual(0o640, os.stat(self.path("out.png")).st_mode & 0o777)
        self.assertEqual(["in.pgm", "out.png"], self.files())

    def test_the_input_file_can_be_the_output_file(self):
        self.good("convert", "in.pgm", "same.qeli")
        self.good("run", "InvertImage", "input=same.qeli", "numOfBits=8", "output=same.qeli")
        self.assertEqual([255 - v for v in self.voxels], self.raw("same.qeli").voxels)

    def test_a_refused_parameter_keeps_the_older_file(self):
        self.older("out.png")
        self.failed("run", "CopyImage", "output=out.png")
        self.failed("run", "Threshold", "input=in.pgm", "output=out.png,type=float32")
        self.refused("run", "CopyImage", "input=in.pgm", "output=out.png", "outptu=x")
        self.assert_older("out.png")

    def test_an_image_that_the_format_cannot_hold_keeps_the_older_file(self):
        self.older("out.png")
        error = self.failed("run", "CopyImage", "input=in.pgm,type=float32", "output=out.png")
        self.assertIn("png holds no float32", error)
        self.assertIn("type=", error)
        self.assert_older("out.png")

    def test_a_disk_that_fills_up_keeps_the_older_file(self):
        for name in ("out.png", "out.tif", "out.exr", "out.qeli", "out.bmp", "out.pgm", "out.tga"):
            with self.subTest(name):
                self.older(name)
                source = "in.pgm,type=float32" if name == "out.exr" else "in.pgm"
                error = self.failed("convert", source, name, preexec_fn=lambda: resource.setrlimit(
                    resource.RLIMIT_FSIZE, (20000, 20000)))
                self.assertIn(name, error)
                self.assert_older(name)

    def test_a_small_file_on_a_full_disk_is_noticed(self):
        write_pgm(self.path("small.pgm"), 30, 30, self.voxels[:900])
        for name in ("out.png", "out.tif", "out.exr", "out.qeli", "out.bmp", "out.pgm", "out.tga"):
            with self.subTest(name):
                self.older(name)
                source = "small.pgm,type=float32" if name == "out.exr" else "small.pgm"
                self.failed("convert", source, name, preexec_fn=lambda: resource.setrlimit(
                    resource.RLIMIT_FSIZE, (200, 200)))
                self.assert_older(name)

    def test_of_two_outputs_none_is_stored_when_one_fails(self):
        self.older("a.qeli")
        self.older("b.png")
        self.failed("run", "CopyImage", "input=in.pgm,type=float32", "output=b.png")
        self.failed("run", "InvertImage", "input=@output", "numOfBits=8", "output=a.qeli,type=int32,size=4_4_1_1_1",
                    "--level=gpu")
        self.assert_older("a.qeli", "b.png")

    def test_two_outputs_cannot_have_one_path(self):
        self.assertIn("out.png", self.refused("run", "InvertImage", "input=@output,save=out.png", "output=./out.png"))

    def test_a_path_that_cannot_be_written_is_told_before_the_run(self):
        os.mkdir(self.path("folder.png"))
        self.assertIn("not a regular file", self.failed("run", "CopyImage", "input=in.pgm", "output=folder.png"))
        self.assertIn("No such file", self.failed("run", "CopyImage", "input=in.pgm", "output=no/where/out.png"))
        os.symlink("/dev/full", self.path("full.qeli"))
        self.assertIn("not a regular file", self.failed("run", "CopyImage", "input=in.pgm", "output=full.qeli"))

    def test_a_link_stays_a_link(self):
        os.mkdir(self.path("folder"))
        os.symlink("folder/target.png", self.path("link.png"))
        self.older("folder/target.png")
        self.good("run", "CopyImage", "input=in.pgm", "output=link.png")
        self.assertTrue(os.path.islink(self.path("link.png")))
        self.assertEqual(self.voxels, self.raw("folder/target.png").voxels)
        self.assertEqual(["target.png"], os.listdir(self.path("folder")))


if __name__ == "__main__":
    main()

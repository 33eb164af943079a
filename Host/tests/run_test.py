"""quelide run: values, images, results, levels, errors."""

import math
import os
import pty
import random
import struct
import subprocess

from support import QUELIDE, HostTest, Image, main, write_pgm, write_ppm


class ValueTest(HostTest):
    def setUp(self):
        super().setUp()
        self.voxels = [random.Random(1).randrange(256) for _ in range(37 * 11)]
        write_pgm(self.path("in.pgm"), 37, 11, self.voxels)

    def test_numbers_reach_the_algorithm(self):
        self.good("run", "Threshold", "input=in.pgm", "lowLevel=100", "highLevel=200.5", "output=out.qeli")
        out = self.raw("out.qeli")
        self.assertEqual([1 if 100 <= v <= 200.5 else 0 for v in self.voxels], out.voxels)
        self.assertEqual(("uint8", "binary", (37, 11, 1, 1, 1)), (out.type, out.interpretation, out.sizes))

    def test_an_enumeration_takes_a_label_or_its_number(self):
        for value in ("GREATER_THAN", "4"):
            self.good("run", "ThresholdByCriterion", "input=in.pgm", "criterion=" + value, "value=127.5",
                      "output=out.qeli")
            self.assertEqual([int(v > 127.5) for v in self.voxels], self.raw("out.qeli").voxels)

    def test_members_that_are_no_listed_properties_take_values(self):
        self.good("run", "InvertImage", "input=in.pgm", "numOfBits=4", "output=out.qeli")
        self.assertEqual([~v & 15 for v in self.voxels], self.raw("out.qeli").voxels)
        self.good("run", "BitShift", "input=in.pgm", "shiftCount=3", "shiftRight=true", "output=out.qeli")
        self.assertEqual([v >> 3 for v in self.voxels], self.raw("out.qeli").voxels)
        self.good("run", "BitShift", "input=in.pgm", "shiftCount=1", "shiftRight=false", "output=out.qeli")
        self.assertEqual([v << 1 & 255 for v in self.voxels], self.raw("out.qeli").voxels)

    def test_strings_and_booleans_reach_the_algorithm(self):
        self.good("run", "SaveQelRawImage", "input=in.pgm", "filePath=direct.qeli")
        self.assertEqual(self.voxels, self.raw("direct.qeli").voxels)
        self.failed("run", "SaveQelRawImage", "input=in.pgm", "filePath=direct.qeli", "overwrite=false")
        self.good("run", "SaveQelRawImage", "input=in.pgm", "filePath=direct.qeli", "overwrite=true")

    def test_kernels_reach_the_algorithm(self):
        self.good("run", "FiniteImpulseResponseFilter2D", "input=in.pgm", "kernel2D=@kernel2D:0_0_1+0_0_-3",
                  "output=out.qeli")
        out = self.raw("out.qeli")
        self.assertEqual("int16", out.type)
        self.assertEqual([-2 * v for v in self.voxels], out.voxels)
        self.assertIn("such as @kernel2D:0_0_1",
                      self.refused("run", "FiniteImpulseResponseFilter2D", "kernel2D=0_0_1"))

    def test_look_up_tables_reach_the_algorithm(self):
        binary = [v % 2 for v in self.voxels]
        Image("uint8", (37, 11, 1, 1, 1), binary, "binary").write_raw(self.path("in.qeli"))
        with open(self.path("lone.lut"), "wb") as file:
            file.write(b"head" + bytes(pattern == 1 for pattern in range(512)))
        self.good("run", "ApplyMorphologicalLut2D", "input=in.qeli", "morphologicalLut=@path:lone.lut", "output=out.qeli")

        def at(x, y):
            return binary[y * 37 + x] if 0 <= x < 37 and 0 <= y < 11 else 0

        around = [(x, y) for y in (-1, 0, 1) for x in (-1, 0, 1) if (x, y) != (0, 0)]
        expected = [int(at(x, y) == 1 and not any(at(x + dx, y + dy) for dx, dy in around))
                    for y in range(11) for x in range(37)]
        self.assertEqual(expected, self.raw("out.qeli").voxels)
        self.assertIn("@path:FILE", self.refused("run", "ApplyMorphologicalLut2D", "morphologicalLut=lone.lut"))
        for name, text in (("missing", "missing: No such file or directory"), (".", ".: Is a directory"),
                           ("in.qeli", "instead of 516")):
            self.assertIn(text, self.failed("run", "ApplyMorphologicalLut2D", "input=in.qeli",
                                            "morphologicalLut=@path:" + name, "output=out.qeli"))

    def test_line_sets_are_printed_and_stored(self):
        voxels = [int(2 <= x <= 9 and 2 <= y <= 4 and 2 <= z <= 4) for z in range(7) for y in range(7) for x in range(12)]
        Image("uint8", (12, 7, 7, 1, 1), voxels, interpretation="binary").write_raw(self.path("in.qeli"))
        run = ("run", "CenterLine3D", "input=in.qeli", "outputImage=out.qeli", "smoothingIteration=0")
        lines = self.good(*run, "--json").json()["outputLineSet"]
        self.assertEqual(["coords", "indices"], list(lines))
        self.assertEqual(-1, lines["indices"][-1])
        count = len(lines["coords"])
        self.assertEqual(list(range(count)) + [-1], lines["indices"])
        image = self.raw("out.qeli")
        self.assertEqual(count, sum(image.voxels))
        for x, y, z in lines["coords"]:
            self.assertEqual(1, image.voxels[(int(z) * 7 + int(y)) * 12 + int(x)])

        self.assertIn('outputLineSet = {"coords": [[', self.good(*run, "outputLineSet=lines.qelo").out)
        with open(self.path("lines.qelo"), "rb") as file:
            content = file.read()
        self.assertEqual(b"QELO" + struct.pack("<Q", 9) + b"LineSet3D" + struct.pack("<Q", count), content[:29])
        self.assertEqual("kind = LineSet3D\nvertices = %d\nlines = 1\n" % count, self.good("show", "lines.qelo").out)
        self.assertEqual({"kind": "LineSet3D", "vertices": count, "lines": 1},
                         self.good("show", "lines.qelo", "--json").json())
        self.good(*run, "outputLineSet=lines.txt")
        with open(self.path("lines.txt")) as file:
            self.assertTrue(file.read().startswith("# Zolva 3D ASCII 2.0\n\ndefine Lines %d\n" % (count + 1)))

        self.assertIn("output outputLineSet: output line set, default null\n", self.good("info", "CenterLine3D").out)
        self.assertIn('"outputLineSet" must be set', self.failed(*run, "outputLineSet=null"))
        self.assertIn(".qelo", self.refused(*run, "outputLineSet=lines.vtk"))
        with open(self.path("bad.qelo"), "wb") as file:
            file.write(content[:-1])
        self.assertIn("The <bad.qelo> file is corrupted.", self.failed("show", "bad.qelo"))

    def test_directions_on_a_sphere_are_printed(self):
        self.assertEqual("directionSamplesVec = @v:@v2:0_0#@v2:3.141592653589793_3.141592653589793\n",
                         self.good("run", "SphereSampling", "nbDesiredSamples=1").out)
        out = self.good("run", "SphereSampling", "nbDesiredSamples=101", "samplingMode=HALF_SPHERE", "--json").json()
        self.assertEqual(150, len(out["directionSamplesVec"]))

    def test_landmarks_reach_the_algorithm_and_transformations_are_printed(self):
        model = "model=@v:@v2:0_0#@v2:2_0#@v2:0_2"
        data = "data=@v:@v2:5_7#@v2:5_9#@v2:3_7"  # turned by a quarter and shifted
        run = ("run", "LandmarkRegistration2D", model, data)
        lines = self.good(*run, "transformationType=RIGID").out.splitlines()
        self.assertEqual(1, len(lines))
        self.assertTrue(lines[0].startswith('outputTransformation = {"class": "RigidTransformation2D", "parameters": ['))
        expected = {"TRANSLATION": ("Translation2D", [4.333333333333333 - 2 / 3, 7.666666666666667 - 2 / 3]),
                    "RIGID": ("RigidTransformation2D", [5, 7, math.pi / 2]),
                    "AFFINE": ("AffineTransformation2D", [5, 7, 0, -1, 1, 0])}
        for type, (name, parameters) in expected.items():
            result = self.good(*run, "transformationType=" + type, "--json").json()["outputTransformation"]
            self.assertEqual(name, result["class"])
            self.assertEqual(len(parameters), len(result["parameters"]))
            for a, b in zip(parameters, result["parameters"]):
                self.assertAlmostEqual(a, b, 12)
        for type, name, count in (("PROJECTIVE", "ProjectiveTransformation2D", 8),
                                  ("POLYNOMIAL_2", "PolynomialOrder2Transformation2D", 12),
                                  ("POLYNOMIAL_3", "PolynomialOrder3Transformation2D", 20)):
            points = "@v:" + "#".join(f"@v2:{i % 5}_{i * i % 7}" for i in range(40))
            result = self.good("run", "LandmarkRegistration2D", "model=" + points, "data=" + points,
                               "transformationType=" + type, "robustEstimation=true", "--json").json()
            self.assertEqual(name, result["outputTransformation"]["class"])
            self.assertEqual(count, len(result["outputTransformation"]["parameters"]))
        self.assertIn("takes no value", self.refused(*run, "outputTransformation=out.txt"))
        self.assertIn("such as @v:@v2:", self.refused("run", "LandmarkRegistration2D", "model=1,2"))

    def test_transformations_of_space_are_printed_with_their_matrix(self):
        model = "model=@v:@v3:0_0_0#@v3:2_0_0#@v3:0_2_0#@v3:0_0_3"
        data = "data=@v:@v3:5_7_1#@v3:5_9_1#@v3:3_7_1#@v3:5_7_4"
        for type, name in (("TRANSLATION", "Translation3D"), ("RIGID", "RigidTransformation3D"),
                           ("AFFINE", "AffineTransformation3D")):
            result = self.good("run", "LandmarkRegistration3D", model, data, "transformationType=" + type, "--json")
            result = result.json()["outputTransformation"]
            self.assertEqual({"class", "translation", "matrix"}, set(result))
            self.assertEqual(name, result["class"])
            matrix = [1, 0, 0, 0, 1, 0, 0, 0, 1] if type == "TRANSLATION" else [0, -1, 0, 1, 0, 0, 0, 0, 1]
            shift = [4, 7, 1] if type == "TRANSLATION" else [5, 7, 1]
            for a, b in zip(matrix + shift, result["matrix"] + result["translation"]):
                self.assertAlmostEqual(a, b, 12)

    def test_values_that_do_not_fit_are_refused(self):
        self.assertIn("lowLevel", self.refused("run", "Threshold", "lowLevel=3px"))
        self.assertIn("lowLevel", self.refused("run", "Threshold", "lowLevel="))
        self.assertIn("numOfBits", self.refused("run", "InvertImage", "numOfBits=-1"))
        self.assertIn("numOfBits", self.refused("run", "InvertImage", "numOfBits=4294967296"))
        self.assertIn("value", self.refused("run", "ThresholdByCriterion", "value=1.2.3"))
        self.assertIn('"true"', self.refused("run", "BitShift", "shiftRight=treu"))
        self.assertIn('"GREATER_THAN"', self.refused("run", "ThresholdByCriterion", "criterion=GREATER_THEN"))
        self.refused("run", "ThresholdByCriterion", "criterion=6")

    def test_names_that_do_not_exist_are_refused_with_the_nearest(self):
        self.assertIn('"Threshold"', self.refused("run", "Thresold"))
        self.assertEqual('quelide: no property "lowlevel"; the nearest is "lowLevel"\n',
                         self.refused("run", "Threshold", "lowlevel=3"))
        self.assertIn('"numOfBits"', self.refused("run", "InvertImage", "numBits=3"))
        self.assertIn("NAME=VALUE", self.refused("run", "Threshold", "lowLevel"))
        self.assertIn("twice", self.refused("run", "Threshold", "lowLevel=3", "lowLevel=4"))
        self.assertIn("outputMean", self.refused("run", "IntensityStatistics", "outputMean=3"))

    def test_options_that_do_not_fit_are_refused(self):
        self.assertIn('"sse"', self.refused("run", "Threshold", "--level=see"))
        for threads in ("0", "-1", "two", "1.5", ""):
            self.refused("run", "Threshold", "--threads=" + threads)
        self.refused("run", "Threshold", "--extra-memory=much")


class ResultTest(HostTest):
    def test_results_are_printed_one_a_line_in_declaration_order(self):
        write_pgm(self.path("in.pgm"), 4, 1, [1, 2, 3, 10])
        self.assertEqual(
            "outputMinimum = 1\n"
            "outputMaximum = 10\n"
            "outputMean = 4.0\n"
            "outputSumOfIntensityValues = 16.0\n"
            "outputSumOfSquaredIntensityValues = 114.0\n"
            "outputStandardDeviation = 3.5355339059327378\n",
            self.good("run", "IntensityStatistics", "input=in.pgm").out)

    def test_json_is_one_object_of_numbers(self):
        write_pgm(self.path("in.pgm"), 3, 1, [0, 0, 1])
        out = self.good("run", "IntensityStatistics", "input=in.pgm", "--json").out
        self.assertEqual(
            '{"outputMinimum": 0, "outputMaximum": 1, "outputMean": 0.33333333333333331, '
            '"outputSumOfIntensityValues": 1.0, "outputSumOfSquaredIntensityValues": 1.0, '
            '"outputStandardDeviation": 0.47140452079103168}\n', out)

    def test_64_bit_integers_are_exact(self):
        for voxel_type, low, high in (("uint64", 2 ** 63 + 1, 2 ** 64 - 1), ("int64", -2 ** 63, 2 ** 63 - 1)):
            Image(voxel_type, (2, 1, 1, 1, 1), [low, high]).write_raw(self.path("in.qeli"))
            result = self.good("run", "IntensityExtrema", "input=in.qeli", "--json").json()
            self.assertEqual({"outputMinimum": low, "outputMaximum": high}, result)

    def test_numbers_that_are_not_finite_are_strings(self):
        Image("float64", (3, 1, 1, 1, 1), [math.inf, 0.1, -math.inf]).write_raw(self.path("in.qeli"))
        result = self.good("run", "IntensityStatistics", "input=in.qeli", "--json").json()
        self.assertEqual("-Infinity", result["outputMinimum"])
        self.assertEqual("Infinity", result["outputMaximum"])
        self.assertEqual("NaN", result["outputMean"])
        self.assertEqual("Infinity", result["outputSumOfSquaredIntensityValues"])

    def test_a_stored_image_is_told_with_path_type_and_sizes(self):
        write_pgm(self.path("in.pgm"), 5, 4, range(20))
        finished = self.good("run", "Threshold", "input=in.pgm", "output=out.tif,type=int16")
        self.assertEqual("output = out.tif int16 5_4_1_1_1\n", finished.out)

    def test_json_has_no_entry_for_an_image(self):
        write_pgm(self.path("in.pgm"), 5, 4, range(20))
        self.assertEqual("{}\n", self.good("run", "Threshold", "input=in.pgm", "output=out.png", "--json").out)

    def test_a_full_standard_output_is_an_error(self):
        with open("/dev/full", "wb") as full:
            finished = subprocess.run([QUELIDE, "list"], stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(1, finished.returncode)
        self.assertIn(b"standard output", finished.stderr)


class ImageTest(HostTest):
    def setUp(self):
        super().setUp()
        self.voxels = [(7 * i) % 256 for i in range(30)]
        write_pgm(self.path("in.pgm"), 6, 5, self.voxels)

    def test_an_in_place_run_changes_the_very_image(self):
        finished = self.good("run", "InvertImage", "input=in.pgm", "numOfBits=8", "output=@input,save=out.png")
        self.assertEqual("output = out.png uint8 6_5_1_1_1\n", finished.out)
        self.assertEqual([255 - v for v in self.voxels], self.raw("out.png").voxels)
        with open(self.path("in.pgm"), "rb") as file:
            self.assertTrue(file.read().endswith(bytes(self.voxels)), "the input file stays as it was")

    def test_a_shared_image_without_save_is_stored_nowhere(self):
        before = self.files()
        self.assertEqual("", self.good("run", "InvertImage", "input=in.pgm", "numOfBits=8", "output=@input").out)
        self.assertEqual(before, self.files())

    def test_an_input_can_share_an_output(self):
        # The image that the run is given is black: 0 inverts to 255.
        self.good("run", "InvertImage", "input=@output", "numOfBits=8", "output=out.qeli,size=3_2_1_1_1")
        self.assertEqual([255] * 6, self.raw("out.qeli").voxels)

    def test_two_inputs_can_share_an_image(self):
        self.good("run", "MaskImageProcessing", "input=in.pgm", "inputBinary=@input", "output=out.qeli")
        self.assertEqual(self.voxels, self.raw("out.qeli").voxels)

    def test_the_same_image_is_the_same_object(self):
        error = self.failed("run", "CopyImage", "input=in.pgm", "output=@input")
        self.assertTrue(error.startswith("Rule exception :\n#1 Error : "), error)
        self.assertIn("not equal to", error)

    def test_shared_images_that_lead_nowhere_are_refused(self):
        self.assertIn("itself", self.refused("run", "InvertImage", "input=@output", "output=@input"))
        self.assertIn("itself", self.refused("run", "InvertImage", "input=@input", "output=o.png"))
        self.assertIn('"input"', self.refused("run", "InvertImage", "input=in.pgm", "output=@imput"))
        self.assertIn('"output"', self.refused("run", "InvertImage", "input=in.pgm", "output=@numOfBits"))
        self.assertIn("no image", self.refused("run", "InvertImage", "output=@input"))
        self.assertIn("no image", self.refused("run", "InvertImage", "input=null", "output=@input"))
        self.assertIn('"save"', self.refused("run", "InvertImage", "input=in.pgm", "output=@input,sav=x.png"))

    def test_an_image_left_out_or_null_is_told_by_the_rule(self):
        expected = ('Rule exception :\n#1 Error : The parameter "output" must be set. \n'
                    '#2 From Rule error in property output \n#3 From Threshold \n')
        self.assertEqual(expected, self.failed("run", "Threshold", "input=in.pgm"))
        self.assertEqual(expected, self.failed("run", "Threshold", "input=in.pgm", "output=null"))
        self.assertIn('"input" must be set.', self.failed("run", "Threshold", "output=out.png"))

    def test_the_output_starts_with_the_given_type(self):
        # The type of a binary output is free among four; the run keeps what it is given.
        for voxel_type in ("uint8", "uint16", "int8", "int16"):
            self.good("run", "Threshold", "input=in.pgm", "lowLevel=9", "output=out.qeli,type=" + voxel_type)
            self.assertEqual(voxel_type, self.raw("out.qeli").type)
        self.failed("run", "Threshold", "input=in.pgm", "output=out.qeli,type=float32")

    def test_the_input_is_cast_while_it_is_read(self):
        Image("float32", (2, 1, 1, 1, 1), [300.75, -1.5]).write_raw(self.path("real.qeli"))
        self.good("run", "CopyImage", "input=real.qeli,type=uint8", "output=out.qeli")
        self.assertEqual(("uint8", [44, 255]), (self.raw("out.qeli").type, self.raw("out.qeli").voxels))
        self.good("run", "CopyImage", "input=in.pgm,type=float64", "output=out.qeli")
        self.assertEqual(("float64", self.voxels), (self.raw("out.qeli").type, self.raw("out.qeli").voxels))

    def test_interpretation_and_calibration_of_an_input_can_be_given(self):
        self.good("run", "CopyImage", "input=in.pgm,interpretation=label,spacing=0.5_2_3e1,unit=mm,origin=1_2_3",
                  "output=out.qeli")
        out = self.raw("out.qeli")
        self.assertEqual("label", out.interpretation)
        self.assertEqual((0.5, 2, 30), out.spacing[:3])
        # An interpretation decides what inverting means.
        Image("uint8", (2, 1, 1, 1, 1), [0, 1]).write_raw(self.path("bits.qeli"))
        self.good("run", "InvertImage", "input=bits.qeli,interpretation=binary", "output=out.qeli")
        self.assertEqual([1, 0], self.raw("out.qeli").voxels)

    def test_keys_that_do_not_fit_are_refused(self):
        def refused(value, name="input"):
            return self.refused("run", "CopyImage", name + "=" + value)

        self.assertIn('"type"', refused("in.pgm,tpye=uint8"))
        self.assertIn('"uint8"', refused("in.pgm,type=unit8"))
        self.assertIn('"label"', refused("in.pgm,interpretation=labels"))
        self.assertIn("X_Y_Z", refused("in.pgm,spacing=1_2"))
        self.assertIn("X_Y_Z", refused("in.pgm,spacing=1_2_x"))
        self.assertIn("twice", refused("in.pgm,type=uint8,type=uint8"))
        self.assertIn("path", refused(""))
        self.assertIn('"size"', refused("o.png,sise=1_1_1_1_1", "output"))
        self.assertIn("C_R_P_T_S", refused("o.png,size=1_1_1_1", "output"))
        self.assertIn("C_R_P_T_S", refused("o.png,size=1_1_1_1_-1", "output"))
        self.assertIn("C_R_P_T_S", refused("o.png,size=4294967296_4294967296_2_1_1", "output"))
        self.assertIn('"png"', refused("o.pmg", "output"))
        self.refused("run", "CopyImage", "input=in.pgm,size=1_1_1_1_1")

    def test_a_path_may_hold_commas(self):
        os.rename(self.path("in.pgm"), self.path("a,b c,1.pgm"))
        self.good("run", "CopyImage", "input=a,b c,1.pgm,type=uint16", "output=x,y.qeli")
        self.assertEqual(self.voxels, self.raw("x,y.qeli").voxels)

    def test_channels_are_spectral_series(self):
        write_ppm(self.path("colour.ppm"), 2, 2, [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12])
        self.good("run", "CopyImage", "input=colour.ppm", "output=out.qeli")
        out = self.raw("out.qeli")
        self.assertEqual((2, 2, 1, 1, 3), out.sizes)
        self.assertEqual([1, 4, 7, 10, 2, 5, 8, 11, 3, 6, 9, 12], out.voxels)
        self.failed("run", "Threshold", "input=colour.ppm", "output=out.qeli")


class LevelTest(HostTest):
    def setUp(self):
        super().setUp()
        voxels = [random.Random(2).randrange(1000) for _ in range(131 * 17)]
        Image("uint16", (131, 17, 1, 1, 1), voxels).write_raw(self.path("in.qeli"))
        self.extrema = {"outputMinimum": min(voxels), "outputMaximum": max(voxels)}

    def test_every_level_with_a_runner_gives_the_same(self):
        for level in ("auto", "scalar", "sse"):
            finished = self.good("run", "IntensityExtrema", "input=in.qeli", "--level=" + level, "--json")
            self.assertEqual(self.extrema, finished.json())

    def test_a_level_without_a_runner_is_an_error_of_the_library(self):
        for level in ("avx", "gpu"):
            self.assertEqual(
                "Unexpected error :\n#1 Error : no runner found for algorithm \n#2 From IntensityExtrema \n",
                self.failed("run", "IntensityExtrema", "input=in.qeli", "--level=" + level))
        self.failed("run", "IntensityStatistics", "input=in.qeli", "--level=sse")

    def test_any_number_of_threads_gives_the_same(self):
        for threads in ("1", "2", "4", "64"):
            finished = self.good("run", "IntensityExtrema", "input=in.qeli", "--threads=" + threads, "--json")
            self.assertEqual(self.extrema, finished.json())

    def test_extra_memory_is_taken(self):
        self.good("run", "IntensityExtrema", "input=in.qeli", "--extra-memory=10")


class ProgressTest(HostTest):
    def setUp(self):
        super().setUp()
        write_pgm(self.path("in.pgm"), 6, 5, range(30))

    def test_the_bar_is_on_standard_error_when_asked_for(self):
        finished = self.call("run", "IntensityExtrema", "input=in.pgm", "--progress", "--json")
        self.assertEqual(0, finished.status)
        self.assertIn("100 %", finished.err)
        self.assertEqual({"outputMinimum": 0, "outputMaximum": 29}, finished.json())

    def test_without_a_terminal_there_is_none(self):
        self.good("run", "IntensityExtrema", "input=in.pgm")
        self.good("run", "IntensityExtrema", "input=in.pgm", "--no-progress")

    def test_on_a_terminal_there_is_one_unless_refused(self):
        for options, expected in (([], True), (["--no-progress"], False)):
            master, slave = pty.openpty()
            subprocess.run([QUELIDE, "run", "IntensityExtrema", "input=in.pgm", *options], stderr=slave,
                           stdout=subprocess.DEVNULL, cwd=self.folder, check=True)
            os.write(slave, b"end")
            text = os.read(master, 100000)
            os.close(master)
            os.close(slave)
            self.assertEqual(expected, b"100 %" in text, text)


if __name__ == "__main__":
    main()

"""quelide list, info, cpu, and the help."""

from support import HostTest, main

# What hosts ask for by name: a name that goes or moves breaks them.
ALGORITHMS = {
    "point_operations":
        "Anamorphosis ArithmeticImageProcessing ArithmeticValueProcessing BitShift CopyImage "
        "GradientMagnitude2D GradientMagnitude3D InvertImage LogicalImageProcessing LogicalNotProcessing "
        "LogicalValueProcessing MaskImageProcessing",
    "analysis":
        "IntensityExtrema IntensityStatistics",
    "filtering::smoothing":
        "BoxFilter2D BoxFilter3D GaussianFilter2D GaussianFilter3D NonLocalMeanFilter2D NonLocalMeanFilter3D",
    "linear_filtering":
        "FiniteImpulseResponseFilter2D FiniteImpulseResponseFilter3D",
    "nonlinear_filtering":
        "MedianFilter2D MedianFilter3D",
    "miscellaneous":
        "BorderConditionExtrapole Decimate2D",
    "morphology":
        "ApplyMorphologicalLut2D ApplyMorphologicalLut3D Closing2D Closing3D ClosingBall3D ClosingDisk2D "
        "ClosingDisk3D ClosingLine2D ClosingLine3D Dilation2D Dilation3D DilationBall3D DilationDisk2D "
        "DilationDisk3D DilationLine2D DilationLine3D EndPoints2D EndPoints3D Erosion2D Erosion3D "
        "ErosionBall3D ErosionDisk2D ErosionDisk3D ErosionLine2D ErosionLine3D EuclideanDistanceMap "
        "GrayScaleReconstruction2D GrayScaleReconstruction3D LocalThicknessMap Opening2D Opening3D "
        "OpeningBall3D OpeningDisk2D OpeningDisk3D OpeningLine2D OpeningLine3D Reconstruction2D "
        "Reconstruction3D",
    "segmentation":
        "Labeling TextureFeatureExtraction2D TextureFeatureExtraction3D Threshold ThresholdByCriterion",
    "classification":
        "KMeansClassification ReadTextureClassificationModel TextureClassificationApply "
        "TextureClassificationCreate TextureClassificationStandalone TextureClassificationTrain",
    "registration":
        "LandmarkRegistration2D LandmarkRegistration3D ShapeBasedMatching2D",
    "geometry":
        "CenterLine3D SphereSampling",
    "tools":
        "LoadQelRawImage SaveQelRawImage",
}


class ListTest(HostTest):
    def test_every_algorithm_has_its_name_and_namespace(self):
        promised = {(name, space) for space, names in ALGORITHMS.items() for name in names.split()}
        self.assertEqual(82, len(promised))
        listed = {tuple(line.split()) for line in self.good("list").out.splitlines()}
        self.assertEqual(promised, listed)

    def test_each_line_has_a_name_and_a_namespace(self):
        lines = [line.split() for line in self.good("list").out.splitlines()]
        self.assertIn(["Threshold", "segmentation"], lines)
        self.assertIn(["CopyImage", "point_operations"], lines)
        self.assertIn(["IntensityExtrema", "analysis"], lines)
        self.assertIn(["LoadQelRawImage", "tools"], lines)
        self.assertTrue(all(len(line) == 2 for line in lines), lines)

    def test_json_says_the_same(self):
        entries = self.good("list", "--json").json()
        lines = [line.split() for line in self.good("list").out.splitlines()]
        self.assertEqual(lines, [[entry["name"], entry["namespace"]] for entry in entries])

    def test_no_name_stands_twice(self):
        names = [entry["name"] for entry in self.good("list", "--json").json()]
        self.assertEqual(len(names), len(set(names)))


class InfoTest(HostTest):
    def test_properties_stand_in_declaration_order_with_kind_and_default(self):
        self.assertEqual(
            "algorithm: Threshold\n"
            "namespace: segmentation\n"
            "input input: input image, default null\n"
            "input lowLevel: double, default 0\n"
            "input highLevel: double, default 255\n"
            "output output: output image, default null\n"
            "levels: scalar\n", self.good("info", "Threshold").out)

    def test_an_enumeration_shows_its_labels(self):
        self.assertIn(
            "input criterion: enumeration CriterionType, default LESS_THAN, labels LESS_THAN LESS_THAN_OR_EQUAL_TO "
            "EQUAL_TO GREATER_THAN_OR_EQUAL_TO GREATER_THAN NOT_EQUAL_TO\n",
            self.good("info", "ThresholdByCriterion").out)

    def test_json_has_everything(self):
        info = self.good("info", "ThresholdByCriterion", "--json").json()
        self.assertEqual(["name", "namespace", "properties", "levels"], list(info))
        self.assertEqual(["input", "criterion", "value", "output"], [p["name"] for p in info["properties"]])
        self.assertEqual(["input", "input", "input", "output"], [p["direction"] for p in info["properties"]])
        self.assertEqual("LESS_THAN", info["properties"][1]["default"])
        self.assertEqual(6, len(info["properties"][1]["labels"]))
        self.assertEqual("Scalar", info["properties"][2]["kind"])
        self.assertIn(info["properties"][2]["default"], ("128", "+128", "128.0"))
        self.assertEqual(["scalar"], info["levels"])

    def test_levels_are_those_with_a_runner(self):
        self.assertIn("levels: scalar sse\n", self.good("info", "IntensityExtrema").out)
        self.assertIn("levels: scalar\n", self.good("info", "IntensityStatistics").out)

    def test_members_that_are_no_listed_properties_are_shown(self):
        self.assertIn("input numOfBits: unsigned int, default 0\n", self.good("info", "InvertImage").out)
        shift = self.good("info", "BitShift").out
        self.assertIn("input shiftCount: unsigned int, default 0\n", shift)
        self.assertIn("input shiftRight: bool, default false\n", shift)

    def test_an_empty_string_is_shown_as_such(self):
        self.assertIn("input filePath: String, default empty\n", self.good("info", "LoadQelRawImage").out)
        entry = self.good("info", "LoadQelRawImage", "--json").json()["properties"][0]
        self.assertEqual("", entry["default"])

    def test_every_algorithm_can_be_shown_and_has_a_level(self):
        for entry in self.good("list", "--json").json():
            info = self.good("info", entry["name"], "--json").json()
            self.assertTrue(info["levels"], entry)
            self.assertTrue(info["properties"], entry)
            for shown in info["properties"]:
                self.assertNotEqual("unknown kind", shown["kind"], (entry, shown))
            self.assertIn("levels: ", self.good("info", entry["name"]).out)

    def test_an_unknown_algorithm_is_refused_with_the_nearest_name(self):
        self.assertEqual('quelide: no algorithm "Treshold"; the nearest is "Threshold"\n',
                         self.refused("info", "Treshold"))
        self.assertIn('"Threshold"', self.refused("info", "threshold"))
        self.assertIn('"IntensityExtrema"', self.refused("info", "IntensityExtremum"))


class OtherTest(HostTest):
    def test_cpu_prints_the_report_of_the_library(self):
        lines = self.good("cpu").out.splitlines()
        labels = [line[:line.index("]:") + 2] for line in lines]
        self.assertEqual(16, len(lines))
        self.assertEqual("[CPU name]:", labels[0])
        self.assertEqual("[AVX level]:", labels[-1])

    def test_help_and_version_are_no_errors(self):
        self.assertIn("convert", self.good("--help").out)
        self.assertIn("--extra-memory", self.good("run", "--help").out)
        self.assertRegex(self.good("--version").out, r"^\d+\.\d+\.\d+\n$")

    def test_a_wrong_command_line_is_told_in_one_line_with_the_nearest_name(self):
        self.assertIn("list, info, run, show, convert, cpu", self.refused())
        self.assertIn('the nearest is "convert"', self.refused("covnert", "a", "b"))
        self.assertIn('the nearest is "--json"', self.refused("list", "--jsn"))
        self.assertIn('the nearest is "--threads"', self.refused("run", "Threshold", "--thread=2"))
        self.assertIn("ALGORITHM", self.refused("info"))
        self.assertIn("ALGORITHM", self.refused("run"))
        self.assertIn("FILE", self.refused("show"))
        self.assertIn("OUTPUT", self.refused("convert", "a.png"))
        self.assertIn('"more"', self.refused("list", "more"))
        self.assertIn('"c.png"', self.refused("convert", "a.png", "b.png", "c.png"))
        self.assertIn('"more"', self.refused("cpu", "more"))
        self.assertIn('"more"', self.refused("cpu", "--", "more"))

    def test_two_dashes_end_the_options(self):
        self.assertEqual(self.good("info", "Threshold").out, self.good("info", "--", "Threshold").out)


if __name__ == "__main__":
    main()

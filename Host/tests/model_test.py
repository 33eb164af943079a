"""quelide over classification models: created, stored, read, shown."""

import random
import struct

from support import HostTest, Image, main

CREATE = ("run", "TextureClassificationCreate", "textureFeaturesGroup=@v:HISTO_Mean#53")


class ModelTest(HostTest):
    def content(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def test_a_new_model_is_stored_where_the_line_says(self):
        self.assertEqual("classificationModel = a.qelo\n", self.good(*CREATE, "classificationModel=a.qelo").out)
        self.assertEqual(["a.qelo"], self.files())
        self.assertTrue(self.content("a.qelo").startswith(
            b"QELO" + struct.pack("<Q", 26) + b"TextureClassificationModel" + struct.pack("<HBi", 2, 0, 2)))

    def test_a_model_that_was_not_trained_has_no_report(self):
        self.good(*CREATE, "classificationModel=a.qelo")
        self.assertEqual("kind = TextureClassificationModel\ntrained = false\n", self.good("show", "a.qelo").out)
        self.assertEqual({"kind": "TextureClassificationModel", "trained": False},
                         self.good("show", "a.qelo", "--json").json())

    def test_a_model_that_was_read_is_stored_as_it_was(self):
        self.good(*CREATE, "classificationModel=a.qelo")
        self.good("run", "ReadTextureClassificationModel", "pathClassificationFile=a.qelo", "newClassification=b.qelo")
        self.assertEqual(self.content("a.qelo"), self.content("b.qelo"))

    def test_a_model_that_cannot_be_read_leaves_older_files_alone(self):
        self.good(*CREATE, "classificationModel=a.qelo")
        with open(self.path("b.qelo"), "wb") as file:
            file.write(self.content("a.qelo")[:-1])
        error = self.failed("run", "ReadTextureClassificationModel", "pathClassificationFile=b.qelo",
                            "newClassification=a.qelo")
        self.assertIn("The <b.qelo> file is corrupted.", error)
        self.assertTrue(self.content("a.qelo").startswith(self.content("b.qelo")))
        self.assertIn("The <b.qelo> file is corrupted.", self.failed("show", "b.qelo"))
        self.assertEqual(["a.qelo", "b.qelo"], self.files())

    def write_textures(self):
        """Flat on the left, rough on the right, and labels of most voxels."""
        noise = random.Random(1)
        rows = range(16)
        voxels = [noise.randrange(100, 104) if column < 20 else noise.randrange(256) for _ in rows for column in range(40)]
        labels = [(column + row) % 5 and (1 if column < 20 else 2) for row in rows for column in range(40)]
        Image("uint8", (40, 16, 1, 1, 1), voxels).write_raw(self.path("in.qeli"))
        Image("uint8", (40, 16, 1, 1, 1), labels, "label").write_raw(self.path("labels.qeli"))

    def share_that_is_right(self, name):
        image = self.raw(name)
        self.assertEqual(("uint16", "label"), (image.type, image.interpretation))
        right = sum(label == (1 if i % 40 < 20 else 2) for i, label in enumerate(image.voxels))
        return right / sum(label != 0 for label in image.voxels)

    def test_a_model_is_trained_stored_shown_and_applied(self):
        self.write_textures()
        self.good(*CREATE, "radius=2", "binSizeHistogram=4", "classificationModel=a.qelo")
        before = self.content("a.qelo")
        out = self.good("run", "TextureClassificationTrain", "input=in.qeli", "mask=labels.qeli",
                        "classificationModel=a.qelo,save=b.qelo").out
        self.assertEqual("classificationModel = b.qelo\n", out)
        self.assertEqual(before, self.content("a.qelo"))
        shown = self.good("show", "b.qelo").out
        self.assertTrue(shown.startswith("kind = TextureClassificationModel\ntrained = true\nCompute mode: 0\n"), shown)
        self.assertIn("selected features: \n\tHISTO_", shown)
        as_json = self.good("show", "b.qelo", "--json").json()
        self.assertEqual(shown.split("\n", 2)[2], as_json["report"])
        self.assertEqual("classifiedImage = c.qeli uint16 40_16_1_1_1\n",
                         self.good("run", "TextureClassificationApply", "input=in.qeli", "classificationModel=b.qelo",
                                   "rejection=5", "classifiedImage=c.qeli").out)
        self.assertGreater(self.share_that_is_right("c.qeli"), 0.9)

    def test_a_model_is_stored_in_its_own_place(self):
        self.write_textures()
        self.good(*CREATE, "radius=2", "classificationModel=a.qelo")
        for _ in range(2):
            self.good("run", "TextureClassificationTrain", "input=in.qeli", "mask=labels.qeli", "--threads=2",
                      "classificationModel=a.qelo,save=a.qelo")
        self.assertTrue(self.good("show", "a.qelo", "--json").json()["trained"])
        self.assertIn("save=", self.refused("run", "TextureClassificationTrain", "input=in.qeli", "mask=labels.qeli",
                                            "classificationModel=a.qelo,save="))

    def test_all_in_one_call_over_the_labels_themselves(self):
        self.write_textures()
        out = self.good("run", "TextureClassificationStandalone", "input=in.qeli",
                        "labelImg=labels.qeli,type=uint16", "usedMeasures=6", "radius=2", "rejection=5",
                        "classifiedImage=@labelImg,save=c.qeli").out
        self.assertIn("classificationDetails = Compute mode: 0\nNumber of classes: 2\nradius: 2\n", out)
        self.assertGreater(self.share_that_is_right("c.qeli"), 0.9)

    def test_a_model_left_out_is_told_by_the_rule(self):
        for arguments in ((), ("classificationModel=null",)):
            self.assertIn('The parameter "classificationModel" must be set.', self.failed(*CREATE, *arguments))
        self.assertIn("path", self.refused(*CREATE, "classificationModel="))

    def test_the_kinds_are_told(self):
        out = self.good("info", "TextureClassificationCreate").out
        self.assertIn("output classificationModel: new classification model, default null\n", out)
        self.assertIn("input userQuantileRatioHistogram: Vector<double>, default @v:-1#-1#-1#-1#-1#-1\n", out)


if __name__ == "__main__":
    main()

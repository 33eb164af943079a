"""quelide over classification models: created, stored, read, shown."""

import struct

from support import HostTest, main

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

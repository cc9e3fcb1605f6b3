from tool import MAX, ToolTest

SEE = " (see zentra project --help)"


class Arguments(ToolTest):
    def test_no_command(self):
        self.expect_failure(2, "a command is wanted: project, convert, colour, phantom, angles (see zentra --help)")

    def test_unknown_command(self):
        self.expect_failure(2, "'paint' is none of the commands project, convert, colour, phantom, angles (see zentra --help)",
                            "paint")

    def test_missing_input(self):
        self.expect_failure(2, "INPUT is required" + SEE, "project")

    def test_missing_mode(self):
        self.refuse_project(2, "--mode is required" + SEE, *self.grey_volume(), "-o", "a.png")

    def test_missing_output(self):
        self.refuse_project(2, "--output is required" + SEE, *self.grey_volume(), "--mode", "max")

    def test_raw_file_without_size_or_type(self):
        self.refuse_project(2, "--size is required for a raw file", "a.raw", "--type", "uint8", *MAX)
        self.refuse_project(2, "--type is required for a raw file", "a.raw", "--size", "4x3x2", *MAX)

    def refuse(self, option, value, sentence):
        self.refuse_project(2, f"{option}: '{value}' {sentence}{SEE}", *self.grey_volume(), *MAX,
                            option, value)

    def test_bad_size(self):
        form = "is not of the form 181x217x181 (width x height x depth)"
        self.refuse("--size", "4x3", form)
        self.refuse("--size", "4x3x2x1", form)

    def test_size_outside_what_can_be_addressed(self):
        for axis in ("0", "-1", "32768", "4.5", "", "99999999999"):
            sentence = f"--size: '{axis}' is not a whole number from 1 to 32767{SEE}"
            self.refuse_project(2, sentence, "a.raw", "--size", f"4x{axis}x2")

    def test_bad_type(self):
        self.refuse("--type", "float", "is none of the types uint8, rgb8, int16, uint16, float32, int8, int32, "
                                       "uint32, float64")

    def test_bad_offset(self):
        self.refuse("--offset", "-1", "is not a number of bytes")

    def test_unknown_mode(self):
        self.refuse("--mode", "mip",
                    "is none of the modes max, min, sum, surface, layers, blend, contrast, first")

    def test_bad_angles(self):
        self.refuse("--rotate", "30,40", "is not of the form 30,40,50 (degrees about x, y and z)")
        self.refuse_project(2, "--rotate: 'inf' is not a finite number" + SEE, "a.raw", "--rotate", "0,inf,0")

    def test_bad_order(self):
        for order in ("xxy", "xy", "xyzx"):
            self.refuse("--order", order, "does not name each of the axes x, y, z once")
        self.refuse_project(2, "--order: 'w' is none of the axes x, y, z" + SEE, "a.raw", "--order", "xyw")

    def test_bad_window(self):
        self.refuse("--window", "80", "is not of the form low:high")
        self.refuse("--window", "80:20", "has its low end above its high end")
        self.refuse_project(2, "--window: 'nan' is not a number" + SEE, "a.raw", "--window", "nan:3")

    def test_bad_range(self):
        self.refuse("--range", "3:3", "is an empty or infinite range")
        self.refuse("--range", "0:inf", "is an empty or infinite range")

    def test_bad_background(self):
        self.refuse("--background", "1,2", "is not of the form r,g,b")
        self.refuse_project(2, "--background: '256' is not a whole number from 0 to 255" + SEE, "a.raw",
                            "--background", "0,0,256")

    def test_bad_crop(self):
        self.refuse("--crop", "1:4,1:3", "is not of the form x0:x1,y0:y1,z0:z1")
        self.refuse_project(2, "--crop: '3:2' ends before it begins" + SEE, "a.raw", "--crop", "1:4,3:2,1:2")

    def test_crop_beyond_the_volume(self):
        self.refuse_project(2, "--crop: the box reaches beyond the volume of 4x3x2", *self.grey_volume(),
                            *MAX, "--crop", "1:4,1:4,1:2")

    def test_options_of_another_mode(self):
        volume = [*self.grey_volume(), "-o", "a.png", "--mode"]
        self.refuse_project(2, "--transparency belongs to --mode blend",
                            *volume, "max", "--transparency", "0.5")
        self.refuse_project(2, "--attenuation belongs to --mode layers",
                            *volume, "surface", "--attenuation", "0.5")
        self.refuse_project(2, "--attenuation 0 leaves the first surface: use --mode surface",
                            *volume, "layers", "--attenuation", "0")

    def test_options_of_a_turntable_without_one(self):
        for option, value in (("--axis", "x"), ("--fps", "10"), ("--jobs", "2")):
            self.refuse_project(2, f"{option} belongs to --turntable", *self.grey_volume(), *MAX, option, value)
        self.refuse_project(2, "an .apng file is for --turntable", *self.grey_volume(), "--mode", "max",
                            "-o", "a.apng")

    def test_file_units_without_a_window(self):
        self.refuse_project(2, "--file-units belongs to --window", *self.grey_volume(), *MAX, "--file-units")

    def test_a_transparency_beyond_nothing_and_all(self):
        for value in ("5", "-0.1"):
            self.refuse("--transparency", value, "is not a transparency from 0 to 1")

    def test_bad_spacing_and_endian(self):
        self.refuse("--spacing", "1,2", "is not of the form 1,1,2.5 (distance of voxels along x, y and z)")
        self.refuse_project(2, "--spacing: '0' is not a distance above 0" + SEE, "a.raw", "--spacing", "1,0,1")
        self.refuse("--endian", "middle", "is neither little nor big")

    def test_bad_input_range(self):
        self.refuse("--input-range", "3", "is not of the form low:high")
        self.refuse("--input-range", "3:3", "is an empty or infinite range")
        self.refuse_project(2, "--input-range: 'inf' is not a finite number" + SEE, "a.raw",
                            "--input-range", "0:inf")

    def test_an_empty_name(self):
        self.refuse_project(2, "a file name is empty", "", *MAX)
        self.refuse_project(2, "a file name is empty", *self.grey_volume(), "--mode", "max", "-o", "")

    def test_capitals_are_as_good(self):
        self.grey_volume("a.raw")
        self.project("a.raw", "--size", "4X3X2", "--type", "UINT8", "--mode", "MAX", "--order", "ZYX",
                     "--palette", "Grey", "-o", "a.png")
        self.assertEqual(self.names("*.png"), ["a.png"])

    def test_a_path_may_begin_with_a_slash(self):
        self.grey_volume("a.raw")
        self.project(self.folder / "a.raw", "--size", "4x3x2", "--type", "uint8", *MAX)

    def test_unknown_output_format(self):
        self.refuse_project(2, "'a.jpg' does not end in .png, .apng, .pfm or .nhdr", *self.grey_volume(),
                            "--mode", "max", "-o", "a.jpg")

    def test_outputs_that_would_destroy_something(self):
        volume = self.grey_volume("a.raw")
        self.refuse_project(2, "writing a.raw would destroy the input", *volume,
                            "--mode", "max", "-o", "a.nhdr")
        self.refuse_project(2, "./B.png would be written twice", *volume, "--mode", "max",
                            "-o", "b.png", "-o", "./B.png")


class Help(ToolTest):
    def test_names_the_commands(self):
        code, out, err = self.run_tool("--help")
        self.assertEqual((code, err), (0, ""))
        for command in ("project", "convert", "colour", "phantom", "angles"):
            self.assertIn(command, out)

    def test_of_project_explains_every_mode_and_option(self):
        code, out, err = self.run_tool("project", "--help")
        self.assertEqual((code, err), (0, ""))
        for word in ("--turntable", "--window", "--background", "surface", "contrast", "Examples"):
            self.assertIn(word, out)
        self.assertLessEqual(max(map(len, out.splitlines())), 110)

    def test_version_of_tool_and_library(self):
        code, out, err = self.run_tool("--version")
        self.assertEqual((code, err), (0, ""))
        self.assertRegex(out, r"^zentra (\d+\.\d+\.\d+) \(Zentra3DRendering\.dll \1\)\n$")

import re

from tool import MAX, ToolTest, png


class Outputs(ToolTest):
    def test_a_missing_folder(self):
        self.refuse_project(1, "cannot write sub/a.png: there is no such folder", *self.grey_volume(),
                            "--mode", "max", "-o", "sub/a.png")

    def test_a_folder_in_the_way(self):
        (self.folder / "a.png").mkdir()
        self.refuse_project(1, "cannot write a.png: it is a folder", *self.grey_volume(), *MAX)

    def test_no_half_of_a_pair_is_left(self):
        (self.folder / "a.nhdr").mkdir()
        self.refuse_project(1, "cannot write a.nhdr: it is a folder", *self.grey_volume(),
                            "--mode", "max", "-o", "a.nhdr")

    def test_one_line_says_what_was_done(self):
        code, out, err = self.run_tool("project", *self.grey_volume(), *MAX, "-o", "b.nhdr")
        self.assertEqual((code, out), (0, ""))
        self.assertRegex(err, r"^4x3 pixels in \d+\.\d ms: a\.png, b\.nhdr, b\.raw\n$")


class Turntable(ToolTest):
    def test_frames_are_numbered_from_zero(self):
        self.project(*self.grey_volume(), "--mode", "max", "--turntable", "4", "--axis", "z", "-o", "t.png")
        self.assertEqual(self.names("t*"), ["t-000.png", "t-001.png", "t-002.png", "t-003.png"])
        frames = [png(self.read(f"t-00{i}.png"))[2] for i in range(3)]
        self.assertEqual(frames[0], [[20, 21, 22, 23], [10, 100, 12, 13], [0, 1, 2, 3]])
        self.assertEqual(frames[1], [[23, 13, 3], [22, 12, 2], [21, 100, 1], [20, 10, 0]])
        self.assertEqual(frames[2], [[3, 2, 1, 0], [13, 12, 100, 10], [23, 22, 21, 20]])

    def test_turns_about_the_axis_of_the_view_not_of_the_volume(self):
        # Tipped by 90 degrees about x, the view's y axis is the volume's -z.
        self.project(*self.grey_volume(), "--mode", "max", "--rotate", "90,0,0", "--turntable", "4", "-o",
                     "t.png")
        sizes = [png(self.read(f"t-00{i}.png"))[:2] for i in range(4)]
        self.assertEqual(sizes, [(4, 2), (3, 2), (4, 2), (3, 2)])

    def test_every_output_is_numbered(self):
        self.project(*self.grey_volume(), "--mode", "max", "--turntable", "2", "-o", "a.png", "-o", "b.nhdr")
        self.assertEqual(self.names("[ab]*"),
                         ["a-000.png", "a-001.png", "b-000.nhdr", "b-000.raw", "b-001.nhdr", "b-001.raw"])
        self.assertIn("data file: b-001.raw\n", self.read("b-001.nhdr").decode())

    def test_numbers_grow_with_the_count(self):
        self.write("one.raw", [7])
        self.project("one.raw", "--size", "1x1x1", "--type", "uint8", "--mode", "max", "--turntable",
                     "1001", "-o", "t.png")
        self.assertEqual(self.names("t*")[::1000], ["t-0000.png", "t-1000.png"])

    def test_automatic_range_does_not_flicker(self):
        # Seen along x the sums differ from those along z; white stays at what was white in the first frame.
        self.write("a.raw", [10, 0, 0, 0] * 2 + [20, 0, 0, 0] * 2)
        self.project("a.raw", "--size", "4x2x2", "--type", "uint8", "--mode", "sum", "--turntable",
                     "4", "-o", "t.png")
        self.assertEqual(png(self.read("t-000.png"))[2], [[255, 0, 0, 0]] * 2)
        self.assertEqual(png(self.read("t-001.png"))[2], [[170, 85]] * 2)

    def test_a_line_per_frame_where_no_one_watches(self):
        code, out, err = self.run_tool("project", *self.grey_volume(), *MAX, "--turntable", "2")
        self.assertEqual((code, out), (0, ""))
        self.assertEqual(re.sub(r"\d+\.\d", "T", err),
                         "4x3 pixels in T ms: a-000.png\n4x3 pixels in T ms: a-001.png\n")

    def test_ctrl_c_stops_between_frames(self):
        process = self.start("project", "--quiet", *self.grey_volume(), *MAX, "--turntable", "100000")
        self.wait_for("a-00000.png")
        self.assertEqual(self.interrupt(process), (130, "", "zentra: interrupted\n"))
        for name in self.names("a-*"):
            png(self.read(name))


class Phantom(ToolTest):
    def test_can_be_projected_without_further_words(self):
        self.assertEqual(self.run_tool("phantom", "--size", "20x24x18", "-q", "-o", "p.nhdr"), (0, "", ""))
        self.assertEqual(len(self.read("p.raw")), 20 * 24 * 18)
        self.project("p.nhdr", "--mode", "max", "-o", "p.png")
        width, height, rows = png(self.read("p.png"))
        self.assertEqual((width, height, rows[0][0]), (20, 24, 0))
        self.assertGreater(rows[12][10], 100)

    def test_colour(self):
        code, out, err = self.run_tool("phantom", "--size", "20x24x18", "--type", "rgb8", "-o", "p.nhdr")
        self.assertEqual((code, out, err), (0, "", "20x24x18 voxels: p.raw p.nhdr\n"))
        self.assertEqual(len(self.read("p.raw")), 3 * 20 * 24 * 18)
        self.project("p.nhdr", "--mode", "sum", "-o", "p.png")
        red, green, blue = png(self.read("p.png"))[2][12][10]
        self.assertGreater(red, blue)

    def test_unknown_format(self):
        self.expect_failure(2, "'p.vol' ends in neither .raw nor .nhdr", "phantom", "--size", "2x2x2", "-o",
                            "p.vol")

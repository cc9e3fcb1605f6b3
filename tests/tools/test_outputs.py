import re

from tool import MAX, NOTHING, NOTHING_IN_MIN, ToolTest, apng, float_bits, png


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

    def test_a_read_only_file_stays_as_it_is(self):
        self.write("a.png", b"mine")
        (self.folder / "a.png").chmod(0o444)
        self.refuse_project(1, "cannot write a.png: it is read-only", *self.grey_volume(), *MAX)
        self.assertEqual(self.read("a.png"), b"mine")

    def test_an_older_file_is_replaced(self):
        self.write("a.png", b"old")
        self.project(*self.grey_volume(), *MAX)
        self.assertEqual(png(self.read("a.png"))[:2], (4, 3))
        self.assertEqual(self.names("*"), ["a.png", "grey.raw"])

    def test_a_failure_leaves_the_older_file(self):
        self.write("a.png", b"old")
        self.refuse_project(1, "cannot write sub/b.png: there is no such folder", *self.grey_volume(), *MAX[:2],
                            "-o", "sub/b.png", "-o", "a.png")
        self.assertEqual(self.read("a.png"), b"old")

    def test_one_line_says_what_was_done(self):
        code, out, err = self.run_tool("project", *self.grey_volume(), *MAX, "-o", "b.nhdr")
        self.assertEqual((code, out), (0, ""))
        self.assertRegex(err, r"^4x3 pixels in \d+\.\d ms: a\.png, b\.nhdr, b\.raw\n$")


class Turntable(ToolTest):
    def test_frames_are_numbered_from_zero(self):
        self.project(*self.grey_volume(), "--mode", "max", "--turntable", "4", "--axis", "z", "-o", "t.png")
        self.assertEqual(self.names("t*"), ["t-000.png", "t-001.png", "t-002.png", "t-003.png"])
        frames = [png(self.read(f"t-00{i}.png"))[2] for i in range(3)]
        # All as large as the largest, each in the middle.
        self.assertEqual(frames[0], [[20, 21, 22, 23], [10, 100, 12, 13], [0, 1, 2, 3], [0] * 4])
        self.assertEqual(frames[1], [[23, 13, 3, 0], [22, 12, 2, 0], [21, 100, 1, 0], [20, 10, 0, 0]])
        self.assertEqual(frames[2], [[3, 2, 1, 0], [13, 12, 100, 10], [23, 22, 21, 20], [0] * 4])

    def test_turns_about_the_axis_of_the_view_not_of_the_volume(self):
        # Tipped by 90 degrees about x, the view's y axis is the volume's -z.
        self.project(*self.grey_volume(), "--mode", "max", "--rotate", "90,0,0", "--turntable", "4", "-o",
                     "t.png")
        pictures = [png(self.read(f"t-00{i}.png")) for i in range(4)]
        self.assertEqual([picture[:2] for picture in pictures], [(4, 2)] * 4)
        # Three columns are left where the volume shows its side.
        self.assertEqual([sum(any(column) for column in zip(*rows)) for _, _, rows in pictures], [4, 3, 4, 3])

    def test_frames_have_even_sizes_and_the_background_around(self):
        self.write("a.raw", [9] * 3)
        self.project("a.raw", "--size", "3x1x1", "--type", "uint8", "--mode", "max", "--turntable", "2", "--axis",
                     "z", "--background", "5,5,5", "-o", "t.png")
        self.assertEqual(png(self.read("t-000.png")), (4, 2, [[9, 9, 9, 5], [5] * 4]))

    def test_floats_are_padded_with_what_a_pixel_without_a_contribution_holds(self):
        self.write("a.raw", [9])
        for mode, empty in (("max", NOTHING), ("min", NOTHING_IN_MIN), ("surface", 0)):
            self.project("a.raw", "--size", "1x1x1", "--type", "uint8", "--mode", mode, "--turntable", "1",
                         "-o", "t.nhdr")
            self.assertEqual(float_bits(self.read("t-000.raw"))[3:], [empty] * 9)

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
        self.assertEqual(png(self.read("t-001.png"))[2], [[0, 170, 85, 0]] * 2)

    def test_a_line_per_frame_where_no_one_watches(self):
        code, out, err = self.run_tool("project", *self.grey_volume(), *MAX, "--turntable", "2")
        self.assertEqual((code, out), (0, ""))
        self.assertEqual(re.sub(r"\d+\.\d", "T", err),
                         "4x4 pixels in T ms: a-000.png\n4x4 pixels in T ms: a-001.png\n")

    def test_ctrl_c_stops_between_frames(self):
        process = self.start("project", "--quiet", *self.grey_volume(), *MAX, "--turntable", "100000")
        self.wait_for("a-00000.png")
        self.assertEqual(self.interrupt(process), (130, "", "zentra: interrupted\n"))
        for name in self.names("a-*"):
            png(self.read(name))


class Animations(ToolTest):
    def turn(self, name, *arguments):
        self.run_tool("phantom", "--size", "21x24x18", "-q", "-o", "p.nhdr")
        self.project("p.nhdr", "--mode", "sum", "--rotate", "-90,0,0", "--turntable", "9", "-o", f"{name}.png",
                     "-o", f"{name}.apng", *arguments)
        return [png(self.read(frame)) for frame in self.names(f"{name}-*.png")]

    def test_hold_the_pictures_that_are_also_numbered(self):
        frames = self.turn("t", "--palette", "fire")
        plays, delays, pictures = apng(self.read("t.apng"))
        self.assertEqual((plays, delays), (0, [40] * 9))
        self.assertEqual(pictures, frames)
        self.assertEqual(png(self.read("t.apng")), frames[0])

    def test_as_many_jobs_as_one_likes_give_the_same_files(self):
        self.turn("a", "--jobs", "1", "-o", "a.nhdr")
        for jobs in ("2", "7"):
            self.turn("b", "--jobs", jobs, "-o", "b.nhdr")
            for name in self.names("a*"):
                if name.endswith(".nhdr"):
                    continue
                self.assertEqual(self.read(name), self.read("b" + name[1:]), name)

    def test_pictures_per_second(self):
        self.turn("t", "--fps", "10")
        self.assertEqual(apng(self.read("t.apng"))[1], [100] * 9)

    def test_nothing_is_left_of_a_turn_that_fails(self):
        (self.folder / "t-003.png").mkdir()
        self.run_tool("phantom", "--size", "21x24x18", "-q", "-o", "p.nhdr")
        code, out, err = self.run_tool("project", "p.nhdr", *MAX[:2], "--turntable", "9", "-o", "t.png", "-o",
                                       "t.apng", "--quiet")
        self.assertEqual((code, out, err), (1, "", "zentra: cannot write t-003.png: it is a folder\n"))
        self.assertEqual(self.names("*.apng") + self.names("*unfinished"), [])


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

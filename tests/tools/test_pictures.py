from tool import MAX, ToolTest, png


class GreyPictures(ToolTest):
    def picture(self, *arguments):
        self.project(*self.grey_volume(), "-o", "a.png", *arguments)
        return png(self.read("a.png"))

    def test_maximum_seen_along_z_has_the_last_row_on_top(self):
        rows = [[20, 21, 22, 23], [10, 100, 12, 13], [0, 1, 2, 3]]
        self.assertEqual(self.picture("--mode", "max"), (4, 3, rows))

    def test_rotation_about_z_turns_x_upwards(self):
        rows = [[23, 13, 3], [22, 12, 2], [21, 100, 1], [20, 10, 0]]
        self.assertEqual(self.picture("--mode", "max", "--rotate", "0,0,90"), (3, 4, rows))

    def test_order_of_the_rotations_matters(self):
        turned = ["--mode", "max", "--rotate", "90,90,0"]
        self.assertEqual(self.picture(*turned, "--order", "xyz")[:2], (2, 4))
        self.assertEqual(self.picture(*turned, "--order", "yxz")[:2], (3, 2))

    def test_crop_box_leaves_the_size_and_blackens_the_rest(self):
        rows = [[0, 0, 0, 0], [0, 0, 0, 0], [0, 0, 2, 3]]
        self.assertEqual(self.picture("--mode", "max", "--crop", "3:4,1:1,1:2"), (4, 3, rows))

    def test_pixels_without_a_contribution_show_the_background(self):
        rows = [[50, 21, 22, 50], [50] * 4, [50] * 4]
        self.assertEqual(self.picture("--mode", "max", "--window", "21:22", "--background", "50,50,50"),
                         (4, 3, rows))

    def test_a_coloured_background_makes_a_colour_picture(self):
        empty = (9, 8, 7)
        rows = [[empty, (21,) * 3, (22,) * 3, empty], [empty] * 4, [empty] * 4]
        self.assertEqual(self.picture("--mode", "max", "--window", "21:22", "--background", "9,8,7"),
                         (4, 3, rows))

    def test_minimum_marks_empty_pixels_by_its_own_sentinel(self):
        rows = [[50, 21, 22, 50], [50] * 4, [50] * 4]
        self.assertEqual(self.picture("--mode", "min", "--window", "21:22", "--background", "50,50,50"),
                         (4, 3, rows))

    def test_sum_is_stretched_between_its_extremes(self):
        # Sums are 0 to 3, 10, 111, 12, 13 and 20 to 23; the brightest becomes white.
        width, height, rows = self.picture("--mode", "sum")
        self.assertEqual((width, height), (4, 3))
        self.assertEqual(rows, [[46, 48, 51, 53], [23, 255, 28, 30], [0, 2, 5, 7]])

    def test_range_is_linear_rounded_and_saturated(self):
        rows = [[255, 255, 255, 255], [0, 255, 51, 77], [0, 0, 0, 0]]
        self.assertEqual(self.picture("--mode", "max", "--range", "10:20"), (4, 3, rows))

    def test_full_range_of_a_sum_starts_at_zero(self):
        rows = self.picture("--mode", "sum", "--window", "100:200", "--range", "full")[2]
        self.assertEqual(rows, [[0] * 4, [0, 255, 0, 0], [0] * 4])


class ColourPictures(ToolTest):
    def test_maximum_is_taken_per_channel(self):
        self.project(*self.colour_volume(), *MAX)
        self.assertEqual(png(self.read("a.png")), (2, 2, [[(200, 200, 10)] * 2] * 2))

    def test_first_hit_is_the_near_voxel(self):
        self.project(*self.colour_volume(), "--mode", "first", "-o", "a.png")
        self.assertEqual(png(self.read("a.png")), (2, 2, [[(200, 10, 10)] * 2] * 2))

    def test_window_tests_the_channel_sum(self):
        self.project(*self.colour_volume(), *MAX, "--window", "221:765", "--background", "1,2,3")
        self.assertEqual(png(self.read("a.png")), (2, 2, [[(1, 2, 3)] * 2] * 2))


class Modes(ToolTest):
    # 4x4x4 voxels, 0 in the two near slices and 200 in the two far ones.
    def step(self, *arguments):
        self.write("step.raw", [0] * 32 + [200] * 32)
        self.project("step.raw", "--size", "4x4x4", "--type", "uint8", "-o", "a.png", *arguments)
        return png(self.read("a.png"))[2]

    def test_surface_that_faces_the_viewer_is_white(self):
        self.assertEqual(self.step("--mode", "surface"), [[255] * 4] * 4)

    def test_colour_surface_is_stretched(self):
        # Shares of 1/2, 1/4 and 1/4: the greatest becomes white, the least black.
        self.write("step.raw", [0] * 96 + [200, 100, 100] * 32)
        self.project("step.raw", "--size", "4x4x4", "--type", "rgb8", "--mode", "surface", "-o", "a.png")
        self.assertEqual(png(self.read("a.png"))[2], [[(255, 0, 0)] * 4] * 4)

    def test_layers_take_the_attenuation(self):
        # Two walls along the ray, the second of which counts a quarter.
        self.write("walls.raw", [value for value in (0, 200, 200, 0, 0, 200, 200, 0) for voxel in range(16)])
        self.project("walls.raw", "--size", "4x4x8", "--type", "uint8", "--mode", "layers", "--attenuation",
                     "0.25", "--range", "0:2.5", "-o", "a.png")
        self.assertEqual(png(self.read("a.png"))[2], [[128] * 4] * 4)

    def test_blend_takes_the_transparency(self):
        # Two voxels of 200 with a weight of 200 / 255 * 0.5 each, over nothing.
        weight = 200 / 255 * 0.5
        expected = round(200 * (1 - (1 - weight) ** 2))
        self.assertEqual(self.step("--mode", "blend", "--transparency", "0.5"), [[expected] * 4] * 4)

    def test_contrast_leaves_its_border_and_flat_slices_black(self):
        self.assertEqual(self.step("--mode", "contrast"), [[0] * 4] * 4)

    def test_first_hit_passes_what_is_outside_the_window(self):
        self.assertEqual(self.step("--mode", "first", "--window", "1:255"), [[200] * 4] * 4)


class Palettes(ToolTest):
    def test_levels_take_the_colours_of_the_palette_and_empty_pixels_the_background(self):
        self.project(*self.grey_volume(), *MAX, "--window", "21:100", "--range", "21:100", "--palette", "viridis")
        empty, darkest, brightest = (0, 0, 0), (68, 1, 84), (253, 231, 37)
        rows = png(self.read("a.png"))[2]
        self.assertEqual(rows[0][:2], [empty, darkest])
        self.assertEqual(rows[1], [empty, brightest, empty, empty])

    def test_fire_goes_from_black_to_white_and_brightens_with_every_level(self):
        self.write("ramp.raw", range(256))
        self.project("ramp.raw", "--size", "256x1x1", "--type", "uint8", *MAX, "--palette", "fire")
        row = png(self.read("a.png"))[2][0]
        self.assertEqual((row[0], row[255]), ((0, 0, 0), (255, 255, 255)))
        brightness = [299 * red + 587 * green + 114 * blue for red, green, blue in row]
        self.assertTrue(all(a < b for a, b in zip(brightness, brightness[1:])))

    def test_grey_changes_nothing(self):
        self.project(*self.grey_volume(), *MAX)
        self.project(*self.grey_volume(), "--mode", "max", "-o", "b.png", "--palette", "grey")
        self.assertEqual(self.read("a.png"), self.read("b.png"))

    def test_colour_volumes_have_their_own_colours(self):
        self.refuse_project(2, "--palette is for grey volumes", *self.colour_volume(), *MAX, "--palette", "fire")

    def test_an_unknown_palette(self):
        code, out, err = self.run_tool("project", *self.grey_volume(), *MAX, "--palette", "jet")
        self.assertEqual((code, out), (2, ""))
        self.assertIn("'jet' is none of the palettes grey, fire, viridis", err)

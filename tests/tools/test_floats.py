from tool import MAX, NOTHING, NOTHING_IN_MIN, ToolTest, bits, float_bits


def three_times(rows):
    return [value for row in rows for pixel in row for value in [pixel] * 3]


class FloatFiles(ToolTest):
    def test_pfm_holds_the_untouched_floats_bottom_row_first(self):
        self.write("grey.raw", [10 * y + x for y in range(3) for x in range(4)] * 2)
        self.project("grey.raw", "--size", "4x3x2", "--type", "uint8", "--mode", "max", "--window", "10:21",
                     "-o", "a.pfm")
        header, data = self.read("a.pfm")[:12], self.read("a.pfm")[12:]
        self.assertEqual(header, b"PF\n4 3\n-1.0\n")
        rows = [[NOTHING] * 4, bits(10, 11, 12, 13), [*bits(20, 21), NOTHING, NOTHING]]
        self.assertEqual(float_bits(data), three_times(rows))

    def test_nrrd_holds_the_untouched_floats_top_row_first(self):
        self.project(*self.grey_volume(), "--mode", "max", "--window", "10:23", "-o", "a.nhdr")
        self.assertEqual(self.read("a.nhdr").decode(),
                         "NRRD0004\ntype: float\ndimension: 3\nsizes: 3 4 3\nkinds: RGB-color domain domain\n"
                         "endian: little\nencoding: raw\ndata file: a.raw\n")
        rows = [bits(20, 21, 22, 23), bits(10, 11, 12, 13), [NOTHING] * 4]
        self.assertEqual(float_bits(self.read("a.raw")), three_times(rows))

    def test_minimum_keeps_its_own_sentinel(self):
        self.project(*self.grey_volume(), "--mode", "min", "--window", "20:21", "-o", "a.nhdr")
        rows = [[*bits(20, 21), NOTHING_IN_MIN, NOTHING_IN_MIN], [NOTHING_IN_MIN] * 4, [NOTHING_IN_MIN] * 4]
        self.assertEqual(float_bits(self.read("a.raw")), three_times(rows))

    def test_sums_are_neither_scaled_nor_cut_off(self):
        self.write("bright.raw", [255] * 4 * 200)
        self.project("bright.raw", "--size", "2x2x200", "--type", "uint8", "--mode", "sum", "-o", "a.nhdr")
        self.assertEqual(float_bits(self.read("a.raw")), bits(51000.0) * 12)

    def test_channels_stay_in_order(self):
        self.project(*self.colour_volume(), "--mode", "first", "-o", "a.pfm")
        self.assertEqual(float_bits(self.read("a.pfm")[12:]), bits(200, 10, 10) * 4)

    def test_several_outputs_of_one_projection(self):
        self.project(*self.grey_volume(), *MAX, "-o", "b.pfm", "--output", "c.nhdr")
        self.assertEqual(self.names("*"), ["a.png", "b.pfm", "c.nhdr", "c.raw", "grey.raw"])

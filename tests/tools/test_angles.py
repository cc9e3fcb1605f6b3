from tool import ToolTest, png

SEE = " (see zentra angles --help)"
QUARTER_ABOUT_Z = "0,-1,0,1,0,0,0,0,1"


class Angles(ToolTest):
    def angles(self, *arguments):
        code, out, err = self.run_tool("angles", *arguments)
        self.assertEqual((code, err), (0, ""))
        return [float(number) for number in out.split(",")]

    def refuse(self, sentence, *arguments):
        self.expect_failure(2, sentence, "angles", *arguments)

    def assert_close(self, angles, expected):
        for angle, value in zip(angles, expected, strict=True):
            self.assertAlmostEqual(angle, value, delta=1e-4)

    def test_of_a_matrix(self):
        self.assertEqual(self.run_tool("angles", "--matrix", QUARTER_ABOUT_Z), (0, "0,0,90\n", ""))
        self.assertEqual(self.run_tool("angles", "--order", "zxy", "--matrix", "1,0,0,0,0,-1,0,1,0"),
                         (0, "90,0,0\n", ""))

    def test_in_every_order_that_can_be_found(self):
        # A third of a turn about the diagonal: x to y, y to z, z to x.
        for order, expected in (("xyz", [0, -90, 90]), ("zxy", [90, -90, 0]), ("yzx", [90, 0, 90])):
            self.assertEqual(self.angles("--matrix", "0,0,1,1,0,0,0,1,0", "--order", order), expected)

    def test_another_order_and_back(self):
        for order in ("zxy", "yzx", "xyz"):
            there = self.angles("--from", "xyz", "--to", order, "30,40,50")
            back = self.angles("--from", order, "--to", "xyz", ",".join(map(str, there)))
            self.assert_close(back, [30, 40, 50])

    def test_converts_from_orders_that_cannot_be_found_too(self):
        # About one axis every order is the same.
        for order in ("xzy", "yxz", "zyx"):
            self.assert_close(self.angles("--from", order, "--to", "xyz", "-30,0,0"), [-30, 0, 0])
        # Without a turn about x, yxz and xyz are the same product.
        self.assert_close(self.angles("--from", "yxz", "--to", "xyz", "0,40,50"), [0, 40, 50])

    def test_what_is_printed_shows_the_same_view(self):
        volume = self.grey_volume()
        there = self.run_tool("angles", "--from", "yxz", "--to", "zxy", "-20,40,110")[1].strip()
        self.project(*volume, "--mode", "max", "--rotate", "-20,40,110", "--order", "yxz", "-o", "a.png")
        self.project(*volume, "--mode", "max", "--rotate", there, "--order", "zxy", "-o", "b.png")
        self.assertEqual(png(self.read("a.png")), png(self.read("b.png")))

    def test_orders_that_cannot_be_found(self):
        for order in ("xzy", "yxz", "zyx"):
            sentence = f"angles cannot be found for the order '{order}', only for xyz, zxy and yzx{SEE}"
            self.refuse("--order: " + sentence, "--matrix", QUARTER_ABOUT_Z, "--order", order)
            self.refuse("--to: " + sentence, "--from", "xyz", "--to", order, "1,2,3")

    def test_what_is_no_rotation(self):
        self.refuse("--matrix: this is no rotation", "--matrix", "2,0,0,0,2,0,0,0,2")
        self.refuse("--matrix: this is no rotation", "--matrix", "-1,0,0,0,1,0,0,0,1")
        self.refuse("--matrix: an element beyond 1 belongs to no rotation",
                    "--matrix", "0,0,-1.001,0,1,0,1,0,0")

    def test_bad_arguments(self):
        self.refuse("--matrix: '1,2' is not of the form m00,m01,m02,m10,...,m22" + SEE, "--matrix", "1,2")
        self.refuse("--matrix: 'nan' is not a finite number" + SEE, "--matrix", "nan,0,0,0,1,0,0,0,1")
        self.refuse("either --matrix or ANGLES is wanted")
        self.refuse("either --matrix or ANGLES is wanted", "--matrix", QUARTER_ABOUT_Z, "1,2,3")
        self.refuse("--from and --to belong to ANGLES; a matrix takes --order", "--matrix", QUARTER_ABOUT_Z,
                    "--to", "xyz")
        self.refuse("--order belongs to --matrix; ANGLES take --from and --to", "1,2,3", "--order", "xyz")

    def test_angles_alone_are_found_in_every_order(self):
        code, out, err = self.run_tool("angles", "30,40,50")
        self.assertEqual((code, err), (0, ""))
        found = dict(line.split(" ") for line in out.splitlines())
        self.assertEqual(list(found), ["xyz", "zxy", "yzx"])
        for order, angles in found.items():
            self.assert_close(map(float, angles.split(",")), self.angles("--from", "xyz", "--to", order, "30,40,50"))
        self.assert_close(self.angles("30,40,50", "--to", "xyz"), [30, 40, 50])

    def test_help_says_which_orders(self):
        code, out, err = self.run_tool("angles", "--help")
        self.assertEqual((code, err), (0, ""))
        self.assertIn("--order xyz|zxy|yzx", out)
        self.assertIn("Examples", out)

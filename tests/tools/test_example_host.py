from tool import ToolTest


class ExampleHost(ToolTest):
    def test_draws_a_ball_on_black(self):
        self.assertEqual(self.run_tool(program="HOST_EXE"), (0, "", ""))
        data = self.read("ball.pgm")
        magic, size, greatest, pixels = data.split(b"\n", 3)
        width, height = map(int, size.split())
        self.assertEqual((magic, greatest, len(pixels)), (b"P5", b"255", width * height))
        # A cube of 64 seen from three sides at once is wider than its edge; the ball in it is not.
        self.assertEqual((width, height), (109, 104))
        row = pixels[52 * width:53 * width]
        self.assertGreaterEqual(max(row), 253)
        self.assertEqual([row[0], row[-1], pixels[0], pixels[-1]], [0, 0, 0, 0])
        self.assertIn(sum(value > 0 for value in row), range(62, 66))

import os
import struct
import time
import unittest

from tool import MAX, ToolTest, png

SEE = " (see zentra colour --help)"
OUT = ("-o", "v.nhdr")
BYTES = ("--size", "2x2x2", "--type", "uint8")


def floats(*values):
    return struct.pack(f"<{len(values)}f", *values)


class ColourTest(ToolTest):
    def channels(self, *channels):
        names = [f"{'rgb'[i]}.raw" for i in range(len(channels))]
        for name, data in zip(names, channels):
            self.write(name, data)
        return names

    def three_channels(self):
        return self.channels([0, 10, 20, 30] * 2, [255] * 8, [1, 2, 3, 4, 5, 6, 7, 8])

    def colour(self, *arguments):
        self.assertEqual(self.run_tool("colour", "--quiet", *arguments), (0, "", ""))

    def refuse(self, code, sentence, *arguments):
        self.expect_failure(code, sentence, "colour", *arguments)


class Colour(ColourTest):
    def test_three_channels_make_rgb_voxels_that_project_takes(self):
        self.colour(*self.three_channels(), *BYTES, *OUT)
        self.assertEqual(list(self.read("v.raw")),
                         [0, 255, 1, 10, 255, 2, 20, 255, 3, 30, 255, 4,
                          0, 255, 5, 10, 255, 6, 20, 255, 7, 30, 255, 8])
        self.assertIn("sizes: 3 2 2 2\nkinds: RGB-color domain domain domain\n", self.read("v.nhdr").decode())
        self.project("v.nhdr", *MAX)
        rows = [[(20, 255, 7), (30, 255, 8)], [(0, 255, 5), (10, 255, 6)]]
        self.assertEqual(png(self.read("a.png")), (2, 2, rows))

    def test_the_report_names_files_and_ranges(self):
        code, out, err = self.run_tool("colour", *self.three_channels(), *BYTES, *OUT)
        self.assertEqual((code, out), (0, ""))
        self.assertRegex(err, r"^2x2x2 colour voxels in \d+\.\d ms: v\.raw v\.nhdr\n"
                              r"samples from 0 to 255, display range from 255 to 294\n$")

    def test_a_dash_or_nothing_is_a_channel_of_zeros(self):
        self.write("a.raw", [0, 255] * 4)
        for first in ("-", ""):
            self.colour(first, "a.raw", *BYTES, *OUT)
            self.assertEqual(list(self.read("v.raw")), [0, 0, 0, 0, 255, 0] * 4)

    def test_three_equal_names_make_a_grey_volume(self):
        self.write("a.raw", range(8))
        self.colour("a.raw", "a.raw", "a.raw", *BYTES, *OUT)
        self.assertEqual(list(self.read("v.raw")), list(range(8)))
        self.assertIn("dimension: 3\nsizes: 2 2 2\n", self.read("v.nhdr").decode())

    def test_separate_keeps_equal_names_in_colour(self):
        self.write("a.raw", [0, 255] * 4)
        self.colour("a.raw", "a.raw", "a.raw", "--separate", *BYTES, *OUT)
        self.assertEqual(list(self.read("v.raw")), [0, 0, 0, 255, 255, 255] * 4)

    def test_floats_are_mapped_from_their_common_range(self):
        names = self.channels(floats(-1, 0, 1, 1), floats(1, 1, -1, -1))
        self.colour(*names, "--size", "2x2x1", "--type", "float32", *OUT)
        red, green = self.read("v.raw")[0::3], self.read("v.raw")[1::3]
        self.assertEqual((list(red), list(green)), ([0, 128, 255, 255], [255, 255, 0, 0]))

    def test_a_diagonal_shrinks_the_volume(self):
        self.write("a.raw", [200] * 8000)
        self.colour("a.raw", "--size", "20x20x20", "--type", "uint8", "--max-diagonal", "20", *OUT)
        self.assertIn("sizes: 3 11 11 11\n", self.read("v.nhdr").decode())
        self.assertEqual(len(self.read("v.raw")), 3 * 11 ** 3)

    def test_capitals_are_as_good(self):
        self.colour(*self.three_channels(), "--size", "2X2X2", "--type", "UINT8", *OUT)
        self.assertEqual(len(self.read("v.raw")), 24)

    def test_raw_voxels_alone(self):
        self.colour(*self.three_channels(), *BYTES, "-o", "v.raw")
        self.assertEqual(self.names("v*"), ["v.raw"])

    def test_what_is_beyond_the_samples_is_ignored_with_a_remark(self):
        self.write("a.raw", [7] * 11)
        code, out, err = self.run_tool("colour", "a.raw", *BYTES, *OUT)
        self.assertEqual((code, out), (0, ""))
        self.assertEqual(err.splitlines()[0],
                         "a.raw has 11 bytes, 2x2x2 samples of uint8 have 8: the rest is ignored")


class Refusals(ColourTest):
    def test_a_missing_file(self):
        self.refuse(1, "cannot open b.raw: there is no such file", self.write("a.raw", [0] * 8), "b.raw",
                    *BYTES, *OUT)

    def test_a_folder(self):
        (self.folder / "a.raw").mkdir()
        self.refuse(1, "cannot open a.raw: it is a folder", "a.raw", *BYTES, *OUT)

    def test_a_file_that_is_too_short(self):
        self.write("a.raw", [0] * 31)
        sentence = "the green file is too short: a.raw has 31 bytes, 2x2x2 samples of float32 have 32"
        self.refuse(1, sentence, "-", "a.raw", "--size", "2x2x2", "--type", "float32", *OUT)

    def test_a_name_outside_the_code_page_is_opened_by_its_short_form(self):
        self.write("頭.raw", [0, 255] * 4)
        self.colour("頭.raw", *BYTES, *OUT)
        self.assertEqual(list(self.read("v.raw")), [0, 0, 0, 255, 0, 0] * 4)

    def test_a_name_with_letters_of_the_code_page(self):
        self.write("Köpfe.raw", [9] * 8)
        self.colour("Köpfe.raw", *BYTES, "-o", "頭.raw")
        self.assertEqual(len(self.read("頭.raw")), 24)

    def test_a_file_with_a_header(self):
        self.write("a.nrrd", [0] * 100)
        sentence = "channels are raw files, and a.nrrd has a header: zentra convert makes a raw file of it"
        self.refuse(1, sentence, self.write("a.raw", [0] * 8), "a.nrrd", *BYTES, *OUT)

    def test_no_channel_at_all(self):
        self.refuse(2, "no channel has a file", "-", "-", *BYTES, *OUT)
        self.refuse(2, "RED is required" + SEE, *BYTES, *OUT)

    def test_bad_options(self):
        a = self.write("a.raw", [0] * 8)
        self.refuse(2, "--type: 'rgb8' is neither uint8 nor float32" + SEE, a, "--size", "2x2x2", "--type", "rgb8")
        self.refuse(2, "--max-diagonal: '0' is not a whole number from 1 to 32767" + SEE, a, *BYTES,
                    "--max-diagonal", "0")
        self.refuse(2, "a file name is empty", a, *BYTES, "-o", "")
        self.refuse(2, "'v.png' ends in neither .raw nor .nhdr", a, *BYTES, "-o", "v.png")

    def test_an_output_that_would_destroy_a_channel(self):
        self.refuse(2, "writing v.raw would destroy the input", self.write("v.raw", [0] * 8), *BYTES, *OUT)

    def test_no_half_of_a_pair_is_left(self):
        (self.folder / "v.nhdr").mkdir()
        self.refuse(1, "cannot write v.nhdr: it is a folder", self.write("a.raw", [0] * 8), *BYTES, *OUT)

    def sparse(self, name, count):
        with open(self.folder / name, "wb") as file:
            file.truncate(count)
        return name

    @unittest.skipUnless(os.environ["ZENTRA_BITS"] == "32", "4 GiB are no lack of memory in 64 bits")
    def test_short_memory_is_a_sentence_and_not_a_box_that_waits(self):
        # One slice that fills the whole address space.
        self.sparse("a.raw", 32767 * 32767 * 4)
        sentence = "not enough memory to load 32767x32767x1 samples; --max-diagonal makes the volume smaller"
        self.refuse(1, sentence, "a.raw", "--size", "32767x32767x1", "--type", "float32", *OUT)

    def test_ctrl_c_cancels_the_library(self):
        # The remark on the first line comes before the work, which goes on for seconds.
        self.sparse("a.raw", 600 * 600 * 1000 + 1)
        process = self.start("colour", "a.raw", "--size", "600x600x1000", "--type", "uint8", "--max-diagonal",
                             "1000", *OUT)
        self.assertIn(b"the rest is ignored", process.stderr.readline())
        time.sleep(0.1)
        self.assertEqual(self.interrupt(process), (130, "", "zentra: interrupted\n"))
        self.assertEqual(self.names("*"), ["a.raw"])


class Help(ToolTest):
    def test_explains_the_channels(self):
        code, out, err = self.run_tool("colour", "--help")
        self.assertEqual((code, err), (0, ""))
        for word in ("--max-diagonal", "--separate", "uint8|float32", "Examples"):
            self.assertIn(word, out)
        self.assertLessEqual(max(map(len, out.splitlines())), 115)

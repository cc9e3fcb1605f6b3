"""Volumes from NIfTI, NRRD and PNG files, and raw samples of more than a byte."""
import gzip
import io
import struct

import PIL.Image

from tool import MAX, ToolTest, png


def nifti(dim, code, samples, order="<", spacing=(1, 1, 1), slope=0.0, intercept=0.0, offset=352.0):
    header = bytearray(352)
    struct.pack_into(order + "i", header, 0, 348)
    struct.pack_into(order + "8h", header, 40, len(dim), *dim, *[1] * (7 - len(dim)))
    struct.pack_into(order + "h", header, 70, code)
    struct.pack_into(order + "3f", header, 80, *spacing)
    struct.pack_into(order + "3f", header, 108, offset, slope, intercept)
    header[344:348] = b"n+1\0"
    return bytes(header) + samples


def grey_png(rows, bits=8):
    samples = b"".join(struct.pack(f"<{len(row)}{'H' if bits == 16 else 'B'}", *row) for row in rows)
    file = io.BytesIO()
    PIL.Image.frombytes("I;16" if bits == 16 else "L", (len(rows[0]), len(rows)), samples).save(file, "PNG")
    return file.getvalue()


class VolumeTest(ToolTest):
    def picture(self, *arguments):
        self.project(*arguments, "-o", "out.png")
        return png(self.read("out.png"))

    def seen(self, *arguments):
        """The picture of the greatest voxels, the last row of the volume on top."""
        return self.picture(*arguments, "--mode", "max")[2]

    def remarks(self, *arguments):
        code, out, err = self.run_tool("project", *arguments, *MAX)
        self.assertEqual((code, out), (0, ""))
        return err.splitlines()[:-1]


class Nifti(VolumeTest):
    def test_a_scan_needs_nothing_but_its_name(self):
        self.write("head.nii.gz", gzip.compress(nifti((2, 2, 2), 2, bytes([1, 2, 3, 4, 50, 0, 0, 0]))))
        self.assertEqual(self.seen("head.nii.gz"), [[3, 4], [50, 2]])

    def test_both_byte_orders_with_slope_and_intercept(self):
        for order in "<>":
            samples = struct.pack(order + "4h", -1000, 0, 500, 1000)
            self.write("ct.nii", nifti((4, 1, 1), 4, samples, order, slope=2.0, intercept=24.0))
            self.assertEqual(self.seen("ct.nii", "--input-range", "-1976:2024"), [[0, 128, 191, 255]])

    def test_colour(self):
        self.write("rgb.nii", nifti((1, 1, 1), 128, bytes([10, 20, 30])))
        self.assertEqual(self.seen("rgb.nii"), [[(10, 20, 30)]])
        self.refuse_project(2, "--input-range is for grey volumes: colours are taken as they are", "rgb.nii", *MAX,
                            "--input-range", "auto")
        self.refuse_project(2, "--file-units is for grey volumes", "rgb.nii", *MAX, "--window", "0:9", "--file-units")

    def test_the_percentiles_are_taken_and_said(self):
        values = [-30000, *range(1, 999), 30000]
        self.write("t1.nii", nifti((1000, 1, 1), 4, struct.pack("<1000h", *values)))
        self.assertEqual(self.remarks("t1.nii"),
                         ["t1.nii: int16 values from 5 to 994 become 0 to 255 (0.5 and 99.5 percentile; "
                          "--input-range takes others)"])
        row = self.seen("t1.nii")[0]
        self.assertEqual((row[5], row[500], row[994], row[999]), (0, 128, 255, 255))

    def test_a_window_in_the_units_of_the_file(self):
        self.write("ct.nii", nifti((4, 1, 1), 4, struct.pack("<4h", -1000, 0, 500, 1000)))
        row = self.seen("ct.nii", "--input-range", "-1000:1000", "--window", "0:500", "--file-units",
                        "--background", "9,9,9")[0]
        self.assertEqual(row, [9, 128, 191, 9])
        # Without end, although 255 stands for all beyond.
        row = self.seen("ct.nii", "--input-range", "-1000:500", "--window", "400:inf", "--file-units")[0]
        self.assertEqual(row, [0, 0, 255, 255])

    def test_unequal_spacing_makes_cubes_unless_that_is_not_wanted(self):
        self.write("a.nii", nifti((2, 2, 2), 2, bytes([0] * 4 + [100] * 4), spacing=(1, 1, 2)))
        self.assertEqual(self.remarks("a.nii"), ["a.nii: 2x2x2 voxels at distances of 1, 1, 2 become 2x2x4"])
        along = ("a.nii", "--rotate", "90,0,0")
        self.assertEqual(sorted(self.seen(*along)), [[0, 0], [25, 25], [75, 75], [100, 100]])
        self.assertEqual(sorted(self.seen(*along, "--no-isotropic")), [[0, 0], [100, 100]])
        self.assertEqual(len(self.seen(*along, "--spacing", "1,1,3")), 6)

    def test_bytes_stay_as_they_are_unless_a_range_is_asked_for(self):
        self.write("a.nii", nifti((3, 1, 1), 2, bytes([10, 20, 30])))
        self.assertEqual(self.seen("a.nii"), [[10, 20, 30]])
        self.assertEqual(self.seen("a.nii", "--input-range", "10:30"), [[0, 128, 255]])
        self.assertEqual(self.seen("a.nii", "--input-range", "AUTO"), [[0, 128, 255]])

    def test_several_volumes(self):
        self.write("fmri.nii", nifti((1, 1, 1, 200), 2, bytes(200)))
        self.assertEqual(self.remarks("fmri.nii"), ["fmri.nii holds 200 volumes: the first is taken"])


class HostileFiles(VolumeTest):
    def refuse(self, sentence, data, *arguments, name="a.nii"):
        self.write(name, data)
        self.refuse_project(1, sentence, name, *MAX, *arguments)

    def test_sizes_beyond_the_file(self):
        self.refuse("a.nii is too short: it has 356 bytes, but 32767x32767x32767 voxels of 8 bytes after 352 bytes "
                    "need 281449207693656", nifti((32767, 32767, 32767), 64, b"abcd"))

    def test_sizes_beyond_the_process(self):
        self.refuse("32767x32767x32767 voxels need 35,181,150,961,663 bytes, more than a 32-bit process can have; "
                    "--max-diagonal makes the volume smaller, for example --max-diagonal 1100",
                    gzip.compress(nifti((32767, 32767, 32767), 2, b"abcd")))

    def test_a_truncated_gzip(self):
        packed = gzip.compress(nifti((100, 100, 10), 2, bytes(i * i % 251 for i in range(100000))))
        self.refuse("cannot read a.nii: its compressed data ends early", packed[:len(packed) // 2])
        self.refuse("cannot read a.nii: its compressed data ends early", packed[:100])

    def test_an_offset_beyond_the_file(self):
        self.refuse("a.nii is too short: it has 356 bytes, but 4x1x1 voxels of 1 byte after 1000 bytes need 1004",
                    nifti((4,), 2, b"abcd", offset=1000.0))

    def test_voxels_without_a_number(self):
        self.refuse("cannot use a.nii: no voxel holds a number",
                    nifti((2,), 16, struct.pack("<2f", float("nan"), float("inf"))))

    def test_cubes_without_end(self):
        self.refuse("2x1x1 voxels would become 2x1x1000000 cubes, more than 32767 along an axis; --no-isotropic or "
                    "--max-diagonal avoids that", nifti((2, 1, 1), 2, b"ab", spacing=(1, 1, 1e6)))

    def test_what_is_no_volume(self):
        self.refuse("cannot use a.jpg: it is neither NIfTI, NRRD nor PNG; raw samples need their size and type",
                    b"\xff\xd8\xff", name="a.jpg")


class Slices(VolumeTest):
    def test_a_folder_a_pattern_or_a_list(self):
        (self.folder / "s").mkdir()
        for number, value in ((10, 30), (9, 20), (1, 10)):
            self.write(f"s/{number}.png", grey_png([[value, 0], [0, 0]]))
        for names in (["s"], ["s/*.png"], ["s/1.png", "s/9.png", "s/10.png"]):
            # The first slice is the nearest, and rows of files go up.
            self.assertEqual(self.picture(*names, "--mode", "first")[2], [[0, 0], [10, 0]])
        self.assertEqual(self.picture("s/?.png", "--mode", "max")[2], [[0, 0], [20, 0]])

    def test_sixteen_bits(self):
        self.write("a.png", grey_png([[0, 30000, 60000]], bits=16))
        self.assertEqual(self.seen("a.png", "--input-range", "0:60000"), [[0, 128, 255]])

    def test_no_slices(self):
        (self.folder / "s").mkdir()
        self.refuse_project(1, "cannot use s: the folder has no .png files", "s", *MAX)
        self.refuse_project(1, "cannot open x*.png: no file is named so", "x*.png", *MAX)

    def test_an_output_must_not_destroy_a_slice(self):
        (self.folder / "s").mkdir()
        self.write("s/1.png", grey_png([[1]]))
        self.refuse_project(2, "writing s/1.png would destroy the input", "s", "--mode", "max", "-o", "s/1.png")


class RawSamples(VolumeTest):
    def test_of_two_and_four_bytes_in_either_order(self):
        for kind, code in (("uint16", "H"), ("int16", "h"), ("float32", "f"), ("int32", "i")):
            for endian, order in (("little", "<"), ("big", ">")):
                self.write("a.raw", struct.pack(f"{order}3{code}", 10, 20, 30))
                self.assertEqual(self.seen("a.raw", "--size", "3x1x1", "--type", kind, "--endian", endian,
                                           "--input-range", "10:30"), [[0, 128, 255]])

    def test_what_is_beyond_the_voxels_is_said(self):
        self.grey_volume("a.raw")
        self.write("a.raw", self.read("a.raw") + b"more")
        self.assertEqual(self.remarks("a.raw", "--size", "4x3x2", "--type", "uint8"),
                         ["a.raw is longer than its voxels: it has 28 bytes, 4x3x2 voxels of 1 byte after 0 bytes "
                          "need 24; the rest is ignored"])


class Convert(VolumeTest):
    def test_makes_bytes_that_every_command_takes(self):
        self.write("a.nii", nifti((3, 1, 1), 16, struct.pack("<3f", 0.0, 0.5, 1.0)))
        code, out, err = self.run_tool("convert", "a.nii", "--input-range", "0:1", "-o", "b.nhdr")
        self.assertEqual((code, out, err), (0, "", "3x1x1 grey voxels: b.raw b.nhdr\n"))
        self.assertEqual(list(self.read("b.raw")), [0, 128, 255])
        self.assertEqual(self.seen("b.nhdr"), [[0, 128, 255]])

    def test_shrinks_to_a_diagonal(self):
        self.write("a.raw", [200] * 8000)
        self.assertEqual(self.run_tool("convert", "a.raw", "--size", "20x20x20", "--type", "uint8", "--max-diagonal",
                                       "20", "-q", "-o", "b.raw"), (0, "", ""))
        self.assertEqual(list(self.read("b.raw")), [200] * 11 ** 3)

    def test_must_not_destroy_its_input(self):
        self.write("a.raw", [0])
        self.expect_failure(2, "writing a.raw would destroy the input", "convert", "a.raw", "--size", "1x1x1",
                            "--type", "uint8", "-o", "a.nhdr")

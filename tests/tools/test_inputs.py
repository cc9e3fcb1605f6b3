from tool import MAX, ToolTest, png

# A raw file of that name.
NAMED = ("a.raw", "--size", "4x3x2", "--type", "uint8")

# What the grey volume shows, seen along z.
GREY_ROWS = [[20, 21, 22, 23], [10, 100, 12, 13], [0, 1, 2, 3]]


class RawFiles(ToolTest):
    def test_offset_skips_a_header_and_the_rest_is_ignored(self):
        self.grey_volume("bare.raw")
        self.write("a.raw", b"\xff" * 352 + self.read("bare.raw") + b"\xff" * 5)
        self.project(*NAMED, "--offset", "352", *MAX)
        self.assertEqual(png(self.read("a.png")), (4, 3, GREY_ROWS))

    def test_a_missing_file(self):
        self.refuse_project(1, "cannot open a.raw: there is no such file", *NAMED, *MAX)

    def test_a_folder(self):
        (self.folder / "a.raw").mkdir()
        self.refuse_project(1, "cannot open a.raw: it is a folder", *NAMED, *MAX)

    def test_one_byte_too_few(self):
        self.write("a.raw", [0] * 33)
        sentence = "a.raw is too short: it has 33 bytes, but 4x3x2 voxels of 1 byte after 10 bytes need 34"
        self.refuse_project(1, sentence, *NAMED, "--offset", "10", *MAX)

    def test_an_offset_beyond_the_end(self):
        sentence = ("colour.raw is too short: it has 24 bytes, but 2x2x2 voxels of 3 bytes after "
                    "4000000000000 bytes need 4000000000024")
        self.refuse_project(1, sentence, *self.colour_volume(), "--offset", "4000000000000", *MAX)

    def test_a_volume_larger_than_a_32_bit_process(self):
        with open(self.folder / "a.raw", "wb") as file:
            file.truncate(1500 * 2000 * 2000)
        sentence = ("1500x2000x2000 voxels need 6,000,000,000 bytes, more than a 32-bit process can have; "
                    "--max-diagonal makes the volume smaller, for example --max-diagonal 1100")
        self.refuse_project(1, sentence, "a.raw", "--type", "uint8",
                            "--size", "1500x2000x2000", *MAX)

    def test_names_outside_the_code_page(self):
        name = "Kopf-頭-\U0001f9e0"
        self.project(*self.grey_volume(name + ".raw"), "--mode", "max", "-o", name + ".png")
        self.assertEqual(png(self.read(name + ".png")), (4, 3, GREY_ROWS))
        self.refuse_project(1, "cannot write ß/頭.png: there is no such folder", *self.grey_volume("é.raw"),
                            "--mode", "max", "-o", "ß/頭.png")


class NrrdFiles(ToolTest):
    def header(self, *lines, name="a.nhdr", start="NRRD0004"):
        return self.write(name, "\n".join([start, *lines, ""]).encode())

    def grey_header(self, **changes):
        self.grey_volume("grey.raw")
        fields = {"type": "uint8", "dimension": "3", "sizes": "4 3 2", "encoding": "raw",
                  "data file": "grey.raw"}
        fields.update((name.replace("_", " "), value) for name, value in changes.items())
        return self.header(*(f"{name}: {value}" for name, value in fields.items() if value is not None))

    def expect_grey(self, name):
        self.project(name, "--mode", "max", "-o", "out.png")
        self.assertEqual(png(self.read("out.png")), (4, 3, GREY_ROWS))

    def refuse(self, name, reason):
        self.refuse_project(1, f"cannot use {name}: {reason}", name, *MAX)

    def test_grey_volume(self):
        self.expect_grey(self.grey_header())

    def test_every_spelling_of_the_type(self):
        for spelling in ("uchar", "unsigned char", "uint8_t"):
            self.expect_grey(self.grey_header(type=spelling))

    def test_comments_key_values_and_carriage_returns(self):
        self.grey_volume("grey.raw")
        lines = ["# made by hand", "type: uchar", "patient:=no one", "dimension: 3", "sizes: 4 3 2",
                 "encoding: raw", "datafile: grey.raw"]
        self.expect_grey(self.write("a.nhdr", "\r\n".join(["NRRD0005", *lines, ""]).encode()))

    def test_data_file_lies_beside_the_header(self):
        (self.folder / "sub").mkdir()
        self.grey_volume("sub/grey.raw")
        header = self.grey_header()
        (self.folder / header).rename(self.folder / "sub" / "a.nhdr")
        (self.folder / "grey.raw").unlink()
        self.expect_grey("sub/a.nhdr")

    def test_byte_skip(self):
        self.grey_volume("bare.raw")
        header = self.grey_header(byte_skip="7")
        self.write("grey.raw", b"\xff" * 7 + self.read("bare.raw"))
        self.expect_grey(header)

    def test_attached_voxels(self):
        self.grey_volume("grey.raw")
        text = b"NRRD0004\ntype: uint8\ndimension: 3\nsizes: 4 3 2\nencoding: raw\n\n"
        self.expect_grey(self.write("a.nrrd", text + self.read("grey.raw")))

    def test_colour_volume(self):
        self.colour_volume("colour.raw")
        self.header("type: uint8", "dimension: 4", "sizes: 3 2 2 2", "kinds: RGB-color domain domain domain",
                    "encoding: raw", "data file: colour.raw")
        self.project("a.nhdr", "--mode", "max", "-o", "out.png")
        self.assertEqual(png(self.read("out.png")), (2, 2, [[(200, 200, 10)] * 2] * 2))

    def test_size_belongs_to_raw_files(self):
        self.refuse_project(2, "--size, --type, --offset and --endian are for raw files; a.nhdr has a header",
                            self.grey_header(), "--size", "4x3x2", *MAX)

    def test_refusals(self):
        self.refuse(self.header("type: uint8", start="BRRD"), "it is not a NRRD file")
        self.refuse(self.grey_header(type="block"), "its type 'block' is none of uint8, int8, uint16, int16, "
                                                    "uint32, int32, float, double")
        self.refuse(self.grey_header(type="float"), "it does not say whether its bytes are little or big endian")
        self.refuse(self.grey_header(encoding="bzip2"), "its encoding is 'bzip2', only raw and gzip can be read")
        self.refuse(self.grey_header(dimension="4"), "dimension and sizes differ")
        self.refuse(self.grey_header(dimension="2", sizes="4 3"),
                    "it is neither a grey volume (3 dimensions) nor a colour one (4, the first of size 3)")
        self.refuse(self.grey_header(sizes="4 3 0"), "'0' is not a whole number from 1 to 32767")
        self.refuse(self.grey_header(data_file="LIST"), "volumes of more than one data file cannot be read")
        self.refuse(self.grey_header(data_file=None), "it names no data file")
        self.refuse(self.grey_header(line_skip="1"), "line skip is not supported")

    def test_data_file_is_missing(self):
        self.refuse_project(1, "cannot open nothing.raw: there is no such file",
                            self.grey_header(data_file="nothing.raw"), *MAX)

    def test_output_must_not_destroy_the_data_file(self):
        self.refuse_project(2, "writing grey.raw would destroy the input", self.grey_header(),
                            "--mode", "max", "-o", "grey.nhdr")

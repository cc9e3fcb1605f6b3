import json
import os
import random
import struct
import unittest

import pefile
import PIL.Image

from desk import ViewerTest


class Pictures(ViewerTest):
    def test_a_file_is_opened(self):
        self.open(self.small_head())
        self.assertEqual(self.title(), "head.nhdr - Zentra view")
        self.assertEqual(self.status()[0], "head.nhdr: 48 x 56 x 48 grey voxels")
        self.assertGreater(len(set(self.picture())), 50)

    def test_without_a_file_there_is_a_head(self):
        self.open()
        self.assertEqual(self.status()[0], "A made-up head: 181 x 217 x 181 grey voxels")
        self.assertGreater(len(set(self.picture())), 50)

    def test_dragging_turns(self):
        self.open(self.small_head())
        before, size = self.picture(), self.status()[1]
        self.drag(60, 25)
        self.wait_for_other_picture(before)
        self.wait_for(lambda: self.status()[1] != size, "the size stays")

    def test_a_double_click_resets(self):
        self.open(self.small_head())
        before = self.picture()
        self.drag(60, 25)
        self.wait_for_other_picture(before)
        x, y = self.middle()
        self.desk.press("mousemove", x, y, "click", "--repeat", "2", "--delay", "50", "1")
        self.wait_for(lambda: self.picture() == before, "the picture does not come back")

    def test_the_wheel_scales(self):
        self.open(self.small_head())
        before, size = self.picture(), self.status()[1]
        self.desk.press("mousemove", *self.middle(), "click", "5")
        self.wait_for_other_picture(before)
        self.assertEqual(self.status()[1], size)

    def test_modes_change_by_key(self):
        self.open(self.small_head())
        for key, title in enumerate(["Maximum", "Minimum", "Sum", "Surface", "Layers", "Blend", "Contrast",
                                     "First hit"], 1):
            before = self.picture()
            self.key(str(key))
            self.wait_for(lambda: self.find(**{"class": "ComboBox", "text": title}), f"{title} does not appear")
            self.wait_for_other_picture(before)

    def test_the_spin_turns_until_it_is_stopped(self):
        self.open(self.small_head())
        before = self.picture()
        self.click(self.find(text="Spin"))
        self.wait_for_other_picture(before)
        self.wait_for(lambda: self.status()[3].endswith("pictures/s"), "no speed is shown")
        self.click(self.find(text="Spin"))
        self.wait_for(lambda: self.status()[3] == "", "it does not rest")

    def test_the_pointer_is_told_what_lies_under_it(self):
        self.open(self.small_head())
        self.desk.press("mousemove", *self.middle())
        self.wait_for(lambda: self.status()[4].startswith("("), "no value is shown")
        left, top = self.find(**{"class": "ZentraPicture"})["place"][:2]
        self.desk.press("mousemove", left + 5, top + 5)
        self.wait_for(lambda: self.status()[4] == "", "there is a value outside of the picture")


class Files(ViewerTest):
    def test_a_dropped_file_is_opened(self):
        self.open(self.small_head())
        self.drop(self.small_head("頭 2.nhdr"))
        self.wait_for(lambda: self.title() == "頭 2.nhdr - Zentra view", "it is not opened")

    def test_dropped_slices_are_one_volume(self):
        self.zentra("project", self.small_head().name, "-q", "--mode", "max", "--turntable", "3", "-o", "slice.png")
        self.open()
        self.drop(*(self.folder / f"slice-00{i}.png" for i in range(3)))
        self.wait_for(lambda: self.status()[0].endswith("x 3 grey voxels"), "they are not opened")

    def test_a_dropped_file_that_cannot_be_read_leaves_the_present_volume_alone(self):
        self.open(self.small_head())
        before = self.picture()
        self.drop(self.folder / "nothing.nrrd")
        self.assertIn("nothing.nrrd", " ".join(self.dialog()[1]))
        self.key("Return")
        self.wait_for(lambda: not self.find(**{"class": "#32770"}), "the dialog stays")
        self.assertEqual((self.title(), self.picture()), ("head.nhdr - Zentra view", before))

    def start_slow_load(self):
        self.open(self.small_head())
        self.before = self.picture()
        self.drop(self.slow_file())
        self.wait_for(lambda: self.find(**{"class": "msctls_progress32", "visible": 1}), "no progress is shown")
        self.wait_for(lambda: self.find(**{"class": "msctls_progress32"})["position"] > 0, "the bar stays empty")

    def expect_the_former_volume(self):
        self.wait_for(lambda: self.find(text="Cancel", visible=0), "the bar stays")
        self.assertEqual((self.title(), self.picture()), ("head.nhdr - Zentra view", self.before))
        self.key("1")
        self.wait_for_other_picture(self.before)

    def test_the_cancel_button_leaves_the_present_volume_alone(self):
        self.start_slow_load()
        self.click(self.find(text="Cancel"))
        self.expect_the_former_volume()

    def test_escape_cancels_too(self):
        self.start_slow_load()
        self.key("Escape")
        self.expect_the_former_volume()

    def test_the_present_volume_turns_while_another_is_loaded(self):
        self.start_slow_load()
        self.key("b")
        self.wait_for(lambda: "--rotate -90,0,180" in self.find(id=1060)["text"], "it does not listen")
        self.assertEqual(self.title(), "head.nhdr - Zentra view")

    def test_it_closes_in_the_middle_of_a_load(self):
        self.start_slow_load()
        self.key("alt+F4")
        self.wait_for(lambda: not self.runs(), "it does not close")


class Sizes(ViewerTest):
    def places(self):
        return [self.find(**{"class": name})["place"] for name in ("ZentraView", "ZentraPicture", "ZentraPanel")]

    def test_the_picture_takes_what_the_window_gains_and_loses(self):
        self.open(self.small_head())
        (_, _, width, height), picture, panel = self.places()
        self.drag_corner(-200, -150)
        self.wait_for(lambda: self.places()[0][2:] == [width - 200, height - 150], "the window stays")
        _, now, moved = self.places()
        self.assertEqual(now[:2], picture[:2])
        # The panel stands beside it, wider by its scroll bar.
        self.assertEqual((now[0] + now[2], now[3]), (moved[0], picture[3] - 150))
        self.assertIn(moved[2] - panel[2], range(10, 30))
        self.assertGreater(len(set(self.picture())), 50)

    def test_the_window_does_not_become_too_small_to_use(self):
        self.open(self.small_head())
        self.drag_corner(-900, -700)
        self.wait_for(lambda: self.places()[0][2:] == [600, 360], "it has another size")

    def test_twice_the_resolution_makes_everything_twice_as_large(self):
        desktop = (r"HKCU\Control Panel\Desktop", "/v", "LogPixels")
        self.desk.output_of("reg", "add", *desktop, "/t", "REG_DWORD", "/d", "192", "/f")
        self.addCleanup(self.desk.output_of, "reg", "add", *desktop, "/t", "REG_DWORD", "/d", "96", "/f")
        self.open(self.small_head())
        self.assertEqual(self.find(text="Front")["place"][2:], [172, 52])


class BesideTheCommandLine(ViewerTest):
    """What is saved is what zentra makes of the command line that the viewer shows, bit for bit."""

    def expect_the_same_picture(self):
        self.save(self.folder / "viewed.png")
        command = self.command()
        self.zentra(*command, "-q", "-o", "made.png")
        self.assertEqual((self.folder / "viewed.png").read_bytes(), (self.folder / "made.png").read_bytes(), command)
        return command

    def test_a_dragged_surface(self):
        self.open(self.small_head())
        before = self.picture()
        self.drag(70, -31)
        self.wait_for_other_picture(before)
        command = self.expect_the_same_picture()
        self.assertNotIn("-105,0,30", command)

    def test_a_windowed_maximum_in_colours(self):
        self.open(self.small_head())
        before = self.picture()
        self.key("1", "p", "p")
        self.wait_for_other_picture(before)
        self.drag(-40, 20, button=3)
        self.drag(-30, 0, button=3, hold="shift")
        self.drag(33, 12, hold="shift")
        command = self.expect_the_same_picture()
        for option in ("--range", "--window", "--palette"):
            self.assertIn(option, command)

    def test_a_16_bit_volume_with_unequal_spacing(self):
        voxels = [x * y * 9 + 400 * z - 3000 for z in range(12) for y in range(40) for x in range(40)]
        header = ("NRRD0004\ntype: int16\ndimension: 3\nsizes: 40 40 12\nspacings: 1 1 3\nencoding: raw\n"
                  "endian: little\n\n")
        scan = self.folder / "a scan.nrrd"
        scan.write_bytes(header.encode() + struct.pack(f"<{len(voxels)}h", *voxels))
        self.open(scan)
        self.key("6")
        self.wait_for(lambda: self.find(**{"class": "ComboBox", "text": "Blend"}), "no blend")
        self.expect_the_same_picture()

    def test_the_values(self):
        self.open(self.small_head())
        self.save(self.folder / "viewed.nhdr", keys="ctrl+shift+s")
        self.zentra(*self.command(), "-q", "-o", "made.nhdr")
        self.assertEqual((self.folder / "viewed.raw").read_bytes(), (self.folder / "made.raw").read_bytes())


class Clipboard(ViewerTest):
    def test_the_copied_picture_is_the_saved_one(self):
        self.open(self.small_head())
        self.key("p")
        self.wait_for(lambda: self.find(**{"class": "ComboBox", "text": "Fire"}), "the palette stays")
        self.save(self.folder / "viewed.png")
        self.key("ctrl+c")
        self.wait_for(lambda: self.status()[0] == "picture copied", "nothing is copied")
        copied = json.loads(self.desk.output_of(os.environ["PROBE_EXE"], "clipboard")[1])
        with PIL.Image.open(self.folder / "viewed.png") as saved:
            stride = (3 * saved.width + 3) // 4 * 4
            self.assertEqual(copied["size"], list(saved.size))
            self.assertEqual(copied["bytes"], saved.convert("RGB").tobytes("raw", "BGR", stride, -1).hex())


class Controls(ViewerTest):
    def test_angles_are_typed(self):
        self.open(self.small_head())
        self.key("f")
        self.wait_for(lambda: self.find(**{"class": "Edit", "text": "-90.0"}), "it does not look at the front")
        self.click(self.find(id=1002))
        self.key("ctrl+a")
        self.desk.press("type", "12.5")
        self.key("Return")
        self.wait_for(lambda: "--rotate -90,0,12.5" in self.find(id=1060)["text"], "the angle is not taken")

    def test_what_is_no_angle_is_not_taken(self):
        self.open(self.small_head())
        self.click(self.find(id=1002))
        self.key("ctrl+a")
        self.desk.press("type", "12b")
        self.wait_for(lambda: self.find(id=1002)["text"] == "12b", "nothing is typed")
        self.key("Return")
        self.wait_for(lambda: self.find(id=1002)["text"] == "30.0", "the text stays")

    def test_the_crop_box_cuts(self):
        self.open(self.small_head())
        before = self.picture()
        left, top, width, height = self.find(id=1041)["place"]
        self.desk.press("mousemove", left + width // 3, top + height // 2, "click", "--repeat", "2", "--delay", "300", "1")
        self.wait_for_other_picture(before)
        self.wait_for(lambda: "--crop" in self.find(id=1060)["text"], "the command line stays")
        self.click(self.find(text="Whole volume"))
        self.wait_for(lambda: self.picture() == before, "the volume does not become whole")

    def test_the_tab_key_goes_from_the_picture_to_the_first_button(self):
        self.open(self.small_head())
        before = self.picture()
        self.key("Tab", "space")
        self.wait_for(lambda: "--rotate -90,0,0 " in self.find(id=1060)["text"], "it does not look at the front")
        self.assertNotEqual(self.picture(), before)


class Manifest(unittest.TestCase):
    def test_tells_the_system_not_to_enlarge_the_window_by_itself(self):
        program = pefile.PE(os.environ["VIEW_EXE"])
        manifests = [kind for kind in program.DIRECTORY_ENTRY_RESOURCE.entries
                     if kind.id == pefile.RESOURCE_TYPE["RT_MANIFEST"]]
        data = manifests[0].directory.entries[0].directory.entries[0].data.struct
        self.assertIn(b">PerMonitorV2, PerMonitor</dpiAwareness>", program.get_data(data.OffsetToData, data.Size))


class Trouble(ViewerTest):
    def broken_file(self):
        path = self.folder / "broken.nrrd"
        path.write_bytes(b"NRRD0004\ntype: uint8\ndimension: 3\nsizes: 40 40 12\nencoding: raw\n\nshort")
        return path

    def test_a_file_that_cannot_be_read_leaves_the_present_volume_alone(self):
        self.open(self.small_head())
        before = self.picture()
        self.answer("ctrl+o", self.broken_file())
        title, texts = self.dialog()
        self.assertEqual(title, "Zentra view")
        self.assertTrue(any("broken.nrrd" in text for text in texts), texts)
        self.key("Return")
        self.wait_for(lambda: not self.find(**{"class": "#32770"}), "the dialog stays")
        self.assertEqual(self.title(), "head.nhdr - Zentra view")
        self.assertEqual(self.picture(), before)

    def test_a_start_with_such_a_file_still_shows_something(self):
        self.start(self.broken_file())
        self.dialog()
        self.key("Return")
        self.wait_for(lambda: self.status()[0].startswith("A made-up head"), "there is no head")

    def test_the_volume_is_not_overwritten(self):
        self.zentra("phantom", "-q", "--size", "48x56x48", "-o", "data.raw")
        before = (self.folder / "data.raw").read_bytes()
        head = self.folder / "head.nhdr"
        head.write_text("NRRD0004\ntype: uint8\ndimension: 3\nsizes: 48 56 48\nencoding: raw\ndata file: data.raw\n")
        self.open(head)
        self.answer("ctrl+shift+s", self.folder / "data.nhdr")
        self.assertIn("would destroy the input", " ".join(self.dialog()[1]))
        self.key("Return")
        self.assertEqual((self.folder / "data.raw").read_bytes(), before)

    def test_a_hundred_random_events(self):
        self.open(self.small_head())
        chance = random.Random(13)
        left, top, width, height = self.find(**{"class": "ZentraView"})["place"]
        for _ in range(100):
            # Below the menu, which can end the program, and beside the edges.
            x, y = chance.randrange(left + 10, left + width - 10), chance.randrange(top + 60, top + height - 30)
            kind = chance.randrange(4)
            if kind == 0:
                self.desk.press("mousemove", x, y, "click", chance.choice([1, 2, 3, 4, 5]))
            elif kind == 1:
                self.desk.press("mousemove", x, y, "mousedown", chance.choice([1, 2, 3]), "mousemove_relative", "--",
                                chance.randrange(-200, 200), chance.randrange(-200, 200))
            elif kind == 2:
                self.desk.press("mouseup", 1, "mouseup", 2, "mouseup", 3)
            else:
                self.desk.press("key", chance.choice(["f", "t", "1", "5", "6", "7", "s", "p", "plus", "minus", "Tab",
                                                      "space", "Left", "Up", "Return", "Escape", "0", "Prior"]))
        self.desk.press("mouseup", 1, "mouseup", 2, "mouseup", 3)
        self.key("Escape", "Escape")
        self.desk.press("mousemove", *self.middle(), "click", "1")
        self.key("7")
        self.wait_for(lambda: self.find(**{"class": "ComboBox", "text": "Contrast"}), "it no longer listens")
        self.wait_for(lambda: self.status()[2].endswith(" ms"), "it no longer renders")

    def test_it_closes_while_it_loads(self):
        self.start()
        self.wait_for(lambda: self.find(**{"class": "ZentraPicture"}), "no window appears")
        self.key("alt+F4")
        self.wait_for(lambda: not self.runs(), "it does not close")

    def test_it_closes_while_it_spins(self):
        self.open()
        self.key("3", "s")
        self.wait_for(lambda: self.status()[3] != "", "it does not spin")
        self.key("alt+F4")
        self.wait_for(lambda: not self.runs(), "it does not close")


if __name__ == "__main__":
    unittest.main()

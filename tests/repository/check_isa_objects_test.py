#!/usr/bin/env python3
"""check_isa_objects.py finds what it looks for in objects that are compiled here for the purpose.

Usage: check_isa_objects_test.py COMPILER NM OBJDUMP
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from check_isa_objects import (NAMESPACES, alignment_complaints, complaints, is_of_namespaces, newer_instructions,
                               run)

COMPILER, NM, OBJDUMP = "", "", ""

# What a sound object of each set looks like: visible in its namespace, local or inlined elsewhere.
SOUND = """
namespace z3d::render { [[gnu::always_inline]] inline float Half(float value) { return value * 0.5f; } }
namespace { [[gnu::noinline]] float Local(float value) { return z3d::render::Half(value) + 1.0f; } }
namespace z3d::render::ISA {
extern const int kTable[2];
const int kTable[2] = {1, 2};
struct Walk { [[gnu::noinline]] float Step(float value) const { return Local(value); } };
template <class T> [[gnu::noinline]] T Twice(T value) { return value + value; }
float Kernel(float value) { return Walk().Step(Twice(value)); }
}
"""
SHARED = "[[gnu::noinline]] inline float Shared(float value) { return value * 3.0f; }"
BASELINE = "float Scale(float value) { return value * 3.0f; }"


class CheckIsaObjects(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def compile(self, name, source, *options):
        path = self.folder / f"{name}.o"
        command = [COMPILER, "-std=c++20", "-O2", "-msse2", "-mfpmath=sse", "-fno-exceptions", "-w", *options,
                   "-x", "c++", "-", "-c", "-o", path]
        subprocess.run(command, input=source, check=True, text=True)
        return str(path)

    def complaints(self, baseline=BASELINE, baseline_options=(), avx2_extra=""):
        objects = {isa: [self.compile(isa, SOUND.replace("ISA", isa), option)]
                   for isa, option in (("avx2", "-mavx2"), ("avx512", "-mavx512f"))}
        if avx2_extra:
            objects["avx2"].append(self.compile("extra", avx2_extra, "-mavx2"))
        return list(complaints(NM, OBJDUMP, [self.compile("baseline", baseline, *baseline_options)], objects))

    def expect_one(self, text, **arguments):
        found = self.complaints(**arguments)
        self.assertEqual(len(found), 1, found)
        self.assertIn(text, found[0])

    def test_sound_objects(self):
        self.assertEqual(self.complaints(), [])

    def test_an_inline_function_of_the_renderer(self):
        self.expect_one("6Shared", avx2_extra=f"namespace z3d::render {{ {SHARED} }}"
                        "namespace z3d::render::avx2 { float F(float v) { return Shared(v); } }")

    def test_an_inline_function_of_the_standard_library(self):
        self.expect_one("St6Shared", avx2_extra=f"namespace std {{ {SHARED} }}"
                        "namespace z3d::render::avx2 { float F(float v) { return std::Shared(v); } }")

    def test_an_instance_of_a_foreign_template(self):
        self.expect_one("Call", avx2_extra="namespace z3d {"
                        "template <class T> [[gnu::noipa]] int Call(T) { return 1; } }"
                        "namespace z3d::render::avx2 { struct A {}; int F() { return z3d::Call(A()); } }")

    def test_a_function_of_the_other_set(self):
        self.expect_one("outside of the namespaces avx2",
                        avx2_extra="namespace z3d::render::avx512 { int Kernel2() { return 1; } }")

    def test_an_inline_function_of_the_primitives(self):
        self.expect_one("6Shared", avx2_extra=f"namespace z3d::primitives {{ {SHARED} }}"
                        "namespace z3d::primitives::avx2 { float F(float v) { return Shared(v); } }")

    def test_a_floor_without_instruction_sets(self):
        self.expect_one("outside of the namespaces avx2",
                        avx2_extra="namespace z3d::frame::avx2 { int Kernel() { return 1; } }")

    def test_a_namespace_that_begins_alike(self):
        self.expect_one("avx2x", avx2_extra="namespace z3d::render::avx2x { int Kernel() { return 1; } }")

    def test_a_function_without_namespace(self):
        self.expect_one("Plain", avx2_extra='extern "C" int Plain() { return 1; }')

    def test_operator_new(self):
        self.expect_one("_Zn", avx2_extra="void* operator new(decltype(sizeof 0)) { return nullptr; }")

    def test_a_guard_variable(self):
        found = self.complaints(avx2_extra="int Make(); namespace z3d::render::avx2 {"
                                "inline int& Count() { static int count = Make(); return count; }"
                                "int F() { return Count(); } }")
        self.assertEqual(len(found), 1, found)
        self.assertIn("_ZGV", found[0])

    def test_newer_instructions_in_the_baseline(self):
        self.expect_one("the first is v", baseline_options=("-mavx",))
        square = "typedef float V __attribute__((vector_size(64))); V Square(V* a) { return *a * *a; }"
        self.expect_one("zmm", baseline=square, baseline_options=("-mavx512f",))

    def test_newer_instructions_on_plain_registers(self):
        self.expect_one("andn", baseline="unsigned F(unsigned a, unsigned b) { return ~a & b; }",
                        baseline_options=("-mbmi",))

    def test_objects_of_a_set_without_its_instructions(self):
        objects = {"avx2": [self.compile("avx2", SOUND.replace("ISA", "avx2"))]}
        baseline = [self.compile("baseline", BASELINE)]
        for objects_of_set in (objects, {"avx2": []}):
            self.assertEqual(list(complaints(NM, OBJDUMP, baseline, objects_of_set)),
                             ["no newer instruction in any object of avx2"])

    def test_no_baseline_at_all(self):
        self.assertEqual(list(complaints(NM, OBJDUMP, [], {})), ["no baseline objects"])

    def test_aligned_moves_of_wide_registers(self):
        aligned = ["   0:\tc5 fc 29 04 24       \tvmovaps %ymm0,(%rsp)",
                   "   5:\tc5 fd 6f 44 24 20    \tvmovdqa 0x20(%rsp),%ymm0",
                   "   b:\t62 f1 fd 48 7f 04 24 \tvmovdqa64 %zmm0,(%rsp)"]
        others = ["  12:\tc5 fc 11 04 24       \tvmovups %ymm0,(%rsp)", "  17:\tc5 f8 29 04 24       \tvmovaps %xmm0,(%rsp)",
                  "  1c:\t0f 29 04 24          \tmovaps %xmm0,(%rsp)"]
        for line in aligned:
            found = list(alignment_complaints("object", "\n".join([*others, line])))
            self.assertEqual(len(found), 1, line)
            self.assertIn("1 moves of wide registers", found[0])
        self.assertEqual(list(alignment_complaints("object", "\n".join(others))), [])

    def test_aligned_moves_are_looked_for_where_they_are_unwanted(self):
        # Whether this compiler makes them is its own affair; the option takes them away.
        wide = ("namespace z3d::render::avx2 { typedef float V __attribute__((vector_size(32)));"
                "void Copy(V* to, const V* from) { *to = *from + *from; } }")
        baseline = [self.compile("baseline", BASELINE)]
        plain = {"avx2": [self.compile("plain", wide, "-mavx2")]}
        unaligned = {"avx2": [self.compile("unaligned", wide, "-mavx2", "-Wa,-muse-unaligned-vector-move")]}
        makes_them = list(alignment_complaints("plain", run(OBJDUMP, "-d", plain["avx2"][0])))

        self.assertEqual(list(complaints(NM, OBJDUMP, baseline, plain)), [])
        self.assertEqual(len(list(complaints(NM, OBJDUMP, baseline, plain, may_align=False))), len(makes_them))
        self.assertEqual(list(complaints(NM, OBJDUMP, baseline, unaligned, may_align=False)), [])

    def test_names(self):
        avx2 = NAMESPACES["avx2"]
        for name in ("_ZN3z3d6render4avx28kKernelsE", "__ZN3z3d6render4avx24WalkC2Ev",
                     "_ZNK3z3d6render4avx24Walk4StepEf", "_ZZN3z3d6render4avx21FEvE5table",
                     "_ZN3z3d6render4avx2plERKNS1_1AES3_", "_ZN3z3d10primitives4avx28kKernelsE"):
            self.assertTrue(is_of_namespaces(name, avx2), name)
        for name in ("_ZSt4swapIN3z3d6render4avx21AEEvRT_S5_", "_ZGVZN3z3d6render4avx21FEvE1c",
                     "_ZN3z3d6render5avx2x1FEv", "_ZTVN3z3d6render4avx21AE", "_Z4avx2v", "memcpy",
                     "_ZN3z3d10primitives6ResizeEv", "_ZN3z3d5frame4avx21FEv"):
            self.assertFalse(is_of_namespaces(name, avx2), name)

    def test_lines_of_a_disassembly(self):
        lines = ["   0:\tc5 f8 77             \tvzeroupper",
                 "   3:\t64 c5 f8 10 00       \tvmovups %fs:(%eax),%xmm0",
                 "   7:\t0f 28 c5             \tmovaps %xmm5,%xmm0", "   a:\t62 00 ", "00000000 <_c5>:"]
        self.assertEqual(list(newer_instructions("\n".join(lines))), ["vzeroupper", "vmovups %fs:(%eax),%xmm0"])


if __name__ == "__main__":
    OBJDUMP, NM, COMPILER = sys.argv.pop(), sys.argv.pop(), sys.argv.pop()
    unittest.main()

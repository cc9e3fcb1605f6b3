#!/usr/bin/env python3
"""Makes whole sources of the lines that "Get it" of the README shows in C, Delphi and C#, for a compiler to look at.

Usage: wrap_readme_lines.py README.md FOLDER (receives readme.c, readme.dpr and readme.cs)"""

import pathlib
import re
import sys

WRAPPERS = {
    "c": ("readme.c", "#include", """{first}
void Render(const float* rotation);
void Render(const float* rotation) {{
unsigned short width, height;
{rest}
(void)pixels;
}}
"""),
    "pascal": ("readme.dpr", "uses", """program Readme;
{{$MODE DELPHI}}
{first}
var
  Volume: TZentraVolume;
  Picture: TZentraPicture;
  Voxels: TBytes;
begin
{rest}
end.
"""),
    "csharp": ("readme.cs", "using Zentra3D;", """{first}
public static class Readme {{
    public static Picture Render(byte[] voxels) {{
        Picture picture;
{rest}
        return picture;
    }}
}}
"""),
}


def main():
    readme, folder = map(pathlib.Path, sys.argv[1:])
    section = re.search(r"^## Get it\n(.*?)^## ", readme.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL).group(1)
    for language, (name, head, wrapper) in WRAPPERS.items():
        block = re.search(rf"^```{language}\n(.*?)^```$", section, re.MULTILINE | re.DOTALL).group(1)
        lines = block.splitlines()
        first = [line for line in lines if line.startswith(head)]
        rest = [line for line in lines if not line.startswith(head)]
        (folder / name).write_text(wrapper.format(first="\n".join(first), rest="\n".join(rest)), encoding="utf-8")


main()

// The files a command is asked to write.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Picture.h"

namespace z3d::tools {

enum class OutputKind { Png, Apng, Pfm, Nrrd };

struct Output {
    OutputKind kind;
    std::filesystem::path path;
};

// Which of many pictures a file holds. With 3 digits, picture 7 of dir/out.png is dir/out-007.png; with 0
// digits there is one picture, and names stay as they are.
struct PictureNumber {
    int number;
    int digits;
};

// Kinds by extension: .png, .apng, .pfm, .nhdr.
std::vector<Output> ParseOutputs(const std::vector<std::string>& names);

bool AnyOf(const std::vector<Output>& outputs, OutputKind kind);

// Every file that writing `outputs` under one number makes; an animation holds all numbers.
std::vector<std::filesystem::path> FilesOf(const std::vector<Output>& outputs, PictureNumber picture);

// Fails when two of the files, or one of them and an input, are the same.
void CheckDistinct(const std::vector<std::filesystem::path>& files,
                   const std::vector<std::filesystem::path>& inputs);

// Writes a picture, or the floats of a projection, as the output's kind asks for. An animation is not written here.
void WriteOutput(const Output& output, PictureNumber picture, const Projection& projection,
                 const std::string& png);

} // namespace z3d::tools

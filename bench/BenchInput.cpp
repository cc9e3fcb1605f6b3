#include "BenchInput.h"

#include "support/ProceduralVolumes.h"

#include <cstdio>
#include <fstream>

namespace z3d::bench {

Options ReadOptions(int argc, char** argv, double seconds) {
    Options options = {"", "", seconds};
    for (int index = 1; index + 1 < argc; index += 2) {
        const std::string key = argv[index];
        if (key == "--head") options.head = argv[index + 1];
        if (key == "--only") options.only = argv[index + 1];
        if (key == "--seconds") options.seconds = std::stod(argv[index + 1]);
    }
    return options;
}

reference::Volume LoadHead(const std::string& file) {
    reference::Volume head = test::BlobVolume({181, 217, 181}, 1);
    std::ifstream stream(file, std::ios::binary);
    if (stream) {
        stream.read(reinterpret_cast<char*>(head.voxels.data()),
                    static_cast<std::streamsize>(head.voxels.size()));
    } else {
        std::printf("no head given: a smooth phantom of its size instead\n");
    }
    return head;
}

} // namespace z3d::bench

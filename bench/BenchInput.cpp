#include "BenchInput.h"

#include "support/ProceduralVolumes.h"

#include <getopt.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace z3d::bench {
namespace {

[[noreturn]] void Refuse(const Usage& usage) {
    std::fputs(usage.text, stderr);
    std::exit(2);
}

double PositiveNumber(const char* text, const Usage& usage) {
    char* end = nullptr;
    const double number = std::strtod(text, &end);
    if (end != text && *end == '\0' && std::isfinite(number) && number > 0) return number;
    std::fprintf(stderr, "%s is no number of seconds\n", text);
    Refuse(usage);
}

} // namespace

Options ReadOptions(int argc, char** argv, const Usage& usage, std::span<std::string> operands) {
    const option known[] = {{"head", required_argument, nullptr, 'h'},
                            {"only", required_argument, nullptr, 'o'},
                            {"seconds", required_argument, nullptr, 's'},
                            {"loads", no_argument, nullptr, 'l'},
                            {nullptr, 0, nullptr, 0}};
    Options options;
    options.seconds = usage.seconds;
    for (int found = 0; (found = getopt_long(argc, argv, "", known, nullptr)) != -1;) {
        if (found == 'h') {
            options.head = optarg;
        } else if (found == 'o') {
            options.only = optarg;
        } else if (found == 's') {
            options.seconds = PositiveNumber(optarg, usage);
        } else if (found == 'l' && usage.takesLoads) {
            options.loads = true;
        } else {
            Refuse(usage);
        }
    }
    if (argc - optind != static_cast<int>(operands.size())) Refuse(usage);
    for (std::string& operand : operands)
        operand = argv[optind++];
    return options;
}

reference::Volume LoadHead(const std::string& file) {
    reference::Volume head = test::BlobVolume({181, 217, 181}, 1);
    if (file.empty()) {
        std::printf("no head given: a smooth phantom of its size instead\n");
        return head;
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream.read(reinterpret_cast<char*>(head.voxels.data()),
                     static_cast<std::streamsize>(head.voxels.size()))) {
        std::fprintf(stderr, "%s cannot be read, or is shorter than 181 x 217 x 181 bytes\n", file.c_str());
        std::exit(1);
    }
    return head;
}

} // namespace z3d::bench

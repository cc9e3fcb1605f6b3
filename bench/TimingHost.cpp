// A host that calls the DLL as it is told on its standard input, and answers with the seconds that a call took: so
// scripts/compare can time the DLL as it ships in turn with programs for this system. Fields are parted by tabs.
//
//   volume  BYTES W H D FILE            makes the volume of that many bytes per voxel of a file of its voxels
//   project BYTES R0..R8 MODE LOW HIGH EXTRA [FILE]   seconds, width, height; the floats of the pixels go to the file
//   load    RED GREEN BLUE W H D DIAGONAL [FILE]      seconds, width, height, depth, display minimum and maximum; the
//                                       voxels go to the file
#include "LoadedDll.h"

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using z3d::bench::LoadedDll;

class Fields {
public:
    explicit Fields(const std::string& line) : stream_(line) {}

    // Empty where the line has no more of them.
    std::string Text() {
        std::string field;
        std::getline(stream_, field, '\t');
        return field;
    }

    float Number() { return std::stof(Text()); }

    template <class Integer>
    Integer Whole() {
        return static_cast<Integer>(std::stoi(Text()));
    }

private:
    std::istringstream stream_;
};

double SecondsOf(const std::function<void()>& call) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    call();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

class TimingHost {
public:
    explicit TimingHost(const std::string& dll) : dll_(dll, "timed") {}
    TimingHost(const TimingHost&) = delete;
    TimingHost& operator=(const TimingHost&) = delete;

    ~TimingHost() {
        for (const auto& [bytes, volume] : volumes_)
            dll_.GlobalFree3D(volume);
    }

    void Answer(const std::string& line) {
        Fields fields(line);
        const std::string order = fields.Text();
        if (order == "volume") return MakeVolume(fields);
        if (order == "project") return Project(fields);
        if (order == "load") return Load(fields);
        throw std::runtime_error("no such order: " + order);
    }

private:
    void MakeVolume(Fields& fields) {
        const auto bytes = fields.Whole<unsigned>();
        const auto width = fields.Whole<unsigned>();
        const auto height = fields.Whole<unsigned>();
        const auto depth = fields.Whole<unsigned>();
        std::ifstream file(fields.Text(), std::ios::binary);
        ::Volume3D* const volume = dll_.GlobalAlloc3D(width, height, depth, bytes);
        unsigned char*** const slices = dll_.GlobalLock3D(volume);
        if (slices == nullptr) throw std::bad_alloc();
        for (unsigned z = 0; z < depth; ++z)
            file.read(reinterpret_cast<char*>(slices[z][0]), std::streamsize{1} * bytes * width * height);
        dll_.GlobalUnlock3D(volume);
        if (!file) throw std::runtime_error("the file of voxels is too short");
        dll_.GlobalFree3D(std::exchange(volumes_[bytes], volume));
        std::printf("made\n");
    }

    void Project(Fields& fields) {
        ::Volume3D* const volume = volumes_.at(fields.Whole<unsigned>());
        float rotation[9];
        for (float& element : rotation)
            element = fields.Number();
        const auto mode = fields.Whole<short>();
        const float low = fields.Number();
        const float high = fields.Number();
        const float extra = fields.Number();
        const std::string file = fields.Text();
        unsigned short width = 0;
        unsigned short height = 0;
        const double seconds = SecondsOf([&] {
            float* const pixels = dll_.GetRotProjection(
                volume, rotation, mode, 1, static_cast<short>(volume->width), 1,
                static_cast<short>(volume->height), 1, static_cast<short>(volume->depth), high, low, extra,
                &width, &height, 0);
            if (pixels == nullptr) throw std::bad_alloc();
            if (!file.empty()) {
                std::ofstream(file, std::ios::binary)
                    .write(reinterpret_cast<const char*>(pixels), std::streamsize{12} * width * height);
            }
            const HGLOBAL block = GlobalHandle(pixels);
            GlobalUnlock(block);
            GlobalFree(block);
        });
        std::printf("%.9f\t%u\t%u\n", seconds, width, height);
    }

    void Load(Fields& fields) {
        const std::string names[3] = {fields.Text(), fields.Text(), fields.Text()};
        const auto width = fields.Whole<short>();
        const auto height = fields.Whole<short>();
        const auto depth = fields.Whole<short>();
        const auto diagonal = fields.Whole<short>();
        const std::string file = fields.Text();
        float low = 0;
        float high = 0;
        unsigned size[3] = {};
        const double seconds = SecondsOf([&] {
            ::Volume3D* const volume =
                dll_.GetRGBImage(names[0].c_str(), names[1].c_str(), names[2].c_str(), width, height, depth,
                                 0, 0, 0, 1, diagonal, &high, &low, nullptr, nullptr, 0, nullptr, 0);
            if (volume == nullptr) throw std::runtime_error("the files cannot be loaded");
            size[0] = volume->width;
            size[1] = volume->height;
            size[2] = volume->depth;
            if (!file.empty()) WriteVoxels(volume, file);
            dll_.GlobalFree3D(volume);
        });
        std::printf("%.9f\t%u\t%u\t%u\t%g\t%g\n", seconds, size[0], size[1], size[2], low, high);
    }

    void WriteVoxels(::Volume3D* volume, const std::string& name) {
        std::ofstream file(name, std::ios::binary);
        unsigned char*** const slices = dll_.GlobalLock3D(volume);
        for (unsigned z = 0; z < volume->depth; ++z) {
            file.write(reinterpret_cast<const char*>(slices[z][0]),
                       std::streamsize{3} * volume->width * volume->height);
        }
    }

    const LoadedDll dll_;
    std::map<unsigned, ::Volume3D*> volumes_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: bench_timing_host FILE.dll\n");
        return 2;
    }
    try {
        TimingHost host(argv[1]);
        for (std::string line; std::getline(std::cin, line);) {
            host.Answer(line);
            std::fflush(stdout);
        }
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_timing_host: %s\n", failure.what());
        return 1;
    }
}

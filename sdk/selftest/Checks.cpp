#include "sdk/selftest/Checks.h"

#include "sdk/selftest/Balls.h"
#include "sdk/selftest/Pictures.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

namespace z3d::sdk {

namespace {

constexpr std::string_view kExpectedText =
#include "ExpectedText.inc"
    ;

constexpr const char* kExportNames[] = {
#include "ExportNames.inc"
};

// Whether one of the expected lines is this one.
bool IsExpected(const std::string& line) {
    return ("\n" + std::string(kExpectedText)).find("\n" + line + "\n") != std::string::npos;
}

#define Z3D_FUNCTION(library, name) (library).Get<decltype(::name)>(#name)

std::array<float, 9> Rotation(const Library& library) {
    const AxisOrder order = {{0, 1, 2}};
    double matrix[9] = {};
    Z3D_FUNCTION(library, CreateRotateMatrix)(matrix, &order, kTurn[0], kTurn[1], kTurn[2]);
    std::array<float, 9> rotation = {};
    for (std::size_t i = 0; i < rotation.size(); ++i)
        rotation[i] = static_cast<float>(matrix[i]);
    return rotation;
}

void CheckPicture(const Library& library, Report& report, Volume3D* volume, const Picture& picture) {
    const auto whole = [](unsigned short length) { return static_cast<short>(length); };
    unsigned short width = 0;
    unsigned short height = 0;
    float* pixels = Z3D_FUNCTION(library, GetRotProjection)(
        volume, Rotation(library).data(), picture.mode, 1, whole(volume->width), 1, whole(volume->height), 1,
        whole(volume->depth), picture.high, picture.low, picture.extra, &width, &height, 0);
    if (pixels == nullptr) return report.Check(false, picture.name, "the call gave no picture");
    const std::uint32_t checksum = Checksum(std::span(pixels, 3u * width * height));
    HGLOBAL block = GlobalHandle(pixels);
    GlobalUnlock(block);
    GlobalFree(block);

    char line[100];
    std::snprintf(line, sizeof line, "%-9s %2d x %2d  %08X", picture.name, width, height,
                  static_cast<unsigned int>(checksum));
    report.Check(IsExpected(line), picture.name, "%d x %d, checksum %08X", width, height,
                 static_cast<unsigned int>(checksum));
}

Volume3D* MakeBalls(const Library& library) {
    Volume3D* volume = Z3D_FUNCTION(library, GlobalAlloc3D)(kBallsWidth, kBallsHeight, kBallsDepth, 1);
    unsigned char*** slices = Z3D_FUNCTION(library, GlobalLock3D)(volume);
    if (slices == nullptr) return volume;
    const std::vector<std::uint8_t> voxels = GreyBalls();
    constexpr std::size_t kSliceBytes = std::size_t{kBallsWidth} * kBallsHeight;
    for (std::size_t z = 0; z < kBallsDepth; ++z)
        std::memcpy(slices[z][0], &voxels[z * kSliceBytes], kSliceBytes);
    Z3D_FUNCTION(library, GlobalUnlock3D)(volume);
    return volume;
}

// A channel as a file, removed at the end of its scope.
class ChannelFile {
public:
    explicit ChannelFile(int channel) {
        char folder[MAX_PATH] = {};
        if (GetTempPathA(MAX_PATH, folder) == 0 || GetTempFileNameA(folder, "z3d", 0, path_) == 0) return;
        const std::vector<std::uint8_t> voxels = BallChannel(channel);
        std::FILE* file = std::fopen(path_, "wb");
        if (file == nullptr) return;
        written_ = std::fwrite(voxels.data(), 1, voxels.size(), file) == voxels.size();
        written_ = std::fclose(file) == 0 && written_;
    }
    ~ChannelFile() { DeleteFileA(path_); }
    ChannelFile(const ChannelFile&) = delete;
    ChannelFile& operator=(const ChannelFile&) = delete;

    bool Written() const { return written_; }
    const char* Path() const { return path_; }

private:
    char path_[MAX_PATH] = {};
    bool written_ = false;
};

struct Progress {
    float cancelAt;
    float reached;
};

int Z3D_CALL OnProgress(std::size_t user, int code, unsigned int value) {
    auto& progress = *reinterpret_cast<Progress*>(user);
    if (code != ProgressCodePercent) return ProgressGoOn;
    progress.reached = std::bit_cast<float>(value);
    return progress.reached >= progress.cancelAt ? ProgressCancel : ProgressGoOn;
}

} // namespace

void CheckVersion(const Library& library, Report& report) {
    const std::string version = library.Version();
    report.Note("library", "%s", library.Path().c_str());
    report.Check(version == SELFTEST_VERSION, "version", "%s (this test is of %s)",
                 version.empty() ? "none in the file" : version.c_str(), SELFTEST_VERSION);
}

bool CheckExports(const Library& library, Report& report) {
    std::string missing;
    for (const char* name : kExportNames)
        if (!library.Has(name)) missing += std::string(" ") + name;
    if (missing.empty())
        report.Check(true, "exports", "all %u functions", static_cast<unsigned int>(std::size(kExportNames)));
    else
        report.Check(false, "exports", "missing:%s", missing.c_str());
    return missing.empty();
}

void CheckPictures(const Library& library, Report& report) {
    Volume3D* volume = MakeBalls(library);
    if (volume == nullptr) return report.Check(false, "volume", "memory is short");
    for (const Picture& picture : kPictures)
        CheckPicture(library, report, volume, picture);
    Z3D_FUNCTION(library, GlobalFree3D)(volume);
}

void CheckFiles(const Library& library, Report& report) {
    const ChannelFile red(0), green(1), blue(2);
    if (!red.Written() || !green.Written() || !blue.Written())
        return report.Check(false, "files", "no file can be written in the folder for temporary files");
    float high = 0;
    float low = 0;
    const auto load = [&](Progress& progress) {
        return Z3D_FUNCTION(library, GetRGBImage)(red.Path(), green.Path(), blue.Path(), kBallsWidth,
                                                  kBallsHeight, kBallsDepth, 0, 0, 0, 1, kColourDiagonal,
                                                  &high, &low, nullptr, nullptr,
                                                  reinterpret_cast<std::size_t>(&progress), &OnProgress, 0);
    };
    Progress whole = {101, 0};
    Volume3D* volume = load(whole);
    if (volume == nullptr) return report.Check(false, "files", "three channel files could not be loaded");
    char line[100];
    std::snprintf(line, sizeof line, "loaded    %d x %d x %d, display range %.0f to %.0f", volume->width,
                  volume->height, volume->depth, static_cast<double>(low), static_cast<double>(high));
    report.Check(IsExpected(line) && whole.reached == 100, "files", "%s, progress up to %.0f %%", line + 10,
                 static_cast<double>(whole.reached));
    CheckPicture(library, report, volume, kColourPicture);
    Z3D_FUNCTION(library, Free3DData)(volume);

    Progress half = {50, 0};
    volume = load(half);
    report.Check(volume == nullptr && half.reached == 50, "cancel", "at %.0f %%",
                 static_cast<double>(half.reached));
    Z3D_FUNCTION(library, Free3DData)(volume);
}

} // namespace z3d::sdk

#include "soak/Calls.h"

#include "exports/Library.h"

#include <windows.h>

#include <cstddef>
#include <cstdio>
#include <limits>
#include <vector>

namespace z3d::soak {
namespace {

constexpr int kFileSide = 5; // samples per axis of the channel files

const test::Library& Dll() { return test::TheLibrary(); }

void Write(const std::string& name, const std::vector<unsigned char>& bytes) {
    std::FILE* file = std::fopen(name.c_str(), "wb");
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
}

void Release(float* pixels) {
    if (pixels == nullptr) return;
    const HGLOBAL block = GlobalHandle(pixels);
    GlobalUnlock(block);
    GlobalFree(block);
}

// Cancels at the call that the user value counts down to.
int Z3D_CALL CountDown(std::size_t user, int, unsigned int) {
    int& left = *reinterpret_cast<int*>(user);
    return left-- == 0 ? 200 : 0;
}

LRESULT CALLBACK RefuseWindows(int code, WPARAM first, LPARAM second) {
    return code == HCBT_CREATEWND ? 1 : CallNextHookEx(nullptr, code, first, second);
}

// No message box comes up while it lives.
class NoBoxes {
public:
    NoBoxes() : hook_(SetWindowsHookExW(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId())) {}
    ~NoBoxes() { UnhookWindowsHookEx(hook_); }
    NoBoxes(const NoBoxes&) = delete;
    NoBoxes& operator=(const NoBoxes&) = delete;

private:
    HHOOK hook_;
};

} // namespace

Calls::Calls(const std::string& folder, std::uint32_t seed)
    : random_(seed), bytesFile_(folder + "soak-bytes.raw"), floatsFile_(folder + "soak-floats.raw") {
    std::vector<unsigned char> bytes(kFileSide * kFileSide * kFileSide);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random_.Bits());
    Write(bytesFile_, bytes);
    std::vector<unsigned char> floats(bytes.size() * 4);
    for (std::size_t byte = 0; byte < floats.size(); ++byte)
        floats[byte] = byte % 4 == 3 ? 0x42 : static_cast<unsigned char>(random_.Bits()); // 32 to 128
    Write(floatsFile_, floats);
}

Calls::~Calls() {
    DeleteFileA(bytesFile_.c_str());
    DeleteFileA(floatsFile_.c_str());
}

int Calls::Next() {
    const int choice = random_.Below(100);
    if (choice < 15) return UseImage();
    if (choice < 30) return UseVolume();
    if (choice < 55) return Project();
    if (choice < 65) return ProjectNothing();
    if (choice < 80) return UseAngles();
    if (choice < 88) return UseScalars();
    if (choice < 92) return SetTitle();
    if (choice < 97) return LoadFiles();
    return LoadNothing();
}

int Calls::UseImage() {
    const auto size = [&] { return static_cast<unsigned int>(random_.Below(40)); };
    Image2D* image = Dll().GlobalAlloc2D(size(), size(), static_cast<unsigned int>(random_.Below(5)));
    unsigned char** rows = Dll().GlobalLock2D(image);
    if (rows != nullptr && rows[0] != nullptr) rows[image->height - 1][0] = 1;
    if (random_.Chance(2)) Dll().GlobalUnlock2D(image);
    Dll().GlobalFree2D(image);
    Dll().GlobalLock2D(nullptr);
    return 4;
}

int Calls::UseVolume() {
    const auto size = [&] { return static_cast<unsigned int>(random_.Below(9)); };
    Volume3D* volume =
        Dll().GlobalAlloc3D(size(), size(), size(), static_cast<unsigned int>(random_.Below(5)));
    if (random_.Chance(4) && volume->depth > 0 && volume->slices[0] != nullptr) {
        Dll().GlobalFree2D(volume->slices[0]);
        volume->slices[0] = nullptr;
    }
    Dll().GlobalLock3D(volume);
    if (random_.Chance(2)) Dll().GlobalUnlock3D(volume);
    (random_.Chance(2) ? Dll().GlobalFree3D : Dll().Free3DData)(volume);
    return 4;
}

int Calls::Project() {
    const auto side = [&] { return static_cast<unsigned int>(random_.Between(1, 24)); };
    Volume3D* volume = Dll().GlobalAlloc3D(side(), side(), side(), random_.Chance(3) ? 3 : 1);
    unsigned char*** slices = Dll().GlobalLock3D(volume);
    for (int z = 0; z < volume->depth; ++z)
        slices[z][0][0] = static_cast<unsigned char>(random_.Bits());
    double matrix[9];
    const AxisOrder order = {{0, 1, 2}};
    const auto angle = [&] { return static_cast<float>(random_.Below(360)); };
    Dll().CreateRotateMatrix(matrix, &order, angle(), angle(), angle());
    float rotation[9];
    for (int element = 0; element < 9; ++element)
        rotation[element] = static_cast<float>(matrix[element]);
    unsigned short width = 0;
    unsigned short height = 0;
    const auto bound = [&] { return static_cast<short>(random_.Between(-2, 30)); };
    Dll().GetRotDim(volume, rotation, 1, 9, 1, 9, 1, 9, &width, &height, 0);
    Release(Dll().GetRotProjection(volume, rotation, static_cast<short>(random_.Below(7)), bound(), bound(),
                                   bound(), bound(), bound(), bound(), 255, random_.Chance(2) ? 0.0f : 9.0f,
                                   0.5f, &width, &height, 0));
    Dll().GlobalFree3D(volume);
    return 6;
}

int Calls::ProjectNothing() {
    static constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    static constexpr float kTurns[3][9] = {
        {kNaN, 0, 0, 0, 1, 0, 0, 0, 1}, {1e30f, 0, 0, 0, 1, 0, 0, 0, 1}, {1, 0, 0, 0, 1, 0, 0, 0, 1}};
    Volume3D* volume = Dll().GlobalAlloc3D(4, 3, 2, random_.Chance(3) ? 0 : 1);
    const int what = random_.Below(4);
    unsigned short size = 0;
    // Three of the four cases have nothing to render; unknown modes do for the rest.
    Release(Dll().GetRotProjection(what == 3 ? nullptr : volume, kTurns[what % 3], what == 2 ? 7 : 0, 1, 4, 1,
                                   3, 1, 2, 255, 0, 0, &size, random_.Chance(2) ? &size : nullptr, 0));
    Dll().GetRotDim(nullptr, nullptr, 1, 1, 1, 1, 1, 1, &size, nullptr, 0);
    Dll().Free3DData(volume);
    return 4;
}

int Calls::UseAngles() {
    const AxisOrder orders[3] = {{{0, 1, 2}}, {{2, 0, 1}}, {{1, 2, 0}}};
    double matrix[9];
    double rebuilt[9];
    float x = static_cast<float>(random_.Below(360));
    float y = random_.Chance(9) ? 90.0f : static_cast<float>(random_.Below(180));
    float z = random_.Chance(9) ? std::numeric_limits<float>::infinity() : 30.0f;
    Dll().CreateRotateMatrix(matrix, &orders[random_.Below(3)], x, y, z);
    Dll().GetAngleXYZ(matrix, &x, &y, &z);
    Dll().GetAngleZXY(matrix, &x, &y, &z);
    Dll().GetAngleYZX(matrix, &x, &y, &z);
    Dll().GetAngleXY(rebuilt, matrix[2], matrix[5], matrix[8], &x, &y, 1);
    Dll().GetAngleZX(rebuilt, matrix[1], matrix[4], matrix[7], &x, &z, 1);
    Dll().GetAngleYZ(rebuilt, matrix[0], matrix[3], matrix[6], &y, &z, 1);
    Dll().ChangeOrder(&orders[random_.Below(3)], &orders[random_.Below(3)], &x, &y, &z);
    Dll().GetAngleXYZ(nullptr, &x, &y, nullptr);
    return 9;
}

int Calls::UseScalars() {
    unsigned char table[256] = {};
    Dll().AdjustGamma(random_.Chance(9) ? nullptr : table, static_cast<float>(random_.Below(300)));
    Dll().SubvolumeConvert(static_cast<int>(random_.Bits()), random_.Below(500), random_.Below(4), 1);
    return 2;
}

int Calls::SetTitle() {
    const std::string title(static_cast<std::size_t>(random_.Below(60)), 't');
    Dll().SetRenderMsgTitle(random_.Chance(4) ? nullptr : title.c_str());
    return 1;
}

int Calls::LoadFiles() {
    const bool is8bit = random_.Chance(2);
    const char* file = (is8bit ? bytesFile_ : floatsFile_).c_str();
    float range[4];
    int left = random_.Below(40);
    Volume3D* volume = Dll().GetRGBImage(
        file, random_.Chance(3) ? nullptr : file, file, kFileSide, kFileSide, kFileSide, 0, 0, 0, is8bit,
        static_cast<short>(random_.Between(0, 12)), &range[0], &range[1], &range[2], &range[3],
        reinterpret_cast<std::size_t>(&left), random_.Chance(4) ? nullptr : CountDown, random_.Chance(3));
    Dll().Free3DData(volume);
    return 2;
}

int Calls::LoadNothing() {
    const NoBoxes guard;
    float range[2];
    const char* missing = random_.Chance(2) ? "no such file" : nullptr;
    Volume3D* volume = Dll().GetRGBImage(bytesFile_.c_str(), missing, "no such file",
                                         random_.Chance(3) ? 0 : kFileSide, kFileSide, kFileSide, 0, 0, 0, 1,
                                         6, &range[0], &range[1], nullptr, nullptr, 0, nullptr, 0);
    Dll().GlobalFree3D(volume);
    return 2;
}

} // namespace z3d::soak

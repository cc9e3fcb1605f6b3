#include "exports/Scenarios.h"

#include "Zentra3DRendering.h"

#include <cstdint>
#include <limits>

namespace z3d::test {
namespace {

constexpr AxisOrder kOrders[] = {{{0, 1, 2}}, {{2, 0, 1}}, {{1, 2, 0}},
                                 {{0, 2, 1}}, {{1, 1, 0}}, {{-1, 3, 32767}}};

// From the exact to the hopeless.
constexpr float kAngles[][3] = {{0, 90, -180},
                                {12.5f, -33.3f, 271.7f},
                                {1e-30f, FloatLimits::denorm_min(), 1e9f},
                                {FloatLimits::infinity(), 1, FloatLimits::signaling_NaN()}};

void MakeMatrices(ForeignHost& host, Findings& findings) {
    for (const AxisOrder& order : kOrders) {
        for (const auto& [x, y, z] : kAngles) {
            double matrix[9];
            host.Call("CreateRotateMatrix", matrix, &order, x, y, z);
            findings.Add(matrix);
        }
    }
}

// 15 times a rotation in whole numbers, see kOblique; a pole of each order; no rotation at all.
constexpr double kMatrices[][9] = {
    {1.0 / 3, 2.0 / 3, 2.0 / 3, -2.0 / 15, 11.0 / 15, -2.0 / 3, -14.0 / 15, 2.0 / 15, 1.0 / 3},
    {0, 0, -1, 0, 1, 0, 1, 0, 0},
    {0, -1, 0, 1, 0, 0, 0, 0, 1},
    {1e300, 2, -1e-310, 0, 5, std::numeric_limits<double>::infinity(), 1e-320, 0.5, 0.25}};

void ExtractTwoAngles(ForeignHost& host, Findings& findings) {
    for (const double(&m)[9] : kMatrices) {
        for (const float third : {0.0f, 33.3f, FloatLimits::denorm_min()}) {
            double matrix[9] = {};
            float angles[2] = {};
            host.Call("GetAngleXY", matrix, m[2], m[5], m[8], &angles[0], &angles[1], third);
            findings.Add(matrix);
            findings.Add(angles);
            host.Call("GetAngleZX", matrix, m[1], m[4], m[7], &angles[0], &angles[1], third);
            findings.Add(matrix);
            findings.Add(angles);
            host.Call("GetAngleYZ", matrix, m[0], m[3], m[6], &angles[0], &angles[1], third);
            findings.Add(matrix);
            findings.Add(angles);
        }
    }
}

void ExtractThreeAngles(ForeignHost& host, Findings& findings) {
    for (const double(&matrix)[9] : kMatrices) {
        for (const char* name : {"GetAngleXYZ", "GetAngleZXY", "GetAngleYZX"}) {
            float angles[3] = {};
            host.Call(name, matrix, &angles[0], &angles[1], &angles[2]);
            findings.Add(angles);
        }
    }
}

void ChangeOrders(ForeignHost& host, Findings& findings) {
    for (const AxisOrder& from : kOrders) {
        for (const AxisOrder& to : kOrders) {
            for (const auto& [x, y, z] : kAngles) {
                float angles[3] = {x, y, z};
                host.Call("ChangeOrder", &from, &to, &angles[0], &angles[1], &angles[2]);
                findings.Add(angles);
            }
        }
    }
}

void LookUpGamma(ForeignHost& host, Findings& findings) {
    unsigned char table[256];
    for (unsigned int index = 0; index < 256; ++index)
        table[index] = static_cast<unsigned char>(index * index / 255);
    for (const float value : {0.0f, 10.25f, 10.9f, 254.99999f, 300.0f, -3.0f, FloatLimits::denorm_min(),
                              FloatLimits::signaling_NaN(), FloatLimits::infinity()})
        findings.Add(host.Call("AdjustGamma", table, value));
}

// Results are 16-bit: the upper half of the register is nobody's.
void ConvertSubvolumes(ForeignHost& host, Findings& findings) {
    for (const std::int32_t value : {0, 5, 299, 400, -7, 0x7FFFFFFF}) {
        for (const std::int32_t newScale : {100, 1, 0x7FFFFFFF}) {
            for (const std::int32_t oldScale : {300, 0, -1}) {
                for (const int roundUp : {0, 1})
                    findings.Add(static_cast<std::uint16_t>(
                        host.Call("SubvolumeConvert", value, newScale, oldScale, roundUp)));
            }
        }
    }
}

const Scenario kGeometryScenarios[] = {
    {"rotation matrices", {"CreateRotateMatrix"}, MakeMatrices},
    {"two angles", {"GetAngleXY", "GetAngleZX", "GetAngleYZ"}, ExtractTwoAngles},
    {"three angles", {"GetAngleXYZ", "GetAngleZXY", "GetAngleYZX"}, ExtractThreeAngles},
    {"changed orders", {"ChangeOrder"}, ChangeOrders},
    {"gamma", {"AdjustGamma"}, LookUpGamma},
    {"sub-volumes", {"SubvolumeConvert"}, ConvertSubvolumes},
};

} // namespace

std::span<const Scenario> GeometryScenarios() { return kGeometryScenarios; }

} // namespace z3d::test

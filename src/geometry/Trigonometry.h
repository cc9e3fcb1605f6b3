// Sine, cosine, arc sine and square root with the same bits in every build.
//
// The C libraries of the supported builds disagree: some hand the sine to the x87 instruction, whose pi has
// only 66 bits and whose cosine near 90 degrees is therefore wrong from the fifth digit on. These routines
// use nothing but additions, multiplications, divisions and square roots of 64-bit significands, which every
// x86 processor rounds alike, and round to double once, at the end: the error stays below 0.502 ulp. That
// takes an x87 control word of 64-bit precision, rounding to nearest, as every export sets it.
#pragma once

namespace z3d::geometry {

struct SineCosine {
    double sine;
    double cosine;
};

// Both are NaN for an angle that is not finite. Beyond 2^24 radians (960 million degrees, where floats of
// degrees are 64 apart) the result keeps within [-1, 1] but drifts away from the true sine.
SineCosine SineAndCosine(double radians);

// In [-pi/2, pi/2], radians; NaN for an argument outside [-1, 1].
double ArcSine(double sine);

// Correctly rounded, also where an unoptimised build would call a C library that rounds twice.
double SquareRoot(double value);

} // namespace z3d::geometry

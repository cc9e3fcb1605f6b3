// Sine, cosine and arc sine in 113-bit arithmetic, to measure the product's routines against.
#pragma once

namespace z3d::reference {

using Wide = __float128;

// For |radians| up to 2^24 the errors stay below 2^-85, which is far from anything that a double can show.
Wide WideSine(Wide radians);
Wide WideCosine(Wide radians);

// The distance of `got` from `want` in units of the last place of the double nearest to `want`.
double ErrorInUlp(double got, Wide want);

} // namespace z3d::reference

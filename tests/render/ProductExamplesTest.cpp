// The worked examples on the product.
#include "support/ProductRenderer.h"

#include "RenderExamples.h"

namespace {

using namespace z3d;

} // namespace

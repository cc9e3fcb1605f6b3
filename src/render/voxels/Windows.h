// Intensity windows that test sixteen voxels at once.
#pragma once

#include "render/voxels/Bytes.h"
#include "render/voxels/ValueInterval.h"

namespace z3d::render {

// A window on grey values. Inside it, value - first is at most last - first, in bytes without sign.
class GreyWindow {
public:
    Z3D_INLINE explicit GreyWindow(ValueInterval accepted)
        : accepted_(accepted),
          first_(AllBytes(static_cast<std::uint8_t>(accepted.first))),
          span_(AllBytes(static_cast<std::uint8_t>(accepted.last - accepted.first))) {}
    Z3D_INLINE bool IsEmpty() const { return accepted_.first > accepted_.last; }
    Z3D_INLINE bool IsFull() const { return accepted_.first == 0 && accepted_.last == kLargestGrey; }
    Z3D_INLINE ValueInterval Accepted() const { return accepted_; }

    // The mask of accepted voxels. The window must not be empty.
    Z3D_INLINE Bytes Accepts(const GreyVoxels& voxels) const {
        if (IsFull()) return AllBytes(0xFF);
        const Bytes above = voxels.channel[0] - first_;
        return AreEqual(Smaller(above, span_), above);
    }

private:
    ValueInterval accepted_;
    Bytes first_;
    Bytes span_;
};

// A window on channel sums. Inside it, value - first - span saturates to nothing.
class RgbWindow {
public:
    Z3D_INLINE explicit RgbWindow(ValueInterval accepted)
        : accepted_(accepted),
          first_(_mm_set1_epi16(static_cast<short>(accepted.first))),
          span_(_mm_set1_epi16(static_cast<short>(accepted.last - accepted.first))) {}
    Z3D_INLINE bool IsEmpty() const { return accepted_.first > accepted_.last; }
    Z3D_INLINE bool IsFull() const { return accepted_.first == 0 && accepted_.last == kLargestSum; }
    Z3D_INLINE ValueInterval Accepted() const { return accepted_; }

    Z3D_INLINE Bytes Accepts(const RgbVoxels& voxels) const {
        return IsFull() ? AllBytes(0xFF) : AcceptsSums(SumOf(voxels));
    }
    Z3D_INLINE Bytes AcceptsSums(const Sums& sums) const {
        return NarrowMask({Covers(sums.low), Covers(sums.high)});
    }

private:
    Z3D_INLINE __m128i Covers(__m128i sums) const {
        return _mm_cmpeq_epi16(_mm_subs_epu16(_mm_sub_epi16(sums, first_), span_), _mm_setzero_si128());
    }
    ValueInterval accepted_;
    __m128i first_;
    __m128i span_;
};

// Whatever is looked at counts.
struct NoWindow {
    Z3D_INLINE bool IsEmpty() const { return false; }
    Z3D_INLINE bool IsFull() const { return true; }
    Z3D_INLINE ValueInterval Accepted() const { return {0, kLargestSum}; }
    template <class AnyVoxels>
    Z3D_INLINE Bytes Accepts(const AnyVoxels&) const {
        return AllBytes(0xFF);
    }
};

} // namespace z3d::render

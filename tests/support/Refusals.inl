#include <gtest/gtest.h>

namespace z3d::test {

template <class Work>
void ForEveryRefusal(Work work) {
    const std::int64_t before = OutstandingInTotal();
    RefuseNothing();
    work(false);
    const std::int64_t requests = RequestsSeen();
    ASSERT_EQ(OutstandingInTotal(), before) << "left over without any refusal";
    for (std::int64_t index = 0; index < requests; ++index) {
        SCOPED_TRACE(::testing::Message() << "refused request " << index << " of " << requests);
        RefuseRequest(index);
        work(true);
        RefuseNothing();
        ASSERT_EQ(OutstandingInTotal(), before);
    }
}

} // namespace z3d::test

#include "render/ViewTable.h"

#include <ostream>
#include <string>

namespace z3d::test {

void Visit::See(const reference::Request& request) {
    ++seen_;
    if (isDifferent_) return;
    const ::testing::AssertionResult alike = compared_->IsRenderedAlike(request);
    isDifferent_ = !alike;
    EXPECT_TRUE(alike) << "view " << seen_;
}

namespace {

struct Row {
    Topic topic;
    KernelCase kernel;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.topic.name << "_" << row.kernel.name;
}

std::vector<Row> Table() {
    std::vector<Row> table;
    for (const auto& topics : {AlignedTopics(), CropTopics(), SizeTopics(), MatrixTopics(), VoxelTopics()}) {
        for (const Topic& topic : topics) {
            for (const KernelCase& kernel : AllKernels()) {
                if (topic.suits(kernel)) table.push_back({topic, kernel});
            }
        }
    }
    return table;
}

class ViewTable : public ::testing::TestWithParam<Row> {};

// The number of views is in the report: --gtest_output=xml.
TEST_P(ViewTable, IsRenderedAlike) {
    Visit visit(GetParam().kernel);

    GetParam().topic.show(visit);

    EXPECT_GT(visit.Seen(), 0);
    RecordProperty("views", visit.Seen());
}

INSTANTIATE_TEST_SUITE_P(, ViewTable, ::testing::ValuesIn(Table()), ::testing::PrintToStringParamName());

} // namespace
} // namespace z3d::test

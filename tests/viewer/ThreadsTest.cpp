// The threads behind the window.
#include <gtest/gtest.h>

#include <chrono>

#include "LoadThread.h"
#include "RenderThread.h"
#include "Speed.h"

namespace z3d::viewer {

using namespace tools;

namespace {

// Counts what is announced, and waits for it.
class Bell {
public:
    std::function<void()> Ring() {
        return [this] {
            const std::scoped_lock lock(mutex_);
            ++count_;
            changed_.notify_all();
        };
    }
    bool WaitFor(int count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(60), [&] { return count_ >= count; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

std::shared_ptr<LoadedVolume> Cube(int side) {
    auto loaded = std::make_shared<LoadedVolume>();
    loaded->size = {side, side, side};
    loaded->volume = MakeVolume(loaded->size, VoxelType::Grey8);
    return loaded;
}

View Turned(const LoadedVolume& volume, float angle) {
    View view = FirstView(volume.size, volume.type);
    SetAngles(view, {0, 0, angle});
    return view;
}

} // namespace

TEST(RenderThread, OfManyRequestsTheNewestIsRendered) {
    Bell bell;
    RenderThread renderer(bell.Ring());
    const auto volume = Cube(64);
    int frames = 0;
    for (int i = 0; i <= 500; ++i)
        renderer.Ask(Turned(*volume, static_cast<float>(i)), volume);
    std::shared_ptr<const Frame> frame;
    while (frame == nullptr || frame->view.angles[2] != 500) {
        ASSERT_TRUE(bell.WaitFor(++frames));
        if (auto next = renderer.Take()) frame = std::move(next);
    }
    EXPECT_LT(frames, 500);
    EXPECT_EQ(renderer.Take(), nullptr);
}

TEST(RenderThread, EndsInTheMiddleOfWork) {
    Bell bell;
    const auto volume = Cube(64);
    for (int i = 0; i < 20; ++i) {
        RenderThread renderer(bell.Ring());
        renderer.Ask(Turned(*volume, 45), volume);
    }
    EXPECT_EQ(volume.use_count(), 1);
}

TEST(LoadThread, LoadsTheMadeUpHead) {
    Bell bell;
    LoadThread loader(bell.Ring());
    loader.Start({});
    ASSERT_TRUE(bell.WaitFor(1));
    const auto result = loader.Take();
    ASSERT_NE(result, nullptr);
    ASSERT_NE(result->volume, nullptr) << result->failure;
    EXPECT_EQ(result->volume->size.height, 217);
    EXPECT_FALSE(loader.Running());
}

TEST(LoadThread, SaysWhyAFileCannotBeRead) {
    Bell bell;
    LoadThread loader(bell.Ring());
    loader.Start({{L"no-such-file.nrrd"}, 0});
    ASSERT_TRUE(bell.WaitFor(1));
    const auto result = loader.Take();
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->volume, nullptr);
    EXPECT_NE(result->failure.find("no-such-file.nrrd"), std::string::npos) << result->failure;
}

TEST(LoadThread, NothingComesOfACancelledLoad) {
    Bell bell;
    LoadThread loader(bell.Ring());
    loader.Start({});
    loader.Cancel();
    EXPECT_FALSE(loader.Running());
    loader.Start({{L"no-such-file.nrrd"}, 0});
    ASSERT_TRUE(bell.WaitFor(1));
    const auto result = loader.Take();
    ASSERT_NE(result, nullptr);
    EXPECT_FALSE(result->source.IsPhantom());
}

TEST(Speed, CountsTheLastSecond) {
    Speed speed;
    EXPECT_EQ(speed.PicturesPerSecond(0), 0);
    for (int i = 0; i <= 40; ++i)
        speed.Note(i * 0.05);
    EXPECT_NEAR(speed.PicturesPerSecond(2), 20, 1e-9);
    EXPECT_EQ(speed.PicturesPerSecond(3.5), 0);
}

} // namespace z3d::viewer

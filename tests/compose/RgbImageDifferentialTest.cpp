// GetRGBImage against the plain form, bit for bit, over random files and requests.
#include "support/RgbImage.h"

#include "reference/PlainPipeline.h"
#include "support/RandomSource.h"
#include "support/Stacks.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>

namespace {

using namespace z3d;
using namespace z3d::test;
using reference::FileBytes;

FileBytes RandomFile(RandomSource& random, const reference::Size& size, bool is8bit) {
    constexpr float kSpecial[] = {
        0.0f,   -0.0f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
        -1e30f, 1e-40f};
    const auto samples = static_cast<std::size_t>(size.width * size.height * size.depth);
    const bool isWild = random.Chance(3);
    const int top = random.Between(0, 255);
    FileBytes bytes(samples);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random.Between(top / 2, top));
    if (!is8bit) {
        std::vector<float> floats(samples);
        for (float& value : floats) {
            value = static_cast<float>(random.Within(-20, 300));
            if (isWild && random.Chance(12)) value = kSpecial[random.Below(6)];
        }
        bytes = FileBytesOf(floats);
    }
    if (random.Chance(6))
        bytes.resize(static_cast<std::size_t>(random.Below(static_cast<int>(bytes.size()) + 9)));
    return bytes;
}

struct Choice {
    bool red, green, blue;             // named at all
    bool greenIsRed, blueIsRed, apart; // named like red, and whether that counts
};

Choice RandomChoice(RandomSource& random) {
    const int named = random.Between(1, 7);
    Choice choice = {(named & 1) != 0, (named & 2) != 0, (named & 4) != 0, false, false, random.Chance(4)};
    choice.greenIsRed = choice.red && choice.green && random.Chance(2);
    choice.blueIsRed = choice.red && choice.blue && random.Chance(2);
    return choice;
}

// Three files, and the request that names some of them.
class Case {
public:
    explicit Case(std::uint32_t seed) : random_(seed), is8bit_(random_.Chance(2)) {
        size_ = {random_.Between(1, 40), random_.Between(1, 40), random_.Between(1, 12)};
        maxDiagonal_ = random_.Between(-2, 80);
        for (FileBytes& file : files_)
            file = RandomFile(random_, size_, is8bit_);
        choice_ = RandomChoice(random_);
        if (choice_.greenIsRed) files_[1] = files_[0];
        if (choice_.blueIsRed) files_[2] = files_[0];
    }

    reference::RgbImage Plain() const {
        const FileBytes* red = &files_[0];
        const bool shares = !choice_.apart;
        const FileBytes* green = choice_.greenIsRed && shares ? red : &files_[1];
        const FileBytes* blue = choice_.blueIsRed && shares ? red : &files_[2];
        return reference::MakeRgbImage({choice_.red ? red : nullptr, choice_.green ? green : nullptr,
                                        choice_.blue ? blue : nullptr, size_, is8bit_, maxDiagonal_});
    }

    ImageResult Product() const {
        const TemporaryFile red(files_[0]);
        const TemporaryFile green(files_[1]);
        const TemporaryFile blue(files_[2]);
        compose::RgbImageRequest request =
            Request(choice_.red ? red.Name() : nullptr,
                    !choice_.green       ? nullptr
                    : choice_.greenIsRed ? red.Name()
                                         : green.Name(),
                    !choice_.blue       ? nullptr
                    : choice_.blueIsRed ? red.Name()
                                        : blue.Name(),
                    static_cast<std::int16_t>(size_.width), static_cast<std::int16_t>(size_.height),
                    static_cast<std::int16_t>(size_.depth));
        request.is8bit = is8bit_;
        request.maxDiagonal = static_cast<std::int16_t>(maxDiagonal_);
        request.keepChannelsApart = choice_.apart;
        return GetImage(request);
    }

private:
    RandomSource random_;
    bool is8bit_;
    reference::Size size_;
    int maxDiagonal_;
    FileBytes files_[3];
    Choice choice_;
};

TEST(RgbImageDifferential, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 500; ++seed) {
        const Case one(seed);
        const reference::RgbImage plain = one.Plain();
        const ImageResult product = one.Product();

        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        ASSERT_TRUE(HasSamples(product.volume.get(), plain.volume));
        ExpectDisplay(product, plain.display.max, plain.display.min);
        ExpectRange(product, plain.range.max, plain.range.min);
        ASSERT_FALSE(::testing::Test::HasFailure());
    }
}

} // namespace

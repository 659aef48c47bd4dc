// The size the background goes up at for the window that shows it.
#include <gtest/gtest.h>

#include "Textures.h"

namespace {

struct Case {
    const char* what;
    int neededWidth, neededHeight;
    TextureSize expected;
};

TEST(UploadSize, IsTheWindowsPictureNeverMoreThanTheImage) {
    // The 1920 x 1200 nebula behind pictures of several sizes.
    const Case cases[] = {
        {"the picture's own size", 1024, 768, {1024, 768}},
        {"a smaller window", 640, 480, {640, 480}},
        {"full screen on a large display: the image's own", 2560, 1920, {1920, 1200}},
        {"wider than the image only", 2000, 900, {1920, 900}},
        {"no size asked: the image's own", 0, 0, {1920, 1200}},
        {"a minimised window: one texel, not none", 1, 1, {1, 1}},
    };
    for (const Case& c : cases) EXPECT_EQ(uploadSize(1920, 1200, c.neededWidth, c.neededHeight), c.expected) << c.what;
}

}  // namespace

// The 1024 x 768 picture in a game window of any size: proportions kept, bars, points mapped back.
#include <gtest/gtest.h>

#include <tuple>

#include "desktop/PictureFit.h"

namespace tolvar {
namespace {

TEST(PictureFit, ScaledWithBarsAtTheSidesOrTopAndBottom) {
    // window w, h -> picture x, y, w, h (pixels from the lower left)
    const std::tuple<int, int, int, int, int, int> cases[] = {
        {1024, 768, 0, 0, 1024, 768},    // its own size: no bars
        {2048, 1536, 0, 0, 2048, 1536},  // twice as large
        {1920, 1080, 240, 0, 1440, 1080},  // wide screen: bars at the sides
        {700, 700, 0, 87, 700, 525},     // square: bars at top and bottom
        {1366, 705, 213, 0, 940, 705},   // a laptop's usable area
        {512, 384, 0, 0, 512, 384},
        {1, 1000, 0, 499, 1, 1},         // never a picture of no pixels
    };
    for (const auto& [ww, wh, x, y, w, h] : cases) {
        const PictureFit fit = PictureFit::within(ww, wh, 1024.0f, 768.0f);
        EXPECT_EQ(std::make_tuple(fit.x, fit.y, fit.width, fit.height), std::make_tuple(x, y, w, h))
            << ww << "x" << wh;
    }
    const PictureFit none = PictureFit::within(0, 0, 1024.0f, 768.0f);
    EXPECT_EQ(none.width, 0);
}

TEST(PictureFit, WindowPointsLandOnTheSamePictureSpot) {
    // window w, h, the point in the window, the point on the picture
    const std::tuple<int, int, float, float, float, float> cases[] = {
        {1024, 768, 100.0f, 750.0f, 100.0f, 750.0f},
        {2048, 1536, 200.0f, 1500.0f, 100.0f, 750.0f},
        {1920, 1080, 240.0f, 0.0f, 0.0f, 0.0f},          // the picture's lower left corner
        {1920, 1080, 1680.0f, 1080.0f, 1024.0f, 768.0f},  // its upper right
        {1920, 1080, 960.0f, 540.0f, 512.0f, 384.0f},     // the centre
        {1920, 1080, 100.0f, 540.0f, -99.5556f, 384.0f},  // on the left bar: off the picture
        {700, 700, 350.0f, 87.0f + 262.5f, 512.0f, 384.0f},
    };
    for (const auto& [ww, wh, wx, wy, px, py] : cases) {
        float x = 0.0f, y = 0.0f;
        PictureFit::within(ww, wh, 1024.0f, 768.0f).toPicture(wx, wy, x, y);
        EXPECT_NEAR(x, px, 0.01f) << ww << "x" << wh << " at " << wx << "," << wy;
        EXPECT_NEAR(y, py, 0.01f) << ww << "x" << wh << " at " << wx << "," << wy;
    }
}

TEST(PictureFit, OpeningSizeFitsTheUsableArea) {
    // usable area w, h, decorations w, h -> window w, h
    const std::tuple<int, int, int, int, int, int> cases[] = {
        {1280, 1024, 0, 0, 1024, 768},  // room enough: the picture's own size, never larger
        {2560, 1440, 10, 40, 1024, 768},
        {1366, 768 - 32, 0, 0, 981, 736},   // a laptop with a panel
        {1366, 768 - 32, 4, 30, 941, 706},  // ... and a title bar
        {800, 600, 0, 0, 800, 600},
        {100, 100, 0, 0, 256, 192},  // a tiny screen still gets a window one can see
    };
    for (const auto& [aw, ah, bw, bh, w, h] : cases) {
        int width = 0, height = 0;
        openingSize(1024.0f, 768.0f, aw, ah, bw, bh, width, height);
        EXPECT_EQ(std::make_pair(width, height), std::make_pair(w, h)) << aw << "x" << ah;
    }
}

}  // namespace
}  // namespace tolvar

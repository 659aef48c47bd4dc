// The shipped piece model drawn as the game draws it: the right size and place, and lit from
// the front by the game window's lights.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "GlContext.h"
#include "SpikesScene.h"

namespace {

struct Coverage {
    int left = GlContext::kWidth, right = -1, bottom = GlContext::kHeight, top = -1;
    int pixels = 0;
    int lit = 0;  // brighter than the ambient light alone could make a white surface
    double upperRight = 0.0, lowerLeft = 0.0;  // mean red of the model's pixels in those quarters
};

Coverage measure() {
    glFinish();
    std::vector<unsigned char> rgb(std::size_t(GlContext::kWidth) * GlContext::kHeight * 3);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, GlContext::kWidth, GlContext::kHeight, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());
    Coverage c;
    const int cx = GlContext::kWidth / 2, cy = GlContext::kHeight / 2;
    long sumUR = 0, countUR = 0, sumLL = 0, countLL = 0;
    for (int y = 0; y < GlContext::kHeight; ++y) {
        for (int x = 0; x < GlContext::kWidth; ++x) {
            const unsigned char* p = &rgb[(std::size_t(y) * GlContext::kWidth + x) * 3];
            if (GlContext::isBackground({p[0], p[1], p[2]})) continue;
            ++c.pixels;
            if (p[0] > 130) ++c.lit;
            c.left = std::min(c.left, x);
            c.right = std::max(c.right, x);
            c.bottom = std::min(c.bottom, y);
            c.top = std::max(c.top, y);
            if (x > cx && y > cy) {
                sumUR += p[0];
                ++countUR;
            } else if (x < cx && y < cy) {
                sumLL += p[0];
                ++countLL;
            }
        }
    }
    c.upperRight = countUR ? double(sumUR) / countUR : 0.0;
    c.lowerLeft = countLL ? double(sumLL) / countLL : 0.0;
    return c;
}

}  // namespace

using SpikesRender = GlTest;

TEST_F(SpikesRender, DrawnAtTheCellsCentreAndWidth) {
    SpritePtr model = loadSpikes();
    ASSERT_TRUE(model);
    GlContext::gameLights();
    drawSpikesPiece(model.get(), {400, 300, 200, {1, 1, 1}});
    const Coverage c = measure();
    EXPECT_NEAR(c.right - c.left + 1, 200, 2);
    EXPECT_NEAR((c.left + c.right + 1) / 2.0, 400, 2);
    EXPECT_NEAR((c.bottom + c.top + 1) / 2.0, 300, 2);
    // A round ball: as tall as it is wide, and filling most of its box.
    EXPECT_NEAR(c.top - c.bottom + 1, 200, 4);
    EXPECT_GT(c.pixels, 200 * 200 / 2);
    // The drawn shape is put back for the next piece.
    EXPECT_EQ(model->vertices, model->homeVertices);
}

// Both lights shine from the upper right and a little from the front: with outward normals the
// upper right of the ball is the bright side, with the normals turned round it is the lower left.
TEST_F(SpikesRender, LitFromTheFront) {
    SpritePtr model = loadSpikes();
    ASSERT_TRUE(model);
    GlContext::gameLights();
    drawSpikesPiece(model.get(), {512, 384, 400, {1, 1, 1}});
    const Coverage asShipped = measure();
    ASSERT_GT(asShipped.pixels, 0);

    // The same faces with their normals turned round face away from the lights.
    for (float& n : model->normals) n = -n;
    GlContext::clear();
    drawSpikesPiece(model.get(), {512, 384, 400, {1, 1, 1}});
    const Coverage turned = measure();

    const double shippedLit = double(asShipped.lit) / asShipped.pixels;
    EXPECT_GT(shippedLit, 0.45) << asShipped.lit << " of " << asShipped.pixels;
    EXPECT_GT(asShipped.upperRight, asShipped.lowerLeft + 40.0)
        << asShipped.upperRight << " vs " << asShipped.lowerLeft;
    EXPECT_GT(turned.lowerLeft, turned.upperRight + 40.0) << turned.lowerLeft << " vs " << turned.upperRight;
}

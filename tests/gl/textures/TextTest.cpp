// Strings as textures, and strings and textured rectangles drawn on screen.
#include <limits>

#include "TextureTestSupport.h"
#include "glUtils.h"

using namespace texturetest;

static constexpr std::uint8_t kClear[4] = {0, 0, 0, 0};
static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(StringTexture, SizesFollowFontSizeAndLengthUnusableSizesMakeNone) {
    struct Case { const char* text; double size; int width, height; };
    for (const Case& c : std::initializer_list<Case>{{"Hello", 18, 64, 32}, {"0123456789", 36, 256, 64},
             {"0123456789", 10, 128, 16}, {"W", 12, 8, 16}, {"W", 15, 16, 32}, {"", 18, 1, 32},
             {"\xC3\xA9t\xC3\xA9", 10, 64, 16}, {"Hello", -4, 1, 1}, {"Hello", 1.0e9, 0, 0}, {"Hello", kNaN, 0, 0},
             {nullptr, 12, 0, 0}}) {
        std::uint32_t name = 0;
        EXPECT_EQ(createTextureFromString(c.text, "Helvetica", c.size, &name, kClear, nullptr), c.width ? 1 : 0);
        EXPECT_EQ(name != 0, c.width != 0);
        const TextureLevel level = readTexture(name);
        EXPECT_EQ(std::pair(level.width, level.height), std::pair(c.width, c.height)) << c.size;
        glDeleteTextures(1, &name);
    }
}

// A cleared window with a projection of one unit per pixel.
static void clearWindow() {
    glViewport(0, 0, kWindowWidth, kWindowHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, kWindowWidth, 0, kWindowHeight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glClear(GL_COLOR_BUFFER_BIT);
}

// Left, bottom, right and top (ends exclusive) of the window's lit pixels, and their count, read back from
// the back buffer, which no other window can cover.
static std::vector<int> litBox() {
    std::vector<std::uint8_t> pixels(kWindowWidth * kWindowHeight * 4);
    glReadPixels(0, 0, kWindowWidth, kWindowHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    std::vector<int> box = {kWindowWidth, kWindowHeight, 0, 0, 0};
    for (int i = 0, x = 0, y = 0; i < kWindowWidth * kWindowHeight; ++i, x = i % kWindowWidth, y = i / kWindowWidth)
        if (pixels[i * 4] || pixels[i * 4 + 1] || pixels[i * 4 + 2])
            box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x + 1), std::max(box[3], y + 1),
                   box[4] + 1};
    return box;
}

TEST(ScreenDrawing, TextureCoversItsRectangleFirstRowOnTop) {
    std::vector<std::uint8_t> texels(64 * 32 * 4, 255);  // the first uploaded row green, the others red
    for (std::size_t i = 0; i < texels.size(); i += 4) texels[i + (i < 64 * 4 ? 0 : 1)] = texels[i + 2] = 0;
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 64, 32, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    const float point[2] = {100, 50}, rotation[4] = {0, 0, 0, 1}, white[4] = {1, 1, 1, 1};
    clearWindow();
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    drawTextureAtPoint(texture, point, rotation, 64, 32, white);
    EXPECT_EQ(litBox(), (std::vector<int>{100, 50, 164, 82, 64 * 32}));
    std::uint8_t top[4], lower[4];
    glReadPixels(130, 81, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, top);
    glReadPixels(130, 60, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, lower);
    EXPECT_EQ(std::vector<int>({top[0], top[1], lower[0], lower[1]}), (std::vector<int>{0, 255, 255, 0}));
    glDisable(GL_CULL_FACE);
    glDeleteTextures(1, &texture);
}

TEST(ScreenDrawing, StringsStandOnTheirPoint) {
    const float yellow[4] = {1, 1, 0, 1};
    clearWindow();
    glEnable(GL_CULL_FACE);  // the quad must face the viewer
    for (double size : {18.0, 1e9, kNaN}) drawStringAtPoint(size == 18 ? "" : "Hi", "Helvetica", yellow, size, 9, 9, 0);
    EXPECT_EQ(litBox()[4], 0);
    // The text at the top of the 64 x 32 quad whose lower left corner is (200, 100).
    drawStringAtPoint("Hello", "Helvetica", yellow, 18, 200, 100, 0);
    const std::vector<int> box = litBox();
    EXPECT_GT(box[4], 50);
    EXPECT_GE(box[0], 200);
    EXPECT_GE(box[1], 100);
    EXPECT_LE(box[2], 264);
    EXPECT_GE(box[3], 124);
    EXPECT_LE(box[3], 132);
    glDisable(GL_CULL_FACE);
}

// Strings as textures, and text and textured rectangles drawn on screen.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "TextPixels.h"
#include "Textures.h"
#include "TextureTestSupport.h"
#include "glUtils.h"

using namespace texturetest;

namespace {

const std::uint8_t kClear[4] = {0, 0, 0, 0};

struct Ink {
    int count = 0;
    int firstRow = -1;
    int lastRow = -1;
};

// Pixels that differ from the background, with the rows they occupy (first row first).
Ink findInk(const TextureLevel& level, const std::uint8_t background[4]) {
    Ink ink;
    for (int r = 0; r < level.height; ++r) {
        for (int c = 0; c < level.width; ++c) {
            const std::uint8_t* p = &level.rgba[(static_cast<std::size_t>(r) * level.width + c) * 4];
            if (std::equal(p, p + 4, background)) continue;
            ++ink.count;
            if (ink.firstRow < 0) ink.firstRow = r;
            ink.lastRow = r;
        }
    }
    return ink;
}

TextureLevel stringTexture(const char* text, const std::string& font, double size,
                           const std::uint8_t background[4] = kClear) {
    std::uint32_t name = 0;
    EXPECT_EQ(createTextureFromString(text, font, size, &name, background, nullptr), 1);
    TextureLevel level = readTexture(name);
    glDeleteTextures(1, &name);
    return level;
}

}  // namespace

TEST(Fonts, FamiliesResolveToInstalledFontsWithASansFallback) {
    const std::string helvetica = tolvar::text::fontFileFor("Helvetica");
    ASSERT_FALSE(helvetica.empty());
    EXPECT_TRUE(std::filesystem::exists(helvetica));
    const std::string unknown = tolvar::text::fontFileFor("No Such Family Anywhere");
    EXPECT_TRUE(std::filesystem::exists(unknown));
    EXPECT_EQ(unknown, tolvar::text::fontFileFor("sans-serif"));
}

TEST(StringTexture, SizesFollowFontSizeAndLength) {
    struct Case {
        const char* text;
        double size;
        int width;
        int height;
    };
    for (const Case& c : {Case{"Hello", 18, 64, 32}, Case{"0123456789", 36, 256, 64},
                          Case{"0123456789", 10, 128, 16}, Case{"W", 12, 8, 16}, Case{"", 18, 1, 32},
                          Case{"\xC3\xA9t\xC3\xA9", 10, 64, 16}}) {
        SCOPED_TRACE(c.text);
        SCOPED_TRACE(c.size);
        const TextureLevel level = stringTexture(c.text, "Helvetica", c.size);
        EXPECT_EQ(level.width, c.width);
        EXPECT_EQ(level.height, c.height);
    }
}

TEST(StringTexture, TextSitsAtTheTopOverTheBackground) {
    const std::uint8_t background[4] = {10, 20, 30, 255};
    const TextureLevel level = stringTexture("HHHHH", "Helvetica", 18, background);
    ASSERT_EQ(level.height, 32);
    const Ink ink = findInk(level, background);
    ASSERT_GT(ink.count, 50);
    // Capital H runs from near the first row down to the baseline, well inside the 32 rows.
    EXPECT_LE(ink.firstRow, 8);
    EXPECT_GE(ink.lastRow, 12);
    EXPECT_LE(ink.lastRow, 24);
    // Full ink is white, partial ink lies between white and the background.
    int white = 0;
    for (std::size_t i = 0; i < level.rgba.size(); i += 4) {
        const std::uint8_t* p = &level.rgba[i];
        if (p[0] == 255 && p[1] == 255 && p[2] == 255) ++white;
        EXPECT_GE(p[0], 10);
        EXPECT_EQ(p[3], 255);
    }
    EXPECT_GT(white, 20);
}

TEST(StringTexture, UnknownFontStillDrawsAndDescendersStayInside) {
    const TextureLevel level = stringTexture("gjpqy", "NoSuchFont-Bold", 30);
    ASSERT_EQ(level.height, 32);
    const Ink ink = findInk(level, kClear);
    EXPECT_GT(ink.count, 50);
    EXPECT_LT(ink.lastRow, 32);
}

TEST(StringTexture, UnusableSizesMakeNothing) {
    std::uint32_t name = 5;
    for (double size : {1.0e9, std::numeric_limits<double>::quiet_NaN(),
                        std::numeric_limits<double>::infinity(), 20000.0}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(createTextureFromString("Hello", "Helvetica", size, &name, kClear, nullptr), 0);
    }
    EXPECT_EQ(name, 5u);
    // Tiny and negative sizes give tiny textures without text.
    const TextureLevel tiny = stringTexture("Hello", "Helvetica", -4.0);
    EXPECT_EQ(tiny.width, 1);
    EXPECT_EQ(tiny.height, 1);
    EXPECT_EQ(createTextureFromString(nullptr, "Helvetica", 12, &name, kClear, nullptr), 0);
}

TEST(TextImage, ColouredTextWrapsInsideTheImage) {
    std::uint32_t name = 0;
    StringToTexture(" 0 0 0 0 0 0 0 0 0 0 0 0 0 0", "Helvetica", 36, &name, 128, 128, 1.0f, 0.5f, 0.0f);
    ASSERT_NE(name, 0u);
    const TextureLevel level = readTexture(name);
    ASSERT_EQ(level.width, 128);
    ASSERT_EQ(level.height, 128);
    const Ink ink = findInk(level, kClear);
    EXPECT_GT(ink.count, 200);
    // The text runs over several lines of 36 points.
    EXPECT_GT(ink.lastRow - ink.firstRow, 60);
    // The texture's rows go bottom-up, so the first line of text is in the last rows.
    EXPECT_GE(ink.lastRow, 100);
    for (std::size_t i = 0; i < level.rgba.size(); i += 4) {
        if (level.rgba[i + 3] == 0) continue;
        EXPECT_EQ(level.rgba[i], 255);
        EXPECT_EQ(level.rgba[i + 1], 128);
        EXPECT_EQ(level.rgba[i + 2], 0);
    }
    glDeleteTextures(1, &name);
}

TEST(TextImage, OddInputStillMakesATexture) {
    std::uint32_t name = 0;
    StringToTexture("", "Helvetica", 12, &name, 16, 16, 0, 0, 0);
    EXPECT_EQ(readTexture(name).width, 16);
    StringToTexture("x", "", 0, &name, 32, 8, std::nanf(""), 0, 0);
    EXPECT_EQ(readTexture(name).width, 32);
    StringToTexture("x", "Helvetica", 100000, &name, 8, 8, 1, 1, 1);
    EXPECT_EQ(readTexture(name).width, 8);
    glDeleteTextures(1, &name);
    // Sizes no image can have make no texture; a fresh name is all that may appear.
    std::uint32_t empty = 0;
    StringToTexture("x", "Helvetica", 12, &empty, 0, 0, 1, 1, 1);
    EXPECT_EQ(readTexture(empty).width, 0);
    glDeleteTextures(1, &empty);
}

class ScreenDrawing : public testing::Test {
protected:
    void SetUp() override {
        glViewport(0, 0, kWindowWidth, kWindowHeight);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, kWindowWidth, 0, kWindowHeight, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glDisable(GL_DEPTH_TEST);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    // The window's pixels that are not black, as a bounding box (x from the left, y from the
    // bottom, end exclusive).
    struct Box {
        int count = 0;
        int left = 1 << 30;
        int bottom = 1 << 30;
        int right = -1;
        int top = -1;
    };
    Box litBox() {
        const auto pixels = readWindow(0, 0, kWindowWidth, kWindowHeight);
        Box box;
        for (int y = 0; y < kWindowHeight; ++y) {
            for (int x = 0; x < kWindowWidth; ++x) {
                const std::uint8_t* p = &pixels[(static_cast<std::size_t>(y) * kWindowWidth + x) * 4];
                if (p[0] == 0 && p[1] == 0 && p[2] == 0) continue;
                ++box.count;
                box.left = std::min(box.left, x);
                box.bottom = std::min(box.bottom, y);
                box.right = std::max(box.right, x + 1);
                box.top = std::max(box.top, y + 1);
            }
        }
        return box;
    }
};

TEST_F(ScreenDrawing, TextureCoversItsRectangleFirstRowOnTop) {
    // First uploaded row green, the other 31 red.
    std::vector<std::uint8_t> texels(64 * 32 * 4);
    for (int r = 0; r < 32; ++r)
        for (int c = 0; c < 64; ++c) {
            std::uint8_t* p = &texels[(static_cast<std::size_t>(r) * 64 + c) * 4];
            p[0] = r == 0 ? 0 : 255;
            p[1] = r == 0 ? 255 : 0;
            p[2] = 0;
            p[3] = 255;
        }
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 64, 32, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());

    const float point[2] = {100, 50};
    const float rotation[4] = {0, 0, 0, 1};
    const float white[4] = {1, 1, 1, 1};
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    drawTextureAtPoint(texture, point, rotation, 64, 32, white);
    const Box box = litBox();
    EXPECT_EQ(box.left, 100);
    EXPECT_EQ(box.right, 164);
    EXPECT_EQ(box.bottom, 50);
    EXPECT_EQ(box.top, 82);
    EXPECT_EQ(box.count, 64 * 32);
    const auto topRow = readWindow(130, 81, 1, 1);
    const auto lowerRow = readWindow(130, 60, 1, 1);
    EXPECT_EQ(topRow[1], 255);
    EXPECT_EQ(topRow[0], 0);
    EXPECT_EQ(lowerRow[0], 255);
    EXPECT_EQ(lowerRow[1], 0);

    // The state it leaves: projection selected, depth test off, texturing on, culling as it
    // was, the screen-sized viewport.
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_PROJECTION);
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), GL_FALSE);
    EXPECT_EQ(glIsEnabled(GL_TEXTURE_2D), GL_TRUE);
    EXPECT_EQ(glIsEnabled(GL_CULL_FACE), GL_TRUE);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);
    SDL_DisplayMode screen;
    ASSERT_EQ(SDL_GetDesktopDisplayMode(0, &screen), 0);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], screen.w);
    EXPECT_EQ(viewport[3], screen.h);
    glDisable(GL_CULL_FACE);
    glDeleteTextures(1, &texture);
}

TEST_F(ScreenDrawing, StringQuadStandsOnThePoint) {
    const float yellow[4] = {1, 1, 0, 1};
    glEnable(GL_CULL_FACE);
    drawStringAtPoint("Hello", "Helvetica", yellow, 18, 200, 100, 0.0f);
    const Box box = litBox();
    ASSERT_GT(box.count, 50);
    // Inside the 64 x 32 quad whose lower left corner is (200, 100), the text at its top.
    EXPECT_GE(box.left, 200);
    EXPECT_LE(box.right, 264);
    EXPECT_GE(box.bottom, 100);
    EXPECT_LE(box.top, 132);
    EXPECT_GE(box.top, 124);
    const auto pixels = readWindow(0, 0, kWindowWidth, kWindowHeight);
    for (std::size_t i = 0; i < pixels.size(); i += 4) EXPECT_EQ(pixels[i + 2], 0) << i;
    EXPECT_EQ(glIsEnabled(GL_CULL_FACE), GL_TRUE);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);
    EXPECT_EQ(glIsEnabled(GL_TEXTURE_2D), GL_TRUE);
    GLfloat colour[4];
    glGetFloatv(GL_CURRENT_COLOR, colour);
    EXPECT_EQ(colour[0], 1.0f);
    EXPECT_EQ(colour[2], 1.0f);
    GLfloat matrix[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix);
    EXPECT_EQ(matrix[0], 1.0f);
    EXPECT_EQ(matrix[1], 0.0f);
    glDisable(GL_CULL_FACE);
}

TEST_F(ScreenDrawing, RotationStaysOnTheMatrix) {
    const float white[4] = {1, 1, 1, 1};
    glTranslatef(500, 300, 0);
    drawStringAtPoint("Hi", "Helvetica", white, 18, 0, 0, 90.0f);
    GLfloat matrix[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix);
    EXPECT_NEAR(matrix[0], 0.0f, 1e-6);
    EXPECT_NEAR(matrix[1], 1.0f, 1e-6);
    EXPECT_NEAR(matrix[4], -1.0f, 1e-6);
    // Turned a quarter to the left about (500, 300): the 32 x 32 quad lies left of x = 500.
    const Box box = litBox();
    ASSERT_GT(box.count, 10);
    EXPECT_GE(box.left, 500 - 32);
    EXPECT_LE(box.right, 500);
    EXPECT_GE(box.bottom, 300);
    EXPECT_LE(box.top, 300 + 32);
}

TEST_F(ScreenDrawing, NothingDrawnForUnusableStrings) {
    const float white[4] = {1, 1, 1, 1};
    glEnable(GL_CULL_FACE);
    drawStringAtPoint("", "Helvetica", white, 18, 10, 10, 0.0f);
    drawStringAtPoint("Hello", "Helvetica", white, 1.0e9, 10, 10, 0.0f);
    drawStringAtPoint("Hello", "Helvetica", white, std::numeric_limits<double>::quiet_NaN(), 10, 10, 0.0f);
    EXPECT_EQ(litBox().count, 0);
    EXPECT_EQ(glIsEnabled(GL_CULL_FACE), GL_TRUE);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDisable(GL_CULL_FACE);
}

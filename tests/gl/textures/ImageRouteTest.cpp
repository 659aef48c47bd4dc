// Images becoming textures: the largest power-of-two block at the lower left, upright.
#include <gtest/gtest.h>

#include <SDL_image.h>

#include "ImageFile.h"
#include "Textures.h"
#include "TextureTestSupport.h"

using namespace texturetest;

namespace {

// An image made in memory with the pattern, rows top first, padded to `bytesPerRow`.
Image patternImage(int width, int height, bool alpha, int bytesPerRow) {
    Image image;
    image.width = width;
    image.height = height;
    image.hasAlpha = alpha;
    image.bitsPerPixel = alpha ? 32 : 24;
    image.bytesPerRow = bytesPerRow;
    image.pixels.assign(static_cast<std::size_t>(bytesPerRow) * height, 0xEE);
    const int bytes = alpha ? 4 : 3;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* p = &image.pixels[static_cast<std::size_t>(y) * bytesPerRow + x * bytes];
            p[0] = patternRed(x, y);
            p[1] = patternGreen(x, y);
            p[2] = patternBlue(x, y);
            if (alpha) p[3] = patternAlpha(x, y);
        }
    }
    return image;
}

// Every texel of the texture against the image's pixel it must come from: texture row r
// (bottom first) is image row imageHeight - 1 - r.
void expectLowerLeftBlock(const TextureLevel& level, int imageHeight, bool alpha) {
    int wrong = 0;
    for (int r = 0; r < level.height; ++r) {
        for (int c = 0; c < level.width; ++c) {
            const int y = imageHeight - 1 - r;
            const std::uint8_t* t = &level.rgba[(static_cast<std::size_t>(r) * level.width + c) * 4];
            const bool same = t[0] == patternRed(c, y) && t[1] == patternGreen(c, y) &&
                              t[2] == patternBlue(c, y) &&
                              t[3] == (alpha ? patternAlpha(c, y) : 255);
            if (!same && ++wrong <= 3)
                ADD_FAILURE() << "texel (" << c << ", " << r << ") is " << int(t[0]) << " "
                              << int(t[1]) << " " << int(t[2]) << " " << int(t[3]);
        }
    }
    EXPECT_EQ(wrong, 0);
}

}  // namespace

TEST(PowerOfTwo, LargestNotAbove) {
    EXPECT_EQ(truncPowerOf2(0), 1u);
    EXPECT_EQ(truncPowerOf2(1), 1u);
    EXPECT_EQ(truncPowerOf2(3), 2u);
    EXPECT_EQ(truncPowerOf2(256), 256u);
    EXPECT_EQ(truncPowerOf2(257), 256u);
    EXPECT_EQ(truncPowerOf2(1000), 512u);
    EXPECT_EQ(truncPowerOf2(0xFFFFFFFFu), 0x80000000u);
}

TEST(ImageRoute, RGBImageGivesItsLowerLeftPowerOfTwoBlockUpright) {
    const Image image = patternImage(300, 200, false, 900);
    std::uint32_t name = 0;
    int width = -1;
    int height = -1;
    TextureFromNSImage(image, &name, &width, &height);
    ASSERT_NE(name, 0u);
    EXPECT_EQ(width, 256);
    EXPECT_EQ(height, 128);
    const TextureLevel level = readTexture(name);
    ASSERT_EQ(level.width, 256);
    ASSERT_EQ(level.height, 128);
    expectLowerLeftBlock(level, 200, false);
    GLint filter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &filter);
    EXPECT_EQ(filter, GL_NEAREST);
    glDeleteTextures(1, &name);
}

TEST(ImageRoute, RGBAImageKeepsItsAlphaAndReusesTheGivenName) {
    GLuint given = 0;
    glGenTextures(1, &given);
    std::uint32_t name = given;
    int width = 0;
    int height = 0;
    TextureFromNSImage(patternImage(70, 33, true, 70 * 4), &name, &width, &height);
    EXPECT_EQ(name, given);
    EXPECT_EQ(width, 64);
    EXPECT_EQ(height, 32);
    const TextureLevel level = readTexture(name);
    ASSERT_EQ(level.width, 64);
    expectLowerLeftBlock(level, 33, true);
    glDeleteTextures(1, &name);
}

TEST(ImageRoute, PaddedRowsUploadCorrectly) {
    // 301 RGB pixels take 903 bytes; rows padded to 904 and to 912 bytes.
    for (int rowBytes : {904, 912}) {
        SCOPED_TRACE(rowBytes);
        std::uint32_t name = 0;
        int width = 0;
        int height = 0;
        TextureFromNSImage(patternImage(301, 130, false, rowBytes), &name, &width, &height);
        const TextureLevel level = readTexture(name);
        ASSERT_EQ(level.width, 256);
        ASSERT_EQ(level.height, 128);
        expectLowerLeftBlock(level, 130, false);
        glDeleteTextures(1, &name);
    }
}

TEST(ImageRoute, LoadedFilesMatchTheirPixels) {
    for (const char* file : {"pattern.png", "pattern.bmp"}) {
        SCOPED_TRACE(file);
        const auto path = scratchFolder() / file;
        saveRGBPattern(path, 301, 200, false);
        Image image;
        ASSERT_TRUE(loadImageFile(path.c_str(), image));
        EXPECT_EQ(image.width, 301);
        EXPECT_EQ(image.height, 200);
        EXPECT_FALSE(image.hasAlpha);
        EXPECT_EQ(image.bitsPerPixel, 24);
        ASSERT_GE(image.bytesPerRow, 903);
        std::uint32_t name = 0;
        int width = 0;
        int height = 0;
        TextureFromNSImage(image, &name, &width, &height);
        const TextureLevel level = readTexture(name);
        ASSERT_EQ(level.width, 256);
        ASSERT_EQ(level.height, 128);
        expectLowerLeftBlock(level, 200, false);
        glDeleteTextures(1, &name);
    }
    const auto withAlpha = scratchFolder() / "alpha.png";
    saveRGBPattern(withAlpha, 20, 10, true);
    Image image;
    ASSERT_TRUE(loadImageFile(withAlpha.c_str(), image));
    EXPECT_TRUE(image.hasAlpha);
    EXPECT_EQ(image.bitsPerPixel, 32);
    EXPECT_EQ(image.pixels[(3 * image.bytesPerRow) + 5 * 4 + 3], patternAlpha(5, 3));
}

class ImageRouteRefuses : public testing::Test {
protected:
    // The outputs must come back exactly as they went in, and no texture may appear.
    void expectUntouched(const Image& image) {
        std::uint32_t name = 4242;
        int width = -3;
        int height = -5;
        TextureFromNSImage(image, &name, &width, &height);
        EXPECT_EQ(name, 4242u);
        EXPECT_EQ(width, -3);
        EXPECT_EQ(height, -5);
        EXPECT_EQ(glIsTexture(4242), GL_FALSE);
        std::uint32_t fresh = 0;
        TextureFromNSImage(image, &fresh, &width, &height);
        EXPECT_EQ(fresh, 0u);
    }
};

TEST_F(ImageRouteRefuses, SixteenBitGreyPNG) {
    std::vector<std::uint8_t> rows;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 30; ++x) rows.insert(rows.end(), {static_cast<std::uint8_t>(x * 8), 0x80});
    const auto path = scratchFolder() / "grey16.png";
    writeBytes(path, encodePNG(30, 40, 16, 0, rows));
    Image image;
    ASSERT_TRUE(loadImageFile(path.c_str(), image));
    EXPECT_EQ(image.bitsPerPixel, 16);
    EXPECT_EQ(image.width, 30);
    EXPECT_EQ(image.height, 40);
    expectUntouched(image);
}

TEST_F(ImageRouteRefuses, IndexedAndGreyPNG) {
    std::vector<std::uint8_t> indices;
    for (int i = 0; i < 16 * 16; ++i) indices.push_back(static_cast<std::uint8_t>(i % 3));
    const auto indexed = scratchFolder() / "indexed.png";
    writeBytes(indexed, encodePNG(16, 16, 8, 3, indices, {255, 0, 0, 0, 255, 0, 0, 0, 255}));
    Image image;
    ASSERT_TRUE(loadImageFile(indexed.c_str(), image));
    EXPECT_EQ(image.bitsPerPixel, 8);
    expectUntouched(image);

    const auto grey = scratchFolder() / "grey8.png";
    writeBytes(grey, encodePNG(16, 16, 8, 0, indices));
    ASSERT_TRUE(loadImageFile(grey.c_str(), image));
    EXPECT_EQ(image.bitsPerPixel, 8);
    expectUntouched(image);
}

TEST_F(ImageRouteRefuses, InconsistentRecords) {
    Image shortPixels = patternImage(64, 64, false, 192);
    shortPixels.pixels.resize(100);
    expectUntouched(shortPixels);
    Image narrowRows = patternImage(64, 64, false, 192);
    narrowRows.bytesPerRow = 100;
    expectUntouched(narrowRows);
    Image alphaButThreeBytes = patternImage(64, 64, false, 192);
    alphaButThreeBytes.hasAlpha = true;
    expectUntouched(alphaButThreeBytes);
    expectUntouched(Image{});
    Image noRows = patternImage(64, 64, true, 256);
    noRows.height = 0;
    expectUntouched(noRows);
}

TEST(ImageFiles, BrokenFilesAreRefusedWithTheirName) {
    const auto good = scratchFolder() / "whole.png";
    saveRGBPattern(good, 64, 64, false);
    const std::vector<std::uint8_t> bytes = readBytes(good);
    ASSERT_GT(bytes.size(), 200u);

    const auto truncated = scratchFolder() / "truncated.png";
    writeBytes(truncated, std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 100));
    const auto empty = scratchFolder() / "empty.png";
    writeBytes(empty, {});
    const auto text = scratchFolder() / "notes.png";
    writeBytes(text, {'h', 'e', 'l', 'l', 'o'});
    // A header that claims 100000 x 100000 pixels, then nothing.
    std::vector<std::uint8_t> huge = encodePNG(1, 1, 8, 0, {0});
    huge[16] = 0;
    huge[17] = 1;
    huge[18] = 0x86;
    huge[19] = 0xA0;
    huge[20] = 0;
    huge[21] = 1;
    huge[22] = 0x86;
    huge[23] = 0xA0;
    const auto enormous = scratchFolder() / "enormous.png";
    writeBytes(enormous, huge);

    for (const auto& path : {truncated, empty, text, enormous, scratchFolder() / "absent.png"}) {
        SCOPED_TRACE(path);
        Image image;
        testing::internal::CaptureStderr();
        EXPECT_FALSE(loadImageFile(path.c_str(), image));
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_NE(said.find(path.string()), std::string::npos) << said;
    }
}

TEST(ImageFiles, JPEGPhotosLoadAsRGB) {
    const auto path = scratchFolder() / "photo.jpg";
    saveRGBPattern(path, 40, 24, false);
    {
        // saveRGBPattern writes BMP for other names; turn it into a JPEG through SDL.
        SDL_Surface* bmp = SDL_LoadBMP(path.c_str());
        ASSERT_NE(bmp, nullptr);
        const int saved = IMG_SaveJPG(bmp, path.c_str(), 95);
        SDL_FreeSurface(bmp);
        ASSERT_EQ(saved, 0) << IMG_GetError();
    }
    Image image;
    ASSERT_TRUE(loadImageFile(path.c_str(), image));
    EXPECT_EQ(image.width, 40);
    EXPECT_EQ(image.height, 24);
    EXPECT_EQ(image.bitsPerPixel, 24);
    EXPECT_FALSE(image.hasAlpha);
}

TEST(ImageFiles, EveryCutOfAGoodFileIsRefusedOrWhole) {
    const auto png = scratchFolder() / "cut.png";
    const auto bmp = scratchFolder() / "cut.bmp";
    saveRGBPattern(png, 9, 7, true);
    saveRGBPattern(bmp, 9, 7, false);
    for (const auto& path : {png, bmp}) {
        const std::vector<std::uint8_t> whole = readBytes(path);
        ASSERT_FALSE(whole.empty());
        int accepted = 0;
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::vector<std::uint8_t> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            Image image;
            std::string reason;
            if (tolvar::images::decodeImage(cut.data(), cut.size(), false, image, reason)) {
                ++accepted;
                EXPECT_TRUE(tolvar::images::isWellFormed(image)) << length;
            } else {
                EXPECT_FALSE(reason.empty()) << length;
            }
        }
        // Far more cuts are refused than taken (a BMP missing only its last bytes may pass).
        EXPECT_LT(accepted, static_cast<int>(whole.size()) / 4) << path;
    }
}

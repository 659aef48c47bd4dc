// Square image files become textures at their own size, top row first.
#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>

#include "FileIO.h"
#include "Textures.h"
#include "TextureTestSupport.h"

using namespace texturetest;

namespace {

constexpr std::uint32_t kNoTexture = 0xFFFFFFFFu;

// Texture row r holds image row r: the file route uploads the rows as they are stored.
void expectSameRows(const TextureLevel& level, bool alpha) {
    int wrong = 0;
    for (int r = 0; r < level.height; ++r) {
        for (int c = 0; c < level.width; ++c) {
            const std::uint8_t* t = &level.rgba[(static_cast<std::size_t>(r) * level.width + c) * 4];
            const bool same = t[0] == patternRed(c, r) && t[1] == patternGreen(c, r) &&
                              t[2] == patternBlue(c, r) && t[3] == (alpha ? patternAlpha(c, r) : 255);
            if (!same && ++wrong <= 3) ADD_FAILURE() << "texel (" << c << ", " << r << ")";
        }
    }
    EXPECT_EQ(wrong, 0);
}

std::uint32_t loadQuietly(const std::filesystem::path& path, std::string& printed) {
    std::uint32_t name = 0;
    testing::internal::CaptureStderr();
    printed = captureStdout([&] { name = createTextureFromFile(path.c_str()); });
    testing::internal::GetCapturedStderr();
    return name;
}

}  // namespace

TEST(FileRoute, SquareImagesKeepTheirSizeAndRows) {
    struct Case {
        const char* file;
        int side;
        bool alpha;
    };
    // 101 RGB pixels make rows of 303 bytes stored with padding.
    for (const Case& c : {Case{"square.png", 100, false}, Case{"square.bmp", 101, false},
                          Case{"square-alpha.png", 50, true}}) {
        SCOPED_TRACE(c.file);
        const auto path = scratchFolder() / c.file;
        saveRGBPattern(path, c.side, c.side, c.alpha);
        std::string printed;
        const std::uint32_t name = loadQuietly(path, printed);
        ASSERT_NE(name, kNoTexture);
        EXPECT_EQ(printed, "");
        const TextureLevel level = readTexture(name);
        EXPECT_EQ(level.width, c.side);
        EXPECT_EQ(level.height, c.side);
        expectSameRows(level, c.alpha);
        GLint filter = 0;
        GLint wrap = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filter);
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, &wrap);
        EXPECT_EQ(filter, GL_LINEAR);
        EXPECT_EQ(wrap, GL_REPEAT);
        glDeleteTextures(1, &name);
    }
}

TEST(FileRoute, UnpackStateLeftByTheImageRouteDoesNotSkewRows) {
    // The image route leaves a row length of 300 pixels behind.
    Image wide;
    wide.width = 300;
    wide.height = 2;
    wide.bitsPerPixel = 24;
    wide.bytesPerRow = 900;
    wide.pixels.assign(1800, 0);
    std::uint32_t other = 0;
    int w = 0;
    int h = 0;
    TextureFromNSImage(wide, &other, &w, &h);
    glDeleteTextures(1, &other);

    const auto path = scratchFolder() / "after-wide.png";
    saveRGBPattern(path, 37, 37, false);
    std::string printed;
    const std::uint32_t name = loadQuietly(path, printed);
    ASSERT_NE(name, kNoTexture);
    expectSameRows(readTexture(name), false);
    glDeleteTextures(1, &name);
}

TEST(FileRoute, AnySquareImageIsTakenEvenGreyOrIndexed) {
    std::vector<std::uint8_t> grey;
    for (int i = 0; i < 8 * 8; ++i) grey.insert(grey.end(), {static_cast<std::uint8_t>(i * 4), 0});
    const auto path = scratchFolder() / "grey16-square.png";
    writeBytes(path, encodePNG(8, 8, 16, 0, grey));
    std::string printed;
    const std::uint32_t name = loadQuietly(path, printed);
    ASSERT_NE(name, kNoTexture);
    const TextureLevel level = readTexture(name);
    EXPECT_EQ(level.width, 8);
    // Pixel 9 is grey level 36 of 255 in every channel.
    EXPECT_EQ(level.rgba[9 * 4], 36);
    EXPECT_EQ(level.rgba[9 * 4 + 1], 36);
    EXPECT_EQ(level.rgba[9 * 4 + 2], 36);
    glDeleteTextures(1, &name);
}

TEST(FileRoute, RefusalsPrintTheirMessages) {
    const auto oblong = scratchFolder() / "oblong.png";
    saveRGBPattern(oblong, 128, 64, false);
    GLuint before = 0;
    glGenTextures(1, &before);
    std::string printed;
    EXPECT_EQ(loadQuietly(oblong, printed), kNoTexture);
    EXPECT_EQ(printed, "Not a square texture.\n");
    // No texture name was used up by the refusal.
    GLuint after = 0;
    glGenTextures(1, &after);
    EXPECT_EQ(after, before + 1);
    glDeleteTextures(1, &before);
    glDeleteTextures(1, &after);

    const auto absent = scratchFolder() / "absent.png";
    EXPECT_EQ(loadQuietly(absent, printed), kNoTexture);
    EXPECT_EQ(printed, "No file exists at " + absent.string() + "\n");

    const auto empty = scratchFolder() / "zero.bmp";
    writeBytes(empty, {});
    EXPECT_EQ(loadQuietly(empty, printed), kNoTexture);
    EXPECT_EQ(printed, "Error opening image file " + empty.string() + "\n");

    EXPECT_EQ(loadQuietly(scratchFolder(), printed), kNoTexture);
    EXPECT_EQ(printed, "Error opening image file " + scratchFolder().string() + "\n");
}

TEST(FileRoute, EnormousDimensionsAreRefusedAtOnce) {
    // A BMP header claiming 60000 x 60000 pixels of 24 bits, a GIF of 65535 x 65535 (GIF is never
    // read) and a JPEG frame of 65000 x 65000; none holds the pixels it claims.
    std::vector<std::uint8_t> bmpBytes(54, 0);
    const auto& bmp = bmpBytes;
    bmpBytes[0] = 'B';
    bmpBytes[1] = 'M';
    bmpBytes[10] = 54;
    bmpBytes[14] = 40;
    bmpBytes[18] = 0x60;
    bmpBytes[19] = 0xEA;
    bmpBytes[22] = 0x60;
    bmpBytes[23] = 0xEA;
    bmpBytes[26] = 1;
    bmpBytes[28] = 24;
    const std::vector<std::uint8_t> gif = {'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0, 0, 0,
                                           0x2C, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 2, 2, 0x4C, 0x01, 0, 0x3B};
    const std::vector<std::uint8_t> jpeg = {0xFF, 0xD8, 0xFF, 0xC0, 0, 11, 8, 0xFD, 0xE8, 0xFD, 0xE8, 1, 1, 0x11, 0,
                                            0xFF, 0xD9};
    int index = 0;
    for (const std::vector<std::uint8_t>* bytes : {&bmp, &gif, &jpeg}) {
        const auto path = scratchFolder() / ("enormous" + std::to_string(index++));
        writeBytes(path, *bytes);
        SCOPED_TRACE(path);
        const auto start = std::chrono::steady_clock::now();
        std::string printed;
        EXPECT_EQ(loadQuietly(path, printed), kNoTexture);
        EXPECT_EQ(printed, "Error opening image file " + path.string() + "\n");
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    }
}

TEST(FileRoute, ResourcesAreLookedUpAsBitmaps) {
    const std::string folder = resourceFolder();
    ASSERT_FALSE(folder.empty());
    const std::string name = "texture-test-" + std::to_string(getpid());
    const std::filesystem::path path = std::filesystem::path(folder) / (name + ".bmp");
    saveRGBPattern(path, 16, 16, false);
    std::uint32_t texture = 0;
    const std::string printed =
        captureStdout([&] { texture = createTextureFromFileResource(name.c_str()); });
    std::filesystem::remove(path);
    EXPECT_EQ(printed, "resource: " + path.string() + "\n");
    ASSERT_NE(texture, kNoTexture);
    EXPECT_EQ(readTexture(texture).width, 16);
    glDeleteTextures(1, &texture);

    const std::string missing =
        captureStdout([&] { texture = createTextureFromFileResource("no-such-texture-resource"); });
    EXPECT_EQ(texture, kNoTexture);
    EXPECT_EQ(missing, "resource: \nNo file exists at \n");
}

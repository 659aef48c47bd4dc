// Images and image files becoming textures, and files that must be refused.
#include "FileIO.h"
#include "ImageFile.h"
#include "TextureTestSupport.h"

using namespace texturetest;

[[maybe_unused]] static testing::Environment* const kGL = testing::AddGlobalTestEnvironment(new GLEnvironment);

// 4 x 4 pixels of 16-bit grey, pixel i at level 4 i of 255.
static const std::vector<std::uint8_t> kGrey16PNG = {
    0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00,
    0x00, 0x04, 0x00, 0x00, 0x00, 0x04, 0x10, 0x00, 0x00, 0x00, 0x00, 0xDC, 0x0A, 0x1D, 0xE1, 0x00, 0x00, 0x00,
    0x2B, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x05, 0xC1, 0xA1, 0x01, 0x00, 0x10, 0x00, 0x00, 0xB0, 0x05, 0x41,
    0x10, 0x04, 0x41, 0x10, 0x04, 0x41, 0x10, 0x04, 0x41, 0xF0, 0xFF, 0x5D, 0x36, 0x04, 0x51, 0x22, 0x2B, 0xAA,
    0x46, 0x37, 0x4C, 0x8B, 0xED, 0xB8, 0x9E, 0x0F, 0x16, 0xF4, 0x01, 0xE1, 0xD4, 0xDE, 0xA9, 0x39, 0x00, 0x00,
    0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};

TEST(ImageRoute, LowerLeftPowerOfTwoBlockUpright) {
    struct Case { int width, height; bool alpha; int bytesPerRow, sideX, sideY; };
    // 301 RGB pixels take 903 bytes: rows padded to 904 and 912 bytes. An RGBA texture gets the name given in.
    for (const Case& c : {Case{300, 200, false, 900, 256, 128}, Case{70, 33, true, 280, 64, 32},
                          Case{301, 130, false, 904, 256, 128}, Case{301, 130, false, 912, 256, 128}}) {
        SCOPED_TRACE(testing::Message() << c.width << " " << c.bytesPerRow);
        std::uint32_t name = c.alpha ? 7777 : 0;
        int width = -1, height = -1;
        TextureFromNSImage(patternImage(c.width, c.height, c.alpha, c.bytesPerRow), &name, &width, &height);
        EXPECT_TRUE(c.alpha ? name == 7777 : name != 0);
        EXPECT_EQ(std::pair(width, height), std::pair(c.sideX, c.sideY));
        const TextureLevel level = readTexture(name);
        ASSERT_EQ(std::pair(level.width, level.height), std::pair(c.sideX, c.sideY));
        EXPECT_EQ(patternMismatches(level, c.alpha, c.height - 1, -1), 0);
        glDeleteTextures(1, &name);
    }
}

TEST(FileRoute, SquareFilesKeepTheirSizeAndRowsOblongOnesAreRefused) {
    // The image route leaves an unpack row length of 300 pixels behind, which must not skew these rows.
    std::uint32_t wide = 0;
    TextureFromNSImage(patternImage(300, 2, false), &wide, nullptr, nullptr);
    glDeleteTextures(1, &wide);
    // 101 RGB pixels make BMP rows of 303 bytes stored padded; 16-bit grey is taken too.
    struct Case { const char* file; int side, bits; };
    for (const Case& c : std::initializer_list<Case>{{"a.png", 100, 24}, {"a.bmp", 101, 24}, {"alpha.png", 50, 32},
                                                     {"grey.png", 4, 16}}) {
        SCOPED_TRACE(c.file);
        const auto path = scratchFolder() / c.file;
        c.bits == 16 ? writeBytes(path, kGrey16PNG) : saveImage(path, c.side, c.side, c.bits);
        testing::internal::CaptureStdout();
        const std::uint32_t name = createTextureFromFile(path.c_str());
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        const TextureLevel level = readTexture(name);
        ASSERT_EQ(std::pair(level.width, level.height), std::pair(c.side, c.side));
        if (c.bits == 16)  // pixel 9 has level 36 in every channel
            EXPECT_EQ(std::vector<int>(&level.rgba[36], &level.rgba[40]), std::vector<int>({36, 36, 36, 255}));
        else EXPECT_EQ(patternMismatches(level, c.bits == 32, 0, 1), 0);
        glDeleteTextures(1, &name);
    }
    saveImage(scratchFolder() / "oblong.png", 128, 64, 24);
    testing::internal::CaptureStdout();
    EXPECT_EQ(createTextureFromFile((scratchFolder() / "oblong.png").c_str()), 0xFFFFFFFFu);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Not a square texture.\n");
}

TEST(ImageFiles, BadInputIsRefusedWithoutACrash) {
    std::vector<std::uint8_t> hugeBMP = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40,
                                         0, 0, 0, 0x60, 0xEA, 0, 0, 0x60, 0xEA, 0, 0, 1, 0, 24};
    hugeBMP.resize(54);  // 60000 x 60000 pixels claimed
    const auto bytes = [](std::vector<std::uint8_t> b) { return [b](const auto& path) { writeBytes(path, b); }; };
    const auto indexed = [](const auto& path) { saveImage(path, 16, 16, 8); };
    const auto expectRefused = [](const Image& image) {  // a given name, a zero name and the sizes all kept
        std::uint32_t name = 4242, fresh = 0;
        int width = -3, height = -5;
        TextureFromNSImage(image, &name, &width, &height);
        TextureFromNSImage(image, &fresh, &width, &height);
        EXPECT_EQ(std::vector<int>({int(name), int(fresh), width, height}), (std::vector<int>{4242, 0, -3, -5}));
    };
    struct Case { const char* file; std::function<void(const std::filesystem::path&)> make; int bits; };
    // The loader refuses most (cut files and other bytes: the image fuzz corpus; a PNG's size: the
    // next test); grey and indexed images it reads, but the image route refuses them.
    const Case cases[] = {
        {"text.png", bytes({'h', 'i'}), 0}, {"huge.bmp", bytes(hugeBMP), 0}, {"huge.jpg", bytes({0xFF, 0xD8, 0xFF, 0xC0, 0, 11, 8, 0xFD, 0xE8, 0xFD, 0xE8,
                                                              1, 1, 0x11, 0, 0xFF, 0xD9}), 0},  // 65000 x 65000
        {"grey16.png", bytes(kGrey16PNG), 16}, {"indexed.bmp", indexed, 8}, {"indexed.png", indexed, 8}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const auto path = scratchFolder() / c.file;
        c.make(path);
        Image image;
        testing::internal::CaptureStderr();
        const bool loaded = loadImageFile(path.c_str(), image);
        const std::string complaint = testing::internal::GetCapturedStderr();
        EXPECT_EQ(loaded ? image.bitsPerPixel : 0, c.bits);
        expectRefused(image);
        if (loaded) continue;
        EXPECT_NE(complaint.find(path.string()), std::string::npos) << complaint;
        testing::internal::CaptureStdout();
        EXPECT_EQ(createTextureFromFile(path.c_str()), 0xFFFFFFFFu);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error opening image file " + path.string() + "\n");
    }
    Image shortPixels = patternImage(64, 64, false), narrowRows = shortPixels, noRows = shortPixels;  // do not add up
    shortPixels.pixels.resize(100), narrowRows.bytesPerRow = 100, noRows.height = 0;
    for (const Image& image : {shortPixels, narrowRows, noRows}) expectRefused(image);
}

// PNG headers claiming a size (the pixel data after them is only 4 x 4): what the game allows is
// decided from the header, before anything is decoded, and a refusal names the limit. A file
// past the size limit (sparse) is not read at all.
TEST(ImageFiles, SizeLimitsComeFromTheHeader) {
    const auto claiming = [](std::uint32_t width, std::uint32_t height) {
        std::vector<std::uint8_t> png = kGrey16PNG;
        for (int k = 0; k < 4; ++k) {
            png[16 + k] = static_cast<std::uint8_t>(width >> (24 - 8 * k));
            png[20 + k] = static_cast<std::uint8_t>(height >> (24 - 8 * k));
        }
        return png;
    };
    struct Case { std::uint32_t width, height; bool allowed; };
    for (const Case& c : {Case{4096, 4096, true}, Case{4097, 4096, false}, Case{16384, 1024, true},
                          Case{16384, 1025, false}, Case{16385, 1, false}, Case{8192, 8192, false},
                          Case{1920, 1200, true}}) {
        SCOPED_TRACE(testing::Message() << c.width << " x " << c.height);
        const std::vector<std::uint8_t> png = claiming(c.width, c.height);
        tolvar::images::Header header;
        std::string reason;
        EXPECT_EQ(tolvar::images::probeImage(png.data(), png.size(), header, reason), c.allowed) << reason;
        if (!c.allowed) {
            EXPECT_EQ(reason, "the image is too large (" + std::to_string(c.width) + " x " + std::to_string(c.height) +
                                  " pixels; the limit is 16777216 pixels, 64 MB decoded, and 16384 a side)");
        }
    }
    const auto huge = scratchFolder() / "huge-header.png", long_ = scratchFolder() / "long.png";
    writeBytes(huge, claiming(8192, 8192));
    writeBytes(long_, kGrey16PNG);
    std::filesystem::resize_file(long_, tolvar::images::kMaxFileBytes + 1);
    struct FileCase { std::filesystem::path path; std::string complaint; };
    for (const FileCase& c : {FileCase{huge, ": the image is too large (8192 x 8192 pixels; the limit is 16777216 pixels, "
                                             "64 MB decoded, and 16384 a side)\n"},
                              FileCase{long_, ": the file is too large (68157441 bytes; the limit is 65 MB)\n"}}) {
        Image image;
        testing::internal::CaptureStderr();
        EXPECT_FALSE(loadImageFile(c.path.c_str(), image));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.path.string() + c.complaint);
        EXPECT_TRUE(image.pixels.empty());
    }
}

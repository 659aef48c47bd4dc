#include "TextureTestSupport.h"

#include <SDL_image.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <memory>

namespace texturetest {
namespace {

std::filesystem::path& folder() {
    static std::filesystem::path path;
    return path;
}

std::uint32_t crc32(const std::uint8_t* data, std::size_t size, std::uint32_t crc = 0) {
    crc = ~crc;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

void put32(std::vector<std::uint8_t>& out, std::uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(v >> shift));
}

void chunk(std::vector<std::uint8_t>& out, const char* type, const std::vector<std::uint8_t>& data) {
    put32(out, static_cast<std::uint32_t>(data.size()));
    std::vector<std::uint8_t> body(type, type + 4);
    body.insert(body.end(), data.begin(), data.end());
    out.insert(out.end(), body.begin(), body.end());
    put32(out, crc32(body.data(), body.size()));
}

// A zlib stream made of stored (uncompressed) blocks.
std::vector<std::uint8_t> zlibStored(const std::vector<std::uint8_t>& raw) {
    std::vector<std::uint8_t> out = {0x78, 0x01};
    std::size_t pos = 0;
    do {
        const std::size_t n = std::min<std::size_t>(65535, raw.size() - pos);
        const bool last = pos + n == raw.size();
        out.push_back(last ? 1 : 0);
        out.push_back(static_cast<std::uint8_t>(n & 255));
        out.push_back(static_cast<std::uint8_t>(n >> 8));
        out.push_back(static_cast<std::uint8_t>(~n & 255));
        out.push_back(static_cast<std::uint8_t>((~n >> 8) & 255));
        out.insert(out.end(), raw.begin() + static_cast<std::ptrdiff_t>(pos),
                   raw.begin() + static_cast<std::ptrdiff_t>(pos + n));
        pos += n;
    } while (pos < raw.size());
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (std::uint8_t byte : raw) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    put32(out, (b << 16) | a);
    return out;
}

struct SurfaceDeleter {
    void operator()(SDL_Surface* s) const { SDL_FreeSurface(s); }
};
struct ContextDeleter {
    void operator()(void* c) const { SDL_GL_DeleteContext(c); }
};
struct WindowDeleter {
    void operator()(SDL_Window* w) const { SDL_DestroyWindow(w); }
};

// One legacy OpenGL context for the whole run, current on the main thread.
class GLEnvironment : public testing::Environment {
public:
    void SetUp() override {
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError();
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 1);
        // Drawn and read back in the back buffer, which no other window on the display can cover.
        SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
        SDL_GL_SetAttribute(SDL_GL_ALPHA_SIZE, 8);
        window_.reset(SDL_CreateWindow("texture tests", 0, 0, kWindowWidth, kWindowHeight,
                                       SDL_WINDOW_OPENGL | SDL_WINDOW_SHOWN));
        ASSERT_TRUE(window_) << SDL_GetError();
        context_.reset(SDL_GL_CreateContext(window_.get()));
        ASSERT_TRUE(context_) << SDL_GetError();
        ASSERT_EQ(SDL_GL_MakeCurrent(window_.get(), context_.get()), 0) << SDL_GetError();
        // Let the window appear before anything is read back from it.
        SDL_Event event;
        for (int i = 0; i < 20; ++i) {
            while (SDL_PollEvent(&event)) {
            }
            SDL_Delay(10);
        }
        folder() = std::filesystem::temp_directory_path() /
                   ("tolvar-texture-tests-" + std::to_string(getpid()));
        std::filesystem::create_directories(folder());
    }
    void TearDown() override {
        std::error_code error;
        std::filesystem::remove_all(folder(), error);
        context_.reset();
        window_.reset();
        // SDL stays initialised: SDL_Quit would unload the OpenGL driver, and the leak checker
        // could then no longer tell the driver's own allocations from the game's.
    }

private:
    std::unique_ptr<SDL_Window, WindowDeleter> window_;
    std::unique_ptr<void, ContextDeleter> context_;
};

}  // namespace

const std::filesystem::path& scratchFolder() { return folder(); }

std::vector<std::uint8_t> encodePNG(int width, int height, int bitDepth, int colourType,
                                    const std::vector<std::uint8_t>& rows,
                                    const std::vector<std::uint8_t>& palette) {
    std::vector<std::uint8_t> out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<std::uint8_t> header;
    put32(header, static_cast<std::uint32_t>(width));
    put32(header, static_cast<std::uint32_t>(height));
    header.insert(header.end(), {static_cast<std::uint8_t>(bitDepth),
                                 static_cast<std::uint8_t>(colourType), 0, 0, 0});
    chunk(out, "IHDR", header);
    if (!palette.empty()) chunk(out, "PLTE", palette);
    const std::size_t rowBytes = height > 0 ? rows.size() / static_cast<std::size_t>(height) : 0;
    std::vector<std::uint8_t> raw;
    for (int y = 0; y < height; ++y) {
        raw.push_back(0);  // no filter
        raw.insert(raw.end(), rows.begin() + static_cast<std::ptrdiff_t>(rowBytes * y),
                   rows.begin() + static_cast<std::ptrdiff_t>(rowBytes * (y + 1)));
    }
    chunk(out, "IDAT", zlibStored(raw));
    chunk(out, "IEND", {});
    return out;
}

void writeBytes(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(out.good()) << path;
}

std::vector<std::uint8_t> readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void saveRGBPattern(const std::filesystem::path& path, int width, int height, bool alpha) {
    std::unique_ptr<SDL_Surface, SurfaceDeleter> surface(SDL_CreateRGBSurfaceWithFormat(
        0, width, height, alpha ? 32 : 24, alpha ? SDL_PIXELFORMAT_RGBA32 : SDL_PIXELFORMAT_RGB24));
    ASSERT_TRUE(surface) << SDL_GetError();
    auto* pixels = static_cast<std::uint8_t*>(surface->pixels);
    const int bytes = alpha ? 4 : 3;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* p = pixels + y * surface->pitch + x * bytes;
            p[0] = patternRed(x, y);
            p[1] = patternGreen(x, y);
            p[2] = patternBlue(x, y);
            if (alpha) p[3] = patternAlpha(x, y);
        }
    }
    const int saved = path.extension() == ".png" ? IMG_SavePNG(surface.get(), path.c_str())
                                                 : SDL_SaveBMP(surface.get(), path.c_str());
    ASSERT_EQ(saved, 0) << SDL_GetError();
}

TextureLevel readTexture(std::uint32_t name) {
    TextureLevel level;
    glBindTexture(GL_TEXTURE_2D, name);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &level.width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &level.height);
    if (level.width <= 0 || level.height <= 0) return level;
    level.rgba.resize(static_cast<std::size_t>(level.width) * level.height * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, level.rgba.data());
    return level;
}

std::vector<std::uint8_t> readWindow(int x, int y, int width, int height) {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4);
    glFinish();
    glReadBuffer(GL_BACK);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

}  // namespace texturetest

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new texturetest::GLEnvironment);  // owned by GoogleTest
    return RUN_ALL_TESTS();
}

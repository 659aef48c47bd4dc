// Reading image files into Image records with SDL2_image, after a look at the header so that a
// broken or hostile file never makes the game allocate more than a sane image needs.
#include "ImageFile.h"

#include "RegularFile.h"

#include <SDL.h>
#include <SDL_image.h>
#include <GL/gl.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <variant>

namespace tolvar::images {
namespace {

struct SurfaceDeleter {
    void operator()(SDL_Surface* s) const { SDL_FreeSurface(s); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceDeleter>;

std::uint32_t be32(const std::uint8_t* p) {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) |
           std::uint32_t{p[3]};
}
std::uint32_t be16(const std::uint8_t* p) { return (std::uint32_t{p[0]} << 8) | p[1]; }
std::uint32_t le16(const std::uint8_t* p) { return std::uint32_t{p[0]} | (std::uint32_t{p[1]} << 8); }
std::int32_t le32s(const std::uint8_t* p) {
    const std::uint32_t u = std::uint32_t{p[0]} | (std::uint32_t{p[1]} << 8) |
                            (std::uint32_t{p[2]} << 16) | (std::uint32_t{p[3]} << 24);
    return static_cast<std::int32_t>(u);
}

bool probePNG(const std::uint8_t* d, std::size_t n, Header& h) {
    // Signature, then the IHDR chunk: length, type, width, height, bit depth, colour type.
    if (n < 26 || std::memcmp(d + 12, "IHDR", 4) != 0) return false;
    h.width = be32(d + 16);
    h.height = be32(d + 20);
    h.sixteenBitGrey = d[24] == 16 && d[25] == 0;
    return true;
}

bool probeBMP(const std::uint8_t* d, std::size_t n, Header& h) {
    if (n < 26) return false;
    const std::int32_t dibSize = le32s(d + 14);
    if (dibSize == 12) {  // the old core header with 16-bit sides
        h.width = le16(d + 18);
        h.height = le16(d + 20);
        return true;
    }
    if (dibSize < 40) return false;
    h.width = le32s(d + 18);
    const std::int64_t height = le32s(d + 22);
    h.height = height < 0 ? -height : height;  // negative height: rows stored top first
    return true;
}

bool probeJPEG(const std::uint8_t* d, std::size_t n, Header& h) {
    std::size_t pos = 2;
    while (pos + 4 <= n) {
        if (d[pos] != 0xFF) return false;
        const std::uint8_t marker = d[pos + 1];
        if (marker == 0xFF) {  // fill byte
            ++pos;
            continue;
        }
        if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
            pos += 2;  // markers without a length
            continue;
        }
        const std::size_t length = be16(d + pos + 2);
        const bool startOfFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (startOfFrame) {
            if (pos + 9 > n) return false;
            h.height = be16(d + pos + 5);
            h.width = be16(d + pos + 7);
            return true;
        }
        if (length < 2) return false;
        pos += 2 + length;
    }
    return false;
}

const char* typeName(Format f) {
    switch (f) {
        case Format::PNG: return "PNG";
        case Format::BMP: return "BMP";
        case Format::JPEG: return "JPG";
        case Format::Unknown: break;
    }
    return "";
}

void copyRows(const SDL_Surface* s, Image& image) {
    image.bytesPerRow = s->pitch;
    image.pixels.resize(static_cast<std::size_t>(s->pitch) * static_cast<std::size_t>(s->h));
    std::memcpy(image.pixels.data(), s->pixels, image.pixels.size());
}

bool fromSurface(SDL_Surface* loaded, const Header& header, bool asRGB, Image& image,
                 std::string& reason) {
    const SDL_PixelFormat* fmt = loaded->format;
    const bool indexed = SDL_ISPIXELFORMAT_INDEXED(fmt->format);
    Image out;
    out.width = loaded->w;
    out.height = loaded->h;
    if (indexed && !asRGB) {
        // Grey and palette images keep their own depth; the image route does not take them.
        if (SDL_MUSTLOCK(loaded) && SDL_LockSurface(loaded) != 0) {
            reason = SDL_GetError();
            return false;
        }
        out.hasAlpha = false;
        if (header.sixteenBitGrey && fmt->BitsPerPixel == 8 && fmt->palette != nullptr) {
            // Decoded at 8 bits; widen each grey level back to 16 bits, high byte first.
            out.bitsPerPixel = 16;
            out.bytesPerRow = out.width * 2;
            out.pixels.resize(static_cast<std::size_t>(out.bytesPerRow) *
                              static_cast<std::size_t>(out.height));
            const auto* src = static_cast<const std::uint8_t*>(loaded->pixels);
            for (int y = 0; y < out.height; ++y) {
                for (int x = 0; x < out.width; ++x) {
                    const std::uint8_t index = src[y * loaded->pitch + x];
                    const std::uint8_t grey = index < fmt->palette->ncolors
                                                  ? fmt->palette->colors[index].r
                                                  : index;
                    out.pixels[static_cast<std::size_t>(y) * out.bytesPerRow + 2 * x] = grey;
                    out.pixels[static_cast<std::size_t>(y) * out.bytesPerRow + 2 * x + 1] = grey;
                }
            }
        } else {
            out.bitsPerPixel = fmt->BitsPerPixel;
            copyRows(loaded, out);
        }
        if (SDL_MUSTLOCK(loaded)) SDL_UnlockSurface(loaded);
        image = std::move(out);
        return true;
    }
    Uint32 key = 0;
    out.hasAlpha = SDL_ISPIXELFORMAT_ALPHA(fmt->format) || SDL_GetColorKey(loaded, &key) == 0;
    const Uint32 target = out.hasAlpha ? SDL_PIXELFORMAT_RGBA32 : SDL_PIXELFORMAT_RGB24;
    SurfacePtr converted(SDL_ConvertSurfaceFormat(loaded, target, 0));
    if (!converted) {
        reason = SDL_GetError();
        return false;
    }
    if (SDL_MUSTLOCK(converted.get()) && SDL_LockSurface(converted.get()) != 0) {
        reason = SDL_GetError();
        return false;
    }
    out.bitsPerPixel = out.hasAlpha ? 32 : 24;
    copyRows(converted.get(), out);
    if (SDL_MUSTLOCK(converted.get())) SDL_UnlockSurface(converted.get());
    image = std::move(out);
    return true;
}

}  // namespace

bool probeImage(const std::uint8_t* data, std::size_t size, Header& header, std::string& reason) {
    header = Header{};
    static constexpr std::uint8_t kPNG[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    bool ok = false;
    if (data == nullptr || size == 0) {
        reason = "the file is empty";
        return false;
    }
    if (size >= 8 && std::memcmp(data, kPNG, 8) == 0) {
        header.format = Format::PNG;
        ok = probePNG(data, size, header);
    } else if (size >= 2 && data[0] == 'B' && data[1] == 'M') {
        header.format = Format::BMP;
        ok = probeBMP(data, size, header);
    } else if (size >= 6 && (std::memcmp(data, "GIF87a", 6) == 0 || std::memcmp(data, "GIF89a", 6) == 0)) {
        // The GIF decoder at hand frees memory it does not own on some damaged files, so
        // GIF images are refused rather than risked.
        reason = "GIF images are not read; use PNG, BMP or JPEG";
        return false;
    } else if (size >= 3 && data[0] == 0xFF && data[1] == 0xD8 && data[2] == 0xFF) {
        header.format = Format::JPEG;
        ok = probeJPEG(data, size, header);
    } else {
        reason = "not a PNG, BMP or JPEG image";
        return false;
    }
    if (!ok) {
        reason = "the image header is truncated or damaged";
        return false;
    }
    if (header.width <= 0 || header.height <= 0) {
        reason = "the image has no pixels";
        return false;
    }
    if (header.width > kMaxSide || header.height > kMaxSide ||
        header.width * header.height > kMaxPixels) {
        reason = "the image is too large (" + std::to_string(header.width) + " x " +
                 std::to_string(header.height) + " pixels; the limit is " + std::to_string(kMaxPixels) +
                 " pixels, " + std::to_string(kMaxDecodedMegabytes) + " MB decoded, and " +
                 std::to_string(kMaxSide) + " a side)";
        return false;
    }
    return true;
}

bool decodeImage(const std::uint8_t* data, std::size_t size, bool asRGB, Image& image,
                 std::string& reason) {
    Header header;
    if (!probeImage(data, size, header, reason)) return false;
    if (size > static_cast<std::size_t>(INT32_MAX)) {
        reason = "the file is too large";
        return false;
    }
    SDL_RWops* rw = SDL_RWFromConstMem(data, static_cast<int>(size));
    if (rw == nullptr) {
        reason = SDL_GetError();
        return false;
    }
    // The stream is closed by the loader (freesrc = 1).
    SurfacePtr loaded(IMG_LoadTyped_RW(rw, 1, typeName(header.format)));
    if (!loaded) {
        reason = IMG_GetError();
        if (reason.empty()) reason = "the image data cannot be decoded";
        return false;
    }
    if (loaded->w <= 0 || loaded->h <= 0 || loaded->w > kMaxSide || loaded->h > kMaxSide) {
        reason = "the decoded image has unusable dimensions";
        return false;
    }
    return fromSurface(loaded.get(), header, asRGB, image, reason);
}

bool readImageBytes(const char* path, std::vector<std::uint8_t>& bytes, Header& header, std::string& reason) {
    if (path == nullptr || *path == '\0') {
        reason = "no file name";
        return false;
    }
    // A named pipe or a device in place of a picture is refused instead of waited on.
    auto read = tolvar::readRegularFile(path, kMaxFileBytes);
    if (const auto* refusal = std::get_if<tolvar::ReadRefusal>(&read)) {
        reason = refusal->tooLargeSize ? "the file is too large (" + std::to_string(refusal->tooLargeSize) +
                                             " bytes; the limit is " + std::to_string(kMaxFileBytes >> 20) + " MB)"
                                       : refusal->reason;
        return false;
    }
    const std::string& contents = std::get<std::string>(read);
    bytes.assign(contents.begin(), contents.end());
    return probeImage(bytes.data(), bytes.size(), header, reason);
}

bool readImageFile(const char* path, bool asRGB, Image& image, std::string& reason) {
    std::vector<std::uint8_t> bytes;
    Header header;
    return readImageBytes(path, bytes, header, reason) &&
           decodeImage(bytes.data(), bytes.size(), asRGB, image, reason);
}

bool isWellFormed(const Image& image) {
    if (image.width <= 0 || image.height <= 0 || image.width > kMaxSide || image.height > kMaxSide)
        return false;
    if (image.bitsPerPixel <= 0 || image.bytesPerRow <= 0) return false;
    const std::int64_t minRow = (std::int64_t{image.width} * image.bitsPerPixel + 7) / 8;
    if (image.bytesPerRow < minRow) return false;
    return static_cast<std::uint64_t>(image.pixels.size()) >=
           static_cast<std::uint64_t>(image.bytesPerRow) * static_cast<std::uint64_t>(image.height);
}

const std::uint8_t* prepareUnpack(const std::uint8_t* rows, int width, int height,
                                  int bytesPerRow, int bytesPerPixel,
                                  std::vector<std::uint8_t>& packed) {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    if (bytesPerRow % bytesPerPixel == 0) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, bytesPerRow / bytesPerPixel);
        return rows;
    }
    // Rows padded by a part of a pixel: no row length says that, so drop the padding.
    const std::size_t tight = static_cast<std::size_t>(width) * static_cast<std::size_t>(bytesPerPixel);
    packed.resize(tight * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        std::memcpy(packed.data() + tight * static_cast<std::size_t>(y),
                    rows + static_cast<std::size_t>(bytesPerRow) * static_cast<std::size_t>(y), tight);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, width);
    return packed.data();
}

}  // namespace tolvar::images

// dxf-info FILE: reads a model as the game does and lists its vertex count, its box and every
// face with the normal the reader gave it, so a model author can check a file before use.
#include <cstdio>
#include <string>

#include "3DSpriteLib.h"
#include "DXFtoSprite.h"
#include "core/CommandLine.h"
#include "core/Translate.h"

namespace {

constexpr const char* kUsage = N_("usage: dxf-info FILE\n");
constexpr const char* kHelp = N_(
    "Reads the model FILE as the game does and lists its vertex count, its box and every\n"
    "face with its normal.\n"
    "\n"
    "  --help     show this help and exit\n"
    "  --version  show the version and exit\n");

}  // namespace

int main(int argc, char** argv) {
    tolvar::startInPlayersLanguage();
    const std::string help = std::string(tolvar::tr(kUsage)) + tolvar::tr(kHelp);
    if (tolvar::answerHelpOrVersion(argc, argv, "dxf-info", help)) return 0;
    if (argc != 2) {
        fputs(tolvar::tr(kUsage), stderr);
        return 2;
    }
    SpritePtr sprite = readDXFintoSprite(argv[1]);
    if (!sprite) {
        printf("no sprite\n");
        return 1;
    }
    calcBoundingBox(sprite.get(), 1);
    printf("vertices %u\n", sprite->vertexCount);
    const Vector4& lo = sprite->boxMin;
    const Vector4& hi = sprite->boxMax;
    printf("box %g %g %g %g %g %g\n", double(lo.x), double(lo.y), double(lo.z), double(hi.x),
           double(hi.y), double(hi.z));
    const std::uint32_t faces = sprite->vertexCount / 4;
    for (std::uint32_t k = 0; k < faces; ++k) {
        const float* v = &sprite->vertices[std::size_t(k) * 12];
        const float* n = &sprite->normals[std::size_t(k) * 12];
        printf("face %u", k);
        for (int i = 0; i < 12; ++i) printf(" %g", double(v[i]));
        printf(" normal %g %g %g\n", double(n[0]), double(n[1]), double(n[2]));
    }
    return 0;
}

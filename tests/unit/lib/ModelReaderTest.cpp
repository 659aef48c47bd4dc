// The model reader: line cutting, line classes, faces and their normals, broken files, the
// resource lookup and the game's own "Spikes" model.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "DXFtoSprite.h"
#include "FileIO.h"

namespace {

std::string writeFile(const std::string& name, const std::string& content) {
    const std::string path = testing::TempDir() + "tolvar-reader-" + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

// One 3DFACE with its twelve group codes; values are written as given.
std::string face(const std::vector<std::string>& values) {
    static const char* codes[12] = {" 10", " 20", " 30", " 11", " 21", " 31",
                                    " 12", " 22", " 32", " 13", " 23", " 33"};
    std::string text = "  0\n3DFACE\n  8\n0\n";
    for (int i = 0; i < 12; ++i) text += std::string(codes[i]) + "\n" + values[i] + "\n";
    return text;
}

std::string model(const std::string& faces) {
    return "  0\nSECTION\n  2\nENTITIES\n" + faces + "  0\nENDSEC\n  0\nEOF\n";
}

const std::vector<std::string> kUnitTriangle = {"0.0", "0.0", "0.0", "1.0", "0.0", "0.0",
                                                "0.0", "1.0", "0.0", "0.0", "1.0", "0.0"};

struct Read {
    SpritePtr sprite;
    std::string out;
};

Read readCapturing(const std::string& path) {
    testing::internal::CaptureStdout();
    Read r;
    r.sprite = readDXFintoSprite(path.c_str());
    fflush(stdout);
    r.out = testing::internal::GetCapturedStdout();
    return r;
}

void expectNormal(const Sprite* s, int face, float x, float y, float z) {
    for (int k = 0; k < 4; ++k) {
        const float* n = &s->normals[(face * 4 + k) * 3];
        EXPECT_FLOAT_EQ(n[0], x) << "face " << face << " vertex " << k;
        EXPECT_FLOAT_EQ(n[1], y) << "face " << face << " vertex " << k;
        EXPECT_FLOAT_EQ(n[2], z) << "face " << face << " vertex " << k;
    }
}

}  // namespace

TEST(ReaderLines, CutAfterSixtyThreeAndKeepTheLeadingLineEnd) {
    const std::string data = "ab\ncd\r\n" + std::string(70, 'x') + "\nz";
    char line[64];
    std::uint64_t pos = 0;
    getLine(&pos, line, data.data(), data.size());
    EXPECT_STREQ(line, "ab");
    getLine(&pos, line, data.data(), data.size());
    EXPECT_STREQ(line, "\ncd");
    getLine(&pos, line, data.data(), data.size());
    EXPECT_STREQ(line, "\r");  // CR LF gives a line of the CR alone
    getLine(&pos, line, data.data(), data.size());
    EXPECT_EQ(std::strlen(line), 63u);
    EXPECT_EQ(line[0], '\n');
    getLine(&pos, line, data.data(), data.size());
    EXPECT_EQ(std::string(line), std::string(8, 'x'));
    getLine(&pos, line, data.data(), data.size());
    EXPECT_STREQ(line, "\nz");
    EXPECT_EQ(pos, data.size());
    getLine(&pos, line, data.data(), data.size());  // at the end: nothing read, nothing copied
    EXPECT_STREQ(line, "");
    EXPECT_EQ(pos, data.size());
}

TEST(ReaderLines, ClassesInTheirOrder) {
    float f = -1.0f;
    int n = -1;
    EXPECT_EQ(getTokenValue("SECTION", &f, &n), kTokenSection);
    EXPECT_EQ(getTokenValue("\nENTITIES", &f, &n), kTokenEntities);
    EXPECT_EQ(getTokenValue("3DFACE", &f, &n), kToken3DFace);
    EXPECT_EQ(getTokenValue("POLYLINE", &f, &n), kTokenPolyLine);
    EXPECT_EQ(getTokenValue("Glass.2", &f, &n), kTokenGlass);
    EXPECT_EQ(getTokenValue("VERTEX", &f, &n), kTokenVertex);
    EXPECT_EQ(getTokenValue("SEQEND", &f, &n), kTokenSeqEnd);
    EXPECT_EQ(getTokenValue("ENDSEC", &f, &n), kTokenEndSec);
    EXPECT_EQ(getTokenValue("\nEOF", &f, &n), kTokenEOF);
    EXPECT_EQ(getTokenValue("SECTION ENDSEC", &f, &n), kTokenSection);  // first match wins
    EXPECT_EQ(f, -1.0f);
    EXPECT_EQ(getTokenValue("\n-2.5", &f, &n), kTokenFloat);
    EXPECT_FLOAT_EQ(f, -2.5f);
    EXPECT_EQ(n, -1);
    EXPECT_EQ(getTokenValue("\n 33", &f, &n), kTokenInt);
    EXPECT_EQ(n, 33);
    EXPECT_EQ(getTokenValue("\n0", &f, &n), kTokenInt);
    EXPECT_EQ(n, 0);
    EXPECT_EQ(getTokenValue("\nSpikes", &f, &n), kTokenOther);
    EXPECT_EQ(getTokenValue("", &f, &n), kTokenOther);
    EXPECT_EQ(getTokenValue("99999999999999999999", &f, &n), kTokenInt);  // no overflow
    EXPECT_EQ(textContains("abc", ""), 0);
    EXPECT_EQ(textContains("abc", "bc"), 1);
    EXPECT_EQ(textContains("abc", "abcd"), 0);
}

TEST(ReaderCount, FacesBeforeTheFirstEOF) {
    const std::string data = "3DFACE\n3DFACE\nEOF\n3DFACE\n";
    EXPECT_EQ(getVertexCount(data.data(), data.size()), 8u);
    const std::string noEnd = "3DFACE\n 10\n3DFACE";
    EXPECT_EQ(getVertexCount(noEnd.data(), noEnd.size()), 8u);
    EXPECT_EQ(getVertexCount(nullptr, 0), 0u);
}

TEST(ReaderModels, TwoFacesGiveEightVerticesAndTheMessage) {
    const std::vector<std::string> second = {"0.0", "0.0", "0.0", "2.0", "0.0", "0.0",
                                             "0.0", "2.0", "0.0", "0.0", "2.0", "0.0"};
    const std::string path = writeFile("two.dxf", model(face(kUnitTriangle) + face(second)));
    Read r = readCapturing(path);
    ASSERT_TRUE(r.sprite);
    EXPECT_EQ(r.out, "New sprite " + path + " has 8 vertices.\n");
    EXPECT_EQ(r.sprite->vertexCount, 8u);
    EXPECT_EQ(r.sprite->drawMode, 7);
    EXPECT_TRUE(r.sprite->texCoords.empty());
    EXPECT_EQ(r.sprite->homeVertices, r.sprite->vertices);
    EXPECT_FLOAT_EQ(r.sprite->vertices[4 * 3 + 3], 2.0f);   // face 1, corner 1, x
    EXPECT_FLOAT_EQ(r.sprite->vertices[7 * 3 + 1], 2.0f);   // face 1, corner 3, y
    expectNormal(r.sprite.get(), 0, 0, 0, 1);
    expectNormal(r.sprite.get(), 1, 0, 0, 4);  // not normalised
}

TEST(ReaderModels, NormalIsTheUnnormalisedCrossProduct) {
    const std::vector<std::string> slanted = {"0.0", "0.0", "0.0", "1.0", "1.0", "0.0",
                                              "0.0", "1.0", "1.0", "0.0", "1.0", "1.0"};
    Read r = readCapturing(writeFile("slanted.dxf", model(face(slanted))));
    ASSERT_TRUE(r.sprite);
    expectNormal(r.sprite.get(), 0, 1, -1, 1);
}

TEST(ReaderModels, IntegerCoordinateEndsTheFaceOnly) {
    std::vector<std::string> bad = kUnitTriangle;
    bad[2] = "0";  // z of corner 0 without a decimal point
    const std::vector<std::string> good = {"5.0", "5.0", "5.0", "6.0", "5.0", "5.0",
                                           "5.0", "6.0", "5.0", "5.0", "6.0", "5.0"};
    Read r = readCapturing(writeFile("integer.dxf", model(face(bad) + face(good))));
    ASSERT_TRUE(r.sprite);
    EXPECT_NE(r.out.find("Expected float value at 30.  Got \n0 instead.\n"), std::string::npos) << r.out;
    EXPECT_EQ(r.sprite->vertexCount, 8u);
    EXPECT_FLOAT_EQ(r.sprite->vertices[3], 0.0f);  // corner 1 never read
    expectNormal(r.sprite.get(), 0, 0, 0, 0);
    EXPECT_FLOAT_EQ(r.sprite->vertices[4 * 3], 5.0f);
    expectNormal(r.sprite.get(), 1, 0, 0, 1);
}

TEST(ReaderModels, EveryGroupCodeHasItsMessage) {
    for (int i = 0; i < 12; ++i) {
        std::vector<std::string> values = kUnitTriangle;
        values[i] = "x";
        Read r = readCapturing(writeFile("code.dxf", model(face(values))));
        const int code = 10 * (i % 3 + 1) + i / 3;
        EXPECT_NE(r.out.find("Expected float value at " + std::to_string(code) + ".  Got \nx instead.\n"),
                  std::string::npos)
            << r.out;
    }
}

TEST(ReaderModels, CrLfFailsAtTheFirstCoordinate) {
    std::string text = model(face(kUnitTriangle));
    std::string crlf;
    for (char c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    Read r = readCapturing(writeFile("crlf.dxf", crlf));
    ASSERT_TRUE(r.sprite);
    EXPECT_NE(r.out.find("Expected float value at 10.  Got \r instead.\n"), std::string::npos);
    EXPECT_EQ(r.sprite->vertexCount, 4u);
}

TEST(ReaderModels, PolylinesAndLayerLinesGiveNoGeometry) {
    const std::string polyline =
        "  0\nPOLYLINE\n  8\nGlass\n  0\nVERTEX\n 10\n1.0\n 20\n2.0\n 30\n3.0\n  0\nSEQEND\n";
    Read r = readCapturing(writeFile("poly.dxf", model(polyline)));
    ASSERT_TRUE(r.sprite);
    EXPECT_EQ(r.sprite->vertexCount, 0u);
    EXPECT_NE(r.out.find("has 0 vertices."), std::string::npos);

    // A Glass layer and a 0 inside the face are passed over.
    std::string withLayer = face(kUnitTriangle);
    withLayer.replace(withLayer.find("  8\n0\n"), 6, "  8\nGlass\n  0\n 62\n0\n");
    Read layered = readCapturing(writeFile("layer.dxf", model(withLayer)));
    ASSERT_TRUE(layered.sprite);
    EXPECT_EQ(layered.out.find("Expected"), std::string::npos);
    expectNormal(layered.sprite.get(), 0, 0, 0, 1);
}

TEST(ReaderBrokenFiles, MissingEmptyCutShortAndLongLines) {
    Read missing = readCapturing("/nonexistent/tolvar/model.dxf");
    EXPECT_FALSE(missing.sprite);
    EXPECT_EQ(missing.out, "No file exists at /nonexistent/tolvar/model.dxf\n");

    Read empty = readCapturing(writeFile("empty.dxf", ""));
    ASSERT_TRUE(empty.sprite);
    EXPECT_EQ(empty.sprite->vertexCount, 0u);

    // No EOF and a face that stops after its first value: reading ends with the data.
    std::string cut = "  0\n3DFACE\n 10\n1.5\n 20\n2.5";
    Read shortFace = readCapturing(writeFile("cut.dxf", cut));
    ASSERT_TRUE(shortFace.sprite);
    EXPECT_EQ(shortFace.sprite->vertexCount, 4u);
    EXPECT_FLOAT_EQ(shortFace.sprite->vertices[0], 1.5f);
    EXPECT_FLOAT_EQ(shortFace.sprite->vertices[1], 2.5f);
    Read codeLast = readCapturing(writeFile("cut2.dxf", "3DFACE\n 10"));
    ASSERT_TRUE(codeLast.sprite);

    // A value line of 70 characters: its first 63 are the value, the rest the next line.
    std::string longValue = face(kUnitTriangle);
    longValue.replace(longValue.find(" 11\n1.0"), 7, " 11\n3." + std::string(66, '0'));
    Read longLine = readCapturing(writeFile("long.dxf", model(longValue)));
    ASSERT_TRUE(longLine.sprite);
    EXPECT_FLOAT_EQ(longLine.sprite->vertices[3], 3.0f);
    expectNormal(longLine.sprite.get(), 0, 0, 0, 3);

    // A face found after the counted part (an EOF swallowed inside a face) has no room.
    std::string beyond = "3DFACE\n 10\nEOF\n3DFACE\n 33\n1.0\n3DFACE\n 10\n7.0\n 33\n1.0\n";
    Read after = readCapturing(writeFile("beyond.dxf", beyond));
    ASSERT_TRUE(after.sprite);
    EXPECT_EQ(after.sprite->vertexCount, 4u);

    Read folder = readCapturing(testing::TempDir());
    EXPECT_FALSE(folder.sprite);
}

TEST(Resources, LookupBesideTheProgram) {
    char path[4096];
    testing::internal::CaptureStdout();
    getResourcePath("Spikes", "dxf", path);
    fflush(stdout);
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, std::string("resource: ") + path + "\n");
    const std::string found = path;
    EXPECT_EQ(found.substr(found.size() - std::strlen("/resources/Spikes.dxf")), "/resources/Spikes.dxf");
    EXPECT_EQ(found.rfind(resourceFolder(), 0), 0u);

    testing::internal::CaptureStdout();
    getResourcePath("NoSuchModel", "dxf", path);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "resource: \n");
    EXPECT_STREQ(path, "");

    testing::internal::CaptureStdout();
    SpritePtr none = readDXFResourceFileintoSprite("NoSuchModel");
    fflush(stdout);
    EXPECT_FALSE(none);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "resource: \nNo file exists at \n");
}

// The piece model as shipped: a closed spiky ball of triangles, every coordinate real, every
// normal pointing away from the middle of the model.
TEST(SpikesModel, ShapeAndWinding) {
    char path[4096];
    getResourcePath("Spikes", "dxf", path);
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    const std::string data = text.str();
    ASSERT_FALSE(data.empty());
    EXPECT_EQ(data.find('\r'), std::string::npos);
    EXPECT_EQ(data.substr(data.size() - 4), "EOF\n");

    testing::internal::CaptureStdout();
    SpritePtr s = readDXFResourceFileintoSprite("Spikes");
    fflush(stdout);
    const std::string out = testing::internal::GetCapturedStdout();
    ASSERT_TRUE(s);
    EXPECT_EQ(out.find("Expected"), std::string::npos) << out;
    const std::uint32_t faces = s->vertexCount / 4;
    EXPECT_GE(faces, 100u);
    EXPECT_LE(faces, 500u);
    calcBoundingBox(s.get(), 1);
    EXPECT_NEAR(s->position.x, 0.0f, 1e-3);
    EXPECT_NEAR(s->position.y, 0.0f, 1e-3);
    EXPECT_NEAR(s->position.z, 0.0f, 1e-3);
    for (std::uint32_t k = 0; k < faces; ++k) {
        const float* v = &s->vertices[k * 12];
        const float* n = &s->normals[k * 12];
        for (int a = 0; a < 3; ++a) EXPECT_EQ(v[6 + a], v[9 + a]) << "face " << k << " is a triangle";
        const float middle[3] = {(v[0] + v[3] + v[6]) / 3, (v[1] + v[4] + v[7]) / 3, (v[2] + v[5] + v[8]) / 3};
        const float outward = n[0] * middle[0] + n[1] * middle[1] + n[2] * middle[2];
        EXPECT_GT(outward, 0.0f) << "face " << k;
        EXPECT_GT(std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]), 1e-4f) << "face " << k;
    }
}

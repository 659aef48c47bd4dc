// The model reader: faces and their normals, bad values, broken files, the resource lookup and
// the game's own "Spikes" model.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "DXFtoSprite.h"
#include "FileIO.h"

namespace {

// One 3DFACE on layer 0 with its values (given apart by blanks), and a file round some faces.
std::string face(const std::string& values) {
    std::istringstream in(values);
    std::string text = "  0\n3DFACE\n  8\n0\n", value;
    for (int i = 0; in >> value; ++i) text += " " + std::to_string(10 * (i % 3 + 1) + i / 3) + "\n" + value + "\n";
    return text;
}
std::string model(const std::string& faces) { return "  0\nSECTION\n  2\nENTITIES\n" + faces + "  0\nENDSEC\n  0\nEOF\n"; }

// Corners (0, 0, 0), (1, 0, 0), (0, 1, 0) and the third again; value i starts at 4 i.
const std::string kTriangle = "0.0 0.0 0.0 1.0 0.0 0.0 0.0 1.0 0.0 0.0 1.0 0.0";

using V = std::vector<float>;

struct Read {
    SpritePtr sprite;
    std::string out;
    V normal(int face) const {  // which all four vertices of the face must carry
        const float* n = &sprite->normals[face * 12];
        for (int k = 3; k < 12; ++k) EXPECT_EQ(n[k], n[k % 3]) << "face " << face;
        return {n[0], n[1], n[2]};
    }
};

template <typename Reader>
Read capture(Reader reader) {
    testing::internal::CaptureStdout();
    Read r{reader(), ""};
    fflush(stdout);
    r.out = testing::internal::GetCapturedStdout();
    return r;
}
Read read(const std::string& text) { return capture([&] { return readDXFDataintoSprite(text.data(), text.size(), "m"); }); }

}  // namespace

TEST(ReaderModels, FacesNormalsAndTheMessage) {
    const std::string doubled = "0.0 0.0 0.0 2.0 0.0 0.0 0.0 2.0 0.0 0.0 2.0 0.0";
    const std::string slanted = "0.0 0.0 0.0 1.0 1.0 0.0 0.0 1.0 1.0 0.0 1.0 1.0";
    const Read r = read(model(face(kTriangle) + face(doubled) + face(slanted)));
    EXPECT_EQ(r.out, "New sprite m has 12 vertices.\n");
    ASSERT_EQ(r.sprite->vertexCount, 12u);
    EXPECT_EQ(r.sprite->homeVertices, r.sprite->vertices);
    EXPECT_EQ(V(&r.sprite->vertices[12], &r.sprite->vertices[24]), (V{0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 2, 0}));
    EXPECT_EQ(r.normal(0), (V{0, 0, 1}));
    EXPECT_EQ(r.normal(1), (V{0, 0, 4}));  // not normalised
    EXPECT_EQ(r.normal(2), (V{1, -1, 1}));

    // A Glass layer and a 0 inside the face are passed over; polylines give no geometry.
    std::string layered = face(kTriangle);
    layered.replace(layered.find("  8\n0\n"), 6, "  8\nGlass\n  0\n 62\n0\n");
    const Read l = read(model(layered + "  0\nPOLYLINE\n  8\nGlass\n  0\nVERTEX\n 10\n1.0\n  0\nSEQEND\n"));
    EXPECT_EQ(l.out, "New sprite m has 4 vertices.\n");
    EXPECT_EQ(l.normal(0), (V{0, 0, 1}));
}

// A bad value ends its face with its message, and the next face is read (dxf-info's own test); a
// carriage return before each line break is such a value.
TEST(ReaderModels, CarriageReturnsAreBadValues) {
    std::string crlf;
    for (char c : model(face(kTriangle))) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(read(crlf).out, "Expected float value at 10.  Got \r instead.\nNew sprite m has 4 vertices.\n");
}

TEST(ReaderBrokenFiles, MissingCutShortAndLongLines) {
    const Read missing = capture([] { return readDXFintoSprite("/nonexistent/tolvar/model.dxf"); });
    EXPECT_FALSE(missing.sprite);
    EXPECT_EQ(missing.out, "No file exists at /nonexistent/tolvar/model.dxf\n");
    const Read cut = read("  0\n3DFACE\n 10\n1.5\n 20\n2.5");  // no EOF, a face cut after two values
    EXPECT_EQ(V(&cut.sprite->vertices[0], &cut.sprite->vertices[3]), (V{1.5f, 2.5f, 0}));
    // An EOF swallowed inside a face: faces after it are not counted and have no room.
    EXPECT_EQ(read("3DFACE\n 10\nEOF\n3DFACE\n 33\n1.0\n3DFACE\n 10\n7.0\n 33\n1.0\n").sprite->vertexCount, 4u);
    // A value line of 70 characters: its first 63 are the value, the rest the next line.
    EXPECT_EQ(read(model(face(std::string(kTriangle).replace(12, 3, "3." + std::string(66, '0'))))).normal(0),
              (V{0, 0, 3}));
}

// Files past the size limit (sparse, so nothing real is written) and models past the vertex limit
// are refused with one line on standard error, before any room is taken for them; just under
// either limit the model is read.
TEST(ReaderLimits, BigFilesAndManyFacesAreRefusedWithTheLimit) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / ("tolvar-model-limits-" + std::to_string(getpid()));
    fs::create_directories(folder);
    const std::uint64_t limitBytes = kMaxModelFileMegabytes << 20;
    const std::string faces = "3DFACE\n";
    struct Case {
        const char* name;
        std::uint64_t sparseBytes;  // a file of this many zero bytes, or
        std::uint64_t faceCount;    // a file of this many bare faces
        std::string complaint;      // after the file's path; empty when the model is read
        std::uint64_t vertices;
    };
    const Case cases[] = {
        {"over.dxf", limitBytes + 1, 0, ": the model file is too large (16777217 bytes; the limit is 16 MB)\n", 0},
        {"at.dxf", limitBytes, 0, "", 0},
        {"many.dxf", 0, kMaxModelVertices / 4 + 1, ": the model has too many faces (1048580 vertices; the limit is 1048576)\n", 0},
        {"most.dxf", 0, kMaxModelVertices / 4, "", kMaxModelVertices},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string path = (folder / c.name).string();
        {
            std::ofstream out(path, std::ios::binary);
            for (std::uint64_t k = 0; k < c.faceCount; ++k) out << faces;
        }
        if (c.sparseBytes != 0) fs::resize_file(path, c.sparseBytes);
        testing::internal::CaptureStderr();
        const Read r = capture([&] { return readDXFintoSprite(path.c_str()); });
        const std::string complaint = testing::internal::GetCapturedStderr();
        if (c.complaint.empty()) {
            ASSERT_TRUE(r.sprite);
            EXPECT_EQ(r.sprite->vertexCount, c.vertices);
            EXPECT_EQ(r.out, "New sprite " + path + " has " + std::to_string(c.vertices) + " vertices.\n");
            EXPECT_EQ(complaint, "");
        } else {
            EXPECT_FALSE(r.sprite);
            EXPECT_EQ(r.out, "");
            EXPECT_EQ(complaint, path + c.complaint);
        }
    }
    fs::remove_all(folder);
}

// The piece model, found beside the program: a closed ball of triangles round the origin, every
// normal pointing out. A missing resource is an empty path, and so a missing file.
TEST(Resources, TheShippedModelAndAMissingOne) {
    const Read none = capture([] { return readDXFResourceFileintoSprite("NoSuchModel"); });
    EXPECT_FALSE(none.sprite);
    EXPECT_EQ(none.out, "resource: \nNo file exists at \n");
    const Read spikes = capture([] { return readDXFResourceFileintoSprite("Spikes"); });
    ASSERT_TRUE(spikes.sprite);
    const Sprite& s = *spikes.sprite;
    const std::string path = resourceFolder() + "/Spikes.dxf";
    EXPECT_EQ(spikes.out, "resource: " + path + "\nNew sprite " + path + " has " + std::to_string(s.vertexCount) + " vertices.\n");
    EXPECT_GE(s.vertexCount, 400u);
    calcBoundingBox(spikes.sprite.get(), 1);
    EXPECT_LT(std::hypot(s.position.x, s.position.y, s.position.z), 1e-3f);
    for (std::uint32_t k = 0; k < s.vertexCount / 4; ++k) {
        const float *v = &s.vertices[k * 12], *n = &s.normals[k * 12];
        EXPECT_EQ(V(v + 6, v + 9), V(v + 9, v + 12)) << "face " << k << " is a triangle";
        // Wound clockwise seen from outside: the normal points into the ball, toward the lights
        // of the half the player sees.
        EXPECT_LT(n[0] * (v[0] + v[3] + v[6]) + n[1] * (v[1] + v[4] + v[7]) + n[2] * (v[2] + v[5] + v[8]), 0.0f) << k;
    }
}

#include "loaders/tds_normals.h"

#include <gtest/gtest.h>
#include <lib3ds/file.h>
#include <lib3ds/mesh.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "loaders/tds_builder.h"
#include "loaders/tds_reader.h"

namespace orv {
namespace {

using namespace test::tds;

TdsPtr parse(const std::string& bytes) {
  TdsFile out;
  const bool whole =
      tds_clean(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), out);
  return whole ? tds_parse(out) : nullptr;
}

/// A fan of faces around point 0, all of one smoothing group.
TdsPtr fan(unsigned num_faces) {
  std::string coordinates = floats({0, 0, 1});
  std::vector<unsigned> corners;
  for (unsigned i = 0; i < num_faces; ++i) {
    const float angle = 6.2831853f * static_cast<float>(i) / static_cast<float>(num_faces);
    coordinates += floats({std::cos(angle), std::sin(angle), 0});
    for (const unsigned corner : {0u, i + 1, i + 1 == num_faces ? 1u : i + 2}) {
      corners.push_back(corner);
    }
  }
  const std::string point_list = chunk(LIB3DS_POINT_ARRAY, u16(num_faces + 1) + coordinates);
  const std::vector<unsigned> groups(num_faces, 1);
  return parse(file(mesh("fan", point_list + faces(corners, smoothing(groups)))));
}

TEST(TdsNormals, ManyFacesAtOneVertexAreSafe) {
  for (const unsigned count : {33u, 129u, 5000u}) {
    const TdsPtr file = fan(count);
    ASSERT_TRUE(file);
    std::vector<vec3> normals;
    tds_vertex_normals(*file->meshes, normals);
    ASSERT_EQ(normals.size(), count + 1);
    EXPECT_NEAR(normals[0].z, 1.0f, 0.02f) << count;
    EXPECT_NEAR(normals[1].x, 0.7071f, 0.02f) << count;
  }
}

TEST(TdsNormals, OwnSumsEqualThoseOfLib3ds) {
  std::minstd_rand random(5);
  for (int round = 0; round < 50; ++round) {
    std::string coordinates;
    for (int i = 0; i < 3 * 40; ++i) coordinates += floats({static_cast<float>(random() % 100)});
    std::vector<unsigned> corners;
    std::vector<unsigned> groups;
    for (int i = 0; i < 60; ++i) {
      for (int k = 0; k < 3; ++k) corners.push_back(static_cast<unsigned>(random() % 39));
      groups.push_back(static_cast<unsigned>(random() % 8));
    }
    const TdsPtr read = parse(file(mesh("m", chunk(LIB3DS_POINT_ARRAY, u16(40) + coordinates) +
                                                 faces(corners, smoothing(groups)))));
    ASSERT_TRUE(read);
    std::vector<vec3> theirs;
    std::vector<vec3> ours;
    tds_vertex_normals(*read->meshes, theirs);
    tds_vertex_normals_bounded(*read->meshes, ours);
    ASSERT_EQ(theirs.size(), 40u);
    ASSERT_EQ(ours.size(), 40u);
    for (std::size_t i = 0; i < 40; ++i) {
      EXPECT_EQ(std::memcmp(&theirs[i], &ours[i], sizeof(vec3)), 0)
          << i << ": " << theirs[i].x << " and " << ours[i].x;
    }
    EXPECT_EQ(ours[39].z, 0.0f);
  }
}

TEST(TdsNormals, NoneWithoutFaces) {
  const TdsPtr read = parse(file(mesh("m", points({1, 2, 3}))));
  ASSERT_TRUE(read);
  std::vector<vec3> normals(4);
  tds_vertex_normals(*read->meshes, normals);
  EXPECT_TRUE(normals.empty());
}

}  // namespace
}  // namespace orv

// A module that was built long ago against this minor version must load and work for ever.

#include <orv/core/core.h>
#include <orv/core/kernel.h>
#include <orv/core/plugin.h>
#include <orv/geometry/geometry_core_alloc_params.h>
#include <orv/geometry/mesh.h>
#include <orv/math/vec4.h>
#include <orv/scene/model.h>

#include "support/log_capture.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace orv {
namespace {

using test::LogCapture;
using test::TempFolder;

constexpr const char* MODULE = "plugin_orv_kept_x64.so";

class KeptPlugin : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(core::start(nullptr, true, nullptr, nullptr));
    Kernel::get()->plugin_search_path_add_dir(ORV_TEST_DATA_DIR "/plugins/");
    plugin_ = Kernel::get()->load_plugin(MODULE, false, true);
    ASSERT_NE(plugin_, nullptr);
  }
  void TearDown() override { core::stop(nullptr); }

  static Model* load(const TempFolder& folder, const char* name) {
    const MeshDataVertexAttribsAllocParams params;
    return Kernel::get()->load_model_from_file(params, name, (folder.path() + "/").c_str(),
                                               nullptr);
  }

  Plugin* plugin_ = nullptr;
};

TEST_F(KeptPlugin, TellsWhoItIs) {
  EXPECT_EQ(plugin_->get_type(), PLUGIN_TYPE_LOADER3D);
  EXPECT_STREQ(plugin_->get_name(), "STRIP");
  EXPECT_STREQ(plugin_->get_author(), "The tests");
  EXPECT_EQ(plugin_->get_version_major(), 0);
  EXPECT_EQ(plugin_->get_version_minor(), 26);
  EXPECT_EQ(plugin_->get_version_patch(), 1);
}

TEST_F(KeptPlugin, StartsAndStops) {
  EXPECT_TRUE(plugin_->initialize());
  EXPECT_TRUE(plugin_->start());
  EXPECT_TRUE(plugin_->is_initialized());
  EXPECT_TRUE(plugin_->is_started());
  EXPECT_TRUE(plugin_->stop());
  EXPECT_TRUE(plugin_->terminate());
  EXPECT_FALSE(plugin_->is_initialized());
  EXPECT_FALSE(plugin_->is_started());
}

TEST_F(KeptPlugin, FillsAModel) {
  const TempFolder folder;
  folder.write("three.strip", "strip 3");
  Model* model = load(folder, "three.strip");
  ASSERT_NE(model, nullptr);
  ASSERT_EQ(model->get_num_children(), 1u);
  Mesh* mesh = dynamic_cast<Mesh*>(model->get_child(0));
  ASSERT_NE(mesh, nullptr);
  EXPECT_STREQ(mesh->get_name(), "strip");
  EXPECT_EQ(mesh->get_num_vertices(nullptr), 8u);
  EXPECT_EQ(mesh->get_num_faces(nullptr), 6u);
  EXPECT_EQ(mesh->get_vertex_position(7), vec4(3.0f, 1.0f, 0.0f));
  EXPECT_EQ(mesh->get_vertex_normal(0), vec4(0.0f, 0.0f, 1.0f, 0.0f));
  unsigned int a = 0, b = 0, c = 0;
  mesh->get_face_indexes(5, &a, &b, &c);
  EXPECT_EQ(a, 5u);
  EXPECT_EQ(b, 6u);
  EXPECT_EQ(c, 7u);
  model->release(nullptr, nullptr);
}

TEST_F(KeptPlugin, SaysWhyAFileIsRefused) {
  const TempFolder folder;
  folder.write("empty.strip", "");
  LogCapture log;
  EXPECT_EQ(load(folder, "empty.strip"), nullptr);
  EXPECT_TRUE(log.contains("empty.strip holds no strip")) << log.text();
}

TEST_F(KeptPlugin, IsUnloaded) {
  const TempFolder folder;
  folder.write("one.strip", "strip 1");
  EXPECT_EQ(Kernel::get()->unload_plugin(plugin_), 0);
  EXPECT_EQ(load(folder, "one.strip"), nullptr);
}

}  // namespace
}  // namespace orv

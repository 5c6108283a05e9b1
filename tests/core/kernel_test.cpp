#include <orv/core/kernel.h>

#include <orv/core/core.h>
#include <orv/core/plugin_mgr.h>
#include <orv/core/utils.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image_codec.h>
#include <orv/loaders/loader3d.h>

#include "support/log_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orv {
namespace {

using test::LogCapture;

class KernelTest : public testing::Test {
 protected:
  KernelTest() { kernel.stop(); }
  ~KernelTest() override {
    kernel.stop();
    kernel.core_plugin_set_loading_state_stb(true);
  }
  Kernel& kernel = *Kernel::get();
};

TEST_F(KernelTest, KnowsItsVersion) {
  EXPECT_EQ(kernel.get_version_major(), 0);
  EXPECT_EQ(kernel.get_version_minor(), 26);
  EXPECT_EQ(kernel.get_version_patch(), 1);
  EXPECT_EQ(kernel.get_version_build(), 0);
  EXPECT_STREQ(kernel.get_codename(), "Slatewing");
  EXPECT_EQ(&kernel, Kernel::get());
}

TEST_F(KernelTest, NullRendererIsAlwaysNull) {
  EXPECT_EQ(kernel.get_null_renderer(), nullptr);
  kernel.start();
  EXPECT_EQ(kernel.get_null_renderer(), nullptr);
}

TEST_F(KernelTest, PlatformOperationsAreThoseOfUtils) {
  kernel.init_platform_information();
  EXPECT_STREQ(kernel.get_os_name(), utils::get_os_name());
  EXPECT_EQ(kernel.get_os_version_major(), utils::get_os_version_major());
  EXPECT_EQ(kernel.get_os_version_minor(), utils::get_os_version_minor());
  EXPECT_EQ(kernel.get_os_version_build(), utils::get_os_version_build());
  EXPECT_STREQ(kernel.get_linux_sysname(), utils::get_linux_sysname());
  EXPECT_STREQ(kernel.get_linux_release(), utils::get_linux_release());
  EXPECT_STREQ(kernel.get_linux_version(), utils::get_linux_version());
  EXPECT_STREQ(kernel.get_linux_machine(), utils::get_linux_machine());
  EXPECT_STREQ(kernel.get_osx_codename(), "");
  EXPECT_STREQ(kernel.get_osx_kern_osrelease(), "");
  EXPECT_STREQ(kernel.get_platform_name(), "Linux");
  EXPECT_EQ(kernel.get_platform_bitness(), 64);
  int major_version = -1;
  int build = -1;
  kernel.get_osx_version(&major_version, nullptr, &build);
  EXPECT_EQ(major_version, utils::get_os_version_major());
  EXPECT_EQ(build, utils::get_os_version_build());
  kernel.get_osx_version(nullptr, nullptr, nullptr);
}

TEST_F(KernelTest, AppDirectoryIsKeptThroughAStop) {
  kernel.start();
  EXPECT_TRUE(kernel.app_directory_set("/somewhere/"));
  EXPECT_FALSE(kernel.app_directory_set(nullptr));
  EXPECT_TRUE(kernel.app_directory_init());
  kernel.stop();
  EXPECT_STREQ(kernel.app_directory_get(), "/somewhere/");
  kernel.app_directory_set("");
  EXPECT_TRUE(kernel.app_directory_init());
  EXPECT_STREQ(kernel.app_directory_get(), utils::get_app_directory());
}

TEST_F(KernelTest, StartMakesFourLoadersAndTheCodecInOrder) {
  kernel.start();
  PluginMgr& plugins = *PluginMgr::get();
  struct {
    const char* name;
    const char* description;
    PLUGIN_TYPE type;
  } const expected[] = {
      {"ORV_plugin_core_lib3ds", "Lib3ds loader (core plugin).", PLUGIN_TYPE_LOADER3D},
      {"ObjLoaderV1", "OBJ 3D loader (core plugin).", PLUGIN_TYPE_LOADER3D},
      {"ObjLoaderV2", "OBJ loader based on TinyOBJLoader (core plugin).", PLUGIN_TYPE_LOADER3D},
      {"STL", "STL (StereoLithography) 3D loader (core plugin).", PLUGIN_TYPE_LOADER3D},
      {"stb",
       "STB image loader. Supported formats: *.JPEG, *.PNG, *.TGA, *.BMP, *.PSD, *.GIF, *.HDR, "
       "*.PIC",
       PLUGIN_TYPE_IMAGE_CODEC}};
  ASSERT_EQ(plugins.get_num_plugins(), 5u);
  for (unsigned int i = 0; i < 5; ++i) {
    const Plugin& plugin = *plugins.get_plugin_by_index(i);
    EXPECT_STREQ(plugin.get_name(), expected[i].name);
    EXPECT_STREQ(plugin.get_description(), expected[i].description);
    EXPECT_EQ(plugin.get_type(), expected[i].type);
    EXPECT_EQ(plugin.get_version_major(), 0);
    EXPECT_EQ(plugin.get_version_minor(), 1);
    EXPECT_EQ(plugin.get_version_patch(), 0);
    EXPECT_THAT(plugin.get_build_info(),
                testing::MatchesRegex("BUILD_DATE: \\[.+\\] - BUILD_TIME: \\[.+\\]"));
    EXPECT_STRNE(plugin.get_author(), "");
    EXPECT_TRUE(plugin.is_initialized());
    EXPECT_TRUE(plugin.is_started());
    EXPECT_FALSE(plugin.get_core_plugin_state());
    EXPECT_EQ(plugin.get_dynlib_handle(), nullptr);
  }
  EXPECT_EQ(plugins.get_plugin_by_type(PLUGIN_TYPE_LOADER3D, 4), nullptr);
  EXPECT_NE(plugins.get_plugin_by_type(PLUGIN_TYPE_LOADER3D, 3), nullptr);
}

TEST_F(KernelTest, SecondStartAndSecondLoadAddNoLoaders) {
  kernel.start();
  EXPECT_TRUE(kernel.start());
  EXPECT_TRUE(kernel.load_core_plugins());
  EXPECT_EQ(PluginMgr::get()->get_num_plugins(), 5u);
}

TEST_F(KernelTest, LoadersHaveOneReferenceAndTheCodecTwo) {
  kernel.start();
  EXPECT_EQ(PluginMgr::get()->get_plugin_by_index(0)->get_ref(), 1);
  EXPECT_EQ(PluginMgr::get()->get_plugin_by_index(4)->get_ref(), 2);
}

TEST_F(KernelTest, CodecStaysAliveOutsideTheListAfterAStop) {
  LogCapture log;
  kernel.start();
  Plugin* codec = PluginMgr::get()->get_plugin_by_index(4);
  const std::string id = std::to_string(codec->get_id());
  log.clear();
  kernel.stop();
  EXPECT_TRUE(
      log.contains("[Plugin manager] plugin stb (" + id + ") not unloaded: still referenced (1)."));
  EXPECT_EQ(log.count("unloaded."), 4);
  EXPECT_EQ(PluginMgr::get()->get_num_plugins(), 0u);
  EXPECT_EQ(codec->get_ref(), 1);
  EXPECT_EQ(TextureMgr::get()->get_num_image_codecs(), 0u);
  EXPECT_EQ(codec->release(), 0);
}

TEST_F(KernelTest, CodecIsNotMadeWhenSwitchedOff) {
  kernel.core_plugin_set_loading_state_stb(false);
  kernel.start();
  EXPECT_EQ(PluginMgr::get()->get_num_plugins(), 4u);
  EXPECT_EQ(TextureMgr::get()->get_num_image_codecs(), 0u);
}

TEST_F(KernelTest, EachCodecCallAddsAnotherOneAndRegistersAll) {
  kernel.start();
  EXPECT_EQ(TextureMgr::get()->get_num_image_codecs(), 1u);
  EXPECT_TRUE(kernel.init_texture_mgr_core_image_plugins());
  EXPECT_EQ(PluginMgr::get()->get_num_plugins_by_type(PLUGIN_TYPE_IMAGE_CODEC), 2u);
  EXPECT_EQ(TextureMgr::get()->get_num_image_codecs(), 3u);
  kernel.core_plugin_set_loading_state_stb(false);
  kernel.init_texture_mgr_core_image_plugins();
  EXPECT_EQ(PluginMgr::get()->get_num_plugins_by_type(PLUGIN_TYPE_IMAGE_CODEC), 2u);
  EXPECT_EQ(TextureMgr::get()->get_num_image_codecs(), 5u);
}

TEST_F(KernelTest, StopReleasesTheResourcesOfAllManagers) {
  kernel.start();
  MaterialMgr::get()->create_material("m");
  TextureMgr::get()->create_texture();
  EXPECT_TRUE(kernel.stop());
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 0u);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 0u);
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), 0u);
}

/// A node of a manager that notes when it is released.
template <class Base>
class Noting : public Base {
 public:
  Noting(std::vector<std::string>& order, const char* what) : order_(order), what_(what) {}
  bool _cleanup(Renderer* renderer) override {
    order_.emplace_back(what_);
    return Base::_cleanup(renderer);
  }

 private:
  std::vector<std::string>& order_;
  const char* what_;
};

TEST_F(KernelTest, StopGoesMaterialsTexturesPrograms) {
  kernel.start();
  std::vector<std::string> order;
  GpuProgramMgr::get()->add_gpu_program(new Noting<GpuProgram>(order, "program"));
  TextureMgr::get()->add_texture(new Noting<Texture>(order, "texture"));
  MaterialMgr::get()->add_material(new Noting<Material>(order, "material"));
  kernel.stop();
  EXPECT_THAT(order, testing::ElementsAre("material", "texture", "program"));
}

TEST_F(KernelTest, StopClearsTheSearchPath) {
  kernel.start();
  kernel.plugin_search_path_add_dir("a/");
  kernel.stop();
  char text[8] = {};
  EXPECT_TRUE(kernel.plugin_search_path_get(text, sizeof text));
  EXPECT_STREQ(text, "");
}

TEST_F(KernelTest, TextureOfARenderTarget) {
  EXPECT_EQ(kernel.create_color_texture_from_render_target(nullptr, 0), nullptr);
  EXPECT_EQ(kernel.create_depth_texture_from_render_target(nullptr), nullptr);
  GpuRenderTarget target;
  target.width = 64;
  target.height = 32;
  Texture* color = kernel.create_color_texture_from_render_target(&target, 0);
  ASSERT_NE(color, nullptr);
  EXPECT_EQ(color->get_width(), 64u);
  EXPECT_TRUE(TextureMgr::get()->has_resource(color));
  // Also when there is no such attachment.
  EXPECT_NE(kernel.create_color_texture_from_render_target(&target, 100), nullptr);
  EXPECT_NE(kernel.create_depth_texture_from_render_target(&target), nullptr);
  TextureMgr::get()->release_all_textures(nullptr, nullptr);
}

}  // namespace
}  // namespace orv

#include <orv/scene/light.h>

#include <orv/gpu/gpu_program_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::ElementsAre;

TEST(Light, StartsWithTheDocumentedParameters) {
  Light light;
  EXPECT_EQ(light.get_type(), NODE_TYPE_LIGHT);
  EXPECT_TRUE(light.is_type_of(NODE_TYPE_OBJECT));
  EXPECT_EQ(light.get_index(), 0u);
  EXPECT_EQ(light.get_radius(), 10000.0f);
  EXPECT_EQ(light.get_ambient(), vec4(0.2f, 0.2f, 0.2f, 1));
  EXPECT_EQ(light.get_diffuse(), vec4(1, 1, 0.8f, 1));
  EXPECT_EQ(light.get_specular(), vec4(0.6f, 0.6f, 0.6f, 1));
  EXPECT_STREQ(light.get_position_uniform_name(), "orv_light_position");
  EXPECT_STREQ(light.get_radius_uniform_name(), "orv_light_radius");
  EXPECT_STREQ(light.get_ambient_uniform_name(), "orv_light_ambient");
  EXPECT_STREQ(light.get_diffuse_uniform_name(), "orv_light_diffuse");
  EXPECT_STREQ(light.get_specular_uniform_name(), "orv_light_specular");
  EXPECT_TRUE(light.get_light_data()->fixed_pipeline);
}

TEST(Light, KeepsWhatIsSet) {
  Light light;
  light.set_index(3);
  light.set_radius(5);
  light.set_ambient(1, 2, 3, 4);
  light.set_diffuse(vec4(5, 6, 7, 8));
  light.set_specular(9, 10, 11, 12);
  EXPECT_EQ(light.get_index(), 3u);
  EXPECT_EQ(light.get_radius(), 5.0f);
  EXPECT_EQ(light.get_ambient(), vec4(1, 2, 3, 4));
  EXPECT_EQ(light.get_diffuse(), vec4(5, 6, 7, 8));
  EXPECT_EQ(light.get_specular(), vec4(9, 10, 11, 12));
  light.set_ambient(vec4(0, 0, 0, 0));
  light.set_diffuse(1, 1, 1, 1);
  light.set_specular(vec4(2, 2, 2, 2));
  EXPECT_EQ(light.get_light_data()->ambient, vec4(0, 0, 0, 0));
  EXPECT_EQ(light.get_light_data()->diffuse, vec4(1, 1, 1, 1));
  EXPECT_EQ(light.get_light_data()->specular, vec4(2, 2, 2, 2));
}

TEST(Light, NamesAreCopiedAndNullLeavesNone) {
  Light light;
  std::string name = "first";
  light.set_diffuse_uniform_name(name.c_str());
  name = "other";
  EXPECT_STREQ(light.get_diffuse_uniform_name(), "first");
  light.set_diffuse_uniform_name(light.get_diffuse_uniform_name());
  EXPECT_STREQ(light.get_diffuse_uniform_name(), "first");
  light.set_specular_uniform_name(nullptr);
  EXPECT_EQ(light.get_specular_uniform_name(), nullptr);
}

TEST(Light, FixedPipelineTakesTheColoursAndNoPosition) {
  RecordingRenderer renderer;
  GpuProgramData program;
  renderer.set_current_program(&program);
  Light light;
  light.set_index(2);
  light.set_position(1, 2, 3);
  light.bind(&renderer);
  EXPECT_THAT(renderer.calls(),
              ElementsAre("light_set_colors(2, (0.2, 0.2, 0.2, 1), (1, 1, 0.8, 1), "
                          "(0.6, 0.6, 0.6, 1))"));
  light.bind(nullptr);
}

TEST(Light, SendsUniformsInOrderWithTheSpecularColourUnderTheAmbientName) {
  RecordingRenderer renderer;
  GpuProgramData program;
  renderer.label(&program, "program");
  renderer.set_current_program(&program);
  Light light;
  light.enable_fixed_pipeline(false);
  light.set_index(2);
  light.set_position(1, 2, 3);
  light.bind(&renderer);
  EXPECT_THAT(
      renderer.calls(),
      ElementsAre(
          "get_current_gpu_program()",
          "gpu_program_set_uniform_4f(program, \"orv_light_position_2\", 1, 2, 3, 1)",
          "gpu_program_set_uniform_1f(program, \"orv_light_radius_2\", 10000)",
          "gpu_program_set_uniform_4f(program, \"orv_light_ambient_2\", 0.2, 0.2, 0.2, 1)",
          "gpu_program_set_uniform_4f(program, \"orv_light_diffuse_2\", 1, 1, 0.8, 1)",
          "gpu_program_set_uniform_4f(program, \"orv_light_ambient_2\", 0.6, 0.6, 0.6, 1)"));
}

TEST(Light, SendsItsLocalPosition) {
  RecordingRenderer renderer;
  GpuProgramData program;
  renderer.label(&program, "program");
  renderer.set_current_program(&program);
  Held<Object> parent;
  Held<Light> light;
  parent->add_child(light);
  parent->set_position(100, 0, 0);
  light->set_position(1, 2, 3);
  light->enable_fixed_pipeline(false);
  light->bind(&renderer);
  EXPECT_EQ(renderer.calls()[1],
            "gpu_program_set_uniform_4f(program, \"orv_light_position_0\", 1, 2, 3, 1)");
}

TEST(Light, WithoutAProgramNoUniformIsSent) {
  RecordingRenderer renderer;
  Light light;
  light.enable_fixed_pipeline(false);
  light.bind(&renderer);
  EXPECT_THAT(renderer.names(), ElementsAre("get_current_gpu_program"));
}

TEST(Light, ANameThatIsNullStopsItsUniform) {
  RecordingRenderer renderer;
  GpuProgramData program;
  renderer.set_current_program(&program);
  Light light;
  light.enable_fixed_pipeline(false);
  light.set_radius_uniform_name(nullptr);
  light.set_specular_uniform_name(nullptr);
  light.bind(&renderer);
  EXPECT_EQ(renderer.count("gpu_program_set_uniform_1f"), 0);
  EXPECT_EQ(renderer.count("gpu_program_set_uniform_4f"), 4);
  light.set_ambient_uniform_name(nullptr);
  renderer.clear();
  light.bind(&renderer);
  // Ambient and specular both go by the ambient name.
  EXPECT_EQ(renderer.count("gpu_program_set_uniform_4f"), 2);
  light.set_position_uniform_name(nullptr);
  light.set_diffuse_uniform_name(nullptr);
  renderer.clear();
  light.bind(&renderer);
  EXPECT_EQ(renderer.count("gpu_program_set_uniform_4f"), 0);
}

TEST(Light, LongNamesAreCut) {
  RecordingRenderer renderer;
  GpuProgramData program;
  renderer.set_current_program(&program);
  Light light;
  light.enable_fixed_pipeline(false);
  light.set_radius_uniform_name(std::string(300, 'n').c_str());
  light.bind(&renderer);
  EXPECT_EQ(renderer.calls()[2],
            "gpu_program_set_uniform_1f(ptr, \"" + std::string(127, 'n') + "\", 10000)");
}

}  // namespace
}  // namespace orv

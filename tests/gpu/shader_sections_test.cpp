#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "gpu/shader_compiler.h"
#include "support/log_capture.h"

namespace orv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ShaderSections : public testing::Test {
 protected:
  bool load(const std::string& text) {
    return program.load_from_memory(&renderer, text.c_str(),
                                    static_cast<unsigned int>(text.size()));
  }

  std::string text_of(GPU_SHADER_TYPE type) {
    for (const auto& loaded : renderer.loads) {
      if (loaded.type == type) return loaded.text;
    }
    return "(absent)";
  }

  test::ShaderCompiler renderer;
  GpuProgram program;
};

TEST_F(ShaderSections, VertexAndPixelMakeAProgram) {
  EXPECT_TRUE(load("[Vertex_Shader]vert[Pixel_Shader]pix"));
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_PIXEL));
  EXPECT_EQ(text_of(GPU_SHADER_VERTEX), "vert");
  EXPECT_EQ(text_of(GPU_SHADER_PIXEL), "pix");
  EXPECT_STREQ(program.get_shader_source_code(GPU_SHADER_PIXEL), "pix");
  EXPECT_TRUE(program.get_data_ptr()->shader_loaded[GPU_SHADER_VERTEX]);
  EXPECT_TRUE(program.get_data_ptr()->shader_loaded[GPU_SHADER_PIXEL]);
}

TEST_F(ShaderSections, PixelBeforeVertexLoadsTheSame) {
  EXPECT_TRUE(load("[Pixel_Shader]pix[Vertex_Shader]vert"));
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_PIXEL));
  EXPECT_EQ(text_of(GPU_SHADER_VERTEX), "vert");
  EXPECT_EQ(text_of(GPU_SHADER_PIXEL), "pix");
}

TEST_F(ShaderSections, AllSixStagesLoadInTheirOrder) {
  EXPECT_TRUE(
      load("[Compute_Shader]c[TessEval_Shader]e[TessControl_Shader]t[Geometry_Shader]g"
           "[Pixel_Shader]p[Vertex_Shader]v"));
  EXPECT_THAT(renderer.stages(),
              ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_PIXEL, GPU_SHADER_GEOMETRY,
                          GPU_SHADER_TESS_CONTROL, GPU_SHADER_TESS_EVAL, GPU_SHADER_COMPUTE));
  EXPECT_EQ(text_of(GPU_SHADER_VERTEX), "v");
  EXPECT_EQ(text_of(GPU_SHADER_PIXEL), "p");
  EXPECT_EQ(text_of(GPU_SHADER_GEOMETRY), "g");
  EXPECT_EQ(text_of(GPU_SHADER_TESS_CONTROL), "t");
  EXPECT_EQ(text_of(GPU_SHADER_TESS_EVAL), "e");
  EXPECT_EQ(text_of(GPU_SHADER_COMPUTE), "c");
}

TEST_F(ShaderSections, TextBeforeTheFirstMarkerIsLeftOut) {
  EXPECT_TRUE(load("// a comment\n[Vertex_Shader]\nv\n[Pixel_Shader]\np\n"));
  EXPECT_EQ(text_of(GPU_SHADER_VERTEX), "\nv\n");
  EXPECT_EQ(text_of(GPU_SHADER_PIXEL), "\np\n");
}

TEST_F(ShaderSections, VertexAloneIsRefusedWithNothingCompiled) {
  EXPECT_FALSE(load("[Vertex_Shader]void main() {}"));
  EXPECT_THAT(renderer.loads, IsEmpty());
}

TEST_F(ShaderSections, PixelAloneIsRefused) {
  EXPECT_FALSE(load("[Pixel_Shader]void main() {}"));
  EXPECT_FALSE(load("[Pixel_Shader]p[Geometry_Shader]g[TessEval_Shader]e"));
  EXPECT_THAT(renderer.loads, IsEmpty());
}

TEST_F(ShaderSections, ComputeAloneLoads) {
  EXPECT_TRUE(load("[Compute_Shader]c"));
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_COMPUTE));
}

TEST_F(ShaderSections, ComputeMakesAnyCombinationComplete) {
  EXPECT_TRUE(load("[Vertex_Shader]v[Compute_Shader]c"));
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_COMPUTE));
}

TEST_F(ShaderSections, SecondMarkerOfAKindStaysInTheText) {
  EXPECT_TRUE(load("[Vertex_Shader]a[Vertex_Shader]b[Pixel_Shader]p"));
  EXPECT_EQ(text_of(GPU_SHADER_VERTEX), "a[Vertex_Shader]b");
}

TEST_F(ShaderSections, MarkersAreExact) {
  EXPECT_FALSE(load("[vertex_shader]v[Pixel_Shader]p"));
  EXPECT_FALSE(load("[Vertex_Shader ]v[Pixel_Shader]p"));
  EXPECT_FALSE(load("Vertex_Shader v Pixel_Shader p"));
}

TEST_F(ShaderSections, NullAndEmptyTextsAreRefused) {
  EXPECT_FALSE(program.load_from_memory(&renderer, nullptr, 10));
  EXPECT_FALSE(program.load_from_memory(&renderer, "[Compute_Shader]c", 0));
}

TEST_F(ShaderSections, SizeMayCountTheTerminator) {
  const std::string text = "[Vertex_Shader]v[Pixel_Shader]p";
  EXPECT_TRUE(program.load_from_memory(&renderer, text.c_str(),
                                       static_cast<unsigned int>(text.size() + 1)));
  EXPECT_EQ(renderer.loads[1].size, 1u);
  EXPECT_EQ(renderer.loads[1].text, "p");
}

TEST_F(ShaderSections, TextWithoutTerminatorIsReadToItsSize) {
  const std::string text = "[Vertex_Shader]v[Pixel_Shader]p";
  const std::unique_ptr<char[]> exact(new char[text.size()]);
  std::copy(text.begin(), text.end(), exact.get());
  EXPECT_TRUE(
      program.load_from_memory(&renderer, exact.get(), static_cast<unsigned int>(text.size())));
  EXPECT_EQ(text_of(GPU_SHADER_PIXEL), "p");
}

TEST_F(ShaderSections, FirstFailureStopsAndLoadedStagesStay) {
  renderer.failing = {GPU_SHADER_PIXEL};
  EXPECT_FALSE(load("[Vertex_Shader]v[Pixel_Shader]p[Geometry_Shader]g"));
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_PIXEL));
  EXPECT_TRUE(program.get_data_ptr()->shader_loaded[GPU_SHADER_VERTEX]);
  EXPECT_STREQ(program.get_shader_source_code(GPU_SHADER_VERTEX), "v");
  EXPECT_FALSE(program.get_data_ptr()->shader_loaded[GPU_SHADER_PIXEL]);
  EXPECT_EQ(program.get_shader_source_code(GPU_SHADER_PIXEL), nullptr);
}

TEST_F(ShaderSections, IncompleteTextIsSilentAboveDebugLevel) {
  test::LogCapture log(LOG_LEVEL_INFO);
  EXPECT_FALSE(load("[Vertex_Shader]v"));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ShaderSections, EveryTruncationLoadsWhatIsWhole) {
  const std::string full =
      "head\n[Vertex_Shader]\nvvv\n[Geometry_Shader]\nggg\n[Pixel_Shader]\nppp\n"
      "[TessControl_Shader]t[TessEval_Shader]e[Compute_Shader]\nccc\n";
  const std::size_t complete = full.find("[Pixel_Shader]") + std::string("[Pixel_Shader]").size();
  for (std::size_t length = 0; length <= full.size(); ++length) {
    SCOPED_TRACE(length);
    const std::unique_ptr<char[]> exact(new char[length]);
    std::copy_n(full.begin(), length, exact.get());
    renderer.loads.clear();
    GpuProgram fresh;
    const bool loaded =
        fresh.load_from_memory(&renderer, exact.get(), static_cast<unsigned int>(length));
    // A stage whose marker ends the text is an empty one, which does not compile.
    const bool ends_in_marker = length > 0 && full[length - 1] == ']';
    EXPECT_EQ(loaded, length >= complete && !ends_in_marker);
    EXPECT_EQ(renderer.loads.empty(), length < complete);
    if (!loaded) continue;
    EXPECT_EQ(text_of(GPU_SHADER_VERTEX), "\nvvv\n");
    EXPECT_EQ(text_of(GPU_SHADER_GEOMETRY), "\nggg\n");
    const std::size_t pixel_end = std::min(length, complete + 5);
    EXPECT_EQ(text_of(GPU_SHADER_PIXEL).substr(0, 5), full.substr(complete, pixel_end - complete));
  }
}

TEST_F(ShaderSections, EverySpoiledByteIsSurvived) {
  const std::string full = "[Vertex_Shader]v[Pixel_Shader]p[Compute_Shader]c";
  for (std::size_t i = 0; i < full.size(); ++i) {
    for (const char byte : {'\0', '[', '\xFF'}) {
      std::string spoiled = full;
      spoiled[i] = byte;
      GpuProgram fresh;
      fresh.load_from_memory(&renderer, spoiled.data(), static_cast<unsigned int>(spoiled.size()));
    }
  }
  for (const auto& loaded : renderer.loads) EXPECT_LE(loaded.text.size(), full.size());
}

}  // namespace
}  // namespace orv

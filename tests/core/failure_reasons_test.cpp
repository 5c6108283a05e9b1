#include <orv/core/aux_functions.h>
#include <orv/core/kernel.h>
#include <orv/core/plugin.h>
#include <orv/core/plugin_mgr.h>
#include <orv/core/utils.h>
#include <orv/geometry/geometry_core_alloc_params.h>
#include <orv/geometry/mesh.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>
#include <orv/loaders/loader3d_lib3ds.h>
#include <orv/loaders/loader3d_obj.h>
#include <orv/loaders/loader3d_obj_v2.h>
#include <orv/loaders/loader3d_stl.h>
#include <orv/render/offscreen_window.h>
#include <orv/render/renderer_null.h>
#include <orv/scene/model.h>
#include <orv/scene/object.h>
#include <orv/scene/scene.h>

#include "support/held.h"
#include "support/log_capture.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <elf.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORV_ALLOCATIONS_MAY_FAIL 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ORV_ALLOCATIONS_MAY_FAIL 0
#endif
#endif
#ifndef ORV_ALLOCATIONS_MAY_FAIL
#define ORV_ALLOCATIONS_MAY_FAIL 1
#endif

namespace orv::test {
namespace {

// ---- spoiled files -----------------------------------------------------------------------------

std::string data_file(const std::string& name) {
  const std::string bytes = TempFolder::read_file(std::string(ORV_TEST_DATA_DIR) + "/" + name);
  EXPECT_FALSE(bytes.empty()) << name;
  return bytes;
}

std::string half_of(const std::string& name) {
  const std::string bytes = data_file(name);
  return bytes.substr(0, bytes.size() / 2);
}

/// A data file in which one byte is another one.
std::string spoiled(const std::string& name, std::size_t at, int value) {
  std::string bytes = data_file(name);
  if (at < bytes.size()) bytes[at] = static_cast<char>(value);
  return bytes;
}

/// The head of a module whose one segment ends at `end`.
std::string module_head(unsigned type, unsigned machine, unsigned long end) {
  Elf64_Ehdr header = {};
  std::memcpy(header.e_ident, ELFMAG, SELFMAG);
  header.e_ident[EI_CLASS] = ELFCLASS64;
  header.e_ident[EI_DATA] = ELFDATA2LSB;
  header.e_type = static_cast<Elf64_Half>(type);
  header.e_machine = static_cast<Elf64_Half>(machine);
  header.e_phoff = sizeof(header);
  header.e_phentsize = sizeof(Elf64_Phdr);
  header.e_phnum = 1;
  Elf64_Phdr segment = {};
  segment.p_type = PT_LOAD;
  segment.p_filesz = segment.p_memsz = end;
  std::string bytes(sizeof(header) + sizeof(segment), '\0');
  std::memcpy(bytes.data(), &header, sizeof(header));
  std::memcpy(bytes.data() + sizeof(header), &segment, sizeof(segment));
  return bytes;
}

/// A PNG that claims 16384x16384 pixels and has none.
std::string hollow_png() {
  std::string bytes("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\x40\0\0\0\x40\0\x08\x02\0\0\0", 29);
  return bytes + std::string("\0\0\0\0\0\0\0\x04IDAT\0\0\0\0\0\0\0\0", 20);
}

std::string cut_hdr() {
  return std::string("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 64 +X 64\n\x02\x02\0\x40\xC0", 52);
}

/// An archive whose one entry has lost a bit.
std::string spoiled_zip() {
  std::string bytes = data_file("zip/teststored.zip");
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const std::size_t head = 30u + at(26) + at(28);
  bytes[head] = static_cast<char>(bytes[head] ^ 1);
  return bytes;
}

// ---- what a failure is made with ---------------------------------------------------------------

class NamelessPlugin : public Plugin {
 public:
  NamelessPlugin() { set_name("lonely"); }
};

/// Everything that the rows of the table use.
struct Bench {
  TempFolder folder;
  RendererNull renderer;
  GpuProgram* program = new GpuProgram;
  ImageCodecStb codec;
  Image image;
  Model* model = new Model;
  NamelessPlugin plugin;
  Kernel& kernel = *Kernel::get();
  MeshDataVertexAttribsAllocParams params;

  Bench() {
    program->add_ref();
    program->set_name("broken");
    model->add_ref();
    image.create(4, 4, 1, PF_RGB_U8, true, true);
  }
  ~Bench() {
    program->release(nullptr, nullptr);
    model->release(nullptr, nullptr);
  }

  std::string none(const char* name) const { return folder.file(name); }
  std::string file(const char* name, const std::string& bytes) const {
    return folder.write(name, bytes);
  }

  // Each tells whether it failed.
  bool module(const std::string& path) {
    return PluginMgr::get()->load_plugin(path.c_str(), true) == -1;
  }
  bool decode(const std::string& path) {
    Image result;
    return !codec.load_image_from_file(&result, path.c_str(), false, PF_RGB_U8);
  }
  bool save(const std::string& path) { return !codec.save_image_to_file(&image, path.c_str()); }
  bool program_file(const std::string& path) {
    return !program->load_from_file(&renderer, path.c_str());
  }
  bool unzip(const std::string& path, const char* entry) {
    return ZipExtractFile(path.c_str(), entry, nullptr) == nullptr;
  }
  bool font(const std::string& path) {
    return !TextureMgr::get()->create_texture_from_truetype_file(path.c_str(), 16.0f, 64, 64);
  }
  template <class Loader>
  bool load(const char* name) {
    Loader loader;
    loader.set_model_dir((folder.path() + "/").c_str());
    return !loader.load_model(model, name);
  }
};

struct Failure {
  const char* name;
  bool (*provoke)(Bench&);
  std::vector<const char*> words;  ///< the thing and the cause
  std::size_t described = 0;       ///< lines at the default level
};

void PrintTo(const Failure& failure, std::ostream* out) { *out << failure.name; }

const Failure FAILURES[] = {
    // ---- plugins ----
    {"ModuleMissing",
     [](Bench& b) { return b.module(b.none("none.so")); },
     {"none.so", "No such file or directory"},
     1},
    {"ModuleIsFolder",
     [](Bench& b) { return b.module(b.folder.path()); },
     {"orv_test_", "not a plain file"},
     1},
    {"ModuleEmpty",
     [](Bench& b) { return b.module(b.file("empty.so", "")); },
     {"empty.so", "too short"},
     1},
    {"ModuleOfText",
     [](Bench& b) { return b.module(b.file("text.so", std::string(200, 'x'))); },
     {"text.so", "not an ELF file"},
     1},
    {"ModuleOfAnotherMachine",
     [](Bench& b) { return b.module(b.file("arm.so", module_head(ET_DYN, EM_ARM, 0))); },
     {"arm.so", "another machine"},
     1},
    {"ModuleIsProgram",
     [](Bench& b) { return b.module(b.file("exe.so", module_head(ET_EXEC, EM_X86_64, 0))); },
     {"exe.so", "not a shared library"},
     1},
    {"ModuleTruncated",
     [](Bench& b) { return b.module(b.file("cut.so", module_head(ET_DYN, EM_X86_64, 5000))); },
     {"cut.so", "truncated"},
     1},
    {"ModuleWithoutExport",
     [](Bench& b) { return b.module("libm.so.6"); },
     {"libm.so.6", "missing export orv_plugin_create"},
     1},
    {"ModuleWithoutName",
     [](Bench& b) { return b.module(""); },
     {"[Plugin manager]", "empty name"},
     1},
    {"PluginWithoutModuleCreatesNothing",
     [](Bench& b) { return b.plugin.create_instance() == nullptr; },
     {"plugin lonely", "not from a module", "ORV_create_plugin"}},
    {"PluginWithoutModuleDestroysNothing",
     [](Bench& b) { return !b.plugin.kill_instance(&b); },
     {"plugin lonely", "not from a module", "ORV_destroy_plugin"}},
    {"PluginOutsideSearchPath",
     [](Bench&) { return utils::load_plugin("plugin_orv_none") == nullptr; },
     {"plugin_orv_none_x64.so", "search path"}},
    {"VulkanModuleMissing",
     [](Bench&) { return !aux::vk_init(); },
     {"plugin_orv_vulkan_x64.so", "search path"}},

    // ---- models without a loader ----
    {"ModelOfNoLoader",
     [](Bench& b) { return !b.kernel.load_model_from_file(b.params, "house.abc", "", ""); },
     {"model house.abc", "no loader took it"}},
    {"ObjLoaderMissing",
     [](Bench& b) { return !b.kernel.load_model_from_file_obj(b.params, "a.obj", "", ""); },
     {"model a.obj", "no loader plugin ObjLoader"}},
    {"TdsLoaderMissing",
     [](Bench& b) { return !b.kernel.load_model_from_file_lib3ds(b.params, "a.3ds", "", ""); },
     {"model a.3ds", "no loader plugin 3DS"}},
    {"StlLoaderMissing",
     [](Bench& b) { return !b.kernel.load_model_from_file_stl(b.params, "a.stl", "", ""); },
     {"model a.stl", "no loader plugin STL"}},
    {"FbxLoaderMissing",
     [](Bench& b) { return !b.kernel.load_model_from_file_fbx(b.params, "a.fbx", "", ""); },
     {"model a.fbx", "no loader plugin FBX"}},
    {"FbxSceneLoaderMissing",
     [](Bench& b) {
       Scene scene;
       const std::unique_ptr<Object> root(scene.get_root());  // the scene leaves it to its host
       return !b.kernel.load_scene_from_file_fbx_v1(&scene, "b.fbx", "", "");
     },
     {"model b.fbx", "no loader plugin FBX"}},

    // ---- model files ----
    {"ObjMissing",
     [](Bench& b) { return b.load<Loader3D_OBJ>("none.obj"); },
     {"none.obj", "No such file or directory"}},
    {"ObjIsFolder",
     [](Bench& b) {
       std::filesystem::create_directories(b.none("dir.obj"));
       return b.load<Loader3D_OBJ>("dir.obj");
     },
     {"dir.obj", "not a plain file"}},
    {"SecondObjMissing",
     [](Bench& b) { return b.load<Loader3D_OBJ_V2>("none.obj"); },
     {"can't read", "none.obj", "No such file or directory"},
     2},
    {"SecondObjDamaged",
     [](Bench& b) {
       b.file("zero.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nf 0 1 2\n");
       return b.load<Loader3D_OBJ_V2>("zero.obj");
     },
     {"zero.obj", "line 4"},
     2},
    {"TdsMissing",
     [](Bench& b) { return b.load<Loader3D_Lib3ds>("none.3ds"); },
     {"none.3ds", "No such file or directory"}},
    {"TdsOfText",
     [](Bench& b) {
       b.file("text.3ds", "nothing of the kind");
       return b.load<Loader3D_Lib3ds>("text.3ds");
     },
     {"text.3ds", "no main chunk"}},
    {"TdsTruncated",
     [](Bench& b) {
       b.file("cut.3ds", half_of("3ds/cube_with_materials.3ds"));
       return b.load<Loader3D_Lib3ds>("cut.3ds");
     },
     {"cut.3ds", "truncated at byte"}},
    {"TdsWithWrongChunk",
     [](Bench& b) {
       b.file("length.3ds", spoiled("3ds/cube_with_materials.3ds", 11, 0x7F));
       return b.load<Loader3D_Lib3ds>("length.3ds");
     },
     {"length.3ds", "a chunk of a wrong length at byte 6"}},
    {"StlMissing",
     [](Bench& b) { return b.load<Loader3D_STL>("none.stl"); },
     {"can't read", "none.stl", "No such file or directory"},
     1},

    // ---- shaders ----
    {"ProgramFileMissing",
     [](Bench& b) { return b.program_file(b.none("none.glsl")); },
     {"none.glsl", "No such file or directory"}},
    {"ProgramFileIsFolder",
     [](Bench& b) { return b.program_file(b.folder.path()); },
     {"GPU program file", "orv_test_", "not a plain file"}},
    {"ProgramFileWithoutSection",
     [](Bench& b) { return b.program_file(b.file("half.glsl", "[Vertex_Shader]v")); },
     {"half.glsl", "no section \"[Pixel_Shader]\""}},
    {"ProgramFileWithEmptySection",
     [](Bench& b) {
       b.program_file(b.file("void.glsl", "[Vertex_Shader][Pixel_Shader]p"));
       return true;  // what comes of it is the renderer's
     },
     {"void.glsl", "section of the Vertex stage is empty"}},
    {"ProgramTextWithoutSection",
     [](Bench& b) { return !b.program->load_from_memory(&b.renderer, "no stage", 8); },
     {"GPU program broken", "no section \"[Vertex_Shader]\""}},
    {"ShaderFileMissing",
     [](Bench& b) {
       return !b.program->shader_load_from_file(&b.renderer, GPU_SHADER_VERTEX,
                                                b.none("none.vert").c_str());
     },
     {"none.vert", "No such file or directory"}},
    {"SpirvFileMissing",
     [](Bench& b) {
       return !b.program->spirv_shader_module_load_from_file(&b.renderer, GPU_SHADER_PIXEL,
                                                             b.none("none.spv").c_str());
     },
     {"none.spv", "No such file or directory"}},
    {"EffectFile",
     [](Bench& b) {
       return !b.program->d3d_load_from_file(&b.renderer, GPU_SHADER_D3D_EFFECT, "water.fx");
     },
     {"water.fx", "no Direct3D compiler"}},

    // ---- pictures ----
    {"PictureMissing",
     [](Bench& b) { return b.decode(b.none("none.png")); },
     {"none.png", "No such file or directory"}},
    {"PictureIsFolder",
     [](Bench& b) { return b.decode(b.folder.path()); },
     {"image ", "orv_test_", "not a plain file"}},
    {"PictureEmpty",
     [](Bench& b) { return b.decode(b.file("empty.png", "")); },
     {"empty.png", "of no known format"}},
    {"PictureOfText",
     [](Bench& b) { return b.decode(b.file("text.png", "some text")); },
     {"text.png", "of no known format"}},
    {"PngTruncated",
     [](Bench& b) { return b.decode(b.file("cut.png", half_of("img/png/basn2c08.png"))); },
     {"cut.png", "truncated"}},
    {"PngOfNothing",
     [](Bench& b) { return b.decode(b.file("hollow.png", hollow_png())); },
     {"hollow.png", "more pixels than it can hold"}},
    {"JpegTable",
     [](Bench& b) {
       return b.decode(b.file("table.jpg", "\xFF\xD8\xFF\xC4" + std::string(1, '\0') + "\x13" +
                                               std::string(1, '\0') + std::string(16, '\x7F')));
     },
     {"table.jpg", "Huffman table"}},
    {"BmpPalette",
     [](Bench& b) {
       return b.decode(b.file("palette.bmp", spoiled("img/bmp/Info_8_Bit.bmp", 11, 0x7F)));
     },
     {"palette.bmp", "palette"}},
    {"HdrTruncated",
     [](Bench& b) { return b.decode(b.file("cut.hdr", cut_hdr())); },
     {"cut.hdr", "truncated within a packed row"}},
    {"PictureInMemory",
     [](Bench& b) {
       unsigned char bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
       Image result;
       return !b.codec.load_image_from_memory(&result, bytes, sizeof(bytes), false, PF_RGB_U8);
     },
     {"image in memory", "of no known format"}},
    {"TextureAskedOfOneCodecTwice",
     [](Bench& b) {
       TextureMgr& textures = *TextureMgr::get();
       textures.register_image_codec_plugin(&b.codec);
       const bool failed =
           !textures.create_texture_2d_from_file(b.none("wall.png").c_str(), false, PF_RGB_U8);
       textures.unregister_image_codec_plugin(&b.codec);
       return failed;
     },
     {"wall.png", "No such file or directory"}},
    {"TextureWithoutCodec",
     [](Bench&) {
       return !TextureMgr::get()->create_texture_2d_from_file("floor.png", false, PF_RGB_U8);
     },
     {"floor.png", "no codec named"}},
    {"LayerMissing",
     [](Bench&) {
       const Held<Texture> texture;
       return !TextureMgr::get()->load_texture_2d_array_layer_from_file(texture.get(), 3,
                                                                        "roof.png", false);
     },
     {"roof.png", "no layer 3"}},
    {"PictureFolderMissing",
     [](Bench& b) { return b.save(b.none("no/such/out.jpg")); },
     {"out.jpg", "cannot be written", "No such file or directory"}},
    {"PictureOnFullDevice",
     [](Bench& b) { return b.save("/dev/full"); },
     {"/dev/full", "cannot be written", "No space left on device"}},
    {"PictureOfUnwritableFormat",
     [](Bench& b) {
       b.image.create(4, 4, 1, PF_RG_U8, true, true);
       return b.save(b.none("two.jpg"));
     },
     {"two.jpg", "pixel format"}},
    {"PictureWithoutPixels",
     [](Bench& b) {
       Image none;
       return !b.codec.save_image_to_file(&none, b.none("bare.jpg").c_str());
     },
     {"bare.jpg", "no pixels"}},
    {"ScreenshotWithoutBackBuffer",
     [](Bench& b) {
       return !TextureMgr::get()->do_screenshot(&b.renderer, b.none("shot.jpg").c_str(), false);
     },
     {"shot.jpg", "back buffer"}},

    // ---- archives and fonts ----
    {"ArchiveMissing",
     [](Bench& b) { return b.unzip(b.none("none.zip"), "a"); },
     {"none.zip", "No such file or directory"}},
    {"ArchiveOfText",
     [](Bench& b) { return b.unzip(b.file("text.zip", "some text"), "a"); },
     {"text.zip", "Not a zip archive"}},
    {"EntryMissing",
     [](Bench& b) { return b.unzip(b.file("a.zip", data_file("zip/test.zip")), "b.txt"); },
     {"a.zip", "no entry b.txt"}},
    {"EntryDamaged",
     [](Bench& b) { return b.unzip(b.file("crc.zip", spoiled_zip()), "abac-repeat.txt"); },
     {"crc.zip", "abac-repeat.txt", "CRC error"}},
    {"FontMissing",
     [](Bench& b) { return b.font(b.none("none.ttf")); },
     {"font ", "none.ttf", "No such file or directory"}},
    {"FontOfText",
     [](Bench& b) { return b.font(b.file("text.ttf", "some text")); },
     {"text.ttf", "not a TrueType font"}},

    {"FontPictureTooLarge",
     [](Bench& b) {
       return !TextureMgr::get()->create_texture_from_truetype_file(b.none("big.ttf").c_str(),
                                                                    16.0f, 64000, 64000);
     },
     {"big.ttf", "64000x64000 is too large"}},

    // ---- memory, meshes, windows ----
    {"ImageBeyondAllMemory",
     [](Bench& b) { return !b.image.create(~0u, ~0u, 1, PF_RGBA_F32, false, true); },
     {"image of 4294967295x4294967295x1", "too large"}},
#if ORV_ALLOCATIONS_MAY_FAIL
    {"ImageBeyondThisMemory",
     [](Bench& b) { return !b.image.create(1u << 31, 1u << 31, 1, PF_R_U8, false, true); },
     {"image of 2147483648x2147483648x1", "allocation of 4611686018427387904 bytes failed"}},
#endif
    {"MeshBeyondAllMemory",
     [](Bench&) {
       const Held<Mesh> mesh;
       mesh->set_name("vast");
       mesh->set_vertex_alloc_params_num_vertices(0xFFFFFFF0u);
       return !mesh->alloc_vertex_data();
     },
     {"Mesh vast", "4294967280 vertices required"},
     2},
    {"MeshExportFolderMissing",
     [](Bench& b) {
       const Held<Mesh> mesh;
       mesh->set_name("box");
       return !mesh->export_to_c(b.none("no/such/mesh.h").c_str());
     },
     {"mesh box", "mesh.h", "No such file or directory"}},
    {"OffscreenWindowTooLarge",
     [](Bench&) { return !OffscreenWindow(16, 16).resize(100000, 16); },
     {"offscreen window", "100000x16 is above"}},
};

bool holds_all(const std::string& line, const std::vector<const char*>& words) {
  return std::all_of(words.begin(), words.end(),
                     [&](const char* word) { return line.find(word) != std::string::npos; });
}

class FailureReasons : public testing::TestWithParam<Failure> {
 protected:
  FailureReasons() { Kernel::get()->plugin_search_path_clear(); }
};

TEST_P(FailureReasons, OneDebugLineNamesTheThingAndTheCause) {
  Bench bench;
  LogCapture log(LOG_LEVEL_DEBUG);
  EXPECT_TRUE(GetParam().provoke(bench));
  const auto told = std::count_if(log.lines().begin(), log.lines().end(), [](const auto& line) {
    return holds_all(line, GetParam().words);
  });
  EXPECT_EQ(told, 1) << log.text();
  for (const std::string& line : log.lines()) {
    if (!holds_all(line, GetParam().words)) continue;
    EXPECT_EQ(line.find('\n'), std::string::npos) << line;
  }
}

TEST_P(FailureReasons, DefaultLevelHearsWhatIsDescribedAlone) {
  Bench bench;
  LogCapture log(LOG_LEVEL_INFO);
  EXPECT_TRUE(GetParam().provoke(bench));
  EXPECT_EQ(log.lines().size(), GetParam().described) << log.text();
}

INSTANTIATE_TEST_SUITE_P(All, FailureReasons, testing::ValuesIn(FAILURES),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace orv::test

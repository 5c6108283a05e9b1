// Decoding through TextureMgr and writing of JPEG files, beside the stb functions alone.
#include <benchmark/benchmark.h>
#include <orv/orv.h>
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int SIDE = 2048;

std::string path_of(const char* name) {
  return (std::filesystem::temp_directory_path() / name).string();
}

// Smooth waves, or the same with noise over them.
std::vector<unsigned char> make_pixels(int components, int noise) {
  std::mt19937 generator(3);
  std::uniform_int_distribution<int> grain(-noise, noise);
  std::vector<unsigned char> pixels;
  pixels.reserve(std::size_t{SIDE} * SIDE * static_cast<std::size_t>(components));
  for (int y = 0; y < SIDE; ++y) {
    for (int x = 0; x < SIDE; ++x) {
      for (int c = 0; c < components; ++c) {
        const double wave = 127.0 + 90.0 * std::sin(x * 0.01 * (c + 1)) * std::cos(y * 0.013);
        pixels.push_back(static_cast<unsigned char>(static_cast<int>(wave) + grain(generator)));
      }
    }
  }
  return pixels;
}

struct Files {
  std::vector<unsigned char> smooth = make_pixels(3, 0);
  std::vector<unsigned char> noisy = make_pixels(3, 30);
  std::string smooth_png = path_of("orv_bench_smooth.png");
  std::string png = path_of("orv_bench.png");  // of noise, hardly packed: mostly copying
  std::string jpeg = path_of("orv_bench.jpg");
  std::string written = path_of("orv_bench_written.jpg");

  Files() {
    stbi_write_png(smooth_png.c_str(), SIDE, SIDE, 3, smooth.data(), SIDE * 3);
    stbi_write_png(png.c_str(), SIDE, SIDE, 3, noisy.data(), SIDE * 3);
    stbi_write_jpg(jpeg.c_str(), SIDE, SIDE, 3, noisy.data(), 90);
  }
  ~Files() {
    for (const std::string& file : {smooth_png, png, jpeg, written}) std::remove(file.c_str());
  }
};

Files& files() {
  static Files instance;
  return instance;
}

void decode_ours(benchmark::State& state, const std::string& file) {
  orv::TextureMgr* manager = orv::TextureMgr::get();
  for (auto _ : state) {
    orv::Texture* texture = new orv::Texture;
    if (!manager->load_texture_2d_from_file(texture, file.c_str(), false, orv::PF_RGB_U8)) {
      state.SkipWithError("not loaded");
    }
    manager->release_texture(nullptr, texture, nullptr);
  }
}

void decode_stb(benchmark::State& state, const std::string& file) {
  for (auto _ : state) {
    int width = 0;
    int height = 0;
    int components = 0;
    unsigned char* pixels = stbi_load(file.c_str(), &width, &height, &components, 3);
    if (!pixels) state.SkipWithError("not loaded");
    stbi_image_free(pixels);
  }
}

void write_ours(benchmark::State& state, const std::vector<unsigned char>& pixels) {
  orv::Image image;
  if (!image.create(SIDE, SIDE, 1, orv::PF_RGB_U8, false, true)) std::exit(1);
  image.update_pixmap_rgb_u8(pixels.data());
  orv::ImageCodec* codec = orv::TextureMgr::get()->get_image_codec_by_index(0);
  for (auto _ : state) {
    if (!codec || !codec->save_image_to_file(&image, files().written.c_str())) {
      state.SkipWithError("not written");
    }
  }
}

void write_stb(benchmark::State& state, const std::vector<unsigned char>& pixels) {
  for (auto _ : state) {
    stbi_write_jpg(files().written.c_str(), SIDE, SIDE, 3, pixels.data(), 91);
  }
}

}  // namespace

int main(int argc, char** argv) {
  orv::core::start(nullptr, false, nullptr, nullptr);
  const auto add = [](const std::string& road, auto ours, auto theirs, const auto& argument) {
    benchmark::RegisterBenchmark((road + "/ours").c_str(),
                                 [=, &argument](benchmark::State& s) { ours(s, argument); });
    benchmark::RegisterBenchmark((road + "/stb").c_str(),
                                 [=, &argument](benchmark::State& s) { theirs(s, argument); });
  };
  add("PNG decode, smooth", decode_ours, decode_stb, files().smooth_png);
  add("PNG decode, noisy", decode_ours, decode_stb, files().png);
  add("JPEG decode", decode_ours, decode_stb, files().jpeg);
  add("JPEG write, smooth", write_ours, write_stb, files().smooth);
  add("JPEG write, noisy", write_ours, write_stb, files().noisy);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  orv::core::stop(nullptr);
  return 0;
}

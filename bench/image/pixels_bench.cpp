// Flips and conversions of 4096x4096 pixels, beside copying and filling the same bytes.
#include <benchmark/benchmark.h>
#include <orv/image/image.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr unsigned int SIDE = 4096;
constexpr std::size_t PIXELS = std::size_t{SIDE} * SIDE;
constexpr std::size_t BYTES = PIXELS * 4;

std::unique_ptr<orv::Image> make_image(orv::PIXEL_FORMAT format) {
  auto image = std::make_unique<orv::Image>();
  if (!image->create(SIDE, SIDE, 1, format, false, true)) std::exit(1);
  for (std::size_t i = 0; i < BYTES; ++i) {
    if (image->get_f32_ptr()) {
      image->get_f32_ptr()[i] = static_cast<float>(i % 251) / 255.0f;
    } else {
      image->get_u8_ptr()[i] = static_cast<unsigned char>(i % 251);
    }
  }
  return image;
}

template <bool (orv::Image::*Flip)()>
void flip_ours(benchmark::State& state) {
  const auto image = make_image(orv::PF_RGBA_U8);
  for (auto _ : state) {
    if (!((*image).*Flip)()) state.SkipWithError("refused");
    benchmark::ClobberMemory();
  }
}

void copy_bytes(benchmark::State& state) {
  const std::vector<char> source(BYTES, 1);
  std::vector<char> target(BYTES, 2);
  for (auto _ : state) {
    std::memcpy(target.data(), source.data(), BYTES);
    benchmark::ClobberMemory();
  }
}

// Each round converts a copy of its own, as the result takes the place of the source.
void convert_ours(benchmark::State& state, orv::PIXEL_FORMAT from, orv::PIXEL_FORMAT to) {
  const auto original = make_image(from);
  // Memory that the system has to fetch first belongs to nobody's figures.
  orv::Image(*original).update_pixel_format(to);
  for (auto _ : state) {
    state.PauseTiming();
    orv::Image image(*original);
    state.ResumeTiming();
    if (!image.update_pixel_format(to)) state.SkipWithError("refused");
    benchmark::ClobberMemory();
    state.PauseTiming();
    image.cleanup();
    state.ResumeTiming();
  }
}

// Memory fresh from the allocator, as the conversion's result is.
void fill_floats(benchmark::State& state) {
  for (auto _ : state) {
    float* block = static_cast<float*>(std::malloc(BYTES * sizeof(float)));
    std::memset(block, 1, BYTES * sizeof(float));
    benchmark::DoNotOptimize(block);
    benchmark::ClobberMemory();
    state.PauseTiming();
    std::free(block);
    state.ResumeTiming();
  }
}

void floats_from_bytes(benchmark::State& state) {
  convert_ours(state, orv::PF_RGBA_U8, orv::PF_RGBA_F32);
}

void bytes_from_floats(benchmark::State& state) {
  convert_ours(state, orv::PF_RGBA_F32, orv::PF_RGBA_U8);
}

void check_answers() {
  auto image = make_image(orv::PF_RGBA_U8);
  const unsigned char before = image->get_u8_ptr()[BYTES - 4];
  image->flip_vertical();
  image->flip_horizontal();
  const bool turned = image->get_u8_ptr()[0] == before;
  if (!turned || !image->update_pixel_format(orv::PF_RGBA_F32) ||
      image->get_f32_ptr()[0] != static_cast<float>(before) / 255.0f) {
    std::fprintf(stderr, "the image is not what was expected\n");
    std::exit(1);
  }
}

}  // namespace

BENCHMARK(flip_ours<&orv::Image::flip_vertical>)->Name("Image flip_vertical/ours");
BENCHMARK(copy_bytes)->Name("Image flip_vertical/memcpy");
BENCHMARK(flip_ours<&orv::Image::flip_horizontal>)->Name("Image flip_horizontal/ours");
BENCHMARK(copy_bytes)->Name("Image flip_horizontal/memcpy");
BENCHMARK(floats_from_bytes)->Name("Image bytes to floats/ours");
BENCHMARK(fill_floats)->Name("Image bytes to floats/memset of the result");
BENCHMARK(bytes_from_floats)->Name("Image floats to bytes/ours");
BENCHMARK(copy_bytes)->Name("Image floats to bytes/memcpy");

int main(int argc, char** argv) {
  check_answers();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

#include "loaders/model_files.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace bench {

namespace {

namespace fs = std::filesystem;

/// Calls write(file) for a file that is not there yet. A run that is broken off leaves no half one.
template <class Write>
std::string make_once(const std::string& name, Write write) {
  const fs::path path = model_folder() + name;
  if (fs::exists(path)) return name;
  fs::create_directories(path.parent_path());
  const fs::path unfinished = path.string() + ".part";
  std::FILE* file = std::fopen(unfinished.c_str(), "wb");
  if (!file) {
    std::perror(unfinished.c_str());
    std::exit(1);
  }
  write(file);
  if (std::fclose(file) != 0) {
    std::perror(unfinished.c_str());
    std::exit(1);
  }
  fs::rename(unfinished, path);
  return name;
}

struct Point {
  double x, y, z;
};

Point wave(double u, double v) {
  return {10.0 * u - 5.0, std::sin(9.0 * u) * std::cos(7.0 * v), 10.0 * v - 5.0};
}

Point wave_normal(double u, double v) {
  const double dx = -0.9 * std::cos(9.0 * u) * std::cos(7.0 * v);
  const double dz = 0.7 * std::sin(9.0 * u) * std::sin(7.0 * v);
  const double length = std::sqrt(dx * dx + 1.0 + dz * dz);
  return {dx / length, 1.0 / length, dz / length};
}

void write_obj_points(std::FILE* file, int side) {
  const auto for_each = [side](auto write) {
    for (int row = 0; row < side; ++row) {
      for (int column = 0; column < side; ++column) {
        write(static_cast<double>(column) / (side - 1), static_cast<double>(row) / (side - 1));
      }
    }
  };
  for_each([file](double u, double v) {
    const Point p = wave(u, v);
    std::fprintf(file, "v %f %f %f\n", p.x, p.y, p.z);
  });
  for_each([file](double u, double v) { std::fprintf(file, "vt %f %f\n", u, v); });
  for_each([file](double u, double v) {
    const Point n = wave_normal(u, v);
    std::fprintf(file, "vn %f %f %f\n", n.x, n.y, n.z);
  });
}

void write_obj_faces(std::FILE* file, int side) {
  const auto write = [file](int a, int b, int c) {
    std::fprintf(file, "f %d/%d/%d %d/%d/%d %d/%d/%d\n", a, a, a, b, b, b, c, c, c);
  };
  for (int row = 0; row + 1 < side; ++row) {
    for (int column = 1; column < side; ++column) {
      const int corner = row * side + column;
      write(corner, corner + side, corner + 1);
      write(corner + 1, corner + side, corner + side + 1);
    }
  }
}

}  // namespace

std::string model_folder() { return BENCH_DATA_FOLDER "/"; }

std::string obj_file(std::size_t megabytes) {
  // A point and its two triangles take about 190 bytes.
  const int side = static_cast<int>(std::sqrt(static_cast<double>(megabytes) * 1e6 / 190.0));
  return make_once("grid_" + std::to_string(megabytes) + "mb.obj", [side](std::FILE* file) {
    write_obj_points(file, side);
    write_obj_faces(file, side);
  });
}

std::string stl_file(std::size_t triangles) {
  return make_once("shell_" + std::to_string(triangles) + ".stl", [triangles](std::FILE* file) {
    char header[84] = "a shell of triangles";
    const auto count = static_cast<std::uint32_t>(triangles);
    std::memcpy(header + 80, &count, sizeof(count));
    std::fwrite(header, sizeof(header), 1, file);
    for (std::size_t i = 0; i < triangles; ++i) {
      const auto turn = static_cast<float>(i) * 1e-3f;
      const float record[12] = {0.0f, 0.0f, 1.0f, turn, 0.0f, 1.0f,
                                turn, 1.0f, 2.0f, 1.0f, turn, 3.0f};
      std::fwrite(record, sizeof(record), 1, file);
      std::fwrite("\0", 2, 1, file);
    }
  });
}

}  // namespace bench

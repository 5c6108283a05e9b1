#include "core/platform/module_check.h"
#include "core/platform/platform.h"
#include "support/temp_folder.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

namespace orv::platform {
namespace {

using test::TempFolder;

/// The bytes of a shared library that every program has: the mathematics library.
const std::string& library_bytes() {
  static const std::string bytes = [] {
    void* library = dlopen("libm.so.6", RTLD_NOW);
    Dl_info information{};
    const void* symbol = library ? dlsym(library, "cos") : nullptr;
    const bool found = symbol && dladdr(symbol, &information) != 0;
    std::string contents = found ? TempFolder::read_file(information.dli_fname) : "";
    if (library) dlclose(library);
    return contents;
  }();
  return bytes;
}

bool check(const std::string& bytes, std::string* error = nullptr) {
  std::string cause;
  const bool good = check_module_head(reinterpret_cast<const unsigned char*>(bytes.data()),
                                      bytes.size(), bytes.size(), cause);
  EXPECT_EQ(good, cause.empty());
  if (error) *error = cause;
  return good;
}

TEST(ModuleCheck, AcceptsALibrary) {
  ASSERT_GT(library_bytes().size(), 4096u);
  EXPECT_TRUE(check(library_bytes()));
}

TEST(ModuleCheck, RefusesEveryTruncationOfTheHeaders) {
  for (size_t size = 0; size < 1500; ++size) {
    EXPECT_FALSE(check(library_bytes().substr(0, size))) << size;
  }
}

TEST(ModuleCheck, RefusesALibraryWithoutItsEnd) {
  std::string error;
  EXPECT_FALSE(check(library_bytes().substr(0, library_bytes().size() / 2), &error));
  EXPECT_EQ(error, "truncated");
}

TEST(ModuleCheck, RefusesProgramsAndOtherMachines) {
  struct {
    size_t offset;
    char value;
    const char* error;
  } const cases[] = {{0, 'X', "not an ELF file"},
                     {4, 1, "not 64 bit, little endian"},
                     {5, 2, "not 64 bit, little endian"},
                     {16, 2, "not a shared library"},
                     {18, 3, "built for another machine"},
                     {54, 1, "no program headers"},
                     {39, 0x7f, "program headers out of reach"},
                     {57, 0x7f, "program headers out of reach"}};
  for (const auto& c : cases) {
    std::string bytes = library_bytes();
    bytes[c.offset] = c.value;
    std::string error;
    EXPECT_FALSE(check(bytes, &error)) << c.offset;
    EXPECT_EQ(error, c.error) << c.offset;
  }
}

TEST(ModuleCheck, AnyByteOfTheHeadersMayBeSpoiled) {
  for (size_t offset = 0; offset < 1200; ++offset) {
    for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff}) {
      std::string bytes = library_bytes();
      bytes[offset] = static_cast<char>(value);
      check(bytes);
    }
  }
}

TEST(ModuleCheck, FileMustBeAPlainOne) {
  TempFolder folder;
  std::string error;
  EXPECT_FALSE(check_module_file(folder.path().c_str(), error));
  EXPECT_EQ(error, "not a plain file");
  EXPECT_FALSE(check_module_file(folder.file("missing").c_str(), error));
  EXPECT_EQ(error, "No such file or directory");
  error.clear();
  EXPECT_TRUE(check_module_file(folder.write("lib.so", library_bytes()).c_str(), error)) << error;
}

TEST(OpenModule, TruncatedLibrariesAreRefused) {
  TempFolder folder;
  const std::string path = folder.file("lib.so");
  const size_t full = library_bytes().size();
  for (const size_t size : {size_t{1}, size_t{63}, size_t{64}, size_t{4096}, full / 3, full / 2}) {
    folder.write("lib.so", library_bytes().substr(0, size));
    std::string error;
    EXPECT_EQ(open_module(path.c_str(), "", &error), nullptr) << size;
    EXPECT_NE(error, "");
  }
}

TEST(OpenModule, RelativeNamesAreTriedHereThenInTheDirectory) {
  TempFolder folder;
  std::filesystem::create_directory(folder.file("here"));
  std::filesystem::create_directory(folder.file("there"));
  const auto old = std::filesystem::current_path();
  std::filesystem::current_path(folder.file("here"));
  std::string error;
  const std::string there = folder.file("there");

  EXPECT_EQ(open_module("lib.so", there.c_str(), &error), nullptr);
  folder.write("there/lib.so", library_bytes());
  void* library = open_module("lib.so", there.c_str(), &error);
  EXPECT_NE(library, nullptr) << error;
  close_library(library);
  EXPECT_EQ(open_module("lib.so", "", &error), nullptr);

  folder.write("here/lib.so", "spoiled");  // found first, and no library
  EXPECT_EQ(open_module("lib.so", there.c_str(), &error), nullptr);
  EXPECT_NE(error.find("too short"), std::string::npos) << error;

  // A path that holds the directory already is not resolved twice.
  library = open_module("../there/lib.so", "../there/", &error);
  EXPECT_NE(library, nullptr) << error;
  close_library(library);
  EXPECT_EQ(std::filesystem::current_path(), folder.file("here"));
  std::filesystem::current_path(old);
}

}  // namespace
}  // namespace orv::platform

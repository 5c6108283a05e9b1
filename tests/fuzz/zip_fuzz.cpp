// Any bytes as a ZIP archive.
#include <orv/core/utils.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string path = "/tmp/orv_zip_fuzz_" + std::to_string(::getpid()) + ".zip";
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return 0;
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  for (const char* entry : {"a", "abac-repeat.txt", "test"}) {
    unsigned int length = 0;
    unsigned char* block = orv::ZipExtractFile(path.c_str(), entry, &length);
    orv::ZipFree(block);
  }
  std::remove(path.c_str());
  return 0;
}

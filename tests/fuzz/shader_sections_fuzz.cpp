// Sectioned shader texts: any bytes load or are refused, and no stage reaches behind its text.
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/render/renderer_null.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

class Compiler : public orv::RendererNull {
 public:
  explicit Compiler(std::size_t limit) : limit_(limit) {}
  bool gpu_shader_load(orv::GpuProgramData*, orv::GPU_SHADER_TYPE, const char* text,
                       unsigned int size) override {
    if (!text || std::strlen(text) != size || size > limit_) std::abort();
    return true;
  }

 private:
  std::size_t limit_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0xFFFFFFFFu) return 0;
  Compiler compiler(size);
  orv::GpuProgram program;
  program.load_from_memory(&compiler, reinterpret_cast<const char*>(data),
                           static_cast<unsigned int>(size));
  return 0;
}

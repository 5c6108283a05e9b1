// A processor that knows three kernels by name and takes every source that declares some of them:
//
//     kernel void fill(out)              out[i] = i                 (unsigned int)
//     kernel void add(a, b, out)         out[i] = a[i] + b[i]       (float)
//     kernel void scale(in_out, factor)  in_out[i] *= factor        (float, with a plain float)

#include <orv/gpu/gpu_enums.h>
#include <orv/services/opencl_plugin.h>

#include <cctype>
#include <string>

#include "module_support.h"

namespace {

using orv::test::Numbered;

constexpr unsigned long long MEMORY_SIZE = 64ull << 20;
constexpr unsigned long long MAX_WORK_GROUP = 256;

struct Context {};

struct Buffer {
  int context;
  orv::DATA_ACCESS_TYPE access;
  std::vector<unsigned char> bytes;

  template <class Value>
  Value get(std::size_t i) const {
    Value value;
    std::memcpy(&value, &bytes[i * sizeof value], sizeof value);
    return value;
  }
  template <class Value>
  void set(std::size_t i, Value value) {
    std::memcpy(&bytes[i * sizeof value], &value, sizeof value);
  }
};

struct Program {
  int context;
  std::vector<std::string> kernels;
};

struct Argument {
  bool is_set = false;
  int buffer = 0;
  float value = 0.0f;
};

struct KnownKernel {
  const char* name;
  unsigned int num_buffers;  ///< its first arguments
  unsigned int num_values;   ///< those behind
  void (*work)(Buffer* const* buffers, float value, std::size_t i);
};

constexpr KnownKernel known_kernels[] = {
    {"fill", 1, 0,
     [](Buffer* const* buffers, float, std::size_t i) {
       buffers[0]->set(i, static_cast<unsigned int>(i));
     }},
    {"add", 3, 0,
     [](Buffer* const* buffers, float, std::size_t i) {
       buffers[2]->set(i, buffers[0]->get<float>(i) + buffers[1]->get<float>(i));
     }},
    {"scale", 1, 1,
     [](Buffer* const* buffers, float value, std::size_t i) {
       buffers[0]->set(i, buffers[0]->get<float>(i) * value);
     }},
};

const KnownKernel* find_known(const std::string& name) {
  for (const KnownKernel& known : known_kernels) {
    if (name == known.name) return &known;
  }
  return nullptr;
}

struct Kernel {
  int context;
  const KnownKernel* known;
  Argument arguments[4];
};

/// Names of the kernels that a source declares.
std::vector<std::string> find_kernels(const std::string& source) {
  const std::string mark = "kernel void ";
  std::vector<std::string> names;
  for (std::size_t at = source.find(mark); at != std::string::npos; at = source.find(mark, at)) {
    at += mark.size();
    std::size_t end = at;
    while (end < source.size() && std::isalnum(static_cast<unsigned char>(source[end]))) ++end;
    names.push_back(source.substr(at, end - at));
  }
  return names;
}

class ProcessorCL : public orv::test::Module<orv::OpenCLPlugin> {
 public:
  ProcessorCL()
      : Module("test opencl"),
        contexts_(last_number()),
        buffers_(last_number()),
        programs_(last_number()),
        kernels_(last_number()) {}

  bool terminate() override {
    kernels_.clear();
    programs_.clear();
    buffers_.clear();
    contexts_.clear();
    return OpenCLPlugin::terminate();
  }

  unsigned int get_num_platforms() override { return is_initialized() ? 1 : 0; }
  unsigned int get_num_devices(unsigned int platform) override {
    return platform < get_num_platforms() ? 1 : 0;
  }
  bool get_device_info(unsigned int platform, unsigned int device,
                       orv::OpenCLDeviceInfo* info) override {
    if (!info || device >= get_num_devices(platform)) return false;
    *info = {};
    orv::test::copy_text(info->platform_name, "Test platform");
    orv::test::copy_text(info->device_name, "Processor");
    orv::test::copy_text(info->version, "OpenCL 1.2");
    info->type = orv::OPENCL_DEVICE_CPU;
    info->num_compute_units = 1;
    info->max_work_group_size = MAX_WORK_GROUP;
    info->memory_size = MEMORY_SIZE;
    info->max_buffer_size = MEMORY_SIZE / 4;
    return true;
  }

  int create_context(unsigned int platform, unsigned int device, orv::Renderer* share) override {
    if (device >= get_num_devices(platform) || share) return 0;
    return contexts_.add({});
  }
  int create_buffer(int context, unsigned long long size, orv::DATA_ACCESS_TYPE access,
                    const void* initial) override {
    if (!contexts_.find(context) || size == 0 || size > MEMORY_SIZE / 4) return 0;
    unsigned long long taken = 0;
    buffers_.for_each([&](int, const Buffer& buffer) { taken += buffer.bytes.size(); });
    if (size > MEMORY_SIZE - taken) return 0;
    Buffer buffer{context, access, std::vector<unsigned char>(size)};
    if (initial) std::memcpy(buffer.bytes.data(), initial, size);
    return buffers_.add(std::move(buffer));
  }
  int share_gl_object(int, orv::OPENCL_GL_OBJECT, unsigned int, orv::DATA_ACCESS_TYPE) override {
    return 0;  // a processor has nothing in common with OpenGL
  }
  bool release_object(int object) override {
    if (buffers_.remove(object) || programs_.remove(object) || kernels_.remove(object)) return true;
    if (!contexts_.remove(object)) return false;
    const auto belongs = [object](int, const auto& thing) { return thing.context == object; };
    buffers_.remove_if(belongs);
    programs_.remove_if(belongs);
    kernels_.remove_if(belongs);
    return true;
  }

  bool write_buffer(int number, unsigned long long offset, unsigned long long size,
                    const void* data) override {
    Buffer* buffer = buffers_.find(number);
    if (!data || !holds(buffer, offset, size)) return false;
    std::memcpy(buffer->bytes.data() + offset, data, size);
    return true;
  }
  bool read_buffer(int number, unsigned long long offset, unsigned long long size,
                   void* data) override {
    const Buffer* buffer = buffers_.find(number);
    if (!data || !holds(buffer, offset, size)) return false;
    std::memcpy(data, buffer->bytes.data() + offset, size);
    return true;
  }

  int build_program(int context, const char* source, const char*) override {
    if (!contexts_.find(context) || !source) return 0;
    Program program{context, find_kernels(source)};
    if (program.kernels.empty()) tracef_error("no kernel in the source");
    for (const std::string& name : program.kernels) {
      if (find_known(name)) continue;
      tracef_error("unknown kernel: %s", name.c_str());
      return 0;
    }
    return program.kernels.empty() ? 0 : programs_.add(std::move(program));
  }
  int create_kernel(int number, const char* name) override {
    const Program* program = programs_.find(number);
    if (!program || !name) return 0;
    const auto& names = program->kernels;
    if (std::find(names.begin(), names.end(), name) == names.end()) return 0;
    return kernels_.add({program->context, find_known(name), {}});
  }
  bool set_kernel_argument(int number, unsigned int index, int buffer, unsigned int size,
                           const void* value) override {
    Kernel* kernel = kernels_.find(number);
    if (!kernel || index >= kernel->known->num_buffers + kernel->known->num_values) return false;
    Argument argument{true, buffer, 0.0f};
    if (index < kernel->known->num_buffers) {
      const Buffer* named = buffers_.find(buffer);
      if (!named || named->context != kernel->context) return false;
    } else {
      if (buffer || !value || size != sizeof argument.value) return false;
      std::memcpy(&argument.value, value, sizeof argument.value);
    }
    kernel->arguments[index] = argument;
    return true;
  }
  bool enqueue_kernel(int number, unsigned int num_dimensions,
                      const unsigned long long* global_size, const unsigned long long* local_size,
                      bool) override {
    const Kernel* kernel = kernels_.find(number);
    if (!kernel || !global_size || num_dimensions < 1 || num_dimensions > 3) return false;
    unsigned long long num_points = 1, group = 1;
    for (unsigned int i = 0; i < num_dimensions; ++i) {
      // Every kernel writes four bytes a point, so more points fit into no buffer.
      if (global_size[i] == 0 || global_size[i] > MEMORY_SIZE) return false;
      num_points *= global_size[i];
      if (num_points > MEMORY_SIZE) return false;
      if (!local_size) continue;
      if (local_size[i] == 0 || global_size[i] % local_size[i] != 0) return false;
      group *= local_size[i];
      if (group > MAX_WORK_GROUP) return false;
    }
    return run(*kernel, static_cast<std::size_t>(num_points));
  }

 private:
  static bool holds(const Buffer* buffer, unsigned long long offset, unsigned long long size) {
    return buffer && offset <= buffer->bytes.size() && size <= buffer->bytes.size() - offset;
  }

  bool run(const Kernel& kernel, std::size_t num_points) const {
    Buffer* buffers[4] = {};
    for (unsigned int i = 0; i < kernel.known->num_buffers; ++i) {
      buffers[i] = buffers_.find(kernel.arguments[i].buffer);
      if (!buffers[i] || buffers[i]->bytes.size() / 4 < num_points) return false;
    }
    const Argument& value = kernel.arguments[kernel.known->num_buffers];
    if (kernel.known->num_values && !value.is_set) return false;
    for (std::size_t i = 0; i < num_points; ++i) kernel.known->work(buffers, value.value, i);
    return true;
  }

  Numbered<Context> contexts_;
  Numbered<Buffer> buffers_;
  Numbered<Program> programs_;
  Numbered<Kernel> kernels_;
};

}  // namespace

ORV_TEST_MODULE(ProcessorCL)

// An image codec of files that begin with "TESTIMG": two by one pixels, red and blue.

#include <orv/core/api.h>
#include <orv/image/image.h>
#include <orv/image/image_codec.h>

#include <cstdio>
#include <cstring>

namespace {

constexpr char MAGIC[] = "TESTIMG";

class TestCodec : public orv::ImageCodec {
 public:
  TestCodec() {
    set_name("test codec");
    set_description("Codec of the plugin tests.");
    set_author("The tests");
    set_type(orv::PLUGIN_TYPE_IMAGE_CODEC);
  }

  bool load_image_from_file(orv::Image* image, const char* filename, bool option,
                            orv::PIXEL_FORMAT format) override {
    if (!image || !filename) return false;
    std::FILE* file = std::fopen(filename, "rb");
    if (!file) return false;
    unsigned char data[sizeof MAGIC] = {};
    const size_t size = std::fread(data, 1, sizeof data - 1, file);
    std::fclose(file);
    return load_image_from_memory(image, data, static_cast<unsigned int>(size), option, format);
  }

  bool load_image_from_memory(orv::Image* image, unsigned char* data, unsigned int size, bool,
                              orv::PIXEL_FORMAT) override {
    if (!image || !data || size < sizeof MAGIC - 1) return false;
    if (std::memcmp(data, MAGIC, sizeof MAGIC - 1) != 0) return false;
    if (!image->create(2, 1, 1, orv::PF_RGB_U8, false, true)) return false;
    const unsigned char pixels[] = {255, 0, 0, 0, 0, 255};
    std::memcpy(image->get_u8_ptr(), pixels, sizeof pixels);
    return true;
  }

  bool save_image_to_file(orv::Image*, const char*) override { return false; }

  bool free_image_resources(orv::Image*) override { return false; }
};

}  // namespace

ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() { return new TestCodec; }

ORV_PLUGIN_EXPORT void orv_plugin_destroy(orv::Plugin* plugin) {
  delete static_cast<TestCodec*>(plugin);
}

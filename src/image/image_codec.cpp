#include <orv/image/image_codec.h>

namespace orv {

ImageCodec::ImageCodec() { set_type(PLUGIN_TYPE_IMAGE_CODEC); }

ImageCodec::~ImageCodec() = default;

}  // namespace orv

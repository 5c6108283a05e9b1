// Any bytes as a frame of a camera that tells any sizes: nothing is read beyond them, and a frame
// that is taken has the size it tells.
#include "services/webcam_frame.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

// The first seven bytes are format, width, height and stride.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using orv::detail::CameraFormat;
  constexpr std::size_t HEAD = 7;
  if (size < HEAD || size > (1u << 18)) return 0;
  orv::detail::FrameLayout layout;
  layout.format = static_cast<CameraFormat>(data[0] % 5);
  layout.width = static_cast<std::uint32_t>(data[1] | data[2] << 8);
  layout.height = static_cast<std::uint32_t>(data[3] | data[4] << 8);
  layout.stride = static_cast<std::uint32_t>(data[5] | data[6] << 8);
  if (!layout.check()) return 0;
  size -= HEAD;
  const std::unique_ptr<unsigned char[]> exact(new unsigned char[size]);
  std::copy(data + HEAD, data + HEAD + size, exact.get());
  orv::detail::WebcamFrame frame;
  const bool is_taken = orv::detail::convert_frame(layout, exact.get(), size, &frame);
  if (is_taken != (frame.bytes != nullptr)) std::abort();
  if (frame.size != std::size_t{frame.width} * frame.height * 3) std::abort();
  return 0;
}

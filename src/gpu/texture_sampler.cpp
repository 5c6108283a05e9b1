#include <orv/gpu/texture_sampler.h>

#include <orv/core/utils.h>

namespace orv {

TextureSampler::TextureSampler() : id(utils::gen_id()) {}

}  // namespace orv

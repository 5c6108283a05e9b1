/// @file
/// A block of sound on its way to a player.
#pragma once

namespace orv {

/// A block of PCM samples. Made by AudioData::new_audio_frame, freed by AudioData::del_audio_frame.
class AudioFrame {
 public:
  int id = 0;                     ///< from utils::gen_id
  unsigned int index = 0;         ///< running number within its AudioData
  int reserved_a = 0;             ///< not used
  int reserved_b = 0;             ///< not used
  unsigned char* data = nullptr;  ///< the samples, owned by the frame; leave the pointer as it is
  unsigned int size = 0;          ///< bytes in `data`
  int reserved_c = 0;             ///< not used
  int ready = 1;                  ///< 1 from the start; the library does not look at it
  int reserved_d = 0;             ///< not used
};

}  // namespace orv

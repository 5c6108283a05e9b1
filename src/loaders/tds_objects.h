#pragma once

#include <cstddef>

#include "loaders/tds_chunks.h"
#include "loaders/tds_reader.h"

namespace orv::tds {

/// Writes the materials, meshes and cameras of a file anew, with what the loader uses of them.
class ObjectCopy {
 public:
  /// Counts in `file` what it leaves out.
  ObjectCopy(ChunkWriter& out, TdsFile& file) : out_(out), file_(file) {}

  /// Copies those of a data chunk's body. False when anything in it is damaged.
  bool run(Bytes body);

 private:
  bool take(std::size_t& count);
  bool copy_object(Bytes body);
  template <class Copy>
  bool copy_named(Bytes name, Copy copy);

  ChunkWriter& out_;
  TdsFile& file_;
  std::size_t materials_ = 0;
  std::size_t meshes_ = 0;
  std::size_t cameras_ = 0;
};

}  // namespace orv::tds

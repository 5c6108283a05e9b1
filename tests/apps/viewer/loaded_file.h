#pragma once

#include <gtest/gtest.h>
#include <orv/orv.h>

#include <memory>
#include <string>

#include "support/temp_folder.h"
#include "viewer/model_file.h"

namespace viewer {

/// The library started, and one model loaded without OpenGL.
class LoadedFileTest : public testing::Test {
 protected:
  LoadedFileTest() { log_.start(false); }
  ~LoadedFileTest() override {
    if (file_) file_->release(nullptr);
    orv::core::stop(nullptr);
  }

  bool load(const std::string& path, const std::string& texture = {}) {
    if (file_) file_->release(nullptr);
    reason_.clear();
    file_ = ModelFile::load(path, {texture}, log_, &reason_);
    return file_ != nullptr;
  }
  bool load_data(const std::string& name) { return load(ORV_TEST_DATA_DIR "/" + name); }
  bool load_text(const std::string& obj) { return load(folder_.write("model.obj", obj)); }

  orv::Mesh& get_mesh(std::size_t part = 0) { return *file_->get_parts().at(part).mesh; }

  orv::test::TempFolder folder_;
  LogTap log_;
  std::string reason_;
  std::unique_ptr<ModelFile> file_;
};

}  // namespace viewer

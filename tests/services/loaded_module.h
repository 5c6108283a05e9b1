#pragma once

#include <orv/core/plugin_mgr.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace orv::test {

/// File of a module that was built for the tests, by its name.
inline std::string module_file(const char* name) {
#if defined(ORV_TEST_PLUGIN_DIR)
  const char* folder = ORV_TEST_PLUGIN_DIR;
#else
  const char* folder = std::getenv("ORV_TEST_PLUGIN_DIR");
#endif
  return std::string(folder ? folder : ".") + "/plugin_orv_test_" + name + "_x64.so";
}

/// A suite of tests on a module that fills an interface: it is loaded through PluginMgr, its plugin
/// is initialised and started, and everything is given back at the end.
template <class Interface>
class LoadedModule : public testing::Test {
 protected:
  explicit LoadedModule(const char* name) : file_(module_file(name)) {}

  void SetUp() override {
    PluginMgr* manager = PluginMgr::get();
    num_plugins_ = manager->get_num_plugins();
    id_ = manager->load_plugin(file_.c_str(), false);
    ASSERT_GT(id_, 0) << file_;
    EXPECT_TRUE(is_mapped());
    plugin_ = dynamic_cast<Interface*>(manager->get_plugin(id_));
    ASSERT_NE(plugin_, nullptr);
    EXPECT_EQ(plugin_->get_ref(), 1);
    EXPECT_EQ(plugin_->get_type(), PLUGIN_TYPE_UNKNOWN) << "an interface names no type";
    EXPECT_STREQ(plugin_->get_author(), "The tests");
    EXPECT_EQ(plugin_->get_version_major(), 1);
    ASSERT_TRUE(plugin_->initialize());
    ASSERT_TRUE(plugin_->start());
  }

  void TearDown() override {
    if (plugin_) unload();
  }

  void unload() {
    EXPECT_EQ(PluginMgr::get()->unload_plugin(id_), 0);
    plugin_ = nullptr;
    EXPECT_FALSE(is_mapped());
    EXPECT_EQ(PluginMgr::get()->get_num_plugins(), num_plugins_);
  }

  bool is_mapped() const {
    void* handle = dlopen(file_.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle) dlclose(handle);
    return handle != nullptr;
  }

  std::string file_;
  unsigned int num_plugins_ = 0;
  int id_ = -1;
  Interface* plugin_ = nullptr;
};

}  // namespace orv::test

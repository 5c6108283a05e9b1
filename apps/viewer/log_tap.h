#pragma once

#include <string>
#include <vector>

namespace viewer {

/// The program's end of the library's log: prints it when asked to, and keeps the lines of a load,
/// which say why it failed.
class LogTap {
 public:
  /// Starts the library with this as its log's callback.
  void start(bool verbose);

  /// Lines are kept from here on.
  void begin_keeping();
  /// What the library last said about the file, without its name. "" when it said nothing. Ends the
  /// keeping.
  std::string end_keeping(const std::string& path);
  /// The lines kept last, until they are kept anew.
  const std::vector<std::string>& get_kept() const { return lines_; }

 private:
  static void receive(const char* text, void* self);
  void set_threshold();

  bool verbose_ = false;
  bool keeping_ = false;
  std::vector<std::string> lines_;
};

}  // namespace viewer

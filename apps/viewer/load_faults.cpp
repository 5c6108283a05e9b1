#include "viewer/load_faults.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string_view>

namespace viewer {

namespace {

/// Text from behind the mark, if it is there.
bool cut_through(std::string_view* text, std::string_view mark) {
  const std::size_t at = text->find(mark);
  if (at == std::string_view::npos) return false;
  text->remove_prefix(at + mark.size());
  return true;
}

/// The fault of an OBJ file among the messages of one log line, one below the other.
std::string find_obj_fault(std::string_view messages) {
  while (!messages.empty()) {
    const std::size_t length = std::min(messages.find('\n'), messages.size());
    std::string_view line = messages.substr(0, length);
    messages.remove_prefix(std::min(length + 1, messages.size()));
    line.remove_prefix(std::min(line.find_first_not_of(". "), line.size()));
    for (std::string_view known :
         {"Vertex indices out of bounds", "Vertex normal indices out of bounds",
          "Vertex texcoord indices out of bounds", "Face with invalid vertex index found",
          "Degenerated face found"}) {
      // The line that some of them name is the last one of the file.
      if (line.starts_with(known)) return std::string(known);
    }
  }
  return {};
}

}  // namespace

// ---- models ------------------------------------------------------------------------------------

std::string find_fault(const std::vector<std::string>& lines, const std::string& path) {
  for (const std::string& line : lines) {
    std::string_view text = line;
    if (cut_through(&text, "] error: ")) {
      std::string fault = find_obj_fault(text);
      if (!fault.empty()) return fault;
    } else if (cut_through(&text, path + ": ")) {
      if (text.starts_with("left out ") || text.starts_with("too many ")) return std::string(text);
      if (text.starts_with("no mesh from ") && cut_through(&text, "triangles: ")) {
        return std::string(text);
      }
    }
  }
  return {};
}

std::string find_missing_records(const std::string& path) {
  constexpr std::uint64_t head_size = 84;
  constexpr std::uint64_t record_size = 50;
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const auto size = static_cast<std::uint64_t>(std::max<std::streamoff>(file.tellg(), 0));
  unsigned char count[4] = {};
  file.seekg(head_size - sizeof(count));
  if (size < head_size || !file.read(reinterpret_cast<char*>(count), sizeof(count))) return {};
  std::uint64_t told = 0;
  for (int i = 3; i >= 0; --i) told = told << 8 | count[i];
  const std::uint64_t held = (size - head_size) / record_size;
  if (held >= told) return {};
  return "it ends after " + std::to_string(held) + " of its " + std::to_string(told) + " triangles";
}

// ---- textures ----------------------------------------------------------------------------------

namespace {

/// Looks at the lines one after the other: reasons, a first attempt that failed, reasons, and how
/// the second attempt ended.
class TextureLines {
 public:
  explicit TextureLines(const std::string& folder) : folder_(folder) {}

  void read(std::string_view line) {
    const std::string image = "image " + folder_;
    std::string_view text = line;
    if (line.starts_with(image) && cut_through(&text, ": ")) {
      // A file that is damaged says more than one that is not where it was looked for.
      if (reason_.empty() || reason_.ends_with(std::strerror(ENOENT))) reason_ = text;
    } else if (line.starts_with("Material ") && cut_through(&text, ": texture ") &&
               cut_through(&text, "(" + folder_)) {
      read_result(text);
    }
  }

  TextureReport report;

 private:
  void read_result(std::string_view text) {
    if (text.ends_with(") loading FAILED.")) {
      name_ = text.substr(0, text.rfind(") loading"));
      return;
    }
    ++report.num_wanted;
    if (!text.ends_with(") loaded ok.") && ++report.num_missing == 1) {
      report.first_missing = name_ + (reason_.empty() ? "" : ": " + reason_);
    }
    name_.clear();
    reason_.clear();
  }

  std::string folder_;
  std::string name_;
  std::string reason_;
};

}  // namespace

TextureReport report_textures(const std::vector<std::string>& lines, const std::string& folder) {
  TextureLines reader(folder);
  for (const std::string& line : lines) reader.read(line);
  return reader.report;
}

}  // namespace viewer

#include "text/charset.h"

#include <tinyxml2.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace orv::detail {

namespace {

using tinyxml2::XMLElement;

constexpr std::size_t MAX_NAME = 64;
constexpr std::size_t MAX_FILE_NAME = sizeof(Charset::image_filename) - 1;

bool is_named(const XMLElement& element, const char* name) {
  return std::strncmp(element.Name(), name, MAX_NAME) == 0;
}

/// A decimal number behind blanks, and where it ends; null when there is none. What leaves an int
/// becomes the nearest one.
const char* scan_int(const char* text, int* value) {
  char* end = nullptr;
  const long long number = std::strtoll(text, &end, 10);
  if (end == text) return nullptr;
  *value = static_cast<int>(std::clamp<long long>(number, INT_MIN, INT_MAX));
  return end;
}

/// Numbers with commas in between; what is missing stays as it was.
void scan_list(const char* text, int* values, int count) {
  for (int i = 0; text && i < count; ++i) {
    text = scan_int(text, values + i);
    if (text && *text != ',') return;
    if (text) ++text;
  }
}

void read_list(const XMLElement& element, const char* name, int* values, int count) {
  if (const char* text = element.Attribute(name)) scan_list(text, values, count);
}

void read_number(const XMLElement& element, const char* name, unsigned short* value) {
  const char* text = element.Attribute(name);
  int number = 0;
  // Negative ones wrap.
  if (text && scan_int(text, &number)) *value = static_cast<unsigned short>(number);
}

void read_page(const XMLElement& pages, Charset* charset) {
  if (charset->image_filename[0] != 0) return;
  const XMLElement* page = pages.FirstChildElement();
  const char* file = page && is_named(*page, "page") ? page->Attribute("file") : nullptr;
  if (!file) return;
  std::memcpy(charset->image_filename, file, strnlen(file, MAX_FILE_NAME));
}

void read_char(const XMLElement& element, Charset* charset) {
  int id = 0;
  if (const char* text = element.Attribute("id")) scan_int(text, &id);
  if (id < 0 || id >= Charset::NUM_CHARS) return;
  CharsetChar& row = charset->chars[id];
  read_number(element, "x", &row.x);
  read_number(element, "y", &row.y);
  read_number(element, "width", &row.width);
  read_number(element, "height", &row.height);
  read_number(element, "page", &row.page);
  read_number(element, "xadvance", &row.xadvance);
  read_number(element, "xoffset", &row.xoffset);
  read_number(element, "yoffset", &row.yoffset);
}

void read_section(const XMLElement& section, Charset* charset) {
  if (is_named(section, "info")) {
    read_list(section, "padding", charset->padding, 4);
    read_list(section, "spacing", charset->spacing, 2);
  } else if (is_named(section, "common")) {
    read_number(section, "scaleW", &charset->scale_w);
    read_number(section, "scaleH", &charset->scale_h);
    read_number(section, "base", &charset->base);
    read_number(section, "lineHeight", &charset->line_height);
  } else if (is_named(section, "pages")) {
    read_page(section, charset);
  } else if (is_named(section, "chars")) {
    for (const XMLElement* each = section.FirstChildElement(); each;
         each = each->NextSiblingElement()) {
      if (is_named(*each, "char")) read_char(*each, charset);
    }
  }
}

}  // namespace

std::unique_ptr<Charset> read_charset(const char* xml, const char** fault) {
  tinyxml2::XMLDocument document;
  const XMLElement* root = nullptr;
  if (document.Parse(xml) == tinyxml2::XML_SUCCESS) root = document.FirstChildElement();
  if (!root) {
    *fault = "not the XML form of a BMFont file";
    return nullptr;
  }
  auto charset = std::make_unique<Charset>();
  for (; root; root = root->NextSiblingElement()) {
    for (const XMLElement* section = root->FirstChildElement(); section;
         section = section->NextSiblingElement()) {
      read_section(*section, charset.get());
    }
  }
  return charset;
}

}  // namespace orv::detail

// Fonts whose characters are all filled boxes of one size. A face is a text "BOXES first last": the
// numbers of the first and the last character that it has. At a height of h pixels a character is
// h / 2 wide and reaches from h / 4 below the base line to 3 h / 4 above it.

#include <orv/geometry/mesh.h>
#include <orv/gpu/texture.h>
#include <orv/math/vec2.h>
#include <orv/math/vec4.h>
#include <orv/services/freetype_gl_plugin_interface.h>
#include <orv/text/font.h>

#include <cmath>
#include <string>

#include "module_support.h"

namespace {

using orv::FtglFontMetrics;
using orv::FtglGlyphMetrics;
using orv::vec2;
using orv::vec4;

constexpr unsigned int MAX_FILE_SIZE = 1u << 20;

/// Takes the next character off a text; 0 at its end.
unsigned int next_character(const char** text) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(*text);
  if (!bytes[0]) return 0;
  int length = bytes[0] >= 0xF0 ? 4 : bytes[0] >= 0xE0 ? 3 : bytes[0] >= 0xC0 ? 2 : 1;
  unsigned int character = length == 1 ? bytes[0] : bytes[0] & (0xFFu >> (length + 1));
  for (int i = 1; i < length; ++i) {
    if ((bytes[i] & 0xC0) != 0x80) {
      length = 1;
      character = bytes[0];
      break;
    }
    character = character << 6 | (bytes[i] & 0x3Fu);
  }
  *text += length;
  return character;
}

struct Box {
  float x, y;
  unsigned int cell;
  vec4 color;
};

struct Face {
  unsigned int first = 0, last = 0;
  float height = 0.0f;
  vec4 color = vec4(1, 1, 1, 1);
  float outline = 0.0f;
  bool kerning = true;
  unsigned int atlas_width = 0, atlas_height = 0, channels = 1;
  std::vector<unsigned char> pixels;
  std::vector<unsigned int> cached;  ///< characters by cell
  orv::Texture* texture = nullptr;
  bool is_dirty = true;
  orv::Mesh* mesh = nullptr;
  std::vector<Box> queue;

  float advance() const { return height / 2.0f; }
  unsigned int cell_width() const { return static_cast<unsigned int>(std::ceil(advance())); }
  unsigned int cell_height() const { return static_cast<unsigned int>(std::ceil(height)); }
  unsigned int cells_in_row() const { return atlas_width / cell_width(); }
  unsigned int num_cells() const { return cells_in_row() * (atlas_height / cell_height()); }
  bool has(unsigned int character) const { return character >= first && character <= last; }

  void make_atlas(unsigned int width, unsigned int height_, unsigned int num_channels) {
    atlas_width = width;
    atlas_height = height_;
    channels = num_channels;
    pixels.assign(std::size_t{width} * height_ * num_channels, 0);
    cached.clear();
    queue.clear();
    is_dirty = true;
  }
  /// Cell of a character, drawn when it is new; -1 when the atlas is full.
  int cache(unsigned int character) {
    if (!has(character)) character = first;
    for (std::size_t i = 0; i < cached.size(); ++i) {
      if (cached[i] == character) return static_cast<int>(i);
    }
    if (cached.size() >= num_cells()) return -1;
    cached.push_back(character);
    draw_cell(static_cast<unsigned int>(cached.size() - 1));
    return static_cast<int>(cached.size() - 1);
  }
  void draw_cell(unsigned int cell) {
    const std::size_t row_size = std::size_t{atlas_width} * channels;
    const std::size_t left = std::size_t{cell % cells_in_row()} * cell_width() * channels;
    const std::size_t below = std::size_t{cell / cells_in_row()} * cell_height();
    for (std::size_t y = 0; y < cell_height(); ++y) {
      std::memset(&pixels[(below + y) * row_size + left], 255, cell_width() * channels);
    }
    is_dirty = true;
  }
  /// Edges of a cell: left, lower, right, upper, from 0 to 1.
  void find_cell(unsigned int cell, float edges[4]) const {
    const auto w = static_cast<float>(atlas_width), h = static_cast<float>(atlas_height);
    edges[0] = static_cast<float>(cell % cells_in_row() * cell_width()) / w;
    edges[1] = static_cast<float>(cell / cells_in_row() * cell_height()) / h;
    edges[2] = edges[0] + static_cast<float>(cell_width()) / w;
    edges[3] = edges[1] + static_cast<float>(cell_height()) / h;
  }
  float kern(unsigned int left, unsigned int right) const {
    return kerning && left == 'A' && right == 'V' ? -height / 8.0f : 0.0f;
  }
};

class BoxFonts : public orv::test::Module<orv::FreeTypeGLPluginInterface> {
 public:
  BoxFonts() : Module("test fonts") {}
  ~BoxFonts() override { free_all(); }

  bool initialize() override { return Plugin::initialize(); }
  bool terminate() override {
    free_all();
    return Plugin::terminate();
  }
  bool start() override { return is_initialized() && Plugin::start(); }
  bool stop() override { return Plugin::stop(); }

  bool load_face(orv::Font* font, const char* filename, float pixel_height) override {
    std::FILE* file = font && filename ? std::fopen(filename, "rb") : nullptr;
    if (!file) return false;
    std::string text(MAX_FILE_SIZE, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    return load_face_from_memory(font, text.data(), static_cast<unsigned int>(text.size()),
                                 pixel_height);
  }
  bool load_face_from_memory(orv::Font* font, const void* data, unsigned int size,
                             float pixel_height) override {
    if (!font || !data || size > MAX_FILE_SIZE) return false;
    if (!is_initialized() || !(pixel_height > 0.0f && pixel_height <= 512.0f)) return false;
    const std::string text(static_cast<const char*>(data), size);
    auto face = std::make_unique<Face>();
    if (std::sscanf(text.c_str(), "BOXES %u %u", &face->first, &face->last) != 2) return false;
    face->height = pixel_height;
    face->make_atlas(512, 512, 1);
    free_face(nullptr, font);
    font->set_ftgl_data(face.release());
    fonts_.push_back(font);
    return true;
  }
  bool free_face(orv::Renderer* renderer, orv::Font* font) override {
    const std::unique_ptr<Face> face(face_of(font));
    if (!face) return false;
    if (face->texture) face->texture->release(renderer, nullptr);
    if (face->mesh) face->mesh->release(renderer, nullptr);
    font->set_ftgl_data(nullptr);
    fonts_.erase(std::find(fonts_.begin(), fonts_.end(), font));
    return true;
  }
  bool set_pixel_height(orv::Font* font, float pixel_height) override {
    Face* face = face_of(font);
    if (!face || !(pixel_height > 0.0f && pixel_height <= 512.0f)) return false;
    face->height = pixel_height;
    face->make_atlas(face->atlas_width, face->atlas_height, face->channels);
    return true;
  }
  float get_pixel_height(orv::Font* font) override {
    const Face* face = face_of(font);
    return face ? face->height : 0.0f;
  }

  bool get_font_metrics(orv::Font* font, FtglFontMetrics* metrics) override {
    const Face* face = face_of(font);
    if (!face || !metrics) return false;
    metrics->ascender = face->height * 0.75f;
    metrics->descender = face->height * -0.25f;
    metrics->line_height = face->height;
    return true;
  }
  bool get_glyph_metrics(orv::Font* font, unsigned int character,
                         FtglGlyphMetrics* metrics) override {
    const Face* face = face_of(font);
    if (!face || !metrics || !face->has(character)) return false;
    *metrics = {};
    metrics->advance = metrics->width = face->advance();
    metrics->offset_y = face->height * 0.75f;
    metrics->height = face->height;
    const auto cell = std::find(face->cached.begin(), face->cached.end(), character);
    if (cell == face->cached.end()) return true;
    float edges[4];
    face->find_cell(static_cast<unsigned int>(cell - face->cached.begin()), edges);
    metrics->u0 = edges[0];
    metrics->v0 = edges[1];
    metrics->u1 = edges[2];
    metrics->v1 = edges[3];
    return true;
  }
  float get_kerning(orv::Font* font, unsigned int left, unsigned int right) override {
    const Face* face = face_of(font);
    return face ? face->kern(left, right) : 0.0f;
  }
  bool measure_text(orv::Font* font, const char* text, float* width, float* height) override {
    const Face* face = face_of(font);
    if (!face || !text) return false;
    float widest = 0.0f;
    vec2 pen(0, 0);
    walk(*face, text, &pen, [&](unsigned int, const vec2& at) {
      widest = std::max(widest, at.x + face->advance());
      return true;
    });
    orv::test::tell(width, widest);
    orv::test::tell(height, *text ? face->height - pen.y : 0.0f);
    return true;
  }

  bool set_color(orv::Font* font, const vec4& color) override {
    Face* face = face_of(font);
    if (!face) return false;
    face->color = color;
    return true;
  }
  bool set_outline(orv::Font* font, float thickness, const vec4&) override {
    // Boxes have no outline; none is the one wish that can be met.
    return face_of(font) && thickness == 0.0f;
  }
  bool set_kerning(orv::Font* font, bool state) override {
    Face* face = face_of(font);
    if (!face) return false;
    face->kerning = state;
    return true;
  }

  bool create_atlas(orv::Font* font, unsigned int width, unsigned int height,
                    unsigned int channels) override {
    Face* face = face_of(font);
    if (!face || width < 16 || width > 8192 || height < 16 || height > 8192) return false;
    if (channels != 1 && channels != 3 && channels != 4) return false;
    face->make_atlas(width, height, channels);
    if (face->texture) face->texture->release(nullptr, nullptr);
    face->texture = nullptr;
    return true;
  }
  bool cache_glyphs(orv::Font* font, const char* characters) override {
    Face* face = face_of(font);
    if (!face || !characters) return false;
    while (const unsigned int character = next_character(&characters)) {
      if (face->cache(character) < 0) return false;
    }
    return true;
  }
  bool upload_atlas(orv::Renderer* renderer, orv::Font* font) override {
    Face* face = face_of(font);
    if (!face) return false;
    if (!face->texture && !make_texture(*face)) return false;
    if (face->is_dirty) write_texture(*face);
    // An upload leaves alone what is on the GPU already; binding brings the new pixels there.
    return !renderer || face->texture->bind(renderer, 0);
  }
  orv::Texture* get_atlas_texture(orv::Font* font) override {
    const Face* face = face_of(font);
    return face ? face->texture : nullptr;
  }

  bool clear_text(orv::Font* font) override {
    Face* face = face_of(font);
    if (!face) return false;
    face->queue.clear();
    return true;
  }
  bool add_text(orv::Font* font, vec2* pen, const char* text) override {
    Face* face = face_of(font);
    if (!face || !pen || !text) return false;
    const std::size_t num_boxes = face->queue.size();
    vec2 end = *pen;
    const bool fits = walk(*face, text, &end, [&](unsigned int character, const vec2& at) {
      const int cell = face->cache(character);
      if (cell < 0) return false;
      face->queue.push_back({at.x, at.y, static_cast<unsigned int>(cell), face->color});
      return true;
    });
    if (!fits) {
      face->queue.erase(face->queue.begin() + static_cast<std::ptrdiff_t>(num_boxes),
                        face->queue.end());
      return false;
    }
    *pen = end;
    return true;
  }
  bool render_text(orv::Renderer* renderer, orv::Font* font) override {
    Face* face = face_of(font);
    if (!renderer || !face || !is_started()) return false;
    if (face->queue.empty()) return true;
    if (!upload_atlas(renderer, font) || !build_mesh(renderer, *face)) return false;
    face->mesh->set_transform(font->get_absolute_transform());
    face->mesh->render(renderer, nullptr);
    return true;
  }
  bool draw_text(orv::Renderer* renderer, orv::Font* font, float x, float y,
                 const char* text) override {
    Face* face = face_of(font);
    if (!renderer || !face || !text || !is_started()) return false;
    std::vector<Box> kept;
    kept.swap(face->queue);
    vec2 pen(x, y);
    const bool drawn = add_text(font, &pen, text) && render_text(renderer, font);
    kept.swap(face->queue);
    return drawn;
  }

 private:
  static Face* face_of(orv::Font* font) {
    return font ? static_cast<Face*>(font->get_ftgl_data()) : nullptr;
  }
  void free_all() {
    while (!fonts_.empty()) free_face(nullptr, fonts_.back());
  }

  /// Tells the place of each character of a text until the work is false; the pen ends behind it.
  template <class Work>
  static bool walk(const Face& face, const char* text, vec2* pen, Work work) {
    const float left = pen->x;
    unsigned int before = 0;
    while (const unsigned int character = next_character(&text)) {
      if (character == '\n') {
        *pen = vec2(left, pen->y - face.height);
      } else {
        pen->x += face.kern(before, character);
        if (!work(character, *pen)) return false;
        pen->x += face.advance();
      }
      before = character;
    }
    return true;
  }

  static bool make_texture(Face& face) {
    constexpr orv::PIXEL_FORMAT formats[] = {orv::PF_UNKNOWN, orv::PF_R_U8, orv::PF_UNKNOWN,
                                             orv::PF_RGB_U8, orv::PF_RGBA_U8};
    auto* texture = new orv::Texture;
    texture->add_ref();
    if (!texture->create_2d(face.atlas_width, face.atlas_height, formats[face.channels], true)) {
      texture->release(nullptr, nullptr);
      return false;
    }
    texture->gen_mipmaps(false);
    face.texture = texture;
    face.is_dirty = true;
    return true;
  }
  static void write_texture(Face& face) {
    if (face.channels == 1) face.texture->update_pixmap_r_u8(face.pixels.data());
    if (face.channels == 3) face.texture->update_pixmap_rgb_u8(face.pixels.data());
    if (face.channels == 4) face.texture->update_pixmap_rgba_u8(face.pixels.data());
    face.is_dirty = false;
  }

  /// A rectangle of two triangles for each box of the queue.
  static bool build_mesh(orv::Renderer* renderer, Face& face) {
    if (face.mesh) face.mesh->release(renderer, nullptr);
    face.mesh = new orv::Mesh;
    face.mesh->add_ref();
    const auto count = static_cast<unsigned int>(face.queue.size());
    face.mesh->set_vertex_alloc_params_num_vertices(count * 4);
    if (!face.mesh->alloc_vertex_data() || !face.mesh->alloc_face_data(count * 2, false)) {
      return false;
    }
    for (unsigned int i = 0; i < count; ++i) write_box(face, i);
    return true;
  }
  static void write_box(const Face& face, unsigned int i) {
    const Box& box = face.queue[i];
    float edges[4];
    face.find_cell(box.cell, edges);
    const float low = box.y - face.height * 0.25f;
    for (unsigned int corner = 0; corner < 4; ++corner) {
      const bool right = corner == 1 || corner == 2;
      const bool upper = corner >= 2;
      face.mesh->set_vertex_position(i * 4 + corner,
                                     vec4(box.x + (right ? face.advance() : 0.0f),
                                          low + (upper ? face.height : 0.0f), 0.0f, 1.0f));
      face.mesh->set_vertex_color(i * 4 + corner, box.color);
      face.mesh->set_vertex_uv(i * 4 + corner,
                               vec4(edges[right ? 2 : 0], edges[upper ? 3 : 1], 0.0f, 1.0f), 0);
    }
    face.mesh->set_face_indexes(i * 2, i * 4, i * 4 + 1, i * 4 + 2);
    face.mesh->set_face_indexes(i * 2 + 1, i * 4, i * 4 + 2, i * 4 + 3);
  }

  std::vector<orv::Font*> fonts_;  ///< those with a face
};

}  // namespace

ORV_TEST_MODULE(BoxFonts)

// NanoVG itself, compiled from its installed sources, and its drawing through the renderer's tables
// of functions. Nothing of it is seen outside of the library.
#include <orv/core/log_mgr.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "render/opengl/renderer_opengl.h"
#include "render/opengl/vector_state.h"
#include "render/vector_context.h"
#include "text/truetype_check.h"

namespace orv::detail {
namespace {

// What NanoVG draws with at this moment.
GlVectorTables tables;

// NanoVG prints what its shaders suffer from.
int report(const char* format, ...) ORV_PRINTF_LIKE(1, 2);
int report(const char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof(text), format, arguments);
  va_end(arguments);
  LogMgr::get().tracef_debug("NanoVG - %s", text);
  return length;
}

// Room for the outline of one glyph, which add_vector_font measures.
constexpr int GLYPH_SCRATCH = 4 << 20;

}  // namespace
}  // namespace orv::detail

// ---- NanoVG ----------------------------------------------------------------------------------

#define ORV_NANOVG_CORE (*orv::detail::tables.core)
#define ORV_NANOVG_GL (*orv::detail::tables.gl)
#define ORV_NANOVG_MORE (*orv::detail::tables.more)
#include "render/opengl/nanovg_gl_names.h"

#define printf orv::detail::report
// Half-made contexts are freed by what is in them.
#define malloc(size) std::calloc(1, size)
// A violated assumption ends in an empty glyph, never in an abort.
#define STBTT_assert(x) ((void)(x))
#define STBTT_STATIC
#define FONS_SCRATCH_BUF_SIZE orv::detail::GLYPH_SCRATCH
#define NVG_NO_STB
#include <nanovg.c>
#define NANOVG_GL3_IMPLEMENTATION 1
#include <nanovg_gl.h>
#undef malloc
#undef printf

// ---- contexts --------------------------------------------------------------------------------

namespace orv::detail {

/// A context of NanoVG's back end; NanoVG frees it with free().
struct GlVectorContext : GLNVGcontext {
  RendererOpenGL* renderer;  ///< null after that has stopped
  unsigned int context_id;   ///< of the OpenGL context that the objects were made in
  GlVectorFunctions more;
};

struct VectorContextAccess {
  static GlProcAddress source(const RendererOpenGL& renderer) {
    return renderer.find_proc_address();
  }
  static bool has_context(const RendererOpenGL& renderer) {
    return renderer.core_functions().glGetString && renderer.has_current_context();
  }
  static unsigned int context_id(const RendererOpenGL& renderer) {
    return renderer.current_context_id();
  }
};

namespace {

/// All contexts, to part them from a renderer that stops. Never freed: hosts may end without an end
/// of the contexts.
std::vector<NVGcontext*>& all_contexts() {
  static auto& contexts = *new std::vector<NVGcontext*>;
  return contexts;
}

GlVectorContext* back_end_of(const NVGcontext* context) {
  return static_cast<GlVectorContext*>(
      static_cast<GLNVGcontext*>(nvgInternalParams(const_cast<NVGcontext*>(context))->userPtr));
}

GlVectorContext* as_context(void* pointer) {
  return static_cast<GlVectorContext*>(static_cast<GLNVGcontext*>(pointer));
}

bool is_usable(const GlVectorContext& context) {
  const RendererOpenGL* renderer = context.renderer;
  return renderer && VectorContextAccess::has_context(*renderer) &&
         VectorContextAccess::context_id(*renderer) == context.context_id;
}

/// Leads NanoVG's calls to the functions of a context for the length of a block.
class Drawing {
 public:
  explicit Drawing(const GlVectorContext& context) : previous_(tables) {
    const RendererOpenGL& renderer = *context.renderer;
    tables = {&renderer.core_functions(), &renderer.gl(), &context.more,
              renderer.is_core_context()};
  }
  ~Drawing() { tables = previous_; }
  Drawing(const Drawing&) = delete;
  Drawing& operator=(const Drawing&) = delete;

 private:
  GlVectorTables previous_;
};

// ---- what NanoVG asks of its back end ----

int render_create(void* pointer, void* other) {
  const Drawing drawing(*as_context(pointer));
  const GlVectorUploadState state(tables);
  return glnvg__renderCreate(pointer, other);
}

int create_texture(void* pointer, int type, int width, int height, int flags,
                   const unsigned char* data) {
  GlVectorContext* context = as_context(pointer);
  if (is_usable(*context)) {
    const Drawing drawing(*context);
    const GlVectorUploadState state(tables);
    return glnvg__renderCreateTexture(pointer, type, width, height, flags, data);
  }
  // NanoVG goes on with the size of the texture even where there is none.
  GLNVGtexture* texture = glnvg__allocTexture(context);
  if (!texture) return 0;
  texture->width = width;
  texture->height = height;
  texture->type = type;
  texture->flags = flags;
  return texture->id;
}

int delete_texture(void* pointer, int image) {
  GlVectorContext* context = as_context(pointer);
  if (is_usable(*context)) {
    const Drawing drawing(*context);
    return glnvg__deleteTexture(context, image);
  }
  if (GLNVGtexture* texture = glnvg__findTexture(context, image)) texture->tex = 0;
  return glnvg__deleteTexture(context, image);
}

int update_texture(void* pointer, int image, int x, int y, int width, int height,
                   const unsigned char* data) {
  if (!is_usable(*as_context(pointer))) return 0;
  const Drawing drawing(*as_context(pointer));
  const GlVectorUploadState state(tables);
  return glnvg__renderUpdateTexture(pointer, image, x, y, width, height, data);
}

int get_texture_size(void* pointer, int image, int* width, int* height) {
  // NanoVG does not look at the result.
  *width = *height = NVG_INIT_FONTIMAGE_SIZE;
  return glnvg__renderGetTextureSize(pointer, image, width, height);
}

// Text without a glyph has no triangles, and would be copied to vertices that are not there yet.
void render_triangles(void* pointer, NVGpaint* paint, NVGcompositeOperationState operation,
                      NVGscissor* scissor, const NVGvertex* vertices, int count, float fringe) {
  if (count <= 0) return;
  glnvg__renderTriangles(pointer, paint, operation, scissor, vertices, count, fringe);
}

void flush(void* pointer) {
  const GlVectorContext& context = *as_context(pointer);
  const bool usable = is_usable(context);
  if (context.ncalls == 0 || !usable) {
    if (!usable) LogMgr::get().tracef_debug("NanoVG - frame dropped: its context is not current");
    glnvg__renderCancel(pointer);
    return;
  }
  const Drawing drawing(context);
  const GlVectorFrameState state(tables);
  glnvg__renderFlush(pointer);
}

NVGparams back_end_params(GlVectorContext* context, int flags) {
  NVGparams params = {};
  params.userPtr = static_cast<GLNVGcontext*>(context);
  params.edgeAntiAlias = flags & NVG_ANTIALIAS ? 1 : 0;
  params.renderCreate = render_create;
  params.renderCreateTexture = create_texture;
  params.renderDeleteTexture = delete_texture;
  params.renderUpdateTexture = update_texture;
  params.renderGetTextureSize = get_texture_size;
  params.renderViewport = glnvg__renderViewport;
  params.renderCancel = glnvg__renderCancel;
  params.renderFlush = flush;
  params.renderFill = glnvg__renderFill;
  params.renderStroke = glnvg__renderStroke;
  params.renderTriangles = render_triangles;
  params.renderDelete = glnvg__renderDelete;
  return params;
}

// ---- start and end ----

/// Name of a function that NanoVG needs and the tables lack; null when all are there.
const char* find_missing_function() {
#define ORV_NANOVG_FUNCTION(name) \
  if (!name) return #name;
#include "render/opengl/nanovg_gl_functions.inc"
  return nullptr;
}

bool can_draw(GlVectorContext* context) {
  const RendererOpenGL& renderer = *context->renderer;
  if (!renderer.facts().is_version_at_least(3, 2)) {
    LogMgr::get().tracef_debug("NanoVG - needs OpenGL 3.2, this is %d.%d",
                               renderer.facts().version_major, renderer.facts().version_minor);
    return false;
  }
  const Drawing drawing(*context);
  const char* missing = find_missing_function();
  if (!context->more.fetch(VectorContextAccess::source(renderer), renderer.facts())) {
    missing = "a function for stencil or blending";
  }
  if (missing) LogMgr::get().tracef_debug("NanoVG - OpenGL lacks %s", missing);
  return missing == nullptr;
}

void delete_gpu_objects(GlVectorContext* context) {
  const Drawing drawing(*context);
  glnvg__deleteShader(&context->shader);
  glDeleteBuffers(1, &context->fragBuf);
  glDeleteBuffers(1, &context->vertBuf);
  glDeleteVertexArrays(1, &context->vertArr);
  const GLNVGtextureContext& textures = *context->textureContext;
  for (int i = 0; i < textures.ntextures; ++i) glDeleteTextures(1, &textures.textures[i].tex);
}

/// Takes the context from its renderer; NanoVG leaves OpenGL alone from then on.
void part_from_renderer(GlVectorContext* context) {
  if (!context->renderer) return;
  if (is_usable(*context)) delete_gpu_objects(context);
  context->renderer = nullptr;
  context->shader = GLNVGshader();
  context->fragBuf = context->vertBuf = context->vertArr = 0;
  const GLNVGtextureContext& textures = *context->textureContext;
  for (int i = 0; i < textures.ntextures; ++i) textures.textures[i].tex = 0;
}

}  // namespace

NVGcontext* create_vector_context(Renderer* renderer, int flags) {
  auto* opengl = dynamic_cast<RendererOpenGL*>(renderer);
  if (!opengl || !VectorContextAccess::has_context(*opengl)) {
    LogMgr::get().tracef_debug("NanoVG - no started OpenGL renderer with a current context");
    return nullptr;
  }
  void* memory = std::calloc(1, sizeof(GlVectorContext));
  if (!memory) return nullptr;
  auto* context = new (memory) GlVectorContext();
  context->flags = flags;
  context->renderer = opengl;
  context->context_id = VectorContextAccess::context_id(*opengl);
  if (!can_draw(context)) {
    std::free(memory);
    return nullptr;
  }
  // Frees the back end itself when it fails.
  NVGparams params = back_end_params(context, flags);
  const Drawing drawing(*context);
  NVGcontext* made = nvgCreateInternal(&params, nullptr);
  if (made) all_contexts().push_back(made);
  return made;
}

void destroy_vector_context(NVGcontext* context) {
  if (!context) return;
  std::vector<NVGcontext*>& contexts = all_contexts();
  contexts.erase(std::remove(contexts.begin(), contexts.end(), context), contexts.end());
  part_from_renderer(back_end_of(context));
  nvgDeleteInternal(context);
}

void release_vector_contexts(const Renderer* renderer) {
  for (const NVGcontext* context : all_contexts()) {
    GlVectorContext* back_end = back_end_of(context);
    if (back_end->renderer == renderer) part_from_renderer(back_end);
  }
}

bool has_vector_room(const NVGcontext* context) {
  const GlVectorContext& back_end = *back_end_of(context);
  return back_end.ncalls < 1 << 20 && back_end.nverts < 1 << 28;
}

float vector_text_pixels(const NVGcontext* context) {
  const NVGstate& state = context->states[context->nstates - 1];
  if (state.fontId < 0 || state.fontId >= context->fontContext->fs->nfonts) return 0.0f;
  NVGstate copy = state;
  return state.fontSize * nvg__getFontScale(&copy) * context->devicePxRatio;
}

void grow_vector_atlas(NVGcontext* context) {
  constexpr float BORDERS = 8.0f, LARGEST = NVG_MAX_FONTIMAGE_SIZE / 2;
  const float needed = std::min(vector_text_pixels(context) + BORDERS, LARGEST);
  for (;;) {
    int width = 0, height = 0;
    fonsGetAtlasSize(context->fontContext->fs, &width, &height);
    if (static_cast<float>(std::min(width, height)) >= needed || !nvg__allocTextAtlas(context))
      return;
  }
}

int vector_state_depth(const NVGcontext* context) { return context->nstates; }

bool read_vector_viewport(const NVGcontext* context, int* width, int* height) {
  const GlVectorContext& back_end = *back_end_of(context);
  if (!is_usable(back_end)) return false;
  const Drawing drawing(back_end);
  GLint viewport[4] = {};
  glGetIntegerv(GL_VIEWPORT, viewport);
  *width = viewport[2];
  *height = viewport[3];
  return true;
}

// ---- fonts -----------------------------------------------------------------------------------

namespace {

constexpr std::size_t MIN_FONT_FILE = 12;  // the head of the list of tables
constexpr std::size_t MAX_FONT_FILE = std::size_t{1} << 29;
// The rasteriser reads no further behind a place in the file, as its counts are 16 bits wide.
constexpr std::size_t FONT_PADDING = std::size_t{1} << 20;
// Of all glyphs together: far more than the largest fonts need.
constexpr std::int64_t MAX_FONT_WORK = std::int64_t{1} << 27;

/// A font as the rasteriser sees it, on room that ends as the drawing's does.
class FontProbe {
 public:
  explicit FontProbe(unsigned char* data, int start) : room_(GLYPH_SCRATCH) {
    stash_.scratch = room_.data();
    info_.userdata = &stash_;
    ready_ = stbtt_InitFont(&info_, data, start) != 0;
    info_.userdata = &stash_;
  }
  bool is_ready() const { return ready_; }
  int num_glyphs() const { return info_.numGlyphs; }

  /// Units of height that text size is measured by; 0 when lines have none.
  int height() const {
    int ascent = 0, descent = 0, gap = 0;
    stbtt_GetFontVMetrics(&info_, &ascent, &descent, &gap);
    return ascent + gap - descent > 0 ? ascent - descent : 0;
  }
  bool has_box(int glyph) const {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    return !stbtt_GetGlyphBox(&info_, glyph, &x0, &y0, &x1, &y1) || (x0 <= x1 && y0 <= y1);
  }
  /// Bytes that reading the outline takes.
  int read_outline(int glyph) {
    stash_.nscratch = 0;
    stbtt_vertex* vertices = nullptr;
    stbtt_GetGlyphShape(&info_, glyph, &vertices);
    return stash_.nscratch;
  }

 private:
  std::vector<unsigned char> room_;
  FONScontext stash_ = {};
  stbtt_fontinfo info_ = {};
  bool ready_ = false;
};

/// Bytes that drawing the outline takes at most, at the largest size. A curve is cut in two until
/// it is flat, so the parts grow with the root of its length.
double drawing_bytes(const GlyphOutline& outline, int height) {
  const double pixels = outline.length * MAX_VECTOR_TEXT_PIXELS / height;
  const double parts = outline.points * 4.0 + 2.0 * std::sqrt(outline.points * pixels / 1.4);
  constexpr double POINT_AND_EDGE = 8 + 20, SCANLINES_AND_HEAP = 1 << 17;
  return parts * POINT_AND_EDGE + SCANLINES_AND_HEAP;
}

/// Null when every glyph can be drawn safely, else what is wrong.
const char* find_glyph_fault(unsigned char* data, const TrueTypeCheck& check, int start) {
  FontProbe probe(data, start);
  if (!probe.is_ready() || probe.height() <= 0) return "no TrueType font";
  std::int64_t work = 0;
  for (int glyph = 0; glyph < probe.num_glyphs(); ++glyph) {
    GlyphOutline outline;
    if (!check.measure_glyph(glyph, &outline)) return "a spoiled glyph";
    if (!probe.has_box(glyph)) return "a glyph turned inside out";
    const int bytes = probe.read_outline(glyph);
    if (bytes + drawing_bytes(outline, probe.height()) > GLYPH_SCRATCH) return "too large a glyph";
    work += outline.points + bytes / 16;
    if (work > MAX_FONT_WORK) return "too many large glyphs";
  }
  return nullptr;
}

/// Renames an optional table of our copy, so that it is not found.
void hide_table(unsigned char* data, std::size_t size, std::size_t start, const char* tag) {
  const std::size_t count = std::size_t{data[start + 4]} << 8 | data[start + 5];
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t row = start + 12 + i * 16;
    if (row + 16 > size) return;
    if (std::memcmp(data + row, tag, 4) == 0) data[row] = '-';
  }
}

/// Null when the padded copy may be handed to NanoVG, else what is wrong.
const char* prepare_font(unsigned char* data, std::size_t size) {
  const int start = stbtt_GetFontOffsetForIndex(data, 0);
  if (start < 0 || static_cast<std::size_t>(start) >= size) return "no TrueType font";
  TrueTypeCheck check(data, size);
  if (const char* fault = check.open(static_cast<std::uint64_t>(start))) return fault;
  // Its offsets into offsets are trusted, and may lead anywhere.
  hide_table(data, size, static_cast<std::size_t>(start), "GPOS");
  const stbtt_uint32 kern = stbtt__find_table(data, static_cast<stbtt_uint32>(start), "kern");
  if (kern >= size) hide_table(data, size, static_cast<std::size_t>(start), "kern");
  return find_glyph_fault(data, check, start);
}

/// Says in the log why a font is not taken.
bool refuse_font(const char* name, const char* fault) {
  LogMgr::get().tracef_debug("NanoVG - font \"%s\": %s", name, fault);
  return false;
}

}  // namespace

bool add_vector_font(NVGcontext* context, const char* name,
                     const std::vector<unsigned char>& file) {
  if (!context || !name) return false;
  if (file.size() < MIN_FONT_FILE) return refuse_font(name, "too short a file");
  if (file.size() > MAX_FONT_FILE) return refuse_font(name, "too large a file");
  auto* copy = static_cast<unsigned char*>(std::calloc(1, file.size() + FONT_PADDING));
  if (!copy) return refuse_font(name, "out of memory");
  std::memcpy(copy, file.data(), file.size());
  const char* fault = prepare_font(copy, file.size());
  // NanoVG would find the first font of a name anyway, and keep both.
  if (fault || nvgFindFont(context, name) >= 0) {
    std::free(copy);
    return !fault || refuse_font(name, fault);
  }
  // Takes the copy in any case.
  return nvgCreateFontMem(context, name, copy, static_cast<int>(file.size()), 1) >= 0 ||
         refuse_font(name, "not taken by NanoVG");
}

}  // namespace orv::detail

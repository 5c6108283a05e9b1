#include "render/opengl/platform/system_font.h"

#include <fontconfig/fontconfig.h>

namespace orv::detail {
namespace {

const FcChar8* as_fc(const char* text) { return reinterpret_cast<const FcChar8*>(text); }

}  // namespace

FontFileName find_bold_font_file(const char* family) {
  FontFileName result;
  FcConfig* config = FcInitLoadConfigAndFonts();
  FcPattern* wanted = config && family ? FcPatternCreate() : nullptr;
  if (wanted) {
    FcPatternAddString(wanted, FC_FAMILY, as_fc(family));
    FcPatternAddInteger(wanted, FC_WEIGHT, FC_WEIGHT_BOLD);
    FcPatternAddString(wanted, FC_FONTFORMAT, as_fc("TrueType"));
    FcConfigSubstitute(config, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult status = FcResultNoMatch;
    FcPattern* match = FcFontMatch(config, wanted, &status);
    FcChar8* path = nullptr;
    if (match && FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch && path) {
      result.path = reinterpret_cast<const char*>(path);
      // The upper half of the number picks a named instance of a variable font.
      int index = 0;
      if (FcPatternGetInteger(match, FC_INDEX, 0, &index) == FcResultMatch) {
        result.face_index = index & 0xFFFF;
      }
    }
    if (match) FcPatternDestroy(match);
    FcPatternDestroy(wanted);
  }
  if (config) FcConfigDestroy(config);
  return result;
}

}  // namespace orv::detail

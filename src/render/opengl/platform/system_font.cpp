#include "render/opengl/platform/system_font.h"

#include <orv/core/log_mgr.h>

#include "core/late_library.h"

#include <fontconfig/fontconfig.h>

namespace orv::detail {
namespace {

struct FontconfigLibrary {
  OptionalLibrary library{ORV_FONTCONFIG_SONAME};
  ORV_LATE_FUNCTION(FcConfigDestroy);
  ORV_LATE_FUNCTION(FcConfigSubstitute);
  ORV_LATE_FUNCTION(FcDefaultSubstitute);
  ORV_LATE_FUNCTION(FcFontMatch);
  ORV_LATE_FUNCTION(FcInitLoadConfigAndFonts);
  ORV_LATE_FUNCTION(FcPatternAddInteger);
  ORV_LATE_FUNCTION(FcPatternAddString);
  ORV_LATE_FUNCTION(FcPatternCreate);
  ORV_LATE_FUNCTION(FcPatternDestroy);
  ORV_LATE_FUNCTION(FcPatternGetInteger);
  ORV_LATE_FUNCTION(FcPatternGetString);
};

const FcChar8* as_fc(const char* text) { return reinterpret_cast<const FcChar8*>(text); }

}  // namespace

FontFileName find_bold_font_file(const char* family) {
  FontFileName result;
  static const FontconfigLibrary fc;
  if (!fc.library.complete()) {
    LogMgr::get().tracef_debug("fontconfig: %s", fc.library.fault());
    return result;
  }
  FcConfig* config = fc.FcInitLoadConfigAndFonts();
  FcPattern* wanted = config && family ? fc.FcPatternCreate() : nullptr;
  if (wanted) {
    fc.FcPatternAddString(wanted, FC_FAMILY, as_fc(family));
    fc.FcPatternAddInteger(wanted, FC_WEIGHT, FC_WEIGHT_BOLD);
    fc.FcPatternAddString(wanted, FC_FONTFORMAT, as_fc("TrueType"));
    fc.FcConfigSubstitute(config, wanted, FcMatchPattern);
    fc.FcDefaultSubstitute(wanted);
    FcResult status = FcResultNoMatch;
    FcPattern* match = fc.FcFontMatch(config, wanted, &status);
    FcChar8* path = nullptr;
    if (match && fc.FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch && path) {
      result.path = reinterpret_cast<const char*>(path);
      // The upper half of the number picks a named instance of a variable font.
      int index = 0;
      if (fc.FcPatternGetInteger(match, FC_INDEX, 0, &index) == FcResultMatch) {
        result.face_index = index & 0xFFFF;
      }
    }
    if (match) fc.FcPatternDestroy(match);
    fc.FcPatternDestroy(wanted);
  }
  if (config) fc.FcConfigDestroy(config);
  return result;
}

}  // namespace orv::detail

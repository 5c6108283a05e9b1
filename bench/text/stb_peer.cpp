// The font library by itself.
#define STB_TRUETYPE_IMPLEMENTATION
#include <stb/stb_truetype.h>

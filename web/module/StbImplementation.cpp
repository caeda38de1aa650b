// Debian's libstb holds the image decoder and the font rasteriser that the library calls natively;
// the module compiles them from the same headers.
#define STB_IMAGE_IMPLEMENTATION
#include <stb_image.h>
#define STB_TRUETYPE_IMPLEMENTATION
#include <stb_truetype.h>

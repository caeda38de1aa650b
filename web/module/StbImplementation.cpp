// Debian's libstb holds the image decoder that the library calls natively; the module compiles it
// from the same headers.
#define STB_IMAGE_IMPLEMENTATION
#include <stb_image.h>

#pragma once
// Stands in for libepoxy's <epoxy/gl.h> when the library is built for WebGL 2: the entry points
// come straight from OpenGL ES 3.0, and the few desktop calls the device makes get their ES
// counterparts here.

#include <GLES3/gl3.h>

// The device asks for OpenGL 3.3; a WebGL 2 context offers all that the device uses of it.
inline int epoxy_gl_version() {
  return 33;
}

inline void glClearDepth(double depth) {
  glClearDepthf(static_cast<GLfloat>(depth));
}

inline void glDepthRange(double nearValue, double farValue) {
  glDepthRangef(static_cast<GLfloat>(nearValue), static_cast<GLfloat>(farValue));
}

// WebGL has no polygon modes: D3DFILL_POINT and D3DFILL_WIREFRAME draw solid there.
#ifndef GL_POINT
#define GL_POINT 0x1B00
#define GL_LINE 0x1B01
#define GL_FILL 0x1B02
#endif
inline void glPolygonMode(GLenum, GLenum) {}

#ifndef GL_BGRA
#define GL_BGRA 0x80E1
#endif

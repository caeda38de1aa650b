#pragma once
// The OpenGL entry points the device layer calls. On the desktop they come from libepoxy; a build
// for WebGL 2 (OSTREL_GL_ES) takes them straight from OpenGL ES 3.0 and gives the few desktop
// calls the device makes their ES counterparts here.

#ifdef OSTREL_GL_ES

#include <GLES3/gl3.h>

// The device asks for OpenGL 3.3; a WebGL 2 context offers all that the device uses of it.
inline int glVersion() {
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

#else

#include <epoxy/gl.h>

// The current context's version, 33 for OpenGL 3.3.
inline int glVersion() {
  return epoxy_gl_version();
}

#endif

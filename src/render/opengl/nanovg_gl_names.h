/// @file
/// Leads the names of OpenGL that NanoVG calls to tables of functions, so that the library is
/// linked to no OpenGL. Behind it, these names cannot be used for members of the tables.
///
/// Whoever includes it defines ORV_NANOVG_CORE and ORV_NANOVG_GL as the two tables, and
/// ORV_NANOVG_MORE as the third.
#pragma once

// ---- OpenGL 1.1 ----
#define glBindTexture ORV_NANOVG_CORE.glBindTexture
#define glColorMask ORV_NANOVG_CORE.glColorMask
#define glCullFace ORV_NANOVG_CORE.glCullFace
#define glDeleteTextures ORV_NANOVG_CORE.glDeleteTextures
#define glDisable ORV_NANOVG_CORE.glDisable
#define glDrawArrays ORV_NANOVG_CORE.glDrawArrays
#define glEnable ORV_NANOVG_CORE.glEnable
#define glFinish ORV_NANOVG_CORE.glFinish
#define glFrontFace ORV_NANOVG_CORE.glFrontFace
#define glGenTextures ORV_NANOVG_CORE.glGenTextures
#define glGetError ORV_NANOVG_CORE.glGetError
#define glGetIntegerv ORV_NANOVG_CORE.glGetIntegerv
#define glPixelStorei ORV_NANOVG_CORE.glPixelStorei
#define glStencilFunc ORV_NANOVG_CORE.glStencilFunc
#define glStencilMask ORV_NANOVG_CORE.glStencilMask
#define glStencilOp ORV_NANOVG_CORE.glStencilOp
#define glTexImage2D ORV_NANOVG_CORE.glTexImage2D
#define glTexParameteri ORV_NANOVG_CORE.glTexParameteri
#define glTexSubImage2D ORV_NANOVG_CORE.glTexSubImage2D

// ---- beyond ----
#define glActiveTexture ORV_NANOVG_GL.glActiveTexture
#define glAttachShader ORV_NANOVG_GL.glAttachShader
#define glBindAttribLocation ORV_NANOVG_GL.glBindAttribLocation
#define glBindBuffer ORV_NANOVG_GL.glBindBuffer
#define glBindBufferRange ORV_NANOVG_GL.glBindBufferRange
#define glBindVertexArray ORV_NANOVG_GL.glBindVertexArray
#define glBufferData ORV_NANOVG_GL.glBufferData
#define glCompileShader ORV_NANOVG_GL.glCompileShader
#define glCreateProgram ORV_NANOVG_GL.glCreateProgram
#define glCreateShader ORV_NANOVG_GL.glCreateShader
#define glDeleteBuffers ORV_NANOVG_GL.glDeleteBuffers
#define glDeleteProgram ORV_NANOVG_GL.glDeleteProgram
#define glDeleteShader ORV_NANOVG_GL.glDeleteShader
#define glDeleteVertexArrays ORV_NANOVG_GL.glDeleteVertexArrays
#define glDisableVertexAttribArray ORV_NANOVG_GL.glDisableVertexAttribArray
#define glEnableVertexAttribArray ORV_NANOVG_GL.glEnableVertexAttribArray
#define glGenBuffers ORV_NANOVG_GL.glGenBuffers
#define glGenVertexArrays ORV_NANOVG_GL.glGenVertexArrays
#define glGenerateMipmap ORV_NANOVG_GL.glGenerateMipmap
#define glGetProgramInfoLog ORV_NANOVG_GL.glGetProgramInfoLog
#define glGetProgramiv ORV_NANOVG_GL.glGetProgramiv
#define glGetShaderInfoLog ORV_NANOVG_GL.glGetShaderInfoLog
#define glGetShaderiv ORV_NANOVG_GL.glGetShaderiv
#define glGetUniformBlockIndex ORV_NANOVG_GL.glGetUniformBlockIndex
#define glGetUniformLocation ORV_NANOVG_GL.glGetUniformLocation
#define glLinkProgram ORV_NANOVG_GL.glLinkProgram
#define glShaderSource ORV_NANOVG_GL.glShaderSource
#define glStencilOpSeparate ORV_NANOVG_GL.glStencilOpSeparate
#define glUniform1i ORV_NANOVG_GL.glUniform1i
#define glUniform2fv ORV_NANOVG_GL.glUniform2fv
#define glUniformBlockBinding ORV_NANOVG_GL.glUniformBlockBinding
#define glUseProgram ORV_NANOVG_GL.glUseProgram
#define glVertexAttribPointer ORV_NANOVG_GL.glVertexAttribPointer
#define glBlendFuncSeparate ORV_NANOVG_MORE.glBlendFuncSeparate

#pragma once

/// The GL functions that GLEW reaches through pointers, as rows X(version, name without "gl"): the GL version
/// that brought the function, times 100, or 0 for an extension. The fixed-function vertex calls are left out.
// clang-format off
#define ZV_GLEW_CALLS(X) \
    /* 1.2 */ \
    X(120, CopyTexSubImage3D) X(120, DrawRangeElements) X(120, TexImage3D) X(120, TexSubImage3D) \
    /* 1.3 */ \
    X(130, ActiveTexture) X(130, ClientActiveTexture) X(130, CompressedTexImage1D) \
    X(130, CompressedTexImage2D) X(130, CompressedTexImage3D) X(130, CompressedTexSubImage1D) \
    X(130, CompressedTexSubImage2D) X(130, CompressedTexSubImage3D) X(130, GetCompressedTexImage) \
    X(130, SampleCoverage) \
    /* 1.4 */ \
    X(140, BlendColor) X(140, BlendEquation) X(140, BlendFuncSeparate) X(140, MultiDrawArrays) \
    X(140, MultiDrawElements) X(140, PointParameterf) X(140, PointParameterfv) X(140, PointParameteri) \
    X(140, PointParameteriv) \
    /* 1.5 */ \
    X(150, BeginQuery) X(150, BindBuffer) X(150, BufferData) X(150, BufferSubData) X(150, DeleteBuffers) \
    X(150, DeleteQueries) X(150, EndQuery) X(150, GenBuffers) X(150, GenQueries) \
    X(150, GetBufferParameteriv) X(150, GetBufferPointerv) X(150, GetBufferSubData) X(150, GetQueryObjectiv) \
    X(150, GetQueryObjectuiv) X(150, GetQueryiv) X(150, IsBuffer) X(150, IsQuery) X(150, MapBuffer) \
    X(150, UnmapBuffer) \
    /* 2.0 */ \
    X(200, AttachShader) X(200, BindAttribLocation) X(200, BlendEquationSeparate) X(200, CompileShader) \
    X(200, CreateProgram) X(200, CreateShader) X(200, DeleteProgram) X(200, DeleteShader) \
    X(200, DetachShader) X(200, DisableVertexAttribArray) X(200, DrawBuffers) \
    X(200, EnableVertexAttribArray) X(200, GetActiveAttrib) X(200, GetActiveUniform) \
    X(200, GetAttachedShaders) X(200, GetAttribLocation) X(200, GetProgramInfoLog) X(200, GetProgramiv) \
    X(200, GetShaderInfoLog) X(200, GetShaderSource) X(200, GetShaderiv) X(200, GetUniformLocation) \
    X(200, GetUniformfv) X(200, GetUniformiv) X(200, GetVertexAttribPointerv) X(200, GetVertexAttribdv) \
    X(200, GetVertexAttribfv) X(200, GetVertexAttribiv) X(200, IsProgram) X(200, IsShader) \
    X(200, LinkProgram) X(200, ShaderSource) X(200, StencilFuncSeparate) X(200, StencilMaskSeparate) \
    X(200, StencilOpSeparate) X(200, Uniform1f) X(200, Uniform1fv) X(200, Uniform1i) X(200, Uniform1iv) \
    X(200, Uniform2f) X(200, Uniform2fv) X(200, Uniform2i) X(200, Uniform2iv) X(200, Uniform3f) \
    X(200, Uniform3fv) X(200, Uniform3i) X(200, Uniform3iv) X(200, Uniform4f) X(200, Uniform4fv) \
    X(200, Uniform4i) X(200, Uniform4iv) X(200, UniformMatrix2fv) X(200, UniformMatrix3fv) \
    X(200, UniformMatrix4fv) X(200, UseProgram) X(200, ValidateProgram) X(200, VertexAttribPointer) \
    /* 2.1 */ \
    X(210, UniformMatrix2x3fv) X(210, UniformMatrix2x4fv) X(210, UniformMatrix3x2fv) \
    X(210, UniformMatrix3x4fv) X(210, UniformMatrix4x2fv) X(210, UniformMatrix4x3fv) \
    /* 3.0 */ \
    X(300, BeginConditionalRender) X(300, BeginTransformFeedback) X(300, BindFragDataLocation) \
    X(300, ClampColor) X(300, ClearBufferfi) X(300, ClearBufferfv) X(300, ClearBufferiv) \
    X(300, ClearBufferuiv) X(300, ColorMaski) X(300, Disablei) X(300, Enablei) X(300, EndConditionalRender) \
    X(300, EndTransformFeedback) X(300, GetBooleani_v) X(300, GetFragDataLocation) X(300, GetStringi) \
    X(300, GetTexParameterIiv) X(300, GetTexParameterIuiv) X(300, GetTransformFeedbackVarying) \
    X(300, GetUniformuiv) X(300, GetVertexAttribIiv) X(300, GetVertexAttribIuiv) X(300, IsEnabledi) \
    X(300, TexParameterIiv) X(300, TexParameterIuiv) X(300, TransformFeedbackVaryings) X(300, Uniform1ui) \
    X(300, Uniform1uiv) X(300, Uniform2ui) X(300, Uniform2uiv) X(300, Uniform3ui) X(300, Uniform3uiv) \
    X(300, Uniform4ui) X(300, Uniform4uiv) X(300, VertexAttribIPointer) X(300, BindVertexArray) \
    X(300, DeleteVertexArrays) X(300, GenVertexArrays) X(300, IsVertexArray) X(300, FlushMappedBufferRange) \
    X(300, MapBufferRange) \
    /* 3.1 */ \
    X(310, DrawArraysInstanced) X(310, DrawElementsInstanced) X(310, PrimitiveRestartIndex) \
    X(310, TexBuffer) X(310, BindBufferBase) X(310, BindBufferRange) X(310, GetActiveUniformBlockName) \
    X(310, GetActiveUniformBlockiv) X(310, GetActiveUniformName) X(310, GetActiveUniformsiv) \
    X(310, GetIntegeri_v) X(310, GetUniformBlockIndex) X(310, GetUniformIndices) X(310, UniformBlockBinding) \
    X(310, CopyBufferSubData) \
    /* 3.2 */ \
    X(320, FramebufferTexture) X(320, GetBufferParameteri64v) X(320, GetInteger64i_v) \
    X(320, DrawElementsBaseVertex) X(320, DrawElementsInstancedBaseVertex) \
    X(320, DrawRangeElementsBaseVertex) X(320, MultiDrawElementsBaseVertex) X(320, ClientWaitSync) \
    X(320, DeleteSync) X(320, FenceSync) X(320, GetInteger64v) X(320, GetSynciv) X(320, IsSync) \
    X(320, WaitSync) X(320, GetMultisamplefv) X(320, SampleMaski) X(320, TexImage2DMultisample) \
    X(320, TexImage3DMultisample) \
    /* 3.3 */ \
    X(330, VertexAttribDivisor) X(330, BindSampler) X(330, DeleteSamplers) X(330, GenSamplers) \
    X(330, GetSamplerParameterIiv) X(330, GetSamplerParameterIuiv) X(330, GetSamplerParameterfv) \
    X(330, GetSamplerParameteriv) X(330, IsSampler) X(330, SamplerParameterIiv) X(330, SamplerParameterIuiv) \
    X(330, SamplerParameterf) X(330, SamplerParameterfv) X(330, SamplerParameteri) \
    X(330, SamplerParameteriv) X(330, GetQueryObjecti64v) X(330, GetQueryObjectui64v) X(330, QueryCounter) \
    X(330, BindFragDataLocationIndexed) X(330, GetFragDataIndex) \
    /* 4.2 to 4.5, those that make objects or storage */ \
    X(450, TexStorage2D) X(450, BufferStorage) X(450, CreateBuffers) X(450, CreateFramebuffers) \
    X(450, CreateRenderbuffers) X(450, CreateSamplers) X(450, CreateTextures) X(450, CreateVertexArrays) \
    /* Frame buffer objects: contexts before 3.0 have them as ARB_framebuffer_object, so they count as an extension */ \
    X(0, BindFramebuffer) X(0, BindRenderbuffer) X(0, BlitFramebuffer) X(0, CheckFramebufferStatus) \
    X(0, DeleteFramebuffers) X(0, DeleteRenderbuffers) X(0, FramebufferRenderbuffer) \
    X(0, FramebufferTexture1D) X(0, FramebufferTexture2D) X(0, FramebufferTexture3D) \
    X(0, FramebufferTextureLayer) X(0, GenFramebuffers) X(0, GenRenderbuffers) X(0, GenerateMipmap) \
    X(0, GetFramebufferAttachmentParameteriv) X(0, GetRenderbufferParameteriv) X(0, IsFramebuffer) \
    X(0, IsRenderbuffer) X(0, RenderbufferStorage) X(0, RenderbufferStorageMultisample) \
    /* KHR_debug */ \
    X(0, DebugMessageCallback) X(0, DebugMessageControl) X(0, DebugMessageInsert) X(0, GetDebugMessageLog) \
    X(0, GetObjectLabel) X(0, GetObjectPtrLabel) X(0, ObjectLabel) X(0, ObjectPtrLabel) X(0, PopDebugGroup) \
    X(0, PushDebugGroup)

/// The functions of GL 1.1, which the library calls by name: rows X(result, name, parameters, arguments).
#define ZV_GL11_CALLS(X) \
    X(void, glBindTexture, (GLenum target, GLuint texture), (target, texture)) \
    X(void, glBlendFunc, (GLenum sfactor, GLenum dfactor), (sfactor, dfactor)) \
    X(void, glClear, (GLbitfield mask), (mask)) \
    X(void, glClearColor, (GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha), (red, green, blue, alpha)) \
    X(void, glClearDepth, (GLclampd depth), (depth)) \
    X(void, glClearStencil, (GLint s), (s)) \
    X(void, glColorMask, (GLboolean red, GLboolean green, GLboolean blue, GLboolean alpha), (red, green, blue, alpha)) \
    X(void, glCopyTexImage2D, (GLenum target, GLint level, GLenum internalFormat, GLint x, GLint y, GLsizei width, GLsizei height, GLint border), (target, level, internalFormat, x, y, width, height, border)) \
    X(void, glCopyTexSubImage2D, (GLenum target, GLint level, GLint xoffset, GLint yoffset, GLint x, GLint y, GLsizei width, GLsizei height), (target, level, xoffset, yoffset, x, y, width, height)) \
    X(void, glCullFace, (GLenum mode), (mode)) \
    X(void, glDeleteTextures, (GLsizei n, const GLuint *textures), (n, textures)) \
    X(void, glDepthFunc, (GLenum func), (func)) \
    X(void, glDepthMask, (GLboolean flag), (flag)) \
    X(void, glDepthRange, (GLclampd zNear, GLclampd zFar), (zNear, zFar)) \
    X(void, glDisable, (GLenum cap), (cap)) \
    X(void, glDrawArrays, (GLenum mode, GLint first, GLsizei count), (mode, first, count)) \
    X(void, glDrawBuffer, (GLenum mode), (mode)) \
    X(void, glDrawElements, (GLenum mode, GLsizei count, GLenum type, const void *indices), (mode, count, type, indices)) \
    X(void, glEnable, (GLenum cap), (cap)) \
    X(void, glFinish, (void), ()) \
    X(void, glFlush, (void), ()) \
    X(void, glFrontFace, (GLenum mode), (mode)) \
    X(void, glGenTextures, (GLsizei n, GLuint *textures), (n, textures)) \
    X(void, glGetBooleanv, (GLenum pname, GLboolean *params), (pname, params)) \
    X(void, glGetDoublev, (GLenum pname, GLdouble *params), (pname, params)) \
    X(GLenum, glGetError, (void), ()) \
    X(void, glGetFloatv, (GLenum pname, GLfloat *params), (pname, params)) \
    X(void, glGetIntegerv, (GLenum pname, GLint *params), (pname, params)) \
    X(void, glGetPointerv, (GLenum pname, void* *params), (pname, params)) \
    X(const GLubyte *, glGetString, (GLenum name), (name)) \
    X(void, glGetTexImage, (GLenum target, GLint level, GLenum format, GLenum type, void *pixels), (target, level, format, type, pixels)) \
    X(void, glGetTexLevelParameteriv, (GLenum target, GLint level, GLenum pname, GLint *params), (target, level, pname, params)) \
    X(void, glGetTexParameterfv, (GLenum target, GLenum pname, GLfloat *params), (target, pname, params)) \
    X(void, glGetTexParameteriv, (GLenum target, GLenum pname, GLint *params), (target, pname, params)) \
    X(void, glHint, (GLenum target, GLenum mode), (target, mode)) \
    X(GLboolean, glIsEnabled, (GLenum cap), (cap)) \
    X(GLboolean, glIsTexture, (GLuint texture), (texture)) \
    X(void, glLineWidth, (GLfloat width), (width)) \
    X(void, glLogicOp, (GLenum opcode), (opcode)) \
    X(void, glPixelStoref, (GLenum pname, GLfloat param), (pname, param)) \
    X(void, glPixelStorei, (GLenum pname, GLint param), (pname, param)) \
    X(void, glPointSize, (GLfloat size), (size)) \
    X(void, glPolygonMode, (GLenum face, GLenum mode), (face, mode)) \
    X(void, glPolygonOffset, (GLfloat factor, GLfloat units), (factor, units)) \
    X(void, glReadBuffer, (GLenum mode), (mode)) \
    X(void, glReadPixels, (GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void *pixels), (x, y, width, height, format, type, pixels)) \
    X(void, glScissor, (GLint x, GLint y, GLsizei width, GLsizei height), (x, y, width, height)) \
    X(void, glStencilFunc, (GLenum func, GLint ref, GLuint mask), (func, ref, mask)) \
    X(void, glStencilMask, (GLuint mask), (mask)) \
    X(void, glStencilOp, (GLenum fail, GLenum zfail, GLenum zpass), (fail, zfail, zpass)) \
    X(void, glTexImage1D, (GLenum target, GLint level, GLint internalformat, GLsizei width, GLint border, GLenum format, GLenum type, const void *pixels), (target, level, internalformat, width, border, format, type, pixels)) \
    X(void, glTexImage2D, (GLenum target, GLint level, GLint internalformat, GLsizei width, GLsizei height, GLint border, GLenum format, GLenum type, const void *pixels), (target, level, internalformat, width, height, border, format, type, pixels)) \
    X(void, glTexParameterf, (GLenum target, GLenum pname, GLfloat param), (target, pname, param)) \
    X(void, glTexParameterfv, (GLenum target, GLenum pname, const GLfloat *params), (target, pname, params)) \
    X(void, glTexParameteri, (GLenum target, GLenum pname, GLint param), (target, pname, param)) \
    X(void, glTexParameteriv, (GLenum target, GLenum pname, const GLint *params), (target, pname, params)) \
    X(void, glTexSubImage1D, (GLenum target, GLint level, GLint xoffset, GLsizei width, GLenum format, GLenum type, const void *pixels), (target, level, xoffset, width, format, type, pixels)) \
    X(void, glTexSubImage2D, (GLenum target, GLint level, GLint xoffset, GLint yoffset, GLsizei width, GLsizei height, GLenum format, GLenum type, const void *pixels), (target, level, xoffset, yoffset, width, height, format, type, pixels)) \
    X(void, glViewport, (GLint x, GLint y, GLsizei width, GLsizei height), (x, y, width, height)) \
    X(void, glDisableClientState, (GLenum array), (array)) \
    X(void, glEnableClientState, (GLenum array), (array)) \
    X(void, glVertexPointer, (GLint size, GLenum type, GLsizei stride, const void *pointer), (size, type, stride, pointer)) \
    X(void, glTexCoordPointer, (GLint size, GLenum type, GLsizei stride, const void *pointer), (size, type, stride, pointer)) \
    X(void, glColorPointer, (GLint size, GLenum type, GLsizei stride, const void *pointer), (size, type, stride, pointer)) \
    X(void, glPushAttrib, (GLbitfield mask), (mask)) \
    X(void, glPopAttrib, (void), ()) \
    X(void, glBegin, (GLenum mode), (mode)) \
    X(void, glEnd, (void), ())
// clang-format on

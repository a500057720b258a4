#pragma once

#include <GL/glcorearb.h>

namespace tarnwick::view {

/// Each function of OpenGL that is called: its name less `gl`, and the name as its type has it.
#define TARNWICK_GL_FUNCTIONS(F)                                    \
  F(ActiveTexture, ACTIVETEXTURE)                                   \
  F(AttachShader, ATTACHSHADER)                                     \
  F(BindBuffer, BINDBUFFER)                                         \
  F(BindFramebuffer, BINDFRAMEBUFFER)                               \
  F(BindRenderbuffer, BINDRENDERBUFFER)                             \
  F(BindSampler, BINDSAMPLER)                                       \
  F(BindTexture, BINDTEXTURE)                                       \
  F(BindVertexArray, BINDVERTEXARRAY)                               \
  F(BlendFuncSeparate, BLENDFUNCSEPARATE)                           \
  F(BlitFramebuffer, BLITFRAMEBUFFER)                               \
  F(BufferData, BUFFERDATA)                                         \
  F(BufferSubData, BUFFERSUBDATA)                                   \
  F(CheckFramebufferStatus, CHECKFRAMEBUFFERSTATUS)                 \
  F(Clear, CLEAR)                                                   \
  F(ClearColor, CLEARCOLOR)                                         \
  F(ClearDepth, CLEARDEPTH)                                         \
  F(ColorMask, COLORMASK)                                           \
  F(CompileShader, COMPILESHADER)                                   \
  F(CompressedTexImage2D, COMPRESSEDTEXIMAGE2D)                     \
  F(CreateProgram, CREATEPROGRAM)                                   \
  F(CreateShader, CREATESHADER)                                     \
  F(CullFace, CULLFACE)                                             \
  F(DeleteBuffers, DELETEBUFFERS)                                   \
  F(DeleteFramebuffers, DELETEFRAMEBUFFERS)                         \
  F(DeleteProgram, DELETEPROGRAM)                                   \
  F(DeleteRenderbuffers, DELETERENDERBUFFERS)                       \
  F(DeleteShader, DELETESHADER)                                     \
  F(DeleteTextures, DELETETEXTURES)                                 \
  F(DeleteVertexArrays, DELETEVERTEXARRAYS)                         \
  F(DepthFunc, DEPTHFUNC)                                           \
  F(DepthMask, DEPTHMASK)                                           \
  F(Disable, DISABLE)                                               \
  F(DrawArrays, DRAWARRAYS)                                         \
  F(Enable, ENABLE)                                                 \
  F(EnableVertexAttribArray, ENABLEVERTEXATTRIBARRAY)               \
  F(FramebufferRenderbuffer, FRAMEBUFFERRENDERBUFFER)               \
  F(FrontFace, FRONTFACE)                                           \
  F(GenBuffers, GENBUFFERS)                                         \
  F(GenFramebuffers, GENFRAMEBUFFERS)                               \
  F(GenRenderbuffers, GENRENDERBUFFERS)                             \
  F(GenTextures, GENTEXTURES)                                       \
  F(GenVertexArrays, GENVERTEXARRAYS)                               \
  F(GetError, GETERROR)                                             \
  F(GetIntegerv, GETINTEGERV)                                       \
  F(GetProgramInfoLog, GETPROGRAMINFOLOG)                           \
  F(GetProgramiv, GETPROGRAMIV)                                     \
  F(GetShaderInfoLog, GETSHADERINFOLOG)                             \
  F(GetShaderiv, GETSHADERIV)                                       \
  F(GetString, GETSTRING)                                           \
  F(GetStringi, GETSTRINGI)                                         \
  F(GetUniformLocation, GETUNIFORMLOCATION)                         \
  F(LineWidth, LINEWIDTH)                                           \
  F(LinkProgram, LINKPROGRAM)                                       \
  F(MultiDrawElements, MULTIDRAWELEMENTS)                           \
  F(PixelStorei, PIXELSTOREI)                                       \
  F(PointSize, POINTSIZE)                                           \
  F(PolygonMode, POLYGONMODE)                                       \
  F(PolygonOffset, POLYGONOFFSET)                                   \
  F(ReadPixels, READPIXELS)                                         \
  F(RenderbufferStorage, RENDERBUFFERSTORAGE)                       \
  F(RenderbufferStorageMultisample, RENDERBUFFERSTORAGEMULTISAMPLE) \
  F(ShaderSource, SHADERSOURCE)                                     \
  F(TexBuffer, TEXBUFFER)                                           \
  F(TexImage2D, TEXIMAGE2D)                                         \
  F(TexParameteri, TEXPARAMETERI)                                   \
  F(Uniform1f, UNIFORM1F)                                           \
  F(Uniform1i, UNIFORM1I)                                           \
  F(Uniform3f, UNIFORM3F)                                           \
  F(Uniform4f, UNIFORM4F)                                           \
  F(UniformMatrix4fv, UNIFORMMATRIX4FV)                             \
  F(UseProgram, USEPROGRAM)                                         \
  F(VertexAttribIPointer, VERTEXATTRIBIPOINTER)                     \
  F(VertexAttribPointer, VERTEXATTRIBPOINTER)                       \
  F(Viewport, VIEWPORT)

struct GlFunctions {
#define TARNWICK_GL_MEMBER(name, type) PFNGL##type##PROC name = nullptr;
  TARNWICK_GL_FUNCTIONS(TARNWICK_GL_MEMBER)
#undef TARNWICK_GL_MEMBER
};

}  // namespace tarnwick::view

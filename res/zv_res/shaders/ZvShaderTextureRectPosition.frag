// The texel itself, for a rectangle texture, which is addressed in texels.
//   colour = ZV_Tex0(v_texcoord * texSize)
// texSize: width and height of texture 0 in texels, each 1 or more.
// ZV_Tex0: the picture to show, a rectangle texture.
//
// Rectangle textures are part of GLSL 1.40; before, an extension brings them. Its directive is written
// with a space after the number sign, as GLSL allows: a file with the word unbroken gets no head and
// would have to choose one GLSL version for itself, while this one is for both.
#if __VERSION__ < 140
# extension GL_ARB_texture_rectangle : enable
#define textureRect texture2DRect
#else
#define textureRect texture
#endif

uniform sampler2DRect ZV_Tex0;
uniform vec2 texSize;

varying vec2 v_texcoord;

void main()
{
    gl_FragColor = textureRect(ZV_Tex0, v_texcoord * texSize);
}

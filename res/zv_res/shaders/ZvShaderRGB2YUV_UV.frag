// The chroma of a picture at half its width and height, U and V side by side: in red and green, or in luminance
// (red, green and blue) and alpha below GLSL 1.30, where a red-green texture is no matter of course.
//   (U, V) = second and third row of u_rgbToYuv * (mean of the r, g, b of 2 x 2 pixels, 1)
// ZvShaderRGB2YUV.frag tells where the matrix comes from. Only the target rounds to 8 bits. The texel (i, j) stands for
// the pixels 2i, 2i + 1 of the rows 2j, 2j + 1 of the luma texture, and so lies in the middle of them; the last column
// or row of an odd picture has no chroma of its own. The view port starts at 0, 0.
// Across the view port the texture coordinates run over the whole picture, whatever its turn, so their derivatives are
// the way to the next texel: that, and a few pixels at most, leads from a texel's own place to the four pixels.
// Uniforms:
//   u_rgbToYuv: the weights of r, g and b in its first three columns, the offsets in the last one.
//   u_pictureSize: width and height of the luma texture in pixels, 1 or more.
// ZV_Tex0: the picture. Cost: 4 fetches a texel.
uniform sampler2D ZV_Tex0;
uniform mat4 u_rgbToYuv;
uniform vec2 u_pictureSize;

varying vec2 v_texcoord;

void main()
{
    vec2 chromaSize = max(floor(u_pictureSize * 0.5), 1.0);
    vec2 texel = floor(gl_FragCoord.xy);

    // In pixels: the first and the last of the pair, seen from where the coordinates of this texel lie.
    vec2 here = (texel + 0.5) * u_pictureSize / chromaSize;
    vec2 first = 2.0 * texel + 0.5 - here;
    vec2 last = min(2.0 * texel + 1.5, u_pictureSize - 0.5) - here;

    vec2 right = dFdx(v_texcoord) * chromaSize.x / u_pictureSize.x;
    vec2 up = dFdy(v_texcoord) * chromaSize.y / u_pictureSize.y;
    vec3 mean = 0.25 * (texture2D(ZV_Tex0, v_texcoord + first.x * right + first.y * up).rgb
        + texture2D(ZV_Tex0, v_texcoord + last.x * right + first.y * up).rgb
        + texture2D(ZV_Tex0, v_texcoord + first.x * right + last.y * up).rgb
        + texture2D(ZV_Tex0, v_texcoord + last.x * right + last.y * up).rgb);
    vec2 uv = (u_rgbToYuv * vec4(mean, 1.0)).yz;
#if __VERSION__ >= 130
    gl_FragColor = vec4(uv, 0.0, 1.0);
#else
    gl_FragColor = uv.xxxy;
#endif
}

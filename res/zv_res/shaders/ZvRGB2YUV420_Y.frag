// The luma region of a packed 4:2:0 frame: each texel holds the luma of four pixels of a row, in red, green, blue and
// alpha, that is in the order of their bytes.
//   texel (x, row) = Y of the pixels 4x .. 4x + 3 of the picture's row `row`, counted from its top
//   Y = first row of u_rgbToYuv * (r, g, b, 1)
// ZvShaderRGB2YUV.frag tells where the matrix comes from. The lowest row of the region, which is read first, holds the
// picture's top row. Where the width is no multiple of 4 the last texel repeats the last pixel: nothing outside the
// picture is fetched. Pixels are fetched whole where the language can, so that no filter mixes in a neighbour.
// Uniforms:
//   u_rgbToYuv: the weights of r, g and b in its first three columns, the offsets in the last one.
//   u_PixelWidth, u_PixelHeight: 1 / width and 1 / height of the picture in pixels; the width is the step from one
//   pixel to the next.
// ZV_Tex0: the picture at full size, its bottom row first. Cost: 4 fetches a texel, 1 a pixel.
uniform sampler2D ZV_Tex0;
uniform mat4 u_rgbToYuv;
uniform float u_PixelWidth;
uniform float u_PixelHeight;

varying vec2 v_place;

const vec4 BYTES = vec4(0.0, 1.0, 2.0, 3.0);

float lumaAt(float column, float row)
{
#if __VERSION__ >= 130
    vec3 color = texelFetch(ZV_Tex0, ivec2(column, row), 0).rgb;
#else
    vec3 color = texture2D(ZV_Tex0, (vec2(column, row) + 0.5) * vec2(u_PixelWidth, u_PixelHeight)).rgb;
#endif
    return (u_rgbToYuv * vec4(color, 1.0)).x;
}

void main()
{
    vec2 size = floor(1.0 / vec2(u_PixelWidth, u_PixelHeight) + 0.5);
    vec2 place = floor(v_place);
    vec4 columns = min(4.0 * place.x + BYTES, size.x - 1.0);
    float row = size.y - 1.0 - place.y;
    gl_FragColor = vec4(lumaAt(columns.x, row), lumaAt(columns.y, row), lumaAt(columns.z, row),
        lumaAt(columns.w, row));
}

// Covers a region of a packed 4:2:0 frame: positions are clip coordinates.
//   gl_Position = u_ImageMatrix * a_position
//   v_place     = a_texcoord0 * (texels a row, rows)     (0, 0 at the lower left corner)
// The chroma region: half as many rows as the picture has, at least one.
// A row has a texel for every four pixels of the width, rounded up.
// Uniforms:
//   u_ImageMatrix: places the quad in the view port; the identity covers the region.
//   u_PixelWidth, u_PixelHeight: 1 / width and 1 / height of the picture in pixels.
attribute vec4 a_position;
attribute vec2 a_texcoord0;

uniform mat4 u_ImageMatrix;
uniform float u_PixelWidth;
uniform float u_PixelHeight;

varying vec2 v_place;

const float TEXEL_BYTES = 4.0;

void main()
{
    float width = floor(1.0 / u_PixelWidth + 0.5);
    float rows = max(floor(0.5 * floor(1.0 / u_PixelHeight + 0.5)), 1.0);
    gl_Position = u_ImageMatrix * a_position;
    v_place = a_texcoord0 * vec2(ceil(width / TEXEL_BYTES), rows);
}

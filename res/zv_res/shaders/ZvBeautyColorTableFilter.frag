// Brightens skin: mixes a picture with its colours in a lookup image; alpha passes through.
// The lookup image is a colour table of 512 x 512 texels: 64 levels a channel; one tile of 64 x 64 for each
// level of blue, 8 x 8 tiles in reading order from the first row on; in a tile red rises to the right and green
// row by row. Level i of a channel stands for i / LAST. Between levels the colour is interpolated linearly
// along all three channels:
//   level  = picture * LAST        low = floor(level)        high = min(low + 1, LAST)
//   colour = the eight entries at (low or high of r, g, b), weighted with fract(level)
//   result = mix(picture, colour, uniAlpha)
// Fetches: 1 of the picture, 8 of the lookup image, each in the middle of a texel, which any filter answers with just
// that texel. Left to interpolate, a filter has weights of 8 bits, and some renderers round its result to 8 bits,
// which shows as noise in smooth skin.
// Uniforms:
//   uniAlpha: 0 the picture, 1 the looked-up colour; others extrapolate.
// ZV_Tex0: the picture. ZV_Tex1: the lookup image, top row first, nearest, clamped; another size is stretched.
uniform sampler2D ZV_Tex0;
uniform sampler2D ZV_Tex1;
uniform float uniAlpha;

varying vec2 v_texcoord;

const float SIDE = 64.0;
const float TILES = 8.0;
const float LAST = SIDE - 1.0;

vec3 entry(vec2 texel)
{
    vec2 place = (texel + 0.5) / (SIDE * TILES);
    return texture2D(ZV_Tex1, place).rgb;
}

// Interpolates along red and green in the tile of one level of blue.
vec3 tileColor(vec2 low, vec2 high, float blue, vec2 part)
{
    float row = floor(blue / TILES);
    vec2 tile = vec2(blue - row * TILES, row) * SIDE;
    low += tile;
    high += tile;
    return mix(mix(entry(low), entry(vec2(high.x, low.y)), part.x),
               mix(entry(vec2(low.x, high.y)), entry(high), part.x), part.y);
}

vec3 tableColor(vec3 color)
{
    vec3 level = color * LAST;
    vec3 low = floor(level);
    vec3 high = min(low + 1.0, LAST);
    vec3 part = level - low;
    return mix(tileColor(low.rg, high.rg, low.b, part.rg), tileColor(low.rg, high.rg, high.b, part.rg), part.b);
}

void main()
{
    vec4 picture = texture2D(ZV_Tex0, v_texcoord);
    gl_FragColor = vec4(mix(picture.rgb, tableColor(picture.rgb), uniAlpha), picture.a);
}

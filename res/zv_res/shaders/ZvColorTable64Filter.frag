// Recolours a picture through a colour table of 64 x 64 texels; alpha passes through.
// Layout: 16 levels a channel; one tile of 16 x 16 for each level of blue, 4 x 4 tiles in reading order from
// the first row on; in a tile red rises to the right and green row by row. Level i of a channel stands for
// i / LAST. Between levels the colour is interpolated linearly along all three channels:
//   level  = picture * LAST        low = floor(level)        high = min(low + 1, LAST)
//   colour = the eight entries at (low or high of r, g, b), weighted with fract(level)
//   result = mix(picture, colour, intensity)
// An identity table gives back every 8-bit colour: its entries are exact, 17 steps apart.
// Fetches: 1 of the picture, 8 of the table, each in the middle of a texel, which any filter answers with just that
// texel. Left to interpolate, a filter has weights of 8 bits, and some renderers round its result to 8 bits,
// which is up to 1.6 steps off with steep tables.
// Uniforms:
//   intensity: 0 the picture, 1 the table's colour; others extrapolate.
//   image_direction: 0 the table's first row in memory is its top row (PNG files), 1 it is the bottom row.
// ZV_Tex0: the picture. ZV_Tex1: the table, nearest, clamped. One of another size is stretched to the layout.
uniform sampler2D ZV_Tex0;
uniform sampler2D ZV_Tex1;
uniform float intensity;
uniform int image_direction;

varying vec2 v_texcoord;

const float SIDE = 16.0;
const float TILES = 4.0;
const float LAST = SIDE - 1.0;

vec3 entry(vec2 texel)
{
    vec2 place = (texel + 0.5) / (SIDE * TILES);
    // The difference counts the rows from the other end.
    return texture2D(ZV_Tex1, vec2(place.x, abs(float(image_direction) - place.y))).rgb;
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
    gl_FragColor = vec4(mix(picture.rgb, tableColor(picture.rgb), intensity), picture.a);
}

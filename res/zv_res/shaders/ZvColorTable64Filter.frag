// Recolours a picture through a colour table of 64 x 64 texels; alpha passes through.
// Layout: 16 levels a channel; one tile of 16 x 16 for each level of blue, 4 x 4 tiles in reading order from
// the first row on; in a tile red rises to the right and green row by row. Level i of a channel stands for
// i / LAST. Between levels the colour is interpolated linearly along all three channels:
//   level  = picture * LAST        low = min(floor(level), LAST - 1)        part = level - low
//   colour = the eight entries at (low or low + 1 of r, g, b), each weighted with part or 1 - part
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
const float TEXEL = 1.0 / (SIDE * TILES);

// The four entries around a place in the tile of one level of blue.
vec3 tileColor(vec2 low, float blue, vec4 weights)
{
    float row = floor(blue / TILES);
    vec2 place = (low + vec2(blue - row * TILES, row) * SIDE + 0.5) * TEXEL;
    // With 1 the rows are counted from the other end.
    float direction = float(image_direction);
    place.y = abs(direction - place.y);
    vec2 next = vec2(TEXEL, TEXEL - 2.0 * TEXEL * direction);
    return texture2D(ZV_Tex1, place).rgb * weights.x
        + texture2D(ZV_Tex1, vec2(place.x + next.x, place.y)).rgb * weights.y
        + texture2D(ZV_Tex1, vec2(place.x, place.y + next.y)).rgb * weights.z
        + texture2D(ZV_Tex1, place + next).rgb * weights.w;
}

vec3 tableColor(vec3 color)
{
    vec3 level = color * LAST;
    vec3 low = min(floor(level), LAST - 1.0);
    vec3 part = level - low;
    vec2 rest = 1.0 - part.rg;
    vec4 weights = vec4(rest.r, part.r, rest.r, part.r) * vec4(rest.gg, part.gg);
    vec4 upper = weights * part.b;
    return tileColor(low.rg, low.b, weights - upper) + tileColor(low.rg, low.b + 1.0, upper);
}

void main()
{
    vec4 picture = texture2D(ZV_Tex0, v_texcoord);
    gl_FragColor = vec4(mix(picture.rgb, tableColor(picture.rgb), intensity), picture.a);
}

// Brightens skin: mixes a picture with its colours in a lookup image; alpha passes through.
// The lookup image is a colour table of 512 x 512 texels: 64 levels a channel; one tile of 64 x 64 for each
// level of blue, 8 x 8 tiles in reading order from the first row on; in a tile red rises to the right and green
// row by row. Level i of a channel stands for i / LAST. Between levels the colour is interpolated linearly
// along all three channels:
//   level  = picture * LAST        low = min(floor(level), LAST - 1)        part = level - low
//   colour = the eight entries at (low or low + 1 of r, g, b), each weighted with part or 1 - part
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
const float TEXEL = 1.0 / (SIDE * TILES);

// The four entries around a place in the tile of one level of blue.
vec3 tileColor(vec2 low, float blue, vec4 weights)
{
    float row = floor(blue / TILES);
    vec2 place = (low + vec2(blue - row * TILES, row) * SIDE + 0.5) * TEXEL;
    vec2 next = vec2(TEXEL);
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
    gl_FragColor = vec4(mix(picture.rgb, tableColor(picture.rgb), uniAlpha), picture.a);
}

// Recolours a picture through a colour table of 512 x 512 texels; alpha passes through.
// Layout: 64 levels a channel; one tile of 64 x 64 for each level of blue, 8 x 8 tiles in reading order from
// the first row on; in a tile red rises to the right and green row by row. Level i of a channel stands for
// i / LAST. Between levels the colour is interpolated linearly along all three channels:
//   level  = picture * LAST        low = floor(level)        high = min(low + 1, LAST)
//   colour = the eight entries at (low or high of r, g, b), weighted with fract(level)
//   result = mix(picture, colour, intensity)
// An identity table, its entries rounded to 8 bits, gives back every 8-bit colour: entries are off by at most
// 0.48 of a step, interpolation between them is too, and that is below the half step that rounds away.
// Fetches: 1 of the picture, 8 single texels of the table: a texture filter's weights have 8 bits and some
// renderers round its result to 8 bits, which is up to 1.5 steps off with steep tables. GLSL before 1.30 has no
// single texels and takes what the filter gives: 2 fetches, at texel centres at the ends of a tile, so that no
// neighbouring tile shines through.
// Uniforms:
//   intensity: 0 the picture, 1 the table's colour; others extrapolate.
//   image_direction: 0 the table's first row in memory is its top row (PNG files), 1 it is the bottom row.
// ZV_Tex0: the picture. ZV_Tex1: the table, linear, clamped. One of another size is stretched to the layout.
uniform sampler2D ZV_Tex0;
uniform sampler2D ZV_Tex1;
uniform float intensity;
uniform int image_direction;

varying vec2 v_texcoord;

#if __VERSION__ >= 130

const int SIDE = 64;
const int TILES = 8;
const int LAST = SIDE - 1;
const int WIDTH = SIDE * TILES;

ivec2 tableSize;

vec3 entry(int x, int y)
{
    // |WIDTH - 1 - y| counts the rows from the other end.
    ivec2 texel = ivec2(x, abs(image_direction * (WIDTH - 1) - y));
    return texelFetch(ZV_Tex1, texel * tableSize / WIDTH, 0).rgb;
}

// Interpolates along red and green in the tile of one level of blue.
vec3 tileColor(ivec3 low, ivec3 high, int blue, vec2 part)
{
    ivec2 tile = ivec2(blue % TILES, blue / TILES) * SIDE;
    low.xy += tile;
    high.xy += tile;
    return mix(mix(entry(low.x, low.y), entry(high.x, low.y), part.x),
               mix(entry(low.x, high.y), entry(high.x, high.y), part.x), part.y);
}

vec3 tableColor(vec3 color)
{
    tableSize = textureSize(ZV_Tex1, 0);
    vec3 level = color * float(LAST);
    ivec3 low = ivec3(level);
    ivec3 high = min(low + 1, ivec3(LAST));
    vec3 part = level - vec3(low);
    return mix(tileColor(low, high, low.b, part.xy), tileColor(low, high, high.b, part.xy), part.z);
}

#else

const float SIDE = 64.0;
const float TILES = 8.0;
const float LAST = SIDE - 1.0;

// The filter interpolates along red and green in the tile of one level of blue.
vec3 tileColor(vec2 inTile, float blue)
{
    float row = floor(blue / TILES);
    vec2 place = (inTile + vec2(blue - row * TILES, row)) / TILES;
    place.y = abs(float(image_direction) - place.y);
    return texture2D(ZV_Tex1, place).rgb;
}

vec3 tableColor(vec3 color)
{
    vec3 level = color * LAST;
    float low = floor(level.b);
    vec2 inTile = (level.rg + 0.5) / SIDE;
    return mix(tileColor(inTile, low), tileColor(inTile, min(low + 1.0, LAST)), level.b - low);
}

#endif

void main()
{
    vec4 picture = texture2D(ZV_Tex0, v_texcoord);
    gl_FragColor = vec4(mix(picture.rgb, tableColor(picture.rgb), intensity), picture.a);
}

// The chroma region of a packed 4:2:0 frame: four bytes a texel, in red, green, blue and alpha. Read row by row from
// the lowest one on, they are the plane of U and then the plane of V, both with their rows tight, the picture's top row
// first; what is left is 0.
//   U, V = second, third row of u_rgbToYuv * (mean of the r, g, b of 2 x 2 pixels, 1)
// ZvShaderRGB2YUV.frag tells where the matrix comes from. Sample (i, j) of a plane stands for the pixels 2i, 2i + 1 of
// the rows 2j, 2j + 1, counted from the top, and lies in the middle of them; the last column or row of an odd picture
// has no chroma of its own. Four whole pixels are fetched, not one between them: some filters work in 8 bits.
//
// Which sample a byte is: with `width` samples a row, `stride` bytes a row of texels and `row` counted from the lowest,
// byte b of a row is number row * stride + b of the samples. A row of texels is about two rows of samples, so
//   number = 2 row * width + rest     rest = row * (stride - 2 width) + b     (stride - 2 width is 0 .. 4)
// and `rest` stays small enough for every float on the way to be a whole number, whatever the size of the picture.
// Uniforms:
//   u_rgbToYuv: the weights of r, g and b in its first three columns, the offsets in the last one.
//   u_PixelWidth, u_PixelHeight: 1 / width and 1 / height of the picture in pixels.
// ZV_Tex0: the picture at full size, its bottom row first. Cost: 16 fetches a texel, 2 a pixel.
uniform sampler2D ZV_Tex0;
uniform mat4 u_rgbToYuv;
uniform float u_PixelWidth;
uniform float u_PixelHeight;

varying vec2 v_place;

const float TEXEL_BYTES = 4.0;

// A pixel of the picture, counted from the top left corner.
vec3 pixelAt(vec2 place, vec2 size)
{
    float row = size.y - 1.0 - place.y;
#if __VERSION__ >= 130
    return texelFetch(ZV_Tex0, ivec2(place.x, row), 0).rgb;
#else
    return texture2D(ZV_Tex0, (vec2(place.x, row) + 0.5) * vec2(u_PixelWidth, u_PixelHeight)).rgb;
#endif
}

float chromaByte(float row, float rest, vec2 size)
{
    vec2 planeSize = max(floor(size * 0.5), 1.0);
    float rowsOn = floor((rest + 0.5) / planeSize.x);
    vec2 sampleAt = vec2(rest - rowsOn * planeSize.x, 2.0 * row + rowsOn);
    if (sampleAt.y >= 2.0 * planeSize.y)
    {
        return 0.0;
    }
    bool isV = sampleAt.y >= planeSize.y;
    sampleAt.y -= isV ? planeSize.y : 0.0;

    vec2 first = 2.0 * sampleAt;
    vec2 last = min(first + 1.0, size - 1.0);
    vec3 mean = 0.25 * (pixelAt(first, size) + pixelAt(vec2(last.x, first.y), size)
        + pixelAt(vec2(first.x, last.y), size) + pixelAt(last, size));
    vec4 yuv = u_rgbToYuv * vec4(mean, 1.0);
    return isV ? yuv.z : yuv.y;
}

void main()
{
    vec2 size = floor(1.0 / vec2(u_PixelWidth, u_PixelHeight) + 0.5);
    vec2 place = floor(v_place);
    float stride = TEXEL_BYTES * ceil(size.x / TEXEL_BYTES);
    float skew = stride - 2.0 * max(floor(size.x * 0.5), 1.0);
    float rest = place.y * skew + TEXEL_BYTES * place.x;
    gl_FragColor = vec4(chromaByte(place.y, rest, size), chromaByte(place.y, rest + 1.0, size),
        chromaByte(place.y, rest + 2.0, size), chromaByte(place.y, rest + 3.0, size));
}

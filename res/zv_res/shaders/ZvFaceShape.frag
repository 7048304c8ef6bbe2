// A picture seen through a mesh that displaces it: where nothing moves the texel itself, elsewhere a bicubic
// interpolation, which keeps lashes and pores as sharp as they were. Alpha is treated like a colour.
//   place  = v_texcoord * u_size - 0.5,   i = floor(place),   f = place - i
//   colour = sum of w(x) w(y) T(i + (x, y)) over x, y in -1..2, without the four corners, over the sum of weights
// with the weights of the Catmull-Rom spline (E. Catmull, R. Rom, "A Class of Local Interpolating Splines", 1974):
//   w(-1) = f (-1/2 + f (1 - f/2))        w(0) = 1 + f f (-5/2 + 3/2 f)
//   w(1)  = f (1/2 + f (2 - 3/2 f))       w(2) = f f (-1/2 + f/2)
// The two texels in the middle of each axis are one fetch, since the texture is filtered linearly.
// Cost: 1 fetch a pixel where nothing moves, else 5. They stand in a branch, where the level of a mipmap is undefined:
// the picture should have none.
// Uniforms:
//   u_size: width and height of ZV_Tex0 in texels.
// ZV_Tex0: the picture, linear, clamped.
uniform sampler2D ZV_Tex0;
uniform vec2 u_size;

varying vec2 v_texcoord;

const float STILL = 0.01;  // of a texel: what interpolating coordinates may lose

void main()
{
    vec2 place = v_texcoord * u_size - 0.5;
    vec2 nearest = floor(place + 0.5);
    vec2 off = abs(place - nearest);
    if (max(off.x, off.y) < STILL)
    {
        gl_FragColor = texture2D(ZV_Tex0, (nearest + 0.5) / u_size);
        return;
    }
    vec2 i = floor(place);
    vec2 f = place - i;
    vec2 before = f * (-0.5 + f * (1.0 - 0.5 * f));
    vec2 first = 1.0 + f * f * (-2.5 + 1.5 * f);
    vec2 second = f * (0.5 + f * (2.0 - 1.5 * f));
    vec2 after = f * f * (-0.5 + 0.5 * f);
    vec2 both = first + second;

    vec2 texel = 1.0 / u_size;
    vec2 middleAt = (i + 0.5 + second / both) * texel;
    vec2 beforeAt = (i - 0.5) * texel;
    vec2 afterAt = (i + 2.5) * texel;
    vec4 weights = vec4(before.x * both.y, after.x * both.y, both.x * before.y, both.x * after.y);
    float middle = both.x * both.y;
    vec4 sum = middle * texture2D(ZV_Tex0, middleAt)
        + weights.x * texture2D(ZV_Tex0, vec2(beforeAt.x, middleAt.y))
        + weights.y * texture2D(ZV_Tex0, vec2(afterAt.x, middleAt.y))
        + weights.z * texture2D(ZV_Tex0, vec2(middleAt.x, beforeAt.y))
        + weights.w * texture2D(ZV_Tex0, vec2(middleAt.x, afterAt.y));
    gl_FragColor = clamp(sum / (middle + dot(weights, vec4(1.0))), 0.0, 1.0);
}

// Scales hue, saturation and value of a picture; alpha passes through.
// The colour model is the hexcone of A. R. Smith, "Color Gamut Transform Pairs", SIGGRAPH 1978:
//   value      = max(r, g, b)
//   chroma     = value - min(r, g, b)
//   saturation = chroma / value                                  (0 for black)
//   hue        = (g - b) / chroma             where r is largest (in sixths of a turn, 0 to 6; greys have
//                (b - r) / chroma + 2         where g is          none)
//                (r - g) / chroma + 4         where b is
// and back, for each channel with its own offset (0, 4, 2 sixths for r, g, b):
//   channel    = value * (1 - saturation * (1 - clamp(|(hue + offset) mod 6 - 3| - 1, 0, 1)))
// The scaled hue wraps around; scaled saturation and value are cut to 0..1. Nothing is ever divided by 0.
// Uniforms:
//   u_hsv_adjust: factors of hue, saturation and value; any finite numbers, (1, 1, 1) changes nothing.
// ZV_Tex0: the picture.
uniform sampler2D ZV_Tex0;
uniform vec3 u_hsv_adjust;

varying vec2 v_texcoord;

const float SIXTHS = 6.0;
const vec3 OFFSETS = vec3(0.0, 4.0, 2.0);

// Hue in sixths of a turn, 0 to 6; only for chroma above 0.
float hueOf(vec3 color, float value, float chroma)
{
    if (color.r == value)
    {
        float hue = (color.g - color.b) / chroma;
        return hue < 0.0 ? hue + SIXTHS : hue;
    }
    if (color.g == value)
    {
        return (color.b - color.r) / chroma + 2.0;
    }
    return (color.r - color.g) / chroma + 4.0;
}

void main()
{
    vec4 picture = texture2D(ZV_Tex0, v_texcoord);
    vec3 color = picture.rgb;

    float value = max(color.r, max(color.g, color.b));
    float chroma = value - min(color.r, min(color.g, color.b));
    float hue = 0.0;
    float saturation = 0.0;
    if (chroma > 0.0)
    {
        hue = mod(hueOf(color, value, chroma) * u_hsv_adjust.x, SIXTHS);
        saturation = clamp(chroma / value * u_hsv_adjust.y, 0.0, 1.0);
    }
    value = clamp(value * u_hsv_adjust.z, 0.0, 1.0);

    vec3 ramp = clamp(abs(mod(vec3(hue) + OFFSETS, SIXTHS) - 3.0) - 1.0, 0.0, 1.0);
    gl_FragColor = vec4(value * (vec3(1.0) - saturation * (vec3(1.0) - ramp)), picture.a);
}

// Scales hue, saturation and value of a picture; alpha passes through.
// The colour model is the hexcone of A. R. Smith, "Color Gamut Transform Pairs", SIGGRAPH 1978:
//   value      = max(r, g, b)
//   chroma     = value - min(r, g, b)
//   saturation = chroma / value                                  (0 for black)
//   hue        = (g - b) / chroma             where r is largest (in sixths of a turn, 0 to 6; greys have
//                (b - r) / chroma + 2         where g is          none)
//                (r - g) / chroma + 4         where b is
// and back, as what each channel lacks of the value:
//   (r, g, b)  = value * (1 - saturation * clamp((2 - |hue - 3|, |hue - 2| - 1, |hue - 4| - 1), 0, 1))
// The scaled hue wraps around; scaled saturation and value are cut to 0..1. Nothing is ever divided by 0.
// Uniforms:
//   u_hsv_adjust: factors of hue, saturation and value; any finite numbers, (1, 1, 1) changes nothing.
// ZV_Tex0: the picture. Cost: 1 fetch.
uniform sampler2D ZV_Tex0;
uniform vec3 u_hsv_adjust;

varying vec2 v_texcoord;

const float SIXTHS = 6.0;

// In place of 0 as a divisor; far below any step of a picture.
const float TINY = 1.0e-20;

// Hue in sixths of a turn, 0 to 6; 0 for greys.
float hueOf(vec3 color, float value, float chroma)
{
    float scale = 1.0 / max(chroma, TINY);
    float red = (color.g - color.b) * scale;
    float others = color.g == value ? (color.b - color.r) * scale + 2.0 : (color.r - color.g) * scale + 4.0;
    return color.r == value ? (red < 0.0 ? red + SIXTHS : red) : others;
}

void main()
{
    vec4 picture = texture2D(ZV_Tex0, v_texcoord);
    vec3 color = picture.rgb;

    float value = max(color.r, max(color.g, color.b));
    float chroma = value - min(color.r, min(color.g, color.b));
    float hue = mod(hueOf(color, value, chroma) * u_hsv_adjust.x, SIXTHS);
    float saturation = clamp(chroma / max(value, TINY) * u_hsv_adjust.y, 0.0, 1.0);
    value = clamp(value * u_hsv_adjust.z, 0.0, 1.0);

    vec3 away = abs(vec3(hue) - vec3(3.0, 2.0, 4.0));
    vec3 lack = clamp(vec3(2.0 - away.r, away.gb - 1.0), 0.0, 1.0);
    gl_FragColor = vec4(vec3(value) - value * saturation * lack, picture.a);
}

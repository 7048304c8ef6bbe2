// What the second blur needs for skin-only local statistics: for each pixel its weight as clean skin, its luma under
// that weight, and its deviation from the local mean under that weight.
//   w = max(skin(I), skin(M) * bright(I)) * notdark,   bright = highlights on skin, which have lost their chroma
//   notdark = 0..1 for luma(I) / luma(M) 0.60..0.82    (hair, brows, nostrils and spots do not pull the skin mean)
//   out.r = w * min(4 * |luma(I) - luma(M)|, 1)        out.g = w * luma(I)        out.b = w
// Blurred, g / b is the mean luma of the skin alone (normalised convolution: H. Knutsson, C.-F. Westin, "Normalized
// and Differential Convolution", CVPR 1993) and r / (4 b) the mean absolute deviation, the 8-bit stand-in for the
// local standard deviation of the guided filter (He et al., ECCV 2010). The factor 4 gives deviations below 64 steps
// a resolution of a quarter step; ZvBeautyBlendImageFilter.frag divides it out again (DEVIATION_SCALE in both).
// Cost: 2 fetches a pixel.
// ZV_Tex0: the blurred input M. ZV_Tex1: the input I, at its own texture coordinates. No uniforms.
uniform sampler2D ZV_Tex0;
uniform sampler2D ZV_Tex1;

varying vec2 v_texcoord;
varying vec2 v_texcoord1;

const float DEVIATION_SCALE = 4.0;
const vec3 LUMA = vec3(0.299, 0.587, 0.114);

// 1 for skin colour, 0 for anything else, soft between: the least of the ramps below, eased at its ends. Only chroma
// relative to luma counts, so light, dark and dimly lit skin give the same answer:
//   r = (R - luma) / luma,  b = (luma - B) / luma
//   r from 0.04..0.08 up to 0.42..0.60   (a dark pixel needs up to 0.045 more: dark greys and black hair are no skin)
//   b from 0.03..0.07 up                 (greys, whites, blues, purples out)
//   1.6 b - r up to 0.35..0.51           (yellow-brown hair, sand, foliage out)
//   r - b up to 0.04..0.09               (lips, red cloth out)
//   luma from 0.02..0.06 up
float skinLikeness(vec3 color)
{
    float luma = dot(color, LUMA);
    float scale = 1.0 / (luma + 0.01);
    float r = (color.r - luma) * scale;
    float b = (luma - color.b) * scale;
    float darkness = clamp((0.35 - luma) / 0.25, 0.0, 1.0);
    float least = min((r - 0.04 - 0.045 * darkness) / 0.04, (0.60 - r) / 0.18);
    least = min(least, min((b - 0.03) / 0.04, (0.51 + r - 1.6 * b) / 0.16));
    least = min(least, min((0.09 + b - r) / 0.05, (luma - 0.02) / 0.04));
    return smoothstep(0.0, 1.0, least);
}

void main()
{
    vec3 mean = texture2D(ZV_Tex0, v_texcoord).rgb;
    vec3 color = texture2D(ZV_Tex1, v_texcoord1).rgb;
    float meanLuma = dot(mean, LUMA);
    float luma = dot(color, LUMA);

    float highlight = skinLikeness(mean) * clamp(min((luma - 0.84) / 0.11, (luma - meanLuma) / 0.05), 0.0, 1.0);
    float weight = max(skinLikeness(color), highlight) * smoothstep(0.60, 0.82, luma / max(meanLuma, 0.02));
    float deviation = min(abs(luma - meanLuma) * DEVIATION_SCALE, 1.0);
    gl_FragColor = vec4(weight * deviation, weight * luma, weight, 1.0);
}

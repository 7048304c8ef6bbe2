// Smooths skin, takes spots off it, keeps everything else, then sharpens what is left. With I the input, M its blurred
// copy, and V = (deviation, luma, weight) blurred over skin only (see ZvBeautyMeanFilter.frag):
//   S     = V.g / V.b                      mean luma of the skin around
//   dev   = 1.2533 V.r / (4 V.b)           its standard deviation (sqrt(pi/2) times the mean absolute deviation)
//   gate  = near skin (V.b 0.45..0.75) * max(skin colour of the mean of 4, inside skin (V.b 0.75..0.98))
//   flat  = e^2 / (e^2 + (dev/S)^2)        1 - a of the guided filter (He, Sun, Tang, ECCV 2010) with eps = (e S)^2;
//                                          e = 0.23, down to 0.0345 where M has the hue of hair
//   near  = 1 / (1 + x^4)                  x = (l - S) / S over 0.45 (darker) or 0.25 (brighter), l = 0.44 luma +
//                                          0.56 mean luma of the 3 around: eyes, brows, nostrils and contours are
//                                          outliers and stay (range kernel)
//   s     = 0.94 gate flat near
//   base  = I moved 0.7 gate towards the range-weighted mean of the 4 (pores, noise beside edges); a
//           neighbour weighs (1 - (difference of luma / 0.12)^2)^2
//   full  = base + s (T - base)            T = M * S / luma(M) inside skin, I * S / luma(I) (0.7 to 1.2) at its rim,
//                                          so no hair or background colour bleeds in
//   out   = I + blurAlpha (full - I + sharpening), then moved (1 - (1 - blurAlpha)^2) spot towards the ring's mean
//   sharpening = u_sharpen * 0.3 (1 - 0.8 gate) (luma - mean luma of the 3 around), 1.5 steps of 8 bits cut off
//                (noise), at most 4.5 steps: no halo
//   spot  = a dark place on its own: the ring around it, of 0.0107 of the shorter side, is skin and nowhere nearly as
//           dark. That takes spots of up to 5 pixels of 512. Lines and edges cross the ring, and since it has an odd
//           number of places a thin line never slips between two of them on both sides. What is darker than 0.3 of the
//           ring (mouth corners, lashes), near other features (V.b, dev/S) or less than 6 % darker is no spot.
// The 4 are the pixel and three places around it, a third of a turn apart and one texel away: the fewest that see every
// direction alike.
// Cost: 6 fetches a pixel (input 4, M 1, V 1), and 15 more of the input where a pixel among skin, or one beside it, is
// darker than S by 5 % or more (0.7 to 1.7 of 100 pixels of a portrait). They stand in a loop that other pixels leave
// at once. It is no branch, since a GL that computes several pixels together in software runs the inside of a branch
// for all of them, but ends a loop when none goes on; it still runs the first turn, one fetch. The level of a mipmap
// is undefined in there: the input should have none.
// Uniforms:
//   blurAlpha: strength, 0 (output = input) to 1; cut to that range.
//   u_sharpen: sharpening, 0 to 2; cut to that range.
//   widthOffset, heightOffset: one texel of the full-size input in texture coordinates.
// ZV_Tex0: V. ZV_Tex1: the input, at its own texture coordinates. ZV_Tex2: M.
uniform sampler2D ZV_Tex0;
uniform sampler2D ZV_Tex1;
uniform sampler2D ZV_Tex2;
uniform float blurAlpha;
uniform float widthOffset;
uniform float heightOffset;
uniform float u_sharpen;

varying vec2 v_texcoord;
varying vec2 v_texcoord1;

const float DEVIATION_SCALE = 4.0;
const float RING_RADIUS = 0.0107;
const int RING_PLACES = 15;
const mat2 RING_TURN = mat2(0.9135455, 0.4067366, -0.4067366, 0.9135455);  // by 24 degrees
const vec2 TAP0 = vec2(1.0, 0.0);
const vec2 TAP1 = vec2(-0.5, 0.8660254);
const vec2 TAP2 = vec2(-0.5, -0.8660254);
const float STEP = 1.0 / 255.0;
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

// The mean of the ring around a pixel (rgb), and how much the pixel is part of a spot (a), told by the luma of the
// darkest of the 4, so that the soft rim of a spot goes with it. Black where no spot is likely.
vec4 spotOf(float darkest, bool likely)
{
    vec3 sum = vec3(0.0);
    float least = 1.0;
    vec2 place = vec2(RING_RADIUS, 0.0);
    vec2 shorter = vec2(widthOffset, heightOffset) / max(widthOffset, heightOffset);
    int places = likely ? RING_PLACES : 0;
    for (int i = 0; i < places; ++i) {
        vec3 color = texture2D(ZV_Tex1, v_texcoord1 + place * shorter).rgb;
        sum += color;
        least = min(least, dot(color, LUMA));
        place = RING_TURN * place;
    }
    vec3 ring = sum / float(RING_PLACES);
    float ringLuma = dot(ring, LUMA);
    float contrast = ringLuma - darkest;
    float level = darkest / max(ringLuma, 0.02);
    float alone = (0.5 * contrast - (ringLuma - least)) / max(0.3 * contrast, 0.001);
    vec3 spot = smoothstep(0.0, 1.0, vec3(alone, (level - 0.30) / 0.18, (0.94 - level) / 0.08));
    return vec4(ring, skinLikeness(ring) * spot.x * spot.y * spot.z);
}

void main()
{
    vec4 picture = texture2D(ZV_Tex1, v_texcoord1);
    vec3 color = picture.rgb;
    vec2 texel = vec2(widthOffset, heightOffset);
    vec3 c0 = texture2D(ZV_Tex1, v_texcoord1 + TAP0 * texel).rgb;
    vec3 c1 = texture2D(ZV_Tex1, v_texcoord1 + TAP1 * texel).rgb;
    vec3 c2 = texture2D(ZV_Tex1, v_texcoord1 + TAP2 * texel).rgb;
    vec3 mean = texture2D(ZV_Tex2, v_texcoord).rgb;
    vec3 blurred = texture2D(ZV_Tex0, v_texcoord).rgb;
    float strength = clamp(blurAlpha, 0.0, 1.0);
    float sharpen = clamp(u_sharpen, 0.0, 2.0);

    // Statistics of the skin around.
    float weight = blurred.b;
    float perWeight = 1.0 / max(weight, STEP);
    float skinLuma = min(blurred.g * perWeight, 1.0);
    float scale = 1.0 / max(skinLuma, 0.08);
    float spread = 1.2533 / DEVIATION_SCALE * blurred.r * perWeight * scale;

    // How much this pixel belongs to it.
    vec3 lumas = vec3(dot(c0, LUMA), dot(c1, LUMA), dot(c2, LUMA));
    float luma = dot(color, LUMA);
    float lumaAround = (lumas.x + lumas.y + lumas.z) / 3.0;
    float meanLuma = max(dot(mean, LUMA), STEP);
    float inside = smoothstep(0.75, 0.98, weight);
    float gate = smoothstep(0.45, 0.75, weight) * max(skinLikeness(0.25 * (color + c0 + c1 + c2)), inside);

    float hairHue = (1.6 * (meanLuma - mean.b) - (mean.r - meanLuma)) / (meanLuma + 0.01);
    float d = spread / (0.23 - 0.1955 * smoothstep(0.24, 0.34, hairHue));
    float x = (0.44 * luma + 0.56 * lumaAround - skinLuma) * scale;
    x = max(x / 0.25, x / -0.45);
    x *= x;
    float smoothing = 0.94 * gate / ((1.0 + d * d) * (1.0 + x * x));

    // The small smoothing.
    vec3 away = (lumas - luma) / 0.12;
    vec3 w = max(1.0 - away * away, 0.0);
    w *= w;
    vec3 small = (color + w.x * c0 + w.y * c1 + w.z * c2) / (1.0 + w.x + w.y + w.z);
    vec3 base = color + 0.7 * gate * (small - color);

    // The large one.
    vec3 target = mix(color * clamp(skinLuma / max(luma, 0.02), 0.7, 1.2), mean * (skinLuma / meanLuma), inside);
    vec3 full = base + smoothing * (target - base);

    // Bounded sharpening of the rest.
    float sharp = 0.3 * sharpen * (1.0 - 0.8 * gate) * (luma - lumaAround);
    sharp = clamp(sharp - clamp(sharp, -1.5 * STEP, 1.5 * STEP), -4.5 * STEP, 4.5 * STEP);

    vec3 result = color + strength * (full - color + sharp);

    // Spots go sooner.
    float clear = clamp(min((weight - 0.78) / 0.12, (0.215 - spread) / 0.035), 0.0, 1.0);
    float darkest = min(min(luma, lumas.x), min(lumas.y, lumas.z));
    vec4 spot = spotOf(darkest, clear > 0.0 && darkest < 0.95 * skinLuma);
    result += clear * spot.a * strength * (2.0 - strength) * (spot.rgb - result);
    gl_FragColor = vec4(clamp(result, 0.0, 1.0), picture.a);
}

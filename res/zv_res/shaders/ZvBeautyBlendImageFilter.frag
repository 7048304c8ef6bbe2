// Smooths skin, takes spots off it, keeps everything else, then sharpens what is left. With I the input, M its blurred
// copy, and V = (deviation, luma, weight) blurred over skin only (see ZvBeautyMeanFilter.frag):
//   S     = V.g / V.b                      mean luma of the skin around
//   dev   = 1.2533 V.r / (4 V.b)           its standard deviation (sqrt(pi/2) times the mean absolute deviation)
//   gate  = near skin (V.b 0.45..0.75) * max(skin colour of the 5-pixel mean, inside skin (V.b 0.75..0.98))
//   flat  = e^2 / (e^2 + (dev/S)^2)        1 - a of the guided filter (He, Sun, Tang, ECCV 2010) with eps = (e S)^2;
//                                          e = 0.23, down to 0.0345 where M has the hue of hair
//   near  = 1 / (1 + x^4)                  x = (luma - S) / S over 0.45 (darker) or 0.25 (brighter): eyes, brows,
//                                          nostrils and contours are outliers and stay (range kernel)
//   s     = 0.94 gate flat near
//   base  = I moved 0.7 gate towards the range-weighted mean of the 5 pixels    (pores, noise beside edges)
//   full  = base + s (T - base)            T = M * S / luma(M) inside skin, I * S / luma(I) (0.7 to 1.2) at its rim,
//                                          so no hair or background colour bleeds in
//   out   = I + blurAlpha (full - I + sharpening), then moved (1 - (1 - blurAlpha)^2) spot towards the ring's mean
//   sharpening = u_sharpen * 0.3 (1 - 0.8 gate) (luma - mean luma of the 4 neighbours), 1.5 steps of 8 bits cut off
//                (noise), at most 4.5 steps: no halo
//   spot  = a dark place on its own: the ring around it, of 0.0107 of the shorter side, is skin and nowhere nearly as
//           dark. That takes spots of up to 5 pixels of 512. Lines and edges cross the ring, and since it has an odd
//           number of places a thin line never slips between two of them on both sides. What is darker than 0.3 of the
//           ring (mouth corners, lashes), near other features (V.b, dev/S) or less than 6 % darker is no spot.
// Cost: 7 fetches a pixel (input 5, M 1, V 1), and 15 more of the input where a pixel among skin, or one beside it, is
// darker than S by 3 % or more (2 of 100 pixels of a portrait). They stand in a branch, where the level of a mipmap is
// undefined: the input should have none.
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
const float STEP = 1.0 / 255.0;
const vec3 LUMA = vec3(0.299, 0.587, 0.114);

// 1 for skin colour, 0 for anything else, soft between. Only chroma relative to luma counts, so light, dark and dimly
// lit skin give the same answer:  r = (R - luma) / luma,  b = (luma - B) / luma
//   r from 0.04..0.08 up to 0.42..0.60   (a dark pixel needs up to 0.045 more: dark greys and black hair are no skin)
//   b from 0.03..0.07 up                 (greys, whites, blues, purples out)
//   1.6 b - r up to 0.35..0.51           (yellow-brown hair, sand, foliage out)
//   r - b up to 0.04..0.09               (lips, red cloth out)
float skinLikeness(vec3 color)
{
    float luma = dot(color, LUMA);
    float scale = 1.0 / (luma + 0.01);
    float r = (color.r - luma) * scale;
    float b = (luma - color.b) * scale;
    float red = r - 0.045 * (1.0 - smoothstep(0.10, 0.35, luma));
    return smoothstep(0.04, 0.08, red) * (1.0 - smoothstep(0.42, 0.60, r))
        * smoothstep(0.03, 0.07, b)
        * (1.0 - smoothstep(0.35, 0.51, 1.6 * b - r))
        * (1.0 - smoothstep(0.04, 0.09, r - b))
        * smoothstep(0.02, 0.06, luma);
}

// The mean of the ring around a pixel (rgb), and how much the pixel is part of a spot (a), told by the luma of the
// darkest of it and its neighbours, so that the soft rim of a spot goes with it.
vec4 spotOf(float darkest)
{
    vec3 sum = vec3(0.0);
    float least = 1.0;
    vec2 place = vec2(RING_RADIUS, 0.0);
    vec2 shorter = vec2(widthOffset, heightOffset) / max(widthOffset, heightOffset);
    for (int i = 0; i < RING_PLACES; ++i) {
        vec3 color = texture2D(ZV_Tex1, v_texcoord1 + place * shorter).rgb;
        sum += color;
        least = min(least, dot(color, LUMA));
        place = RING_TURN * place;
    }
    vec3 ring = sum / float(RING_PLACES);
    float ringLuma = max(dot(ring, LUMA), 0.02);
    float contrast = max(ringLuma - darkest, 0.001);
    float spot = skinLikeness(ring) * (1.0 - smoothstep(0.2, 0.5, (ringLuma - least) / contrast))
        * smoothstep(0.06, 0.14, contrast / ringLuma) * smoothstep(0.22, 0.40, darkest / ringLuma);
    return vec4(ring, spot);
}

void main()
{
    vec4 picture = texture2D(ZV_Tex1, v_texcoord1);
    vec3 color = picture.rgb;
    vec2 right = vec2(widthOffset, 0.0);
    vec2 up = vec2(0.0, heightOffset);
    vec3 c0 = texture2D(ZV_Tex1, v_texcoord1 + right).rgb;
    vec3 c1 = texture2D(ZV_Tex1, v_texcoord1 - right).rgb;
    vec3 c2 = texture2D(ZV_Tex1, v_texcoord1 + up).rgb;
    vec3 c3 = texture2D(ZV_Tex1, v_texcoord1 - up).rgb;
    vec3 mean = texture2D(ZV_Tex2, v_texcoord).rgb;
    vec3 blurred = texture2D(ZV_Tex0, v_texcoord).rgb;
    float strength = clamp(blurAlpha, 0.0, 1.0);
    float sharpen = clamp(u_sharpen, 0.0, 2.0);

    // Statistics of the skin around.
    float weight = blurred.b;
    float perWeight = 1.0 / max(weight, STEP);
    float skinLuma = min(blurred.g * perWeight, 1.0);
    float deviation = 1.2533 / DEVIATION_SCALE * blurred.r * perWeight;
    float scale = 1.0 / max(skinLuma, 0.08);

    // How much this pixel belongs to it.
    vec3 sum4 = c0 + c1 + c2 + c3;
    vec3 mean5 = (sum4 + color) * 0.2;
    float luma = dot(color, LUMA);
    float luma5 = dot(mean5, LUMA);
    float meanLuma = max(dot(mean, LUMA), STEP);
    float inside = smoothstep(0.75, 0.98, weight);
    float gate = smoothstep(0.45, 0.75, weight) * max(skinLikeness(mean5), inside);

    float hairHue = (1.6 * (meanLuma - mean.b) - (mean.r - meanLuma)) / (meanLuma + 0.01);
    float e = 0.23 - 0.1955 * smoothstep(0.24, 0.34, hairHue);
    float d = deviation * scale / e;
    float x = (0.3 * luma + 0.7 * luma5 - skinLuma) * scale;
    x /= x < 0.0 ? 0.45 : 0.25;
    x *= x;
    float smoothing = 0.94 * gate / ((1.0 + d * d) * (1.0 + x * x));

    // The small smoothing.
    vec4 lumas = vec4(dot(c0, LUMA), dot(c1, LUMA), dot(c2, LUMA), dot(c3, LUMA));
    vec4 away = (lumas - luma) / 0.06;
    vec4 w = 1.0 / (1.0 + away * away);
    vec3 small = (color + w.x * c0 + w.y * c1 + w.z * c2 + w.w * c3) / (1.0 + dot(w, vec4(1.0)));
    vec3 base = color + 0.7 * gate * (small - color);

    // The large one.
    vec3 target = mix(color * clamp(skinLuma / max(luma, 0.02), 0.7, 1.2), mean * (skinLuma / meanLuma), inside);
    vec3 full = base + smoothing * (target - base);

    // Bounded sharpening of the rest.
    float sharp = 0.3 * sharpen * (1.0 - 0.8 * gate) * (luma - 0.25 * dot(sum4, LUMA));
    sharp = sign(sharp) * clamp(abs(sharp) - 1.5 * STEP, 0.0, 4.5 * STEP);

    vec3 result = color + strength * (full - color + sharp);

    // Spots go sooner.
    float clear = smoothstep(0.78, 0.90, weight) * (1.0 - smoothstep(0.18, 0.215, deviation * scale));
    float darkest = min(luma, min(min(lumas.x, lumas.y), min(lumas.z, lumas.w)));
    if (clear > 0.0 && darkest < 0.97 * skinLuma) {
        vec4 spot = spotOf(darkest);
        result += clear * spot.a * strength * (2.0 - strength) * (spot.rgb - result);
    }
    gl_FragColor = vec4(clamp(result, 0.0, 1.0), picture.a);
}

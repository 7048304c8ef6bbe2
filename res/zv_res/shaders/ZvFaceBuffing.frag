// Smooths the skin of a face where a mask says so, and keeps edges; alpha passes through. Around a pixel I lie three
// rings of eight places each, at RINGS eye distances of the face:
//   A     = mean of the inner ring
//   M     = mean of all places, those of the outer rings weighted by  1 / (1 + ((luma - luma(A)) / (0.15 luma(A)))^2)^2
//   dev   = standard deviation of the luma of the same places with the same weights
//   flat  = e^2 / (e^2 + (dev / luma(M))^2)     e = 0.11: 1 - a of the guided filter (He, Sun, Tang, "Guided Image
//                                               Filtering", ECCV 2010) with eps = (e luma(M))^2
//   near  = 1 / (1 + x^4)                       x = (0.3 luma(I) + 0.7 luma(A) - luma(M)) / (0.15 luma(M)): nostrils,
//                                               lashes and contours are outliers and stay
//   out   = I + 0.85 u_strength * mask * flat * near * (M - I)      (some of the pores always stay)
// The pixel itself is in no mean, so that a small spot goes.
// Cost: 1 fetch a pixel where the mask is 0, else 25. They stand in a branch, where the level of a mipmap is undefined:
// the picture should have none.
// Uniforms:
//   u_strength: 0 (the picture) to 1.
// ZV_Tex0: the picture, linear, clamped.
uniform sampler2D ZV_Tex0;
uniform float u_strength;

varying vec2 v_texcoord;
varying float v_mask;
varying vec2 v_reach;

const vec3 RINGS = vec3(0.04, 0.08, 0.12);
const int PLACES = 8;
const mat2 TURN = mat2(0.7071068, 0.7071068, -0.7071068, 0.7071068);  // by 45 degrees
const float RANGE = 0.15;
const float FLATNESS = 0.11;
const float MOST = 0.85;
const float NOTHING = 0.002;  // of 1: what changes no 8-bit step
const vec3 LUMA = vec3(0.299, 0.587, 0.114);

void main()
{
    vec4 picture = texture2D(ZV_Tex0, v_texcoord);
    float strength = u_strength * v_mask;
    if (strength < NOTHING)
    {
        gl_FragColor = picture;
        return;
    }
    vec3 color = picture.rgb;
    vec3 sum = vec3(0.0);
    float squares = 0.0;
    vec2 place = vec2(1.0, 0.0);
    for (int i = 0; i < PLACES; ++i)
    {
        vec3 here = texture2D(ZV_Tex0, v_texcoord + RINGS.x * place * v_reach).rgb;
        float luma = dot(here, LUMA);
        sum += here;
        squares += luma * luma;
        place = TURN * place;
    }
    float innerLuma = dot(sum, LUMA) / float(PLACES);
    float scale = 1.0 / (RANGE * max(innerLuma, 0.02));
    float total = float(PLACES);
    vec2 outer = vec2(0.9238795, 0.3826834);
    for (int i = 0; i < PLACES; ++i)
    {
        for (int ring = 1; ring < 3; ++ring)
        {
            vec2 at = ring == 1 ? RINGS.y * outer : RINGS.z * place;
            vec3 here = texture2D(ZV_Tex0, v_texcoord + at * v_reach).rgb;
            float luma = dot(here, LUMA);
            float away = (luma - innerLuma) * scale;
            float weight = 1.0 / (1.0 + away * away);
            weight *= weight;
            sum += weight * here;
            squares += weight * luma * luma;
            total += weight;
        }
        outer = TURN * outer;
        place = TURN * place;
    }
    vec3 mean = sum / total;
    float meanLuma = dot(mean, LUMA);
    float perMean = 1.0 / max(meanLuma, 0.02);
    float variance = max(squares / total - meanLuma * meanLuma, 0.0) * perMean * perMean;
    float x = (0.3 * dot(color, LUMA) + 0.7 * innerLuma - meanLuma) * perMean / RANGE;
    x *= x;
    float amount = MOST * strength * FLATNESS * FLATNESS / ((FLATNESS * FLATNESS + variance) * (1.0 + x * x));
    gl_FragColor = vec4(mix(color, mean, amount), picture.a);
}

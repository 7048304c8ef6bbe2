// One direction of a separable mean blur: a 7-tap box, its outer taps slightly tapered, in 5 fetches a side pair.
//   out = (T(0) + T(1) + T(-1) + 1.6 * (T(2.5) + T(-2.5))) / 6.2,   T(k) = the picture k steps away
// A fetch at 2.5 steps stands for the taps at 2 and 3: linear filtering averages the two exactly where a step is one
// texel (a target 240 wide), and nearly so up to two; at larger sizes it is one more sparse sample of the same box.
// The weights are symmetric, so linear ramps (the shading of a cheek) pass unchanged; the taper keeps the corners of
// the box from printing squares. Box means for edge-preserving smoothing: K. He, J. Sun, X. Tang, "Guided Image
// Filtering", ECCV 2010 (their mean of radius r; here r is 3 steps).
// Cost: 5 fetches a pixel, one channel set, no branches.
// Uniforms:
//   texelWidthOffset, texelHeightOffset: one step in texture coordinates; 1/240 of the target width along the pass's
//   own direction and 0 across it; 0 to 0.02 is sensible, any finite value is safe.
// ZV_Tex0: the picture to blur (clamped at its border, linear filtering).
uniform sampler2D ZV_Tex0;
uniform float texelWidthOffset;
uniform float texelHeightOffset;

varying vec2 v_texcoord;

const float PAIR_OFFSET = 2.5;
const float PAIR_WEIGHT = 1.6;
const float TOTAL = 3.0 + 2.0 * PAIR_WEIGHT;

void main()
{
    vec2 tap = vec2(texelWidthOffset, texelHeightOffset);
    vec2 pair = tap * PAIR_OFFSET;
    vec4 sum = texture2D(ZV_Tex0, v_texcoord);
    sum += texture2D(ZV_Tex0, v_texcoord + tap);
    sum += texture2D(ZV_Tex0, v_texcoord - tap);
    sum += PAIR_WEIGHT * (texture2D(ZV_Tex0, v_texcoord + pair) + texture2D(ZV_Tex0, v_texcoord - pair));
    gl_FragColor = sum / TOTAL;
}

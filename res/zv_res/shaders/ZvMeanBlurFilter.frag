// One direction of a separable mean blur: a 7-tap box, its outer taps slightly tapered, in 4 fetches.
//   out = (1.5 * (T(2/3) + T(-2/3)) + 1.6 * (T(2.5) + T(-2.5))) / 6.2,   T(k) = the picture k steps away
// Linear filtering makes them seven taps where a step is one texel (a target 240 wide): the inner two fetches share
// the middle one, which gets the weight 1 like its neighbours, the outer two average the taps at 2 and 3. At larger
// sizes they are four sparse samples of the same box.
// The weights are symmetric, so linear ramps (the shading of a cheek) pass unchanged; the taper keeps the corners of
// the box from printing squares. Box means for edge-preserving smoothing: K. He, J. Sun, X. Tang, "Guided Image
// Filtering", ECCV 2010 (their mean of radius r; here r is 3 steps).
// Cost: 4 fetches a pixel, one channel set, no branches.
// Uniforms:
//   texelWidthOffset, texelHeightOffset: one step in texture coordinates; 1/240 of the target width along the pass's
//   own direction and 0 across it; 0 to 0.02 is sensible, any finite value is safe.
// ZV_Tex0: the picture to blur (clamped at its border, linear filtering).
uniform sampler2D ZV_Tex0;
uniform float texelWidthOffset;
uniform float texelHeightOffset;

varying vec2 v_texcoord;

const float INNER_OFFSET = 2.0 / 3.0;
const float INNER_WEIGHT = 1.5;
const float OUTER_OFFSET = 2.5;
const float OUTER_WEIGHT = 1.6;
const float TOTAL = 2.0 * (INNER_WEIGHT + OUTER_WEIGHT);

void main()
{
    vec2 tap = vec2(texelWidthOffset, texelHeightOffset);
    vec2 inner = tap * INNER_OFFSET;
    vec2 outer = tap * OUTER_OFFSET;
    vec4 sum = INNER_WEIGHT * (texture2D(ZV_Tex0, v_texcoord + inner) + texture2D(ZV_Tex0, v_texcoord - inner));
    sum += OUTER_WEIGHT * (texture2D(ZV_Tex0, v_texcoord + outer) + texture2D(ZV_Tex0, v_texcoord - outer));
    gl_FragColor = sum / TOTAL;
}

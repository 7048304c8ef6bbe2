// Shows a YUV picture in the planes Y, U and V as RGB, alpha 1:
//   rgb = u_colorConversionMatrix * ((Y, U, V) - offsets)
// The offsets are those of the matrix's range, which the weight of Y tells: 1 for full range, where Y is 0 to 255 and
// the offsets are (0, 128, 128) / 255; 255 / 219 = 1.164 for video range, where Y is 16 to 235 and they are
// (16, 128, 128) / 255 (ITU-R BT.601 and BT.709).
// A chroma sample lies in the middle of the luma samples that share it. The planes' first row and column lie at the
// same edge; the scale lets them keep step where an odd picture's planes end at different ones.
// Uniforms:
//   u_colorConversionMatrix: one column each for Y, U and V.
//   u_chromaScale: from coordinates in the luma plane to those in a chroma plane; 1 unless the picture's size is odd.
// ZV_Tex0: luma. ZV_Tex1: U. ZV_Tex2: V. All in red. Cost: 3 fetches a pixel.
uniform sampler2D ZV_Tex0;
uniform sampler2D ZV_Tex1;
uniform sampler2D ZV_Tex2;
uniform mat3 u_colorConversionMatrix;
uniform vec2 u_chromaScale;

varying vec2 v_texcoord;

const float VIDEO_BLACK = 16.0 / 255.0;
const float CHROMA_ZERO = 128.0 / 255.0;
// Between the weights of Y for full and for video range.
const float VIDEO_WEIGHT = 1.08;

void main()
{
    float luma = texture2D(ZV_Tex0, v_texcoord).r;
    vec2 chromaPlace = v_texcoord * u_chromaScale;
    vec2 chroma = vec2(texture2D(ZV_Tex1, chromaPlace).r, texture2D(ZV_Tex2, chromaPlace).r);
    float black = u_colorConversionMatrix[0].r > VIDEO_WEIGHT ? VIDEO_BLACK : 0.0;
    gl_FragColor = vec4(u_colorConversionMatrix * vec3(luma - black, chroma - CHROMA_ZERO), 1.0);
}

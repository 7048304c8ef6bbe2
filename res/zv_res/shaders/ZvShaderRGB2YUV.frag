// Converts a picture to YUV, pixel by pixel: Y in red, U in green, V in blue, alpha 1.
//   (Y, U, V, 1) = u_rgbToYuv * (r, g, b, 1)
// The matrix comes from the definition of YCbCr in ITU-R BT.601 (kr = 0.299, kb = 0.114) and BT.709 (kr = 0.2126,
// kb = 0.0722), kg = 1 - kr - kb:
//   y = kr r + kg g + kb b      u = (b - y) / (2 (1 - kb))      v = (r - y) / (2 (1 - kr))     (y 0..1, u v -.5..+.5)
//   video range: 255 Y = 16 + 219 y     255 U = 128 + 224 u     255 V = 128 + 224 v
//   full range:  255 Y = 255 y          255 U = 128 + 255 u     255 V = 128 + 255 v            (255.5 is cut to 255)
// Only the target rounds to 8 bits.
// Uniforms:
//   u_rgbToYuv: the weights of r, g and b in its first three columns, the offsets in the last one.
// ZV_Tex0: the picture. Cost: 1 fetch a pixel.
uniform sampler2D ZV_Tex0;
uniform mat4 u_rgbToYuv;

varying vec2 v_texcoord;

void main()
{
    gl_FragColor = vec4((u_rgbToYuv * vec4(texture2D(ZV_Tex0, v_texcoord).rgb, 1.0)).xyz, 1.0);
}

// The luma of a picture, in red, green and blue, alpha 1:
//   Y = first row of u_rgbToYuv * (r, g, b, 1)
// ZvShaderRGB2YUV.frag tells where the matrix comes from. Only the target rounds to 8 bits.
// Uniforms:
//   u_rgbToYuv: the weights of r, g and b in its first three columns, the offsets in the last one.
// ZV_Tex0: the picture. Cost: 1 fetch a pixel.
uniform sampler2D ZV_Tex0;
uniform mat4 u_rgbToYuv;

varying vec2 v_texcoord;

void main()
{
    vec4 color = vec4(texture2D(ZV_Tex0, v_texcoord).rgb, 1.0);
    gl_FragColor = vec4(vec3((u_rgbToYuv * color).x), 1.0);
}

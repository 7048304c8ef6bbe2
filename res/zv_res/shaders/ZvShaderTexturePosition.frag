// The texel itself, alpha included.
//   colour = ZV_Tex0(v_texcoord)
// No uniforms.
// ZV_Tex0: the picture to show.
uniform sampler2D ZV_Tex0;

varying vec2 v_texcoord;

void main()
{
    gl_FragColor = texture2D(ZV_Tex0, v_texcoord);
}

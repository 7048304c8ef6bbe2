// Shows a texture of somebody else as it is; alpha passes through.
// No uniforms. ZV_Tex0: the picture, an ordinary 2D texture.
uniform sampler2D ZV_Tex0;

varying vec2 v_texcoord;

void main()
{
    gl_FragColor = texture2D(ZV_Tex0, v_texcoord);
}

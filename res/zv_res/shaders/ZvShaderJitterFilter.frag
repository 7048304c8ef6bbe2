// The zoomed part of a picture, alpha included. The zoom lies in the texture coordinates: the sprite is given the part
// that is shown, which never reaches beyond the picture.
//   colour = ZV_Tex0(v_texcoord)
// No uniforms.
// ZV_Tex0: the picture.
uniform sampler2D ZV_Tex0;

varying vec2 v_texcoord;

void main()
{
    gl_FragColor = texture2D(ZV_Tex0, v_texcoord);
}

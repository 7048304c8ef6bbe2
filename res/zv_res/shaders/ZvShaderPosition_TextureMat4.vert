// A textured vertex at a given place whose texture coordinates go through a matrix: positions are clip
// coordinates.
//   gl_Position = a_position
//   v_texcoord  = u_textureMatrix * a_texcoord0
// Uniforms:
//   u_textureMatrix: from 0 to 1 across the shown part to 0 to 1 across texture 0, as a camera reports it; the
//   identity until it is set.
attribute vec4 a_position;
attribute vec2 a_texcoord0;

uniform mat4 u_textureMatrix = mat4(1.0);

varying vec2 v_texcoord;

void main()
{
    gl_Position = a_position;
    v_texcoord = (u_textureMatrix * vec4(a_texcoord0, 0.0, 1.0)).xy;
}

// A textured vertex of a model, taken to clip coordinates by one matrix.
//   gl_Position = u_mvp * a_position    (missing components are z = 0 and w = 1)
//   v_texcoord  = a_texcoord0           (0 to 1 across texture 0)
// u_mvp: from model units to clip coordinates.
// No texture slots.
uniform mat4 u_mvp;

attribute vec4 a_position;
attribute vec2 a_texcoord0;

varying vec2 v_texcoord;

void main()
{
    gl_Position = u_mvp * a_position;
    v_texcoord = a_texcoord0;
}

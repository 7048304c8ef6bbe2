// A textured vertex at a given place, with coordinates of its own for a second texture: no matrix, positions
// are clip coordinates.
//   gl_Position = a_position        (two floats are enough: z is 0 and w is 1 then)
//   v_texcoord  = a_texcoord0       (0 to 1 across texture 0)
//   v_texcoord1 = a_texcoord1       (0 to 1 across texture 1)
// No uniforms, no texture slots.
attribute vec4 a_position;
attribute vec2 a_texcoord0;
attribute vec2 a_texcoord1;

varying vec2 v_texcoord;
varying vec2 v_texcoord1;

void main()
{
    gl_Position = a_position;
    v_texcoord = a_texcoord0;
    v_texcoord1 = a_texcoord1;
}

// A textured vertex at a given place: no matrix, positions are clip coordinates.
//   gl_Position = a_position        (two floats are enough: z is 0 and w is 1 then)
//   v_texcoord  = a_texcoord0       (0 to 1 across texture 0)
// No uniforms, no texture slots.
attribute vec4 a_position;
attribute vec2 a_texcoord0;

varying vec2 v_texcoord;

void main()
{
    gl_Position = a_position;
    v_texcoord = a_texcoord0;
}

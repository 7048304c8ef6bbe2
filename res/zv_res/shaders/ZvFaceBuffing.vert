// A vertex of the mesh over the faces of a picture: no matrix, positions are clip coordinates.
//   gl_Position = a_position        (two floats are enough: z is 0 and w is 1 then)
//   v_texcoord  = a_texcoord0       (0 to 1 across texture 0)
//   v_mask      = a_texcoord1.x     (0 to 1, how much is skin of a face)
//   v_reach     = a_texcoord2       (the eye distance of that face, as a part of the width and height of texture 0)
// No uniforms, no texture slots.
attribute vec4 a_position;
attribute vec2 a_texcoord0;
attribute vec2 a_texcoord1;
attribute vec2 a_texcoord2;

varying vec2 v_texcoord;
varying float v_mask;
varying vec2 v_reach;

void main()
{
    gl_Position = a_position;
    v_texcoord = a_texcoord0;
    v_mask = a_texcoord1.x;
    v_reach = a_texcoord2;
}

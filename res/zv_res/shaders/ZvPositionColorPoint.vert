// A coloured point of a given size.
//   gl_Position  = u_mvp * a_position      (two floats are enough: z is 0 and w is 1 then)
//   v_diameter   = max(a_texcoord0.x, 1)   (in pixels; a_texcoord0.y is 0 and not used)
//   gl_PointSize = v_diameter + 1          (half a pixel at each side for the soft rim)
// Uniforms:
//   u_mvp: from the positions to clip coordinates; the identity, for positions that are clip coordinates.
// No texture slots.
attribute vec4 a_position;
attribute vec4 a_color0;
attribute vec2 a_texcoord0;

uniform mat4 u_mvp;

varying vec4 v_color;
varying float v_diameter;

const float LEAST_DIAMETER = 1.0;
const float RIM = 1.0;

void main()
{
    gl_Position = u_mvp * a_position;
    v_diameter = max(a_texcoord0.x, LEAST_DIAMETER);
    gl_PointSize = v_diameter + RIM;
    v_color = a_color0;
}

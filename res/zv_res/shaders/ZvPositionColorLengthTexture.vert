// A coloured vertex at a given place, as the ends of a line segment: no matrix, positions are clip coordinates.
//   gl_Position = a_position        (two floats are enough: z is 0 and w is 1 then)
//   v_color     = a_color0          (four bytes, 0 to 1 here; mixed linearly along the segment)
// No uniforms, no texture slots.
attribute vec4 a_position;
attribute vec4 a_color0;

varying vec4 v_color;

void main()
{
    gl_Position = a_position;
    v_color = a_color0;
}

// A textured vertex whose picture weaves in its gate: it moves by a few thousandths, up, down and to the sides, and is
// shown a little larger, so that its edge stays out of sight.
//   gl_Position = a_position        (two floats are enough: z is 0 and w is 1 then)
//   v_screen    = a_texcoord0       (0 to 1 across the output)
//   v_texcoord  = 0.5 + (a_texcoord0 - 0.5) * ZOOM + weave
// The weave is a sum of two sines in each direction, each with a whole number of turns in a cycle of `time`, so that
// nothing jumps where the cycle starts again.
// Uniforms:
//   time: 0.1 to 10, in steps of 0.1 a frame.
// No texture slots.
attribute vec4 a_position;
attribute vec2 a_texcoord0;

uniform float time;

varying vec2 v_texcoord;
varying vec2 v_screen;

const float TURN = 6.2831853;
const float CYCLE = 10.0;
const float ZOOM = 0.984;
const float WEAVE = 0.0016;

void main()
{
    float t = time * TURN / CYCLE;
    vec2 weave = vec2(sin(3.0 * t) + 0.6 * sin(8.0 * t + 1.0), 0.9 * sin(5.0 * t + 2.0) + 0.6 * sin(11.0 * t));
    gl_Position = a_position;
    v_screen = a_texcoord0;
    v_texcoord = vec2(0.5) + (a_texcoord0 - vec2(0.5)) * ZOOM + WEAVE * weave;
}

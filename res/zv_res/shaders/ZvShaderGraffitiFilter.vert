// A textured vertex of the picture or of a stroke; what is drawn moves sideways on paper that stays.
//   strokes:  gl_Position = a_position moved by shakeX   v_texcoord = a_texcoord0           v_paper moved by shakeX
//   picture:  gl_Position = a_position                   v_texcoord moved by -shakeX        v_paper = a_texcoord0
// so that v_paper - v_texcoord = (shakeX, 0) in both, and a stroke shows the part of the picture that it lies on.
// Uniforms:
//   shakeX: how far the drawing is moved to the right, in parts of the width; small.
//   fWhichTypeOfDrawing: 0.1 for the picture, 1 for a stroke.
// No texture slots.
attribute vec4 a_position;
attribute vec2 a_texcoord0;

uniform float shakeX;
uniform float fWhichTypeOfDrawing;

varying vec2 v_texcoord;
varying vec2 v_paper;

void main()
{
    float stroke = step(0.5, fWhichTypeOfDrawing);
    // The width of the clip space is 2.
    gl_Position = a_position + vec4(2.0 * shakeX * stroke, 0.0, 0.0, 0.0);
    v_texcoord = a_texcoord0 - vec2(shakeX * (1.0 - stroke), 0.0);
    v_paper = a_texcoord0 + vec2(shakeX * stroke, 0.0);
}

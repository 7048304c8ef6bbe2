// A round point with a soft rim.
//   coverage = clamp(diameter / 2 - away + 1 / 2, 0, 1)
// the part of the pixel that lies within the disc, as if the rim were straight and ran along the pixel's side;
// `away` is how far the pixel's centre lies from the point's centre, in pixels. Alpha is weighed by it, colour is
// not; pixels that the disc does not reach are left as they are.
// No uniforms, no texture slots; 0 fetches.
varying vec4 v_color;
varying float v_diameter;

const vec2 CENTRE = vec2(0.5);
const float RIM = 1.0; // of both sides together, in pixels: what the vertex file adds to the diameter

void main()
{
    float away = length(gl_PointCoord - CENTRE) * (v_diameter + RIM);
    float coverage = clamp(0.5 * v_diameter - away + 0.5, 0.0, 1.0);
    if (coverage <= 0.0)
    {
        discard;
    }
    gl_FragColor = vec4(v_color.rgb, v_color.a * coverage);
}

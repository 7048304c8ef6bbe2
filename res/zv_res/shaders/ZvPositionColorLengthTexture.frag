// The colour of a line segment, as it comes from its ends.
// No uniforms, no texture slots; 0 fetches.
varying vec4 v_color;

void main()
{
    gl_FragColor = v_color;
}

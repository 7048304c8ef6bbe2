// A picture and, over it, a larger pale copy of itself about the same centre.
//   place  = 0.5 + (v_texcoord - 0.5) / fShadowScale                 where the copy is sampled
//   fading = smoothstep(0, FADE, distance of place to the border)    no hard frame while the copy is no larger
//   colour = mix(picture, copy, fShadowAlpha * fading)
// At fShadowAlpha 0 it is the picture; alpha is always that of the picture.
// Cost: 2 fetches a pixel.
// Uniforms:
//   fShadowAlpha: how much of the copy is seen, 0 to 1.
//   fShadowScale: size of the copy, 0.1 to 10; below 1 it has nothing outside its border.
// ZV_Tex0: the picture.
uniform sampler2D ZV_Tex0;
uniform float fShadowAlpha;
uniform float fShadowScale;

varying vec2 v_texcoord;

const float FADE = 0.08;

void main()
{
    vec4 picture = texture2D(ZV_Tex0, v_texcoord);
    vec2 place = vec2(0.5) + (v_texcoord - vec2(0.5)) / fShadowScale;
    vec2 border = min(place, vec2(1.0) - place);
    float fading = smoothstep(0.0, FADE, border.x) * smoothstep(0.0, FADE, border.y);
    vec3 copy = texture2D(ZV_Tex0, place).rgb;
    gl_FragColor = vec4(mix(picture.rgb, copy, fShadowAlpha * fading), picture.a);
}

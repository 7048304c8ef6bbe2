// A picture in ink on paper, and in spray paint where a stroke lies. Lengths are parts of the picture's shorter side.
//   edge    = |gradient| / (mean + 0.25)      least-squares gradient of brightness over a hexagon of 6 places, RING *
//                                             ARM away, relative to the mean of all 7, so that shadows have lines
//   hatch   = lines of HATCH distance, the wider the darker the mean, crossed where it is dark; solid where black
//   ink     = the larger of both, gone beyond the border of the drawing
//   picture: paper (a warm white with grain that stays where it is) covered by ink
//   stroke:  paint whose hue climbs from blue at the bottom over pink to yellow at the top, dark where the picture is,
//            with a fine spatter, covered by the edges
// The three-texel offsets give the measure: a place is moved by them, scaled to ARM, which is three texels where the
// shorter side has 720. So lines have the same part of the picture at any size.
// Cost: 7 fetches a pixel.
// Uniforms:
//   texelWidthOffset, texelHeightOffset: three texels in texture coordinates.
//   shakeX: see the vertex file.
//   fWhichTypeOfDrawing: 0.1 for the picture, 1 for a stroke.
// ZV_Tex0: the picture, upright.
uniform sampler2D ZV_Tex0;
uniform float texelWidthOffset;
uniform float texelHeightOffset;
uniform float fWhichTypeOfDrawing;

varying vec2 v_texcoord;
varying vec2 v_paper;

const vec3 LUMA = vec3(0.299, 0.587, 0.114);
const float ARM = 1.0 / 240.0;
const float RING = 1.15;
const float HATCH = 1.0 / 62.0;
const vec3 INK = vec3(0.085, 0.075, 0.115);
const vec3 PAPER = vec3(0.955, 0.930, 0.872);

vec2 permute(vec2 x)
{
    return mod((34.0 * x + 1.0) * x, 289.0);
}

vec4 permute(vec4 x)
{
    return mod((34.0 * x + 1.0) * x, 289.0);
}

// Smooth noise, mean 0, about -1 to 1 (hash: S. Gustavson, I. McEwan, 2012).
float noise(vec2 place)
{
    vec2 cell = floor(place);
    vec2 part = place - cell;
    vec4 near = mod(cell.xxyy + vec4(0.0, 1.0, 0.0, 1.0), 289.0);
    vec4 corners = permute(mod(permute(near.xy).xyxy + near.zzww, 289.0));
    part = part * part * (3.0 - 2.0 * part);
    vec2 rows = mix(corners.xz, corners.yw, part.x);
    return mix(rows.x, rows.y, part.y) / 144.0 - 1.0;
}

float brightness(vec2 place)
{
    return dot(texture2D(ZV_Tex0, place).rgb, LUMA);
}

// Slanted lines that cover `share` of the paper; one pixel is `pixel` wide.
float hatching(float across, float share, float pixel)
{
    float away = abs(fract(across / HATCH) - 0.5) * 2.0;
    float soft = 2.0 * pixel / HATCH;
    return clamp(0.5 + 0.5 * (share - away) / soft, 0.0, 1.0) * min(share * 12.0, 1.0);
}

vec3 hue(float height)
{
    vec3 low = mix(vec3(0.05, 0.42, 0.92), vec3(0.62, 0.20, 0.86), smoothstep(0.10, 0.38, height));
    vec3 middle = mix(low, vec3(0.98, 0.16, 0.48), smoothstep(0.34, 0.58, height));
    return mix(mix(middle, vec3(1.0, 0.45, 0.12), smoothstep(0.56, 0.76, height)), vec3(1.0, 0.80, 0.08),
               smoothstep(0.76, 0.92, height));
}

void main()
{
    // The larger offset belongs to the shorter side.
    vec2 texels = vec2(texelWidthOffset, texelHeightOffset);
    float scale = max(texels.x, texels.y);
    vec2 arm = texels * (ARM / scale);
    vec2 place = v_texcoord * (scale / texels);
    vec2 paperPlace = v_paper * (scale / texels);
    float pixel = scale / 3.0;

    vec4 picture = texture2D(ZV_Tex0, v_texcoord);
    float here = dot(picture.rgb, LUMA);
    vec2 slant = arm * RING * vec2(0.5, 0.866);
    float east = brightness(v_texcoord + vec2(arm.x * RING, 0.0));
    float west = brightness(v_texcoord - vec2(arm.x * RING, 0.0));
    float northEast = brightness(v_texcoord + slant);
    float southWest = brightness(v_texcoord - slant);
    float northWest = brightness(v_texcoord + vec2(-slant.x, slant.y));
    float southEast = brightness(v_texcoord + vec2(slant.x, -slant.y));
    vec2 gradient = vec2(east - west, 0.0) * (2.0 / 3.0 / RING)
        + vec2(northEast - northWest + southEast - southWest, northEast + northWest - southEast - southWest)
        * (vec2(1.0, 1.732) / 3.0 / RING);
    float mean = (here + east + west + northEast + northWest + southEast + southWest) / 7.0;
    float edge = smoothstep(0.16, 0.46, length(gradient) / (mean + 0.25));

    // Rough paper: it shows in the grain, unsteadies the lines and frays the border.
    float rough = noise(paperPlace * vec2(18.0, 45.0));
    float unsteady = 0.0022 * rough;
    float first = hatching(place.x + place.y + unsteady, 0.75 * (1.0 - smoothstep(0.12, 0.56, mean)), pixel);
    float second = hatching(place.x - place.y - unsteady, 0.70 * (1.0 - smoothstep(0.08, 0.30, mean)), pixel);
    float black = 1.0 - smoothstep(0.05, 0.12, mean);
    float tone = max(max(first, second) * 0.85, black);

    // The drawing ends before the paper does, at an uneven border.
    vec2 border = min(place, scale / texels - place);
    float inside = smoothstep(0.016, 0.024, min(border.x, border.y) + 0.004 * rough);

    bool isStroke = fWhichTypeOfDrawing > 0.5;
    float fine = noise((isStroke ? place : paperPlace) * 150.0);
    vec3 colour;
    if (isStroke)
    {
        vec3 paint = hue(v_texcoord.y);
        float light = smoothstep(0.02, 0.62, mix(here, mean, 0.5));
        colour = mix(paint * vec3(0.54, 0.47, 0.70), paint, light);
        colour = mix(colour, vec3(1.0), 0.45 * smoothstep(0.72, 1.0, here));
        colour = mix(colour, vec3(1.0), 0.30 * smoothstep(0.62, 0.72, fine));
        colour = mix(colour, INK, edge * 0.92);
    }
    else
    {
        float grain = 0.020 * fine + 0.014 * rough;
        colour = mix(PAPER + vec3(grain), INK, max(edge, tone) * inside);
    }
    gl_FragColor = vec4(colour, picture.a);
}

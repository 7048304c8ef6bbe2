// The 1970s, seen on a picture tube. In this order, with lengths in parts of the picture's shorter side (P):
//   bleed:    brightness from two places beside each other, colour differences (YIQ) from there and from four places
//             spread over BLEED, most of it to the left, so that colour runs to the right of what it belongs to
//   colour:   faded dyes: black lifted and brown, white creamy, blues thin
//   lines:    SCAN_LINES lines a P, a cosine that changes no mean brightness; they creep down two lines a cycle
//   grain:    two sizes of smooth noise of mean 0, new in each frame, strongest in the middle tones
//   vignette: the corners darken
// The mean brightness does not follow time, so nothing flickers. Noise is hashed from whole numbers
// (the permutation polynomial of Gustavson and McEwan, "Efficient computational noise in GLSL", 2012), so that a frame
// comes out the same each time.
// Cost: 6 fetches a pixel.
// Uniforms:
//   time: 0.1 to 10, in steps of 0.1 a frame; then the cycle starts again.
//   frameSize: width and height of the output in pixels, each above 0.
// ZV_Tex0: the picture, upright.
uniform sampler2D ZV_Tex0;
uniform float time;
uniform vec2 frameSize;

varying vec2 v_texcoord;
varying vec2 v_screen;

const float CYCLE = 10.0;
const float TURN = 6.2831853;
const float SCAN_LINES = 120.0;
const float SCAN_DEPTH = 0.085;
const float BLEED = 0.030;
// Where colour is taken from, in parts of BLEED, and how much of it; with what is taken here the weights, which fall
// off to the left, add up to 1.
const vec4 TAPS = vec4(0.2, -0.23, -0.50, -0.80);
const vec4 TAP_WEIGHTS = vec4(0.243, 0.247, 0.179, 0.066);
const float TAP_HERE = 0.265;
const float SOFT = 0.0016;
const float GRAINS = 340.0;
const float GRAIN = 0.105;

// RGB to YIQ, by rows.
const vec3 TO_Y = vec3(0.299, 0.587, 0.114);
const vec3 TO_I = vec3(0.596, -0.274, -0.322);
const vec3 TO_Q = vec3(0.211, -0.523, 0.312);

vec3 toRgb(vec3 yiq)
{
    return vec3(dot(yiq, vec3(1.0, 0.956, 0.621)), dot(yiq, vec3(1.0, -0.272, -0.647)),
                dot(yiq, vec3(1.0, -1.106, 1.703)));
}

vec2 permute(vec2 x)
{
    return mod((34.0 * x + 1.0) * x, 289.0);
}

vec4 permute(vec4 x)
{
    return mod((34.0 * x + 1.0) * x, 289.0);
}

// Smooth noise, mean 0, about -1 to 1; another part of one field for each whole seed from 0 to 288.
float noise(vec2 place, float seed)
{
    vec2 cell = floor(place);
    vec2 part = place - cell;
    vec2 field = permute(vec2(seed, 288.0 - seed));
    vec4 near = mod((cell + field).xxyy + vec4(0.0, 1.0, 0.0, 1.0), 289.0);
    vec4 corners = permute(mod(permute(near.xy).xyxy + near.zzww, 289.0));
    part = part * part * (3.0 - 2.0 * part);
    vec2 rows = mix(corners.xz, corners.yw, part.x);
    return mix(rows.x, rows.y, part.y) / 144.0 - 1.0;
}

// Brightness softened, colour drawn out to the right, alpha of the place itself.
vec4 bleed(vec2 place, vec2 unit)
{
    vec4 here = texture2D(ZV_Tex0, place);
    vec3 soft = 0.5 * (here.rgb + texture2D(ZV_Tex0, place + vec2(SOFT, 0.0) * unit).rgb);
    vec4 columns = place.x + BLEED * unit.x * TAPS;
    vec3 drawn = TAP_HERE * soft + TAP_WEIGHTS.x * texture2D(ZV_Tex0, vec2(columns.x, place.y)).rgb
        + TAP_WEIGHTS.y * texture2D(ZV_Tex0, vec2(columns.y, place.y)).rgb
        + TAP_WEIGHTS.z * texture2D(ZV_Tex0, vec2(columns.z, place.y)).rgb
        + TAP_WEIGHTS.w * texture2D(ZV_Tex0, vec2(columns.w, place.y)).rgb;
    return vec4(toRgb(vec3(dot(soft, TO_Y), dot(drawn, TO_I), dot(drawn, TO_Q))), here.a);
}

// Faded dyes: a soft contrast curve, then a range of its own for each channel, and thinner colour.
vec3 fade(vec3 colour)
{
    colour = clamp(colour, 0.0, 1.0);
    colour = mix(colour, colour * colour * (3.0 - 2.0 * colour), 0.35);
    vec3 black = vec3(0.085, 0.050, 0.045);
    vec3 white = vec3(1.0, 0.945, 0.800);
    colour = black + (white - black) * pow(colour, vec3(0.86, 0.96, 1.10));
    float grey = dot(colour, TO_Y);
    return mix(vec3(grey) * vec3(1.07, 0.99, 0.86), colour, 0.86);
}

void main()
{
    float shorter = min(frameSize.x, frameSize.y);
    vec2 unit = shorter / frameSize;
    vec2 place = v_screen / unit;
    float frame = floor(time * 10.0 + 0.5);

    vec4 picture = bleed(v_texcoord, unit);
    vec3 colour = fade(picture.rgb);

    // Lines that are not three pixels wide would turn into a pattern of their own.
    float shown = smoothstep(2.0, 3.0, shorter / SCAN_LINES);
    float bright = dot(colour, TO_Y);
    float line = cos(TURN * (place.y * SCAN_LINES + 2.0 * time / CYCLE));
    colour *= 1.0 + shown * SCAN_DEPTH * (1.4 - 0.8 * bright) * line;

    float grain = 0.65 * noise(place * GRAINS, frame) + 0.35 * noise(place * (0.45 * GRAINS), frame + 144.0);
    colour += GRAIN * (0.35 + 2.6 * bright * (1.0 - bright)) * grain * vec3(1.0, 0.96, 0.90);

    vec2 corner = (v_screen - vec2(0.5)) * 2.0;
    float away = dot(corner, corner);
    colour *= 1.0 - 0.05 * away - 0.10 * away * away;

    gl_FragColor = vec4(clamp(colour, 0.0, 1.0), picture.a);
}

// A textured vertex of a skinned model: up to four bones, mixed by their weights, take it to pixels of the
// view port, and one matrix takes those to clip coordinates (linear blend skinning).
//   p           = sum of w[i] * (u_BoneList[j[i]] * a_position) / sum of w[i],  w = a_weight, j = a_joint
//   gl_Position = u_mvp * p
//   v_texcoord  = a_texcoord0           (0 to 1 across texture 0)
// Weights count by their share of the sum, so whole numbers serve as well. Joints beyond the list select its
// last bone. A vertex whose weights are all 0 follows its first joint.
// u_mvp:      from pixels of the view port to clip coordinates.
// u_BoneList: from model units to pixels of the view port. GLSL 1.20 is sure of 512 floats of uniforms: 16
//             for u_mvp leave room for 31 matrices.
// No texture slots.
const int BONES = 31;

uniform mat4 u_mvp;
uniform mat4 u_BoneList[BONES];

attribute vec4 a_position;
attribute vec2 a_texcoord0;
attribute vec4 a_joint;
attribute vec4 a_weight;

varying vec2 v_texcoord;

vec4 moved(float joint)
{
    return u_BoneList[int(clamp(joint, 0.0, float(BONES - 1)))] * a_position;
}

void main()
{
    float total = dot(a_weight, vec4(1.0));
    vec4 share = total > 0.0 ? a_weight / total : vec4(1.0, 0.0, 0.0, 0.0);
    gl_Position = u_mvp * (share.x * moved(a_joint.x) + share.y * moved(a_joint.y) +
                           share.z * moved(a_joint.z) + share.w * moved(a_joint.w));
    v_texcoord = a_texcoord0;
}

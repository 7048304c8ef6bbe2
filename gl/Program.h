#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/Flag.h"
#include "core/Mat4.h"
#include "core/Ref.h"
#include "core/ZVExport.h"

namespace zv {

/// An active vertex attribute of a linked program.
struct Attribute {
    std::int32_t location;
    std::int32_t size;  ///< array size, 1 for a plain variable
    unsigned int type;  ///< GL enum
    std::string name;
};

/// An active uniform of a linked program; an array goes by its bare name, without brackets.
struct Uniform {
    std::int32_t location;
    std::int32_t size;  ///< array size, 1 for a plain variable
    unsigned int type;  ///< GL enum
    std::string name;
};

/// One linked GL program. Sources are written in the attribute/varying dialect; a head put before them
/// makes them GLSL 1.20 or 1.50. Attributes lie at the locations of AttribIndex. Every value that goes up
/// is remembered a location, so that setting it again costs no GL call.
///
/// The setters change the program that GL has in use: call use() (or RenderState::useProgram()) first.
class ZV_API Program : public Ref {
public:
    static const char* const UNIFORM_NAME_MAT_P;
    static const char* const UNIFORM_NAME_MAT_MV;
    static const char* const UNIFORM_NAME_MAT_MVP;
    static const char* const UNIFORM_NAME_SAMPLER0;
    static const char* const UNIFORM_NAME_SAMPLER1;
    static const char* const UNIFORM_NAME_SAMPLER2;
    static const char* const UNIFORM_NAME_SAMPLER3;
    static const char* const PROGRAM_POSITION_TEXTURE_NO_MVP;
    static const char* const PROGRAM_POSITION_POINT_NO_MVP;
    static const char* const PROGRAM_POSITION_LINE_NO_MVP;

    /// The engine's own uniforms, by their place among the built-in locations.
    enum Builtin : std::int32_t { MAT_P = 0, MAT_MV, MAT_MVP, SAMPLER0, SAMPLER1, SAMPLER2, SAMPLER3 };

    /// Bits of the built-in matrices that the program has.
    enum UniformFlags : std::uint32_t { HAS_MAT_MVP = 1u << 0, HAS_MAT_MV = 1u << 1, HAS_MAT_P = 1u << 2 };

    /// Null only for a null source. Sources that do not link are logged and give a program whose GL name is
    /// 0: it draws nothing and its setters do nothing. Autoreleased.
    static Program* create(const char* vertexSource, const char* fragmentSource);
    /// Reads both files from "zv_res/shaders/"; a missing file is logged and does not link. Autoreleased.
    static Program* createWithFile(const std::string& vertexFile, const std::string& fragmentFile);

    Program() = default;
    ~Program() override;
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// False only for a null source. Leaves the program in use.
    bool init(const char* vertexSource, const char* fragmentSource);
    /// Links anew what is attached; GL then forgets all uniform values, and so do we.
    bool link();
    void use();

    /// Null when the program has no such variable. Built-ins ("ZV_...") are no uniforms here.
    Uniform* getUniform(const std::string& name);
    Attribute* getAttrib(const std::string& name);
    /// For the setters by location; -1, which they ignore, when the program has no such uniform.
    std::int32_t getUniformLocation(const std::string& name);

    /// -1 when the program lacks it, 0 before init().
    std::int32_t getBuiltinLocation(Builtin builtin) const {
        return mBuiltins[static_cast<std::size_t>(builtin)];
    }
    bool hasMatMVP() const { return mFlags.isOn(HAS_MAT_MVP); }
    bool hasMatMV() const { return mFlags.isOn(HAS_MAT_MV); }
    bool hasMatP() const { return mFlags.isOn(HAS_MAT_P); }

    /// Says that the program is a point operation: it reads ZV_Tex0 only at the first texture coordinate.
    /// Where a sprite shows each texel in one pixel such a program needs no filter, and is drawn without.
    void setPointwise(bool pointwise) { mPointwise = pointwise; }
    bool isPointwise() const { return mPointwise; }

    void setUniform(int location, int value);
    void setUniform(const std::string& name, int value);
    void setUniform(int location, const Mat4& value);
    void setUniform(const std::string& name, const Mat4& value);
    /// `values` holds count matrices, column by column. The same holds for the 3 x 3 form.
    void setUniformMatrix4fv(const std::string& name, const float* values, unsigned int count);
    void setUniformMatrix4fv(int location, const float* values, unsigned int count);
    void setUniformMatrix3fv(const std::string& name, const float* values, unsigned int count);
    void setUniform1f(int location, float value);
    void setUniform1f(const std::string& name, float value);
    /// `values` holds count pairs. setUniform3fv takes triples.
    void setUniform2fv(const std::string& name, const float* values, int count);
    void setUniform2fv(int location, const float* values, int count);
    void setUniform3fv(const std::string& name, const float* values, int count);

    /// Queues a value for the next setUniformsForBuiltins(); the last one for a name wins. Needs no GL.
    void setUniformValue(const std::string& name, float value);
    /// Sends what is queued. Names that the program lacks are dropped.
    void setUniformsForBuiltins();

    /// GL's messages. Shader logs are gone, and empty, once the program is linked.
    std::string getVertexShaderLog();
    std::string getFragmentShaderLog();
    std::string getProgramLog();

    /// The GL name cut to 16 bits: 0xFFFF means none, 0 that linking failed.
    unsigned short getProgram() const { return static_cast<unsigned short>(mProgram); }
    /// The whole GL name, which is what GL must be given: 0xFFFFFFFF means none, 0 that linking failed.
    unsigned int getName() const { return mProgram; }

protected:
    /// False only for a null source: whether it compiled shows when the program is linked.
    bool compileShader(unsigned int* shader, unsigned int type, const char* source);
    void bindBuildInAttribs();
    void parseAttributes();
    void parseUniforms();
    /// Finds the built-ins and sets the samplers to their units; leaves the program in use.
    void updateUniforms();
    /// True when GL must be told: the location is valid and the bytes differ from the last ones.
    bool updateUniformData(int location, const void* data, unsigned int bytes);
    /// Deletes shaders and program and forgets all values.
    void clear();
    void clearShader();
    void clearUniformDatas();

private:
    struct PendingValue {
        float value;
        bool queued;
    };

    void logFailure();

    bool mPointwise = false;
    unsigned int mProgram = 0xFFFFFFFFu;
    unsigned int mVertexShader = 0;
    unsigned int mFragmentShader = 0;
    std::unordered_map<std::string, Attribute> mAttributes;
    std::unordered_map<std::string, Uniform> mUniforms;
    std::unordered_map<std::int32_t, std::vector<unsigned char>> mUniformDatas;
    /// Entries stay after they were sent, marked as not queued: a value set each frame allocates once.
    std::unordered_map<std::string, PendingValue> mPendingValues;
    std::array<std::int32_t, 7> mBuiltins{};
    Flag mFlags;
    bool mHasPending = false;
    /// Where the sources come from, for messages and frame captures.
    std::string mLabel = "program from text";
};

}  // namespace zv

#include "scene/IProgram.h"

#include "gl/Program.h"

namespace zv {

IProgram::IProgram() = default;

IProgram::IProgram(const IProgram&) = default;

IProgram& IProgram::operator=(const IProgram&) = default;

IProgram::~IProgram() = default;

void IProgram::setProgram(Program* program) {
    mProgram.set(program);
}

Program* IProgram::getProgram() {
    return mProgram.get();
}

}  // namespace zv

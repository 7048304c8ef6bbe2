#pragma once

#include "core/ZVExport.h"
#include "scene/RefHolder.h"

namespace zv {

class Program;

/// The shader program of a drawable, retained. Null at first.
class ZV_API IProgram {
public:
    IProgram();
    IProgram(const IProgram& other);             ///< borrows the program: shows it, never releases it
    IProgram& operator=(const IProgram& other);  ///< borrows the program: shows it, never releases it
    virtual ~IProgram();

    /// Releases the program before and retains this one; the same pointer changes nothing.
    virtual void setProgram(Program* program);
    virtual Program* getProgram();

private:
    RefHolder<Program> mProgram;
};

}  // namespace zv

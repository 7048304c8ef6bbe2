#include "gl/DeletedNames.h"

namespace zv {

namespace {

thread_local unsigned int tDeleted = 0;

}  // namespace

unsigned int DeletedNames::count() {
    return tDeleted;
}

void DeletedNames::add() {
    ++tDeleted;
}

}  // namespace zv

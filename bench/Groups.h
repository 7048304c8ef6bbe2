#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/EngineRig.h"
#include "bench/Frame.h"

namespace zv::host {
class HeadlessContext;
}

namespace zv::bench {

class Race;
class Report;

/// What the command line says.
struct Options {
    std::string resources;  ///< folder that holds zv_res
    std::string picture;
    std::string folder;  ///< where results go
    bool quick = false;  ///< fewer turns, 1280 x 720 only
    int turns() const { return quick ? 5 : 21; }
};

/// Hand-written GL on a context of its own.
class FloorRig {
public:
    FloorRig();
    ~FloorRig();
    FloorRig(const FloorRig&) = delete;
    FloorRig& operator=(const FloorRig&) = delete;
    bool isGood() const { return mContext != nullptr; }
    void makeCurrent();

private:
    std::shared_ptr<host::HeadlessContext> mContext;
};

/// Each measures one subject and adds its tables. False, with a line on standard error, when something that
/// it needs is not there.
bool measureStages(const Options& options, const Frame& frame, Report& report);
/// Two tables: the prices of the GL, and the passes of the beauty chain beside them.
bool measureFetches(const Options& options, const Frame& frame, Report& report);
bool measureChain(const Options& options, const Frame& frame, Report& report);
bool measureHostCosts(const Options& options, const Frame& frame, Report& report);
bool measurePeers(const Options& options, const Frame& frame, Report& report);
bool measureGrowth(const Options& options, Report& report);
/// Times each pass by the GL's own clock, beside what its bytes cost at the speed of a copy. Only where there
/// is such a clock and the GL is no software.
bool measurePasses(const Options& options, const Frame& frame, Report& report);

/// Adds the unit of all figures to a race: the linear copy pass of a frame, in that rig.
std::size_t addCopy(Race& race, FloorRig& rig, const Frame& frame);
/// Adds a rig's frame.
std::size_t addRig(Race& race, const std::string& name, EngineRig& rig);
/// The renderer of the context that is current.
std::string rendererName();
/// Whether that is one that draws with the processor.
bool isSoftware();
std::string sizeName(const Frame& frame);
/// A line on standard error; false.
bool complain(const std::string& what);

}  // namespace zv::bench

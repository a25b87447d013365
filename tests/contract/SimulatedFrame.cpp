#include "SimulatedFrame.h"

#include "foundation/DataType.h"

#include <utility>

namespace {

using namespace FrameSim;
namespace CPL = FrameDriver::CPL;

FrameServerOptions options() {
    static constexpr std::pair<ContractPid, DataType> types[] = {
        {pidInt16, CPL::Int16},   {pidInt32, CPL::Int32}, {pidUInt16, CPL::UInt16},
        {pidUInt32, CPL::UInt32}, {pidBool, CPL::Bool},   {pidFloat, CPL::Float},
        {pidString, CPL::String}};
    FrameServerOptions made;
    made.model.name = "contract";
    made.model.behaviour = "none";
    for (auto const& [pid, type] : types) {
        Parameter parameter;
        parameter.value = parameter.start = zeroValue(type);
        made.model.add(ParameterKey{pid, contractDid}, parameter);
    }
    List list;
    list.writable = true;
    made.model.add(ListKey{contractLid, 1, contractDid}, list);
    made.model.add(EventKey{1, contractDid}, Event{"", 3});
    return made;
}

}  // namespace

SimulatedFrame::SimulatedFrame() : server(options()) {
    server.start();
    server.refuse(true);
}

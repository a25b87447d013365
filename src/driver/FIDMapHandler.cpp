#include "driver/FIDMapHandler.h"

#include "platform/fid/FIDHelper.h"
#include "platform/fid/FIDPatternHelper.h"

FIDMapHandler::~FIDMapHandler() {
    functions.clear();
    patternFunctions.clear();
}

IInterface* FIDMapHandler::queryInterface(int id) {
    return id == functionInterfaceId ? this : nullptr;
}

void FIDMapHandler::handleFID(std::string const& name, FIDParameterList const& parameters) {
    if (auto const found = functions.find(name); found != functions.end()) {
        found->second->invoke(name, parameters);
        return;
    }
    if (patternFunctions.empty())
        return;
    FIDHelper const fid(name);
    for (auto const& function : patternFunctions) {
        FIDPatternHelper pattern(function->pattern());
        if (pattern.matches(fid)) {
            function->invoke(name, parameters, pattern.getPatternList());
            return;
        }
    }
}

void FIDMapHandler::reservedFunction1(void* /*word*/) {}
void FIDMapHandler::reservedFunction2() {}

bool FIDMapHandler::removeFunction(std::string const& name) { return functions.erase(name) != 0; }

void FIDMapHandler::addPatternFunction(std::unique_ptr<PatternFIDFunctionBase> function) {
    patternFunctions.push_back(std::move(function));
}

void FIDMapHandler::setState(std::string const& name, std::string const& value) {
    if (stateSink)
        stateSink->setState(name, value);
}

void FIDMapHandler::setStateNumber(std::string const& name, float value) {
    if (stateSink)
        stateSink->setStateNumber(name, value);
}

void FIDMapHandler::reservedState2(void* first, void* second) {
    if (stateSink)
        stateSink->reservedState2(first, second);
}

void FIDMapHandler::reservedState3(void* first, void* second) {
    if (stateSink)
        stateSink->reservedState3(first, second);
}

void FIDMapHandler::reservedState4(void* first) {
    if (stateSink)
        stateSink->reservedState4(first);
}

void FIDMapHandler::setText(std::string const& name, std::string const& value) {
    if (stateSink)
        stateSink->setText(name, value);
}

void FIDMapHandler::sendFunction(std::string const& name, FIDParameterList const& parameters) {
    if (functionSink)
        functionSink->sendFunction(name, parameters);
}

#pragma once

#include "platform/fid/FIDParameterList.h"

#include <string>

/// What a registered FID name leads to.
class StaticFIDFunctionBase {
  public:
    virtual ~StaticFIDFunctionBase() = default;
    virtual bool invoke(std::string const& name, FIDParameterList const& parameters) = 0;
};

/// A member function of an object that outlives this one.
template <typename T>
class StaticFIDFunctionImpl : public StaticFIDFunctionBase {
  public:
    using Member = bool (T::*)(std::string const&, FIDParameterList const&);

    StaticFIDFunctionImpl(T* target, Member operation) : object(target), member(operation) {}

    bool invoke(std::string const& name, FIDParameterList const& parameters) override {
        return (object->*member)(name, parameters);
    }

  private:
    T* object;
    Member member;
};

/// What a pattern of FID names leads to. `pattern` is in the form of FIDPatternHelper, and
/// `patternParameters` is what its wildcards captured.
class PatternFIDFunctionBase {
  public:
    virtual ~PatternFIDFunctionBase() = default;
    virtual bool invoke(std::string const& name, FIDParameterList const& parameters,
                        FIDParameterList const& patternParameters) = 0;
    virtual std::string pattern() const = 0;
};

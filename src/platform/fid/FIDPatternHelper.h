#pragma once

#include "platform/Visibility.h"
#include "platform/fid/FIDHelper.h"
#include "platform/fid/FIDParameterList.h"

#include <string>

/// A pattern of FID names.
///
///     pattern   = component { "." component }
///     component = "*" | text without "."
///
/// `*` stands for exactly one component of the name, which is captured; any other component
/// stands for itself, byte for byte.
class QFD_PUBLIC FIDPatternHelper {
  public:
    explicit FIDPatternHelper(std::string const& patternText);
    FIDPatternHelper(FIDPatternHelper const&) = default;
    FIDPatternHelper& operator=(FIDPatternHelper const&) = default;
    virtual ~FIDPatternHelper();

    /// True if the name fits the pattern as a whole. Keeps what the `*` captured for
    /// `getPatternList`; a refused name leaves that list empty.
    bool matches(FIDHelper const& fid);

    /// What the last successful match captured, in order, under the names "1", "2" and so on.
    FIDParameterList getPatternList() const { return captured; }

  private:
    std::string pattern;
    FIDParameterList captured;
};

#pragma once

#include "platform/Visibility.h"

#include <string>

/// A FID's name, wrapped for matching against a pattern.
class QFD_PUBLIC FIDHelper {
  public:
    explicit FIDHelper(std::string const& fid);
    FIDHelper(FIDHelper const&) = default;
    FIDHelper& operator=(FIDHelper const&) = default;
    virtual ~FIDHelper();

    std::string const& getText() const { return text; }

  private:
    std::string text;
};

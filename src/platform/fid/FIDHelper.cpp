#include "platform/fid/FIDHelper.h"

FIDHelper::FIDHelper(std::string const& fid) : text(fid) {}
FIDHelper::~FIDHelper() = default;

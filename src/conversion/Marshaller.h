#pragma once

namespace FrameDriver::Tools {

/// The base of all marshallers: turns a `T` into its text form and back. The operations are the
/// subclasses' own.
template <typename T>
class Marshaller {
  public:
    using Value = T;

    virtual ~Marshaller() = default;
};

}  // namespace FrameDriver::Tools

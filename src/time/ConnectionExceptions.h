#pragma once

#include <exception>
#include <string>
#include <utility>

namespace commsconns {

/// The connection as such failed: its opening, closing, endpoints or readiness.
class SocketException : public std::exception {
  public:
    explicit SocketException(std::string reason) : text(std::move(reason)) {}
    char const* what() const noexcept override { return text.c_str(); }

  private:
    std::string text;
};

/// A transfer failed.
class IOException : public std::exception {
  public:
    explicit IOException(std::string reason) : text(std::move(reason)) {}
    char const* what() const noexcept override { return text.c_str(); }

  private:
    std::string text;
};

}  // namespace commsconns

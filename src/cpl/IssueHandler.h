#pragma once

namespace FrameDriver::CPL {

class Issue;

/// Whoever is to hear what the frame reports.
///
/// Thread: the client library's callback thread; nothing is queued. Ownership: the issue is the
/// dispatcher's and valid only during the call; a handler copies what it wants to keep.
class IssueHandler {
  public:
    virtual void handleIssue(Issue* issue) = 0;

  protected:
    ~IssueHandler() = default;
};

}  // namespace FrameDriver::CPL

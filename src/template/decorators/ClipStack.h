#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Template {

/// One clip of a playback device's stack.
///
///     text = itemId "::" clipName "::" nextItemId
///
/// Read by a cut at every ":", with empty pieces dropped: a name that is empty or holds a ":"
/// shifts the parts. Missing parts are 0 and empty, unreadable numbers 0.
struct ClipStackEntry {
    std::int32_t itemId = 0;
    std::string_view clipName;    // a view of the text that was parsed
    std::int32_t nextItemId = 0;  // the itemId of the entry that follows, 0 at the end

    static ClipStackEntry parse(std::string_view text);
};

/// The clips of a device in order, the working form of one text in the store. Nothing checks
/// that the chain of `nextItemId` is consistent.
///
///     text = { entry ">>" }
///
/// Read by a cut at every ">", with empty pieces dropped. Lives no longer than the texts that it
/// was parsed from.
class ClipStack {
  public:
    ClipStack() = default;
    explicit ClipStack(std::string_view text);

    /// An entry without a `nextItemId` is the end of a chain: it replaces the whole stack unless
    /// the last entry leads to it. Any other goes ahead of the entry that it leads to, which the
    /// entry before then leads to it, or to the end if there is none such. An entry whose itemId
    /// is met on the way there changes nothing.
    void insert(ClipStackEntry const& entry);
    /// Gives every entry of that itemId the name.
    void modify(ClipStackEntry const& entry);
    /// Takes out the first entry of that itemId and lets the one before lead to the one behind.
    void remove(ClipStackEntry const& entry);

    /// Prints the stack at the end of `out`.
    void appendTo(std::string& out) const;

  private:
    std::vector<ClipStackEntry> entries;
};

}  // namespace FrameDriver::Template

#pragma once

#include "sims/frame/Behaviour.h"
#include "sims/frame/FrameModel.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameSim {

/// How an operation on the frame went, by the protocol's status numbers, with the cause of a
/// refusal: "no such parameter", "read only" and the like. Empty when it went well.
struct Outcome {
    std::int32_t status = 0;
    std::string cause;

    bool good() const { return status == 0; }
};

/// How a panel writes into a list.
enum ListAction : std::int32_t { insertItem = 1, modifyItem = 2, deleteItem = 3 };

/// A whole frame without a network: the model and what drives it.
///
/// Thread: safe for concurrent use. Each operation is done with all its consequences before the
/// next one begins; the changes of all are in one order, that of `takeChanges`.
class Frame {
  public:
    explicit Frame(FrameModel start);

    /// Called after every operation that changed something, on its thread, without a lock
    /// held. Set before the frame is shared.
    void setChangeHook(std::function<void()> hook) { changeHook = std::move(hook); }

    /// As a panel or another operator sets it. `flag` is 0 absolute, 1 relative, 4 or 10 back
    /// to the start value, 8 toggle. The value is clamped to the parameter's range. Its type
    /// must be the parameter's, or the one by which the client library sends that type: Float
    /// for the units, Int16 for State. A relative set takes any whole number for a whole
    /// number; 4, 8 and 10 don't look at the value.
    Outcome set(ParameterKey key, std::int32_t flag, Value const& value);
    Outcome event(EventKey key, std::string_view data);
    /// Insert and modify take the fields' bytes by the list's layout; delete ignores them.
    Outcome writeList(std::int32_t action, ListKey key, std::uint32_t itemId,
                      std::string_view fields);

    /// Past all rules but type and range: read only parameters too, and without consequences.
    bool assign(ParameterKey key, Value value);
    bool putItem(ListKey key, ListItem item);

    std::optional<Value> value(ParameterKey key) const;
    std::optional<DataType> typeOf(ParameterKey key) const;
    std::optional<std::vector<ListItem>> items(ListKey key) const;
    std::vector<Line> dump(std::string_view part = {}) const;
    std::string name() const;
    /// Shows the state between two operations. `reader` must not call the frame.
    void look(std::function<void(FrameModel const&)> const& reader) const;

    /// As if it had been switched off and on: with another model, if there is one, then with
    /// these values, past all rules but type and range. Nobody is told. False, and nothing has
    /// happened, if a value is of no parameter or of the wrong type.
    bool restart(std::optional<FrameModel> other, std::vector<ParameterChange> const& values);

    /// Whether an auto transition or the like is running, and the time of a field.
    bool busy() const;
    double fieldRate() const;
    /// Lets fields of video pass.
    void advanceFields(int count = 1);

    /// The changes since the last call, in order. Reading state inside `look` sees just the
    /// state behind the last of them, so that nobody is told something older afterwards.
    std::vector<Change> takeChanges();
    std::vector<Change> takeChanges(std::function<void(FrameModel const&)> const& look);

  private:
    template <typename Operation>
    auto run(Operation operation);

    mutable std::mutex mutex;
    FrameModel model;                      // guarded by mutex
    std::unique_ptr<Behaviour> behaviour;  // guarded by mutex
    std::function<void()> changeHook;
};

}  // namespace FrameSim

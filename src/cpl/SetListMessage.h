#pragma once

#include "cpl/ListItem.h"
#include "cpl/Message.h"
#include "platform/cplclient/CPLTypes.h"

#include <cstdint>
#include <string>
#include <utility>

namespace FrameDriver::CPL {

/// Writes an item of one of the frame's lists.
///
///     log line = "List Issue (lid=" n ", did=" hex ", number=" n ", action=" n ", item=" item
///
/// It opens with the words of a list issue, and its bracket stays open. Of the action only the
/// low 16 bits show.
class SetListMessage : public Message {
  public:
    SetListMessage(eListIDType list, std::uint16_t listNumber, std::uint32_t device,
                   eListItemAction itemAction, ListItem listItem)
        : Message(eSetListMessage),
          lid(list),
          number(listNumber),
          did(device),
          action(itemAction),
          item(std::move(listItem)) {}

    std::string toString() const override;

    eListIDType getLid() const { return lid; }
    std::uint16_t getNumber() const { return number; }
    std::uint32_t getDid() const { return did; }
    eListItemAction getAction() const { return action; }
    ListItem getItem() const { return item; }
    /// The item itself; stays the message's.
    ListItem const& viewItem() const { return item; }

  private:
    eListIDType lid;
    std::uint16_t number;
    std::uint32_t did;
    eListItemAction action;
    ListItem item;
};

}  // namespace FrameDriver::CPL

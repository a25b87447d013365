// What a result line does is told by its prefix: the part ahead of the first ":", compared
// whole. A line without ":" is its own prefix.
#include "cpl/Message.h"
#include "driver/QuillaneQFD.h"

#include <string_view>

using FrameDriver::CPL::Message;

struct QuillaneQFD::ResultKind {
    std::string_view prefix;
    void (QuillaneQFD::*dispatch)(std::string const&);
};

void QuillaneQFD::dispatchResult(std::string const& line) {
    static constexpr ResultKind kinds[] = {
        {"FID", &QuillaneQFD::dispatchFID},
        {"Set Message", &QuillaneQFD::dispatchFrameResult},
        {"Send Event Message", &QuillaneQFD::dispatchFrameResult},
        {"Set List Message", &QuillaneQFD::dispatchFrameResult},
        {"Parameter Subscription", &QuillaneQFD::dispatchFrameResult},
        {"List Subscription", &QuillaneQFD::dispatchFrameResult},
        {"Batch Subscription", &QuillaneQFD::dispatchFrameResult},
        {"SID", &QuillaneQFD::dispatchSID},
        {"Context", &QuillaneQFD::dispatchContext},
        {"TID", &QuillaneQFD::dispatchTID},
        {"DFID", &QuillaneQFD::dispatchDFID},
    };
    auto const prefix = std::string_view(line).substr(0, line.find(':'));
    for (auto const& kind : kinds)
        if (kind.prefix == prefix) {
            (this->*kind.dispatch)(line);
            return;
        }
}

// Straight to processFID: "AC" and ".INC" concern what comes from the panel, not what a
// dictionary makes. A dictionary whose entries refer to one another in a ring recurses until
// the stack is gone; dictionaries don't contain one.
void QuillaneQFD::dispatchFID(std::string const& line) {
    bool malformed = false;
    auto const [name, list] = fidMarshaller.unmarshal(line, malformed);
    std::unique_ptr<FIDParameterList> const parameters(list);
    if (malformed)
        log.getErrorStream() << "AWESOME-" << line;
    processFID(name, *parameters);
}

// The client sorts the six kinds out by the message's own type.
void QuillaneQFD::dispatchFrameResult(std::string const& line) {
    std::unique_ptr<Message> const message(cplMarshaller.unmarshal(line));
    if (message)
        cplClient.send(message.get());
}

void QuillaneQFD::dispatchSID(std::string const& line) {
    auto const [name, value] = sidMarshaller.unmarshal(line);
    sendSID(name, value);
}

void QuillaneQFD::dispatchContext(std::string const& line) {
    auto const [name, value] = contextMarshaller.unmarshal(line);
    context.set(name, value);
}

void QuillaneQFD::dispatchTID(std::string const& line) {
    auto const [name, value] = tidMarshaller.unmarshal(line);
    if (functions)
        functions->setText(name, value);
}

void QuillaneQFD::dispatchDFID(std::string const& line) {
    auto const [name, list] = didMarshaller.unmarshal(line);
    std::unique_ptr<FIDParameterList> const parameters(list);
    handleOwnFID(name, *parameters);
}

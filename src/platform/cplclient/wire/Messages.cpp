// One `fields` function per message lists its fields in wire order, for the writer and the
// reader alike: the two can't disagree.
#include "platform/cplclient/wire/Messages.h"

#include "platform/cplclient/wire/ByteReader.h"
#include "platform/cplclient/wire/ByteWriter.h"

#include <limits>

namespace cplwire {

namespace {

class Encoder {
  public:
    explicit Encoder(std::string& target) : writer(target) {}

    void operator()(std::uint16_t field) { writer.u16(field); }
    void operator()(std::uint32_t field) { writer.u32(field); }
    void operator()(std::int32_t field) { writer.i32(field); }
    void operator()(std::string_view field) {
        fits = fits && field.size() <= std::numeric_limits<std::uint16_t>::max();
        writer.sized16(field);
    }
    void rest(std::string_view field) { writer.bytes(field); }
    bool good() const { return fits; }

  private:
    ByteWriter writer;
    bool fits = true;
};

class Decoder {
  public:
    explicit Decoder(std::string_view body) : reader(body) {}

    void operator()(std::uint16_t& field) { field = reader.u16(); }
    void operator()(std::uint32_t& field) { field = reader.u32(); }
    void operator()(std::int32_t& field) { field = reader.i32(); }
    void operator()(std::string_view& field) { field = reader.sized16(); }
    void rest(std::string_view& field) { field = reader.bytes(reader.left()); }
    bool good() const { return reader.done(); }

  private:
    ByteReader reader;
};

template <typename Coder, typename... Fields>
void each(Coder& coder, Fields&... all) {
    (coder(all), ...);
}

void fields(auto& c, auto& m, Hello const*) { each(c, m.magicNumber, m.protocolVersion, m.name); }
void fields(auto& c, auto& m, Welcome const*) { each(c, m.protocolVersion, m.name); }
void fields(auto& c, auto& m, Refusal const*) { each(c, m.protocolVersion, m.reason); }
void fields(auto& c, auto& m, Set const*) { each(c, m.pid, m.did, m.flag, m.dataType, m.value); }
void fields(auto& c, auto& m, Event const*) { each(c, m.eid, m.did, m.data); }
void fields(auto& c, auto& m, SetList const*) {
    each(c, m.action, m.lid, m.did, m.number, m.itemId, m.fields);
}
void fields(auto& c, auto& m, SubscribeParameter const*) {
    each(c, m.pid, m.did, m.callback, m.flag);
}
void fields(auto& c, auto& m, SubscribeList const*) {
    each(c, m.lid, m.number, m.did, m.callback, m.flag);
}
void fields(auto& c, auto& m, Cancel const*) { each(c, m.flags, m.service); }
void fields(auto& c, auto& m, Acknowledge const*) { each(c, m.status); }
void fields(auto& c, auto& m, ParameterUpdate const*) {
    each(c, m.callback, m.pid, m.did, m.dataType, m.value);
}
void fields(auto& c, auto& m, ListUpdate const*) {
    each(c, m.itemCount);
    c.rest(m.payload);
}
void fields(auto&, auto&, Ping const*) {}
void fields(auto&, auto&, Pong const*) {}
void fields(auto&, auto&, Bye const*) {}

// The one message whose field count varies: the parameters fill the rest of the body.
void fields(Encoder& c, SubscribeBatch const& m, SubscribeBatch const*) {
    each(c, m.callback, m.flag);
    for (auto const& [pid, did] : m.parameters)
        each(c, pid, did);
}

bool endPrefix(std::string& out, std::size_t start) {
    auto const length = out.size() - start - prefixSize;
    if (length > maximumLength)
        return false;
    std::string prefix;
    ByteWriter(prefix).u32(static_cast<std::uint32_t>(length));
    out.replace(start, prefixSize, prefix);
    return true;
}

}  // namespace

template <typename Message>
bool encode(std::string& out, Message const& message, std::uint32_t sequence) {
    auto const start = out.size();
    ByteWriter header(out);
    header.u32(0);
    header.u8(static_cast<std::uint8_t>(Message::type));
    header.u32(sequence);
    Encoder encoder(out);
    fields(encoder, message, &message);
    if (encoder.good() && endPrefix(out, start))
        return true;
    out.resize(start);
    return false;
}

template <typename Message>
std::optional<Message> decode(std::string_view body) {
    Message message;
    Decoder decoder(body);
    fields(decoder, message, &message);
    return decoder.good() ? std::optional(std::move(message)) : std::nullopt;
}

template <>
std::optional<SubscribeBatch> decode(std::string_view body) {
    SubscribeBatch message;
    ByteReader reader(body);
    message.callback = reader.u16();
    message.flag = reader.i32();
    message.parameters.reserve(reader.left() / 8);
    while (reader.good() && reader.left() != 0) {
        auto const pid = reader.i32();
        message.parameters.emplace_back(pid, reader.u32());
    }
    return reader.good() ? std::optional(std::move(message)) : std::nullopt;
}

// All there are, so that the definitions above can stay here.
#define QFD_WIRE_MESSAGE(M)                                                                        \
    template bool encode<M>(std::string&, M const&, std::uint32_t);                                \
    template std::optional<M> decode<M>(std::string_view)
QFD_WIRE_MESSAGE(Hello);
QFD_WIRE_MESSAGE(Welcome);
QFD_WIRE_MESSAGE(Refusal);
QFD_WIRE_MESSAGE(Set);
QFD_WIRE_MESSAGE(Event);
QFD_WIRE_MESSAGE(SetList);
QFD_WIRE_MESSAGE(SubscribeParameter);
QFD_WIRE_MESSAGE(SubscribeList);
QFD_WIRE_MESSAGE(Cancel);
QFD_WIRE_MESSAGE(Acknowledge);
QFD_WIRE_MESSAGE(ParameterUpdate);
QFD_WIRE_MESSAGE(ParameterReply);
QFD_WIRE_MESSAGE(ListUpdate);
QFD_WIRE_MESSAGE(Ping);
QFD_WIRE_MESSAGE(Pong);
QFD_WIRE_MESSAGE(Bye);
#undef QFD_WIRE_MESSAGE
template bool encode<SubscribeBatch>(std::string&, SubscribeBatch const&, std::uint32_t);

}  // namespace cplwire

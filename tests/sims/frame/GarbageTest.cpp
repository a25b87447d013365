// Whatever a stranger sends: one line for its connection, and nothing for anybody else.
#include "ServerFixture.h"

#include <random>

namespace FrameSim {
namespace {

class Garbled : public ServerTest {
  protected:
    void SetUp() override { start(); }

    std::string randomBytes(std::size_t count) {
        std::string bytes;
        while (bytes.size() < count) {
            bytes.push_back(static_cast<char>(random() % 3 == 0 ? random() : random() % 16));
        }
        return bytes;
    }
    /// Requests as a panel sends them.
    static std::string requests() {
        std::string bytes;
        cplwire::encode(bytes, cplwire::Set{10, program1, 0, 2, std::string_view("\0\x05", 2)}, 1);
        cplwire::encode(bytes, cplwire::Event{40, me1, {}}, 2);
        cplwire::encode(bytes, cplwire::SubscribeParameter{10, program1, 7, 3}, 3);
        cplwire::encode(bytes, cplwire::SubscribeList{12, 1, 0x62000000, 7, 3}, 4);
        cplwire::encode(bytes, cplwire::SubscribeBatch{7, 3, {{10, program1}, {10, preset1}}}, 5);
        cplwire::encode(bytes, cplwire::SetList{1, 23, 0x35000000, 1, 5, "some fields"}, 6);
        cplwire::encode(bytes, cplwire::Cancel{3, 3}, 7);
        cplwire::encode(bytes, cplwire::Ping{}, 8);
        return bytes;
    }
    /// Sends them, hangs up, and expects one line for the end.
    void expectOneLine(TestClient& client, std::uint32_t id, std::string const& bytes) {
        client.sendBytes(bytes);
        client.close();
        auto const closed = "#" + std::to_string(id) + " closed";
        ASSERT_TRUE(told(closed + " reason="));
        server->clients();  // whatever else it might say has been said
        EXPECT_EQ(server->record().count(closed), 1U);
    }

    std::mt19937 random{2024};
};

TEST_F(Garbled, RandomBytesOfStrangersAndOfPanels) {
    auto const bystander = panel("bystander");
    for (std::uint32_t round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        TestClient client(server->port());
        if (round % 2 == 0) {
            ASSERT_EQ(client.hello(), "sample switcher");
        }
        expectOneLine(client, round + 2, randomBytes(random() % 300));
    }
    EXPECT_EQ(bystander->set(10, program1, 0, word(3)), 0);
    EXPECT_EQ(server->clients().size(), 1U);
}

TEST_F(Garbled, RequestsWithSpoiledBytes) {
    auto const bystander = panel("bystander");
    for (std::uint32_t round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        auto bytes = requests();
        for (auto spoiled = 1 + random() % 4; spoiled > 0; --spoiled) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        auto const client = panel();
        expectOneLine(*client, round + 2, bytes);
    }
    EXPECT_EQ(bystander->set(10, program1, 0, word(3)), 0);
}

TEST_F(Garbled, RequestsThatEndAtAnyByte) {
    auto const bytes = requests();
    for (std::uint32_t size = 0; size <= bytes.size(); ++size) {
        SCOPED_TRACE(size);
        auto const client = panel();
        expectOneLine(*client, size + 1, bytes.substr(0, size));
    }
}

TEST_F(Garbled, AStrangerGetsNoMemoryForALongGreeting) {
    // 513 bytes are announced: more than an honest greeting has, and refused on the spot.
    for (auto const* const length : {"\x00\x00\x02\x01", "\x00\x10\x00\x00", "\x7f\xff\xff\xff"}) {
        TestClient client(server->port());
        client.sendBytes({length, 4});
        EXPECT_EQ(client.news(), "closed");
    }
    EXPECT_TRUE(told("reason=\"garbage: message of impossible length\"", 3));
}

}  // namespace
}  // namespace FrameSim

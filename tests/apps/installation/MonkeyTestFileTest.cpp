// The shipped monkey test: it must raise every FID that the panel may raise, and each so that a
// dictionary knows it.

#include "Installation.h"
#include "conversion/FIDMarshaller.h"
#include "template/ContextStore.h"
#include "tools/MonkeyTestParser.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using FrameDriver::Tools::MonkeyTest::FIDGenerator;

std::vector<FIDGenerator> generators() {
    std::vector<FIDGenerator> all;
    for (auto const& file : Installation::files("monkeytest")) {
        auto const list = FrameDriver::XML::MonkeyTestParser().parseFile(
            file, FrameDriver::XML::ValidationMode::None);
        all.insert(all.end(), list.begin(), list.end());
    }
    return all;
}

TEST(MonkeyTestFile, RaisesEveryRegisteredFIDAndNoOther) {
    std::multiset<std::string> raised;
    for (auto const& generator : generators()) {
        raised.insert(generator.generate().first);
    }
    auto const names = Installation::registeredFIDs();
    EXPECT_EQ(raised, std::multiset<std::string>(names.begin(), names.end()));
}

// A parameter that no dictionary expects would make the FID a miss for ever.
TEST(MonkeyTestFile, EachFIDIsOneThatADictionaryKnowsButForTheDriversOwnTwo) {
    auto dictionary = Installation::dictionary(Installation::fids);
    std::set<std::string> missed;
    for (auto const& generator : generators()) {
        bool found = false;
        for (int tries = 0; tries < 40 && !found; ++tries) {
            auto const [name, parameters] = generator.generate();
            FrameDriver::Template::ContextStore store;
            found =
                !dictionary
                     .convert(FrameDriver::Conversion::FIDMarshaller().marshal(name, parameters),
                              &store)
                     .empty();
        }
        if (!found) {
            missed.insert(generator.generate().first);
        }
    }
    EXPECT_EQ(missed, (std::set<std::string>{"DRIVER.MONKEYTEST.ENABLE", "FRAME.ADDRESS.SET"}));
}

}  // namespace

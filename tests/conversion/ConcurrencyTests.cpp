#include "conversion/ContextMarshaller.h"
#include "conversion/FIDMarshaller.h"
#include "conversion/TemplateConversionCollection.h"
#include "template/ContextStore.h"
#include "template/TemplateParser.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

using Template::TemplateParser;

TEST(Concurrency, ConversionsOfSeveralThreadsAndAdditionsDontDisturbEachOther) {
    TemplateConversionCollection collection;
    TemplateConversionCollection late;
    Template::ContextStore context;
    for (int i = 0; i < 20; ++i) {
        auto const name = std::string("N").append(std::to_string(i)).append("=");
        collection.add({TemplateParser::parse(name + "{@x}"), {TemplateParser::parse(name)}});
        late.add({TemplateParser::parse("late" + name), {TemplateParser::parse(name)}});
    }
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 300; ++i) {
                auto const name =
                    std::string("N").append(std::to_string((i * 7 + t) % 20)).append("=");
                auto const results = collection.convert(name + "1", &context);
                wrong += results == std::vector<std::string>{name} ? 0 : 1;
            }
        });
    }
    threads.emplace_back([&] { collection.merge(late); });
    threads.emplace_back([&] { TemplateConversionCollection const copy(collection); });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(collection.getConversions().size(), 40U);
}

TEST(Concurrency, MarshallersServeSeveralThreads) {
    FIDMarshaller const fids;
    ContextMarshaller const contexts;
    FIDParameterList list;
    list.add("a", "1");
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 300; ++i) {
                bool malformed = false;
                auto const fid = fids.unmarshal(fids.marshal("X", list), malformed);
                std::unique_ptr<FIDParameterList> const owner(fid.second);
                auto const pair = contexts.unmarshal(contexts.marshal({"key", "value"}));
                wrong += fid.first == "X" && pair.second == "value" ? 0 : 1;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace FrameDriver::Conversion

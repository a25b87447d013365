#include "platform/sal/Module.h"
#include "platform/sal/Path.h"
#include "platform/sal/Thread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

TEST(Path, KnowsTheWorkingDirectory) {
    EXPECT_EQ(sal::Path::getCurrentWorkingDirPath().text(),
              std::filesystem::current_path().string());
    auto const before = std::filesystem::current_path();
    std::filesystem::current_path("/");
    EXPECT_EQ(sal::Path::getCurrentWorkingDirPath().text(), "/");
    std::filesystem::current_path(before);
}

TEST(Path, IsEmptyWhereTheWorkingDirectoryIsGone) {
    auto const before = std::filesystem::current_path();
    auto form = (std::filesystem::temp_directory_path() / "qfd-gone-XXXXXX").string();
    ASSERT_NE(mkdtemp(form.data()), nullptr);
    std::filesystem::current_path(form);
    std::filesystem::remove(form);
    auto const path = sal::Path::getCurrentWorkingDirPath();
    std::filesystem::current_path(before);
    EXPECT_EQ(path.text(), "");
}

TEST(Path, IsTheTextItWasGiven) {
    sal::Path const path("a\x92/b");
    EXPECT_EQ(sal::Path(path).text(), "a\x92/b");
}

TEST(Thread, SleepsAtLeastAsLongAsIsAsked) {
    auto const before = std::chrono::steady_clock::now();
    sal::Thread::mssleep(10);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(10));
}

class OneInterface : public virtual IInterface {
  public:
    IInterface* queryInterface(int id) override { return id == 7 ? this : nullptr; }
};

class ModuleOfOne : public sal::Module {
  public:
    IInterface* queryInterface(int id) override { return one.queryInterface(id); }

  private:
    OneInterface one;
};

TEST(Module, IsHeldAsAnInterfaceAndFoundAgain) {
    IInterface* const held = new ModuleOfOne;
    auto* const module = dynamic_cast<sal::Module*>(held);
    ASSERT_NE(module, nullptr);
    module->onLoad();
    EXPECT_NE(dynamic_cast<OneInterface*>(held->queryInterface(7)), nullptr);
    EXPECT_EQ(held->queryInterface(8), nullptr);
    module->onUnload();
    delete held;
}

}  // namespace

#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

// Readers share one holder on several threads while a writer makes its own through ensureUnique.
void shareWhileOneWrites(IVariantData *shared) {
  auto const text = [](IVariantData const *holder) {
    return *static_cast<VxString const *>(holder->constStoredData());
  };
  VxString const original = text(shared);
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    shared->copy();
    threads.emplace_back([&, shared] {
      while (!go.load()) {
      }
      for (int i = 0; i < 2000; ++i) {
        shared->copy();
        EXPECT_EQ(text(shared), original);
        shared->destruct();
      }
      shared->destruct();
    });
  }
  shared->copy();
  IVariantData *writer = shared;
  threads.emplace_back([&] {
    while (!go.load()) {
    }
    writer = writer->ensureUnique();
    *static_cast<VxString *>(writer->mutableStoredData()) = VxString("written");
  });
  go = true;
  for (auto &thread : threads)
    thread.join();
  EXPECT_NE(writer, shared);
  EXPECT_EQ(text(writer), "written");
  EXPECT_EQ(text(shared), original);
  writer->destruct();
  IVariantData *const last = shared->ensureUnique();
  EXPECT_EQ(last, shared) << "a reader kept a reference";
  last->destruct();
}

}  // namespace

TEST(HolderThreads, CopiesOnThreadsAndAWriterThroughEnsureUnique) {
  shareWhileOneWrites(constructVariantScalar<VxString>(nullptr, 0, VxString("original")));
  VxString const texts[] = {VxString("first"), VxString("second")};
  shareWhileOneWrites(constructVariantVectorWithDataWithDimsUnresolved<VxString>(texts, 2, {}, rowMajor));
}

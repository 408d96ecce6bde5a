#include "frame/ref_count.h"

#include <gtest/gtest.h>

namespace {
struct Shared : CRefCount {
    explicit Shared(bool& gone) : m_gone(gone) {}
    Shared(const Shared&) = default;
    ~Shared() override { m_gone = true; }
    bool& m_gone;
};
}  // namespace

TEST(RefCount, LastReleaseDestroys) {
    bool gone = false;
    auto* shared = new Shared(gone);
    EXPECT_EQ(shared->AddRef(), 1u);
    EXPECT_EQ(shared->AddRef(), 2u);
    EXPECT_EQ(shared->Release(), 1u);
    EXPECT_FALSE(gone);
    EXPECT_EQ(shared->Release(), 0u);
    EXPECT_TRUE(gone);
}

TEST(RefCount, ReleaseAtZeroWrapsAndDestroysNothing) {
    bool gone = false;
    Shared shared(gone);
    EXPECT_EQ(shared.Release(), 4294967295u);
    EXPECT_FALSE(gone);
}

TEST(RefCount, CopyInheritsTheCount) {
    bool gone = false;
    Shared three(gone);
    three.AddRef(), three.AddRef(), three.AddRef();
    Shared copy(three), assigned(gone);
    EXPECT_EQ(copy.AddRef(), 4u);
    static_cast<CRefCount&>(assigned) = three;
    EXPECT_EQ(assigned.AddRef(), 4u);
}

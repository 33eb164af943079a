#include <qel/AlgoInfo.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>

#include <boost/make_shared.hpp>

#include <qel/Exception.h>

#include "Core/private/AlgoInfoPrivate.h"
#include "Core/private/Runnable.h"
#include "Core/tests/Support/Expect.h"

using namespace qel;

static_assert(!std::is_copy_constructible_v<AlgoInfo>);
static_assert(std::has_virtual_destructor_v<Runnable>);

namespace {

int creations = 0;

BaseAlgorithm* createNothing()
{
    ++creations;
    return nullptr;
}

class SseRunner : public Runnable
{
public:
    void run(BaseAlgorithm*) const override {}
    bool isRunnable(BaseAlgorithm*) const override { return true; }
    OptimLevelType getOptimType() const override { return VEC_SSE; }
};

// In the registry while it lives.
class Registered
{
public:
    explicit Registered(char const* name)
        : info(name, "Tests", &createNothing)
    {
        AlgoInfoPrivate::allAlgorithms().push_back(&info);
    }
    ~Registered() { std::erase(AlgoInfoPrivate::allAlgorithms(), &info); }

    AlgoInfo info;
};

} // namespace

TEST(AlgoInfo, keepsNameLibraryAndCreator)
{
    AlgoInfo const info("Some", "Quelide", &createNothing);
    EXPECT_STREQ(info.getName().c_str(), "Some");
    EXPECT_STREQ(info.getLibName().c_str(), "Quelide");
    int const before = creations;
    EXPECT_EQ(info.createInstance(), nullptr);
    EXPECT_EQ(creations, before + 1);
}

TEST(AlgoInfo, isFoundByName)
{
    Registered first("First of the tests");
    Registered second("Second of the tests");
    Registered twin("First of the tests");
    EXPECT_EQ(AlgoInfo::fromName("First of the tests"), &first.info);
    EXPECT_EQ(AlgoInfo::fromName("Second of the tests"), &second.info);
}

TEST(AlgoInfo, reportsAnUnknownName)
{
    EXPECT_QEL_WHAT(AlgoInfo::fromName("Nothing"), InvalidCall,
                    "Invalid call :\n#1 Error : The className Nothing does not exist \n");
    EXPECT_QEL_THROW(AlgoInfo::fromName("first of the tests"), InvalidCall,
                     "The className first of the tests does not exist");
    EXPECT_QEL_THROW(AlgoInfo::fromName(nullptr), InvalidCall, "The className  does not exist");
}

TEST(AlgoInfo, keepsItsRunnersInOrder)
{
    AlgoInfo info("Some", "Quelide", &createNothing);
    auto& runners = AlgoInfoPrivate::getPrivate(&info)->getAllRunner();
    EXPECT_TRUE(runners.empty());
    auto const first = boost::make_shared<SseRunner>();
    auto const second = boost::make_shared<SseRunner>();
    runners.push_back(first);
    AlgoInfoPrivate::getPrivate(&info)->getAllRunner().push_back(second);
    ASSERT_EQ(runners.size(), 2u);
    EXPECT_EQ(runners[0], first);
    EXPECT_EQ(runners[1], second);
    EXPECT_EQ(runners[0]->getOptimType(), VEC_SSE);
}

TEST(AlgoInfo, hasNoRegisteredNameTwice)
{
    for (AlgoInfo* info : AlgoInfoPrivate::allAlgorithms())
        EXPECT_EQ(AlgoInfo::fromName(info->getName().c_str()), info) << info->getName().c_str();
}

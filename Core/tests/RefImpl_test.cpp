#include <qel/Ref.h>

#include <gtest/gtest.h>

#include <stdexcept>

#include <qel/Exception.h>

#include "Core/tests/Support/Expect.h"

namespace {

class Mortal : public qel::Object
{
public:
    explicit Mortal(int& deaths_)
        : deaths(deaths_)
    {}
    ~Mortal() override { ++deaths; }

    int number = 7;

private:
    int& deaths;
};

class Special : public Mortal
{
public:
    using Mortal::Mortal;
};

} // namespace

static_assert(std::is_convertible_v<Mortal*, qel::Ref<Mortal>>);
static_assert(std::is_convertible_v<qel::Ref<Special>, qel::Ref<Mortal>>);
static_assert(!std::is_constructible_v<qel::Ref<Special>, qel::Ref<Mortal>>);

TEST(RefImpl, startsNull)
{
    EXPECT_EQ(qel::RefImpl().getObject(), nullptr);
    EXPECT_FALSE(qel::Ref<Mortal>());
}

TEST(RefImpl, keepsItsObjectAliveAndDestroysItWithTheLastHandle)
{
    int deaths = 0;
    auto* const object = new Mortal(deaths);
    {
        qel::RefImpl const first(object);
        EXPECT_EQ(object->getReference(), 1u);
        {
            qel::RefImpl second(first);
            EXPECT_EQ(object->getReference(), 2u);
            qel::RefImpl third;
            third = second;
            EXPECT_EQ(object->getReference(), 3u);
        }
        EXPECT_EQ(object->getReference(), 1u);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}

TEST(RefImpl, leavesAliveTheObjectThatIsAssignedAgain)
{
    int deaths = 0;
    auto* const object = new Mortal(deaths);
    qel::RefImpl handle(object);
    handle.assign(object);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->getReference(), 1u);
    qel::RefImpl const& same = handle;
    handle = same;
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->getReference(), 1u);
}

TEST(RefImpl, releasesItsObjectForAnotherOne)
{
    int firstDeaths = 0;
    int secondDeaths = 0;
    qel::RefImpl handle(new Mortal(firstDeaths));
    auto* const second = new Mortal(secondDeaths);
    handle.assign(second);
    EXPECT_EQ(firstDeaths, 1);
    EXPECT_EQ(handle.getObject(), second);
    handle.assign(nullptr);
    EXPECT_EQ(secondDeaths, 1);
    EXPECT_EQ(handle.getObject(), nullptr);
}

TEST(RefImpl, doesNotDestroyAnObjectThatOthersCount)
{
    int deaths = 0;
    auto* const object = new Mortal(deaths);
    object->ref();
    {
        qel::RefImpl const handle(object);
    }
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->unref(), 0u);
    object->destroy();
    EXPECT_EQ(deaths, 1);
}

TEST(RefImpl, reportsTheDereferenceOfNull)
{
    EXPECT_QEL_WHAT(qel::RefImpl::nullDereferenceError(), qel::RuntimeError,
                    "Runtime error :\n#1 Error : Illegal attempt to dereference a pointer. \n");
    try {
        qel::RefImpl::nullDereferenceError();
    } catch (qel::RuntimeError const& error) {
        EXPECT_STREQ(error.getInfoLevel(0).fileName.c_str(), "Core/src/RefImpl");
        EXPECT_GT(error.getInfoLevel(0).line, 0u);
    }
}

TEST(Ref, reachesItsObject)
{
    int deaths = 0;
    qel::Ref<Mortal> const handle = new Mortal(deaths);
    EXPECT_TRUE(handle);
    EXPECT_EQ(handle->number, 7);
    EXPECT_EQ((*handle).number, 7);
    EXPECT_EQ(handle.get()->number, 7);
}

TEST(Ref, reportsTheDereferenceOfNull)
{
    qel::Ref<Mortal> const handle;
    EXPECT_QEL_THROW(static_cast<void>(handle->number), qel::RuntimeError, "Illegal attempt to dereference a pointer.");
    EXPECT_QEL_THROW(static_cast<void>((*handle).number), qel::RuntimeError,
                     "Illegal attempt to dereference a pointer.");
}

TEST(Ref, sharesItsObjectWithHandlesOfABase)
{
    int deaths = 0;
    qel::Ref<Mortal> base;
    {
        qel::Ref<Special> const special = new Special(deaths);
        base = special;
        EXPECT_EQ(special->getReference(), 2u);
        EXPECT_TRUE(base == qel::Ref<Mortal>(special));
    }
    EXPECT_EQ(deaths, 0);
    base = nullptr;
    EXPECT_EQ(deaths, 1);
    EXPECT_TRUE(base == qel::Ref<Mortal>());
    EXPECT_FALSE(base != qel::Ref<Mortal>());
}

TEST(Ref, survivesADestructorThatThrows)
{
    struct Loud : qel::Object
    {
        ~Loud() noexcept(false) override { throw std::runtime_error("out of a destructor"); }
    };
    qel::Ref<Loud> handle = new Loud;
    EXPECT_NO_THROW(handle = nullptr);
}

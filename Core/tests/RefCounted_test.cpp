#include <qel/RefCounted.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

#include <qel/Data.h>
#include <qel/Object.h>

namespace {

class Counted : public qel::RefCounted
{};

class Mortal : public qel::Object
{
public:
    explicit Mortal(int& deaths_)
        : deaths(deaths_)
    {}
    ~Mortal() override { ++deaths; }

private:
    int& deaths;
};

class Loud : public qel::Object
{
public:
    explicit Loud(int& deaths_)
        : deaths(deaths_)
    {}
    ~Loud() noexcept(false) override
    {
        ++deaths;
        throw std::runtime_error("out of a destructor");
    }

private:
    int& deaths;
};

} // namespace

static_assert(!std::is_default_constructible_v<qel::RefCounted>, "only derived classes have objects");
static_assert(!std::is_default_constructible_v<qel::Object>);
static_assert(std::has_virtual_destructor_v<qel::RefCounted>);
static_assert(std::is_base_of_v<qel::RefCounted, qel::Object>);
static_assert(std::is_base_of_v<qel::Object, qel::Data>);
static_assert(std::is_abstract_v<qel::Data>);
static_assert(std::is_same_v<decltype(std::declval<qel::RefCounted const&>().ref()), unsigned int>);

TEST(RefCounted, startsAtZero) { EXPECT_EQ(Counted().getReference(), 0u); }

TEST(RefCounted, countsUpAndDownAndReturnsTheNewCount)
{
    Counted const object;
    EXPECT_EQ(object.ref(), 1u);
    EXPECT_EQ(object.ref(), 2u);
    EXPECT_EQ(object.getReference(), 2u);
    EXPECT_EQ(object.unref(), 1u);
    EXPECT_EQ(object.unref(), 0u);
    EXPECT_EQ(object.getReference(), 0u);
}

TEST(RefCounted, isUnsigned32BitsWide)
{
    Counted const object;
    EXPECT_EQ(object.unref(), 4294967295u);
    EXPECT_EQ(object.ref(), 0u);
}

TEST(RefCounted, doesNotCopyItsCount)
{
    Counted first;
    first.ref();
    Counted second(first);
    EXPECT_EQ(second.getReference(), 0u);
    second.ref();
    second.ref();
    first = second;
    EXPECT_EQ(first.getReference(), 1u);
}

TEST(RefCounted, losesNoCountBetweenThreads)
{
    Counted const object;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&object] {
            for (int n = 0; n < 20000; ++n) {
                object.ref();
                object.ref();
                object.unref();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(object.getReference(), 80000u);
}

TEST(Object, isDestroyedWhateverItsCount)
{
    int deaths = 0;
    auto* const object = new Mortal(deaths);
    object->ref();
    object->destroy();
    EXPECT_EQ(deaths, 1);
}

TEST(Object, isDestroyedThroughItsBase)
{
    int deaths = 0;
    qel::Object::destroy(new Mortal(deaths));
    EXPECT_EQ(deaths, 1);
}

TEST(Object, destroysNothingWhenNull) { EXPECT_NO_THROW(qel::Object::destroy(nullptr)); }

TEST(Object, swallowsWhatItsDestructorThrows)
{
    int deaths = 0;
    EXPECT_NO_THROW((new Loud(deaths))->destroy());
    EXPECT_NO_THROW(qel::Object::destroy(new Loud(deaths)));
    EXPECT_EQ(deaths, 2);
}

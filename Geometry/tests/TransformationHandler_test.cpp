#include <qel/Property.h>
#include <qel/geometry/Transformation2D.h>
#include <qel/geometry/Transformation2DHandler.h>
#include <qel/geometry/Transformation3D.h>
#include <qel/geometry/Transformation3DHandler.h>

#include <gtest/gtest.h>

using namespace qel;
using namespace qel::geometry;

namespace {

// It counts those that are alive.
template <class Base, class Point> class Counted : public Base
{
public:
    explicit Counted(int& alive)
        : m_alive(alive)
    {
        ++m_alive;
    }
    ~Counted() override { --m_alive; }
    void map(Point&) const override {}
    void map(Point*, Point*) const override {}

private:
    int& m_alive;
};

struct InThePlane
{
    using Handler = Transformation2DHandler;
    using Transformation = Counted<Transformation2D, math::Vector2<double>>;
};

struct InSpace
{
    using Handler = Transformation3DHandler;
    using Transformation = Counted<Transformation3D, math::Vector3<double>>;
};

template <class Family> class TransformationHandlers : public testing::Test
{
protected:
    typename Family::Transformation* make() { return new typename Family::Transformation(alive); }

    int alive = 0;
};

} // namespace

using Families = testing::Types<InThePlane, InSpace>;
TYPED_TEST_SUITE(TransformationHandlers, Families);

TYPED_TEST(TransformationHandlers, holdNothingAtFirst)
{
    typename TypeParam::Handler handler;
    EXPECT_EQ(handler.get(), nullptr);
    EXPECT_EQ(handler.takeOwnership(), nullptr);
    handler.reset();
    EXPECT_EQ(handler.get(), nullptr);
}

TYPED_TEST(TransformationHandlers, deleteWhatTheyHeldWhenTheyAreSet)
{
    {
        typename TypeParam::Handler handler;
        handler.set(this->make());
        auto* const second = this->make();
        EXPECT_EQ(this->alive, 2);
        handler.set(second);
        EXPECT_EQ(this->alive, 1);
        EXPECT_EQ(handler.get(), second);
        handler.set(second);
        EXPECT_EQ(this->alive, 1);
        handler.reset();
        EXPECT_EQ(this->alive, 0);
        EXPECT_EQ(handler.get(), nullptr);
        handler.set(this->make());
    }
    EXPECT_EQ(this->alive, 0);
}

TYPED_TEST(TransformationHandlers, areEmptyAfterTheOwnershipIsTakenAndTheObjectIsGone)
{
    typename TypeParam::Handler handler;
    handler.set(this->make());
    bool const held = handler.takeOwnership() != nullptr;
    EXPECT_TRUE(held);
    EXPECT_EQ(this->alive, 0);
    EXPECT_EQ(handler.get(), nullptr);
}

TYPED_TEST(TransformationHandlers, shareOneSlotWithTheirCopies)
{
    typename TypeParam::Handler last;
    {
        typename TypeParam::Handler first;
        typename TypeParam::Handler const copy = first;
        auto* const transformation = this->make();
        first.set(transformation);
        EXPECT_EQ(copy.get(), transformation);
        last.set(this->make());
        last = copy;
        EXPECT_EQ(this->alive, 1);
        EXPECT_EQ(last.get(), transformation);
        typename TypeParam::Handler& self = last;
        last = self;
        EXPECT_EQ(last.get(), transformation);
    }
    EXPECT_EQ(this->alive, 1);
    last.reset();
    EXPECT_EQ(this->alive, 0);
}

TYPED_TEST(TransformationHandlers, areCarriedByProperties)
{
    typename TypeParam::Handler handler;
    Property<typename TypeParam::Handler*> property;
    property = &handler;
    EXPECT_EQ(property.get(), &handler);
    String rest;
    EXPECT_FALSE(property.read("anything", rest));
}

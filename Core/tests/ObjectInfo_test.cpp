#include <qel/ObjectInfo.h>

#include <gtest/gtest.h>

#include <qel/Exception.h>
#include <qel/Ref.h>

#include "Core/private/ObjectInfoPrivate.h"
#include "Core/tests/Support/Expect.h"

using namespace qel;

namespace {

class Thing : public Object
{
public:
    static Object* BaseNew() { return new Thing; }
};

class OtherThing : public Object
{
public:
    static Object* BaseNew() { return new OtherThing; }
};

// Registered as the library's own classes are, in static initialisation.
ObjectInfo& thingInfo = ObjectInfoPrivate::createInfo("Thing of the tests", &Thing::BaseNew);

} // namespace

TEST(ObjectInfo, isFoundByName)
{
    ObjectInfo const& info = ObjectInfo::getObjectInfoFromName("Thing of the tests");
    EXPECT_EQ(&info, &thingInfo);
    EXPECT_STREQ(info.getClassName().c_str(), "Thing of the tests");
    EXPECT_EQ(ObjectInfoPrivate::allObjectInfo().count("Thing of the tests"), 1u);
}

TEST(ObjectInfo, createsAnObjectOfItsClassEachTime)
{
    ObjectInfo const& info = ObjectInfo::getObjectInfoFromName("Thing of the tests");
    Ref<Object> const first = info.createInstance();
    Ref<Object> const second = info.createInstance();
    EXPECT_NE(dynamic_cast<Thing*>(first.get()), nullptr);
    EXPECT_NE(first.get(), second.get());
}

TEST(ObjectInfo, reportsAnUnknownName)
{
    EXPECT_QEL_WHAT(ObjectInfo::getObjectInfoFromName("Nothing"), RuntimeError,
                    "Runtime error :\n#1 Error : No object of type ObjectInfo for the class name : Nothing \n");
    EXPECT_QEL_THROW(ObjectInfo::getObjectInfoFromName(""), RuntimeError,
                     "No object of type ObjectInfo for the class name : ");
}

TEST(ObjectInfo, copiesTheEntryItHandles)
{
    ObjectInfo const copy(thingInfo);
    EXPECT_STREQ(copy.getClassName().c_str(), "Thing of the tests");
    ObjectInfo& other = ObjectInfoPrivate::createInfo("Other thing of the tests", &OtherThing::BaseNew);
    ObjectInfo assigned(other);
    assigned = copy;
    EXPECT_STREQ(assigned.getClassName().c_str(), "Thing of the tests");
    Ref<Object> const object = assigned.createInstance();
    EXPECT_NE(dynamic_cast<Thing*>(object.get()), nullptr);
    EXPECT_STREQ(other.getClassName().c_str(), "Other thing of the tests");
    ObjectInfoPrivate::allObjectInfo().erase("Other thing of the tests");
}

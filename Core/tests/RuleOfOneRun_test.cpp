#include "Core/private/Rules/RuleOfOneRun.h"

#include "Core/tests/RuleSupport.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <stdexcept>
#include <string>
#include <vector>

namespace qel::test {
namespace {

/// What rules did, in the order of their doing.
using Log = std::vector<std::string>;

class NotingRule : public Rules<Property<double>>
{
public:
    NotingRule(Log& log, char const* name)
        : m_log(log)
        , m_name(name)
    {}
    void apply(Property<double>& property) override
    {
        m_log.push_back(std::string(m_name) + " of " + property.getName().c_str());
    }

private:
    Log& m_log;
    char const* m_name;
};

struct AddNotingRule
{
    Log& log;
    char const* name;

    void operator()(Property<double>& property) const
    {
        pushRule<double>(property, boost::make_shared<NotingRule>(log, name));
    }
};

class RuleOfOneRunTest : public testing::Test
{
protected:
    AddNotingRule note(char const* name) { return {log, name}; }
    Log applied()
    {
        log.clear();
        property.applyRules();
        return log;
    }

    Log log;
    Log const lastingAlone{"first of value", "second of value"};
    Named<double> property{"value", 1, note("first"), note("second")};
};

TEST_F(RuleOfOneRunTest, standsBehindTheLastingRulesUntilItGoes)
{
    EXPECT_EQ(applied(), lastingAlone);
    for (int run = 0; run < 3; ++run) {
        {
            RuleOfOneRun const rule(property, note("of one run"));
            EXPECT_EQ(applied(), Log({"first of value", "second of value", "of one run of value"}));
            EXPECT_EQ(applied().size(), 3u) << "in use, it stays";
        }
        EXPECT_EQ(applied(), lastingAlone);
    }
}

TEST_F(RuleOfOneRunTest, takesSeveralRulesOrNone)
{
    {
        RuleOfOneRun const several(property, [&](Property<double>& value) {
            note("third")(value);
            note("fourth")(value);
        });
        EXPECT_EQ(applied(), Log({"first of value", "second of value", "third of value", "fourth of value"}));
    }
    EXPECT_EQ(applied(), lastingAlone);
    {
        RuleOfOneRun const none(property, [](Property<double>&) {});
        EXPECT_EQ(applied(), lastingAlone);
    }
    EXPECT_EQ(applied(), lastingAlone);
}

TEST_F(RuleOfOneRunTest, servesAPropertyWithoutLastingRules)
{
    Named<double> bare("bare");
    {
        RuleOfOneRun const rule(bare, note("of one run"));
        bare.applyRules();
    }
    bare.applyRules();
    EXPECT_EQ(log, Log{"of one run of bare"});
}

TEST_F(RuleOfOneRunTest, isAddedAndTakenAwayWhileThePropertyIsLocked)
{
    property.lock(true);
    {
        RuleOfOneRun const rule(property, note("of one run"));
        EXPECT_EQ(applied().size(), 3u);
    }
    EXPECT_EQ(applied(), lastingAlone);
    EXPECT_TRUE(property.isLocked());
}

TEST_F(RuleOfOneRunTest, severalGoInTheirOwnOrder)
{
    {
        RuleOfOneRun const outer(property, note("outer"));
        {
            RuleOfOneRun const inner(property, note("inner"));
            EXPECT_EQ(applied(), Log({"first of value", "second of value", "outer of value", "inner of value"}));
        }
        EXPECT_EQ(applied(), Log({"first of value", "second of value", "outer of value"}));
    }
    EXPECT_EQ(applied(), lastingAlone);
}

TEST_F(RuleOfOneRunTest, goesWhenARuleRefuses)
{
    property = -1;
    try {
        RuleOfOneRun const rule(property, ASSERT_POSITIVE_ONLY);
        property.applyRules();
        ADD_FAILURE() << "nothing was thrown";
    } catch (RuleException&) {
    }
    EXPECT_EQ(failureOf(property), "");
    EXPECT_EQ(applied(), lastingAlone);
}

TEST_F(RuleOfOneRunTest, goesWhenAnotherExceptionPasses)
{
    try {
        RuleOfOneRun const rule(property, note("of one run"));
        throw 7;
    } catch (int) {
    }
    EXPECT_EQ(applied(), lastingAlone);
}

TEST_F(RuleOfOneRunTest, leavesNothingOfRulesWhoseMakingFailsHalfWay)
{
    auto const fail = [&] {
        RuleOfOneRun const rule(property, [&](Property<double>& value) {
            note("third")(value);
            throw std::runtime_error("no fourth");
        });
    };
    EXPECT_THROW(fail(), std::runtime_error);
    EXPECT_EQ(applied(), lastingAlone);
}

TEST_F(RuleOfOneRunTest, letsGoOfWhatTheRuleHolds)
{
    auto const rule = boost::make_shared<NotingRule>(log, "of one run");
    {
        RuleOfOneRun const run(property, [&](Property<double>& value) { pushRule<double>(value, rule); });
        EXPECT_EQ(rule.use_count(), 2);
    }
    EXPECT_EQ(rule.use_count(), 1);
}

} // namespace
} // namespace qel::test

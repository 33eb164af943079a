#include <qel/helper/copySpatialCalibration.h>

#include <gtest/gtest.h>

#include "Core/tests/Support/HostImage.h"

using namespace qel;
using namespace qel::test;

TEST(copySpatialCalibration, copiesSpacingAndOriginOfColumnsRowsAndPlansAlone)
{
    HostImage source;
    HostImage destination;
    for (Components component : {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES}) {
        source.setSpacingOf(component, 0.5 + int(component));
        source.setOriginOf(component, -10.0 - int(component));
        destination.setSpacingOf(component, 100.0);
        destination.setOriginOf(component, 200.0);
    }
    source.setSpatialUnitName("mm");
    source.setTemporalUnitName("s");
    source.setInterpretation(QEL_LABEL);
    destination.setSpatialUnitName("um");
    destination.setTemporalUnitName("ms");
    destination.setInterpretation(QEL_BINARY);
    source.forgetCalls();
    destination.forgetCalls();

    helper::copySpatialCalibration(&source, &destination);

    EXPECT_EQ(source.callsOf(GET_SPACING), 3u);
    EXPECT_EQ(source.callsOf(GET_ORIGIN), 3u);
    EXPECT_EQ(destination.callsOf(SET_SPACING), 3u);
    EXPECT_EQ(destination.callsOf(SET_ORIGIN), 3u);
    for (Components component : {COLUMNS, ROWS, PLANS}) {
        EXPECT_EQ(destination.getSpacingOf(component), 0.5 + int(component));
        EXPECT_EQ(destination.getOriginOf(component), -10.0 - int(component));
    }
    for (Components component : {TIME_SERIES, SPECTRAL_SERIES}) {
        EXPECT_EQ(destination.getSpacingOf(component), 100.0);
        EXPECT_EQ(destination.getOriginOf(component), 200.0);
    }
    EXPECT_STREQ(destination.getSpatialUnitName().c_str(), "um");
    EXPECT_STREQ(destination.getTemporalUnitName().c_str(), "ms");
    EXPECT_EQ(destination.getInterpretation(), QEL_BINARY);
}

// The numbers of the vat, for the model and for those that draw true runs of it.
#pragma once

namespace vat {

constexpr double firstLow = 2.0, firstHigh = 6.0;  // the level at the start lies between
constexpr double firstLag = 2.0;
constexpr double fillLow = 0.9, fillHigh = 1.1;  // level gained per unit of inflow
constexpr double drain = 1.5;                    // level lost per cycle while draining, times that
constexpr double lagGain = 0.5;
constexpr double responseLow = 3.0, responseHigh = 6.0;  // response time of the lag, in seconds
constexpr double floatError = 0.2;                       // of the measure
constexpr double gaugeError = 2.5;                       // of the coarse reading
constexpr double lowEnd = 10.0, highStart = 20.0;        // of the three spaces of the level
constexpr double dumpFactor = 0.5, dumpRest = 5.0;  // what is left of a level when draining starts
constexpr double guardOfDump = 15.0;
constexpr double markOfGuard = 7.0;

// Bits of vat.lamps: one lamp for each condition of the continuous side.
enum Lamp {
    LAMP_EQ_4 = 0,
    LAMP_DIFF_15,
    LAMP_LE_12,
    LAMP_LT_12,
    LAMP_GE_12,
    LAMP_GT_12,
    LAMP_IN_8_16,
    LAMP_LT_LAG,
    LAMP_GE_LAG,
    LAMP_DIFF_LAG,
    LAMP_NOT_LT_12,
    LAMP_LT_OR_GE_12,
    LAMP_GE_12_AND_FILLING,
    LAMP_FILLING,
    LAMP_CONST,
    LAMP_HIGH,
    LAMPS
};

}  // namespace vat

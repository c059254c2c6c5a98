// A day of the room, step by step.
#include "quality/room_truth.h"

#include "support/dice.h"

namespace quality {

namespace {

// The numbers of the model.
constexpr double heater = 20.0, outside = 4.0;
constexpr double low = 10.0, high = 17.0;
constexpr double closedExchange = 0.05, openExchange = 0.0002;
constexpr double leastGain = 0.95, mostGain = 1.05;
constexpr double leastTerm = 0.0, mostTerm = 0.3;

// The faults.
constexpr double bias = 0.5;
constexpr double draught = 0.5;

class UncertainValue {
public:
    UncertainValue(RoomSetting const& setting, std::uint64_t stream, double least, double most)
        : kind(setting.uncertainty), dice(setting.seed, stream), least(least), most(most) {
        value = kind == Uncertainty::midpoint ? (least + most) / 2.0 : dice.within(least, most);
    }

    double next() {
        if (kind == Uncertainty::redrawn)
            value = dice.within(least, most);
        return value;
    }

private:
    Uncertainty kind;
    Dice dice;
    double least, most, value;
};

class Room {
public:
    explicit Room(RoomSetting const& setting)
        : setting(setting),
          gain(setting, 1, leastGain, mostGain),
          term(setting, 2, leastTerm, mostTerm),
          sensor(setting.seed, 3) {
        switchThermostat(0);
    }

    // Step k; the steps are taken in order, from 0 on.
    RoomSample step(int k) {
        if (k > 0 && k == setting.onset && setting.fault == RoomFault::windowOpen)
            window = "open";
        advance(k);
        if (k > 0)
            switchThermostat(k);
        double const shown = measure(k);
        if (strikesAtOnce() && k == setting.onset)
            struck = k;
        return {shown, rate, temperature, thermostat, window};
    }

    std::optional<int> struck;

private:
    // The rate answers to the temperature of the step before.
    void advance(int k) {
        double const before = temperature;
        double const g = gain.next();
        if (k > 0)
            temperature += g * rate;
        double const exchange = window == "open" ? openExchange : closedExchange;
        rate = exchange * (drive() - before) + term.next();
        if (setting.fault == RoomFault::draught && k >= setting.onset)
            rate -= draught;
    }

    double drive() const {
        return thermostat == "on" || thermostat == "stuck_on" ? heater : outside;
    }

    void switchThermostat(int k) {
        if (thermostat == "off" && temperature < low)
            turn("on", "stuck_off", RoomFault::stuckOff, k);
        else if (thermostat == "on" && temperature >= high)
            turn("off", "stuck_on", RoomFault::stuckOn, k);
    }

    void turn(char const* wanted, char const* stuck, RoomFault fault, int k) {
        bool const sticks = setting.fault == fault && k >= setting.onset;
        thermostat = sticks ? stuck : wanted;
        if (sticks)
            struck = k + 1;
    }

    double measure(int k) {
        double const noise = setting.noise * sensor.within(-1.0, 1.0);
        if (setting.fault == RoomFault::sensorDead && k >= setting.onset && k > 0)
            return shown;
        shown = rate + noise;
        if (setting.fault == RoomFault::sensorBias && k >= setting.onset)
            shown += bias;
        return shown;
    }

    bool strikesAtOnce() const {
        return setting.fault != RoomFault::none && setting.fault != RoomFault::stuckOn &&
               setting.fault != RoomFault::stuckOff;
    }

    RoomSetting setting;
    UncertainValue gain, term;
    Dice sensor;
    double temperature = 4.0, rate = 0.0;
    double shown = 0.0;  // last
    std::string thermostat = "off", window = "closed";
};

}  // namespace

char const* nameOf(RoomFault fault) {
    switch (fault) {
        case RoomFault::none:
            return "none";
        case RoomFault::stuckOn:
            return "stuck_on";
        case RoomFault::stuckOff:
            return "stuck_off";
        case RoomFault::sensorDead:
            return "sensor_dead";
        case RoomFault::sensorBias:
            return "sensor_bias";
        case RoomFault::windowOpen:
            return "window_open";
        case RoomFault::draught:
            return "draught";
    }
    return "";
}

char const* nameOf(Uncertainty uncertainty) {
    switch (uncertainty) {
        case Uncertainty::midpoint:
            return "midpoint";
        case Uncertainty::constant:
            return "constant";
        case Uncertainty::redrawn:
            return "redrawn";
    }
    return "";
}

RoomDay roomDay(RoomSetting const& setting) {
    RoomDay day;
    Room room(setting);
    for (int k = 0; k <= setting.steps; ++k)
        day.samples.push_back(room.step(k));
    // A thermostat that sticks at the last step has touched no measure of the day.
    if (room.struck && *room.struck <= setting.steps)
        day.struck = room.struck;
    return day;
}

}  // namespace quality

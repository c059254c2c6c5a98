// The environment of the engine, and the helpers of its tests.
#include "engine_fixture.h"

#include <algorithm>
#include <map>

#include "continuous/bridge.h"

namespace engine_test {

std::vector<std::string> bridgeCalls;
Outside outside;

namespace {

void record(char const* what, Atom const* atom, s_runtime const* rt) {
    bridgeCalls.push_back(std::string(what) + " " + (atom != nullptr ? atom->getId() : "-") + " #" +
                          std::to_string(rt->num));
}

bool handOut(int count, std::vector<int> const& from, int* values) {
    outside.count = count;
    for (std::size_t i = 0; i < from.size() && i < static_cast<std::size_t>(count); ++i)
        values[i] = from[i];
    return outside.given;
}

}  // namespace

std::string entries(std::vector<int> const& values) {
    std::string result;
    for (int const value : values)
        result += (result.empty() ? "" : " ") + std::to_string(value);
    return result;
}

std::string entries(History<int> const& history) {
    std::vector<int> values;
    for (int i = 0; i < history.size(); ++i)
        values.push_back(history[i]);
    return entries(values);
}

std::string entries(History<s_Objet> const& history) {
    std::string result;
    for (int i = 0; i < history.size(); ++i)
        result += (i > 0 ? " " : "") + text(history[i]);
    return result;
}

History<s_Objet> numbered(int length, double first) {
    History<s_Objet> history(length);
    for (int i = 0; i < length; ++i)
        history.set(i, makeReal(first + i));
    return history;
}

s_Variable* parameter(Plant& plant, char const* nom, double value) {
    s_Variable* p = plant.add(nom, makeReal(value));
    p->isParam = 1;
    return p;
}

Choice::Choice(std::string const& name, std::vector<std::string> const& values)
    : variable(name, {values.begin(), values.end()}, values.front(), nullptr) {
    for (std::string const& value : values)
        atoms.push_back(std::make_unique<Atom>(&variable, value, name + "=" + value));
}

std::string events(s_runtime const& rt) {
    std::string result;
    for (auto const& [sign, atom] : rt.bridgeEvents)
        result += std::string(result.empty() ? "" : " ") + (sign ? "+" : "-") + atom->getId();
    return result;
}

void EngineTest::dropSplit() {
    std::map<long, s_runtime*> once;
    for (auto const& [num, rt] : nrt)
        if (rt != keep)
            once[num] = rt;
    for (auto const& entry : once)
        delete entry.second;
    nrt.clear();
}

void EngineTest::reset() {
    dropSplit();
    dynamic_test::renewScratch();
    env_opti = 1;
    rt_num = 0;
    inps.clear();
    meas.clear();
    bridgeCalls.clear();
    outside = {};
    testHost().onMisbehaviours = [](int count, int* values) {
        return handOut(count, outside.misbs, values);
    };
    testHost().onActivity = [](int count, int* values) {
        return handOut(count, outside.conds, values);
    };
}

}  // namespace engine_test

using engine_test::record;

// The linker leads the engine's calls of the bridge here (see CMakeLists.txt), under the names that
// it makes for that, and from here on to the bridge itself.
#define BRIDGE_ADD "_Z14addBridgeEventP11s_ConditionP4AtombP9s_runtime"
#define BRIDGE_REMOVE "_Z17removeBridgeEventP11s_ConditionPK4AtomP9s_runtime"

void realAdd(s_Condition* c, Atom* atom, bool sign, s_runtime* rt) __asm__("__real_" BRIDGE_ADD);
void realRemove(s_Condition* c, Atom const* atom, s_runtime* rt) __asm__("__real_" BRIDGE_REMOVE);
void recordedAdd(s_Condition* c, Atom* atom, bool sign,
                 s_runtime* rt) __asm__("__wrap_" BRIDGE_ADD);
void recordedRemove(s_Condition* c, Atom const* atom,
                    s_runtime* rt) __asm__("__wrap_" BRIDGE_REMOVE);

void recordedAdd(s_Condition* c, Atom* atom, bool sign, s_runtime* rt) {
    record("add", atom, rt);
    realAdd(c, atom, sign, rt);
}

void recordedRemove(s_Condition* c, Atom const* atom, s_runtime* rt) {
    record("remove", atom, rt);
    realRemove(c, atom, rt);
}

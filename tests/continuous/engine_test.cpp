// What an engine holds for its run: its state at the start, two runs beside each other, and where
// the printers write.
#include "continuous/engine.h"

#include <iomanip>
#include <sstream>

#include "engine_fixture.h"

namespace engine_test {
namespace {

// A host that keeps what it is told.
class Keeping : public Host {
public:
    std::ostream& out() override { return told; }
    std::ostream& err() override { return complained; }
    void diagnosis(std::string const& text) override { diagnosed += text; }
    bool memoryRunsShort() override { return isShort; }

    std::ostringstream told, complained;
    std::string diagnosed;
    bool isShort = false;
};

TEST(Engine, AFreshOneIsAsAProgramStarts) {
    Keeping host;
    s_engine const engine(host);
    EXPECT_EQ(&engine.host, &host);
    EXPECT_EQ(&engine.out, &host.told);
    EXPECT_EQ(&engine.err, &host.complained);
    EXPECT_EQ(engine.env_opti, 1);
    EXPECT_EQ(engine.rt_num, 0);
    EXPECT_TRUE(engine.inps.empty() && engine.meas.empty() && engine.nrt.empty());
    for (auto scratch :
         {&s_engine::TMP1, &s_engine::TMP2, &s_engine::TMP3, &s_engine::TMP4, &s_engine::TMP5,
          &s_engine::TMPII, &s_engine::TMPIS, &s_engine::TMPSI, &s_engine::TMPSS})
        EXPECT_EQ((engine.*scratch).type, OBJ_UNSET);
    EXPECT_EQ(engine.sin_cost_ptr, nullptr);
    EXPECT_EQ(engine.opti_static_obs_ptr, nullptr);
}

// y is the input of the cycle before times a gain, in a run of its own.
struct Amplifier {
    explicit Amplifier(char const* gain) : engine(host) {
        plant.rt.engine = &engine;
        u = plant.add("u", obj("0"));
        y = plant.add("y", obj("0"));
        plant.link(u, y, INF_STATIC, gain)->delayMax = 1;
        plant.rt.input = {u};
        plant.rt.untemporal = {y};
        plant.rt.display = {y};
        sizeArrays(plant.rt);
    }
    void step(double input) {
        engine.inps = {input};
        sorn_doCycle2(&plant.rt, CYCLE_DETECT);
    }

    Keeping host;
    s_engine engine;
    Plant plant;
    s_Variable *u, *y;
};

// A cycle of one run between every two of the other.
TEST(Engine, TwoRunsKnowNothingOfEachOther) {
    Amplifier alone("2"), a("2"), b("-3");
    for (double const input : {1.0, 5.0, 2.0, 8.0}) {
        alone.step(input);
        a.step(input);
        b.step(10 * input);
        EXPECT_EQ(text(a.y->old), text(alone.y->old));
    }
    EXPECT_EQ(text(a.y->old), "4");  // 2 times the input of the cycle before
    EXPECT_EQ(text(b.y->old), "-60");
    EXPECT_EQ(text(a.engine.TMP1), "4");
    EXPECT_EQ(text(b.engine.TMP1), "-60");
    EXPECT_EQ(a.plant.rt.inval, a.engine.inps.data());
    EXPECT_EQ(b.plant.rt.inval, b.engine.inps.data());
}

TEST(Engine, ACopyBelongsToTheRunOfItsSourceUnlessToldOtherwise) {
    Keeping host;
    s_engine first(host), second(host);
    first.rt_num = 4;
    second.rt_num = 70;
    s_runtime source;
    source.engine = &first;
    auto const own = sn_copyRuntime(&source);
    auto const other = sn_copyRuntime(&source, &second);
    EXPECT_EQ(own->engine, &first);
    EXPECT_EQ(own->num, 4);
    EXPECT_EQ(other->engine, &second);
    EXPECT_EQ(other->num, 70);
    EXPECT_EQ(first.rt_num, 5);
    EXPECT_EQ(second.rt_num, 71);
}

TEST(Engine, ATemplateIsCopiedIntoARun) {
    Keeping host;
    s_engine engine(host);
    s_runtime const plain;
    auto const copy = sn_copyRuntime(&plain, &engine);
    EXPECT_EQ(copy->engine, &engine);
    EXPECT_EQ(copy->num, 0);
}

TEST(Engine, TheHostOfTheRunStopsItsCopiesAndCycles) {
    Amplifier run("1");
    run.host.isShort = true;
    EXPECT_THROW(sn_copyRuntime(&run.plant.rt), std::bad_alloc);
    EXPECT_THROW(run.step(1), std::bad_alloc);
    EXPECT_EQ(run.engine.rt_num, 0);
}

TEST(Engine, ADiagnosisGoesToTheHostOfTheRun) {
    Amplifier a("1"), b("1");
    a.plant.rt.diagBuf = "[{i1,0,()}]";
    EXPECT_EQ(sn_yieldDiags(&a.plant.rt), 1);
    EXPECT_EQ(a.host.diagnosed, "[{i1,0,()}]");
    EXPECT_EQ(b.host.diagnosed, "");
}

TEST(Engine, TheSilentHostHearsNothingAndFindsNothing) {
    Host silent;
    s_engine engine(silent);
    Plant plant;
    plant.rt.engine = &engine;
    plant.measure(plant.add("m", obj("1")), 1);
    plant.condition(plant.link(plant.add("a", obj("1")), plant.add("b", obj("1")), INF_STATIC), 1);
    sizeArrays(plant.rt);
    std::string err;
    EXPECT_EQ(printed([&] {
                  err = complaint([&] {
                      EXPECT_EQ(sn_enterMisbs(&plant.rt), 0);
                      EXPECT_EQ(sn_enterConds(&plant.rt), 0);
                      EXPECT_EQ(sn_yieldAlarms(&plant.rt), 1);
                      sn_printDic(peoplePrinter(engine), &plant.rt);
                      viewCcAgenda(&plant.rt);
                  });
              }),
              "");
    EXPECT_EQ(err, "");
}

// ---- Printers ----

TEST(Printers, OneIsForPeopleAndOneForData) {
    Keeping host;
    s_engine engine(host);
    std::ostringstream file;
    s_Objet const value = obj("[1, 2[");
    sn_printObjet(peoplePrinter(engine), &value);
    sn_printObjet(dataPrinter(engine, file), &value);
    EXPECT_EQ(host.complained.str(), " in  [1, 2[");
    EXPECT_EQ(file.str(), "1 2");
    EXPECT_EQ(host.told.str(), "");
}

TEST(Printers, TheFormatOfAStreamChangesNothing) {
    std::ostringstream stream;
    stream << std::setprecision(2) << std::fixed << std::showpos;
    sn_printReal({stream, stream, false}, 0.1234567);
    EXPECT_EQ(stream.str(), "0.123457");
    stream << 0.5;
    EXPECT_EQ(stream.str(), "0.123457+0.50") << "the stream keeps its format";
}

// A condition's end of line goes to `out`, and a missing condition is told where `err` says.
TEST(Printers, OdditiesHavePlacesOfTheirOwn) {
    std::ostringstream stream, out, err;
    sn_printCondition({stream, out, false, &err}, nullptr);
    EXPECT_EQ(err.str(), "Unable to print condition (NULL Pointer)\n");
    sn_printCondition({stream, out, false}, nullptr);
    EXPECT_EQ(stream.str() + out.str(), "");
    auto condition = mkCond();
    condition->kind = COND_CONST;
    sn_printCondition({stream, out, false, &err}, condition.get());
    EXPECT_EQ(stream.str(), "(false)");
    EXPECT_EQ(out.str(), "\n");
}

}  // namespace
}  // namespace engine_test
